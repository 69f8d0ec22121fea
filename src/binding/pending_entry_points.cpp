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

void CXmlObjectBase::ToXmlFile(char const*, bool, bool, XmlEncoding, EOLType, CXmlSerializationContext const&,
                               CompressionType) const
{
    NotAvailable("ToXmlFile");
}

void CXmlObjectBase::ToFastInfosetFile(char const*, FInfoDecl, CXmlSerializationContext const&,
                                       CompressionType) const
{
    NotAvailable("ToFastInfosetFile");
}

CBinaryData CXmlObjectBase::ToXmlStream(bool, bool, XmlEncoding, EOLType, CXmlSerializationContext const&,
                                        CompressionType) const
{
    NotAvailable("ToXmlStream");
}

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl, CXmlSerializationContext const&, CompressionType) const
{
    NotAvailable("ToFastInfosetStream");
}

void CXmlObjectBase::FromXmlFile(char const*, CXmlSerializationContext const&) { NotAvailable("FromXmlFile"); }

void CXmlObjectBase::FromXmlStream(unsigned char*, unsigned long, CXmlSerializationContext const&)
{
    NotAvailable("FromXmlStream");
}

void CXmlObjectBase::FromXmlStream(CBinaryData const&, CXmlSerializationContext const&)
{
    NotAvailable("FromXmlStream");
}

} // namespace KdBind
