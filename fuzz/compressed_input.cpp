// Feeds arbitrary bytes, and the same bytes compressed, to the recognition
// of compressed input: truncated, corrupt or hostile streams must expand,
// pass through unchanged or fail with a CKdException, within the expansion
// limit.
#include <cstdint>
#include <cstring>

#include <kdbind/kdbind.h>

namespace {

void Load(unsigned char const* data, unsigned long size)
{
    if (size == 0)
        return;
    try {
        KdBind::CXmlDocument document;
        document.LoadXmlStream(const_cast<unsigned char*>(data), size);
    } catch (KdBind::CKdException const&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    // A small limit keeps a hostile stream cheap to refuse.
    static bool const limited = (KdBind::CKdZip::SetMaxExpandedSize(1u << 22), true);
    (void)limited;
    Load(data, size);
    // The input compressed, then cut by its own first byte: whole and cut
    // streams both have to be handled.
    if (size > 1) {
        KdBind::CBinaryData compressed(const_cast<uint8_t*>(data) + 1, static_cast<unsigned long>(size - 1), false);
        try {
            KdBind::CKdZip::CompressData(compressed, (data[0] & 1) ? KdBind::CompressionType_GZip
                                                                 : KdBind::CompressionType_ZLib);
        } catch (KdBind::CKdException const&) {
            return 0;  // it did not shrink
        }
        unsigned long const length = compressed.GetLength();
        unsigned long const cut = data[0] >= 0x80 ? length : length * (data[0] & 0x7F) / 128;
        Load(compressed.GetData(), cut);
    }
    return 0;
}
