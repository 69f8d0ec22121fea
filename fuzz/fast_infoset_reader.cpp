// Feeds arbitrary bytes behind a Fast Infoset header to the form recognition,
// so that nearly every input reaches the Fast Infoset reader: any input must
// end in a tree or a CKdException.
#include <cstdint>
#include <cstring>
#include <vector>

#include <kdbind/kdbind.h>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    // Half the inputs keep their own first bytes, so that the recognition of
    // the header and of the XML declarations in front of it is fuzzed too.
    std::vector<unsigned char> input;
    if (size == 0 || (data[0] & 1)) {
        static unsigned char const kHeader[] = {0xE0, 0x00, 0x00, 0x01};
        input.assign(kHeader, kHeader + sizeof kHeader);
    }
    input.insert(input.end(), data, data + size);
    try {
        KdBind::CXmlDocument document;
        document.LoadXmlStream(input.data(), static_cast<unsigned long>(input.size()));
    } catch (KdBind::CKdException const&) {
    }
    return 0;
}
