// Feeds arbitrary text to every lexical conversion of KdVariant and to the
// binary codecs: each must give a value or a CKdException.
#include <cstdint>
#include <string>

#include <kdbind/kdbind.h>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size < 1)
        return 0;
    using namespace KdBind;
    auto const rule = static_cast<CWhitespaceUtils::WhitespaceRule>(data[0] % 4);
    std::string const text(reinterpret_cast<char const*>(data + 1), size - 1);
    for (int type = ItemType_hexBinary; type <= ItemType_integer; ++type) {
        try {
            KdVariant value;
            value.FromString(text, static_cast<ItemType>(type), rule);
            value.ToString();
        } catch (CKdException const&) {
        }
    }
    try {
        CBinaryData binary;
        binary.SetAsBase64(text.c_str());
        binary.SetAsHexString(text.c_str());
    } catch (CKdException const&) {
    }
    return 0;
}
