// Entry points whose machinery (documents, files, streams, Fast Infoset)
// joins the library in later steps. Until then they fail plainly.
#include "kdbind/binding.h"

namespace KdBind {

namespace {
[[noreturn]] void NotAvailable(char const* entryPoint)
{
    throw CKdException(FormatString("%s is not available in this version of the library", entryPoint));
}
} // namespace

void CXmlObjectBase::FromXmlElement(CElement const*, CXmlSerializationContext const&)
{
    NotAvailable("FromXmlElement");
}

} // namespace KdBind
