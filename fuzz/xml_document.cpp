// Feeds arbitrary bytes to the text reader: any input must end in a tree or
// a CKdException.
#include <cstdint>
#include <string>

#include <kdbind/kdbind.h>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    try {
        KdBind::CXmlDocument document;
        document.LoadXml(text.c_str());
    } catch (KdBind::CKdException const&) {
    }
    return 0;
}
