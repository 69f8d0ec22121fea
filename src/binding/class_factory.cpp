// CClassfactoryBase: what generated factories read from an element to choose
// the class of a substitutable child, its xsi:type.
#include "kdbind/binding.h"

namespace KdBind {

namespace {

std::string TypeAttribute(CXmlElement const* element)
{
    return element->GetAttribute("type", "http://www.w3.org/2001/XMLSchema-instance");
}

} // namespace

std::string CClassfactoryBase::GetElementType(CXmlElement* element)
{
    if (!element)
        return std::string();
    std::string const type = TypeAttribute(element);
    std::string::size_type const colon = type.find(':');
    return colon == std::string::npos ? type : type.substr(colon + 1);
}

// The tree keeps no prefixes of its own: a prefix is resolved through the
// document's flat map of declarations, so the last declaration of it in the
// document wins.
std::string CClassfactoryBase::GetElementTypeNamespaceUri(CXmlElement* element)
{
    if (!element)
        return std::string();
    std::string const type = TypeAttribute(element);
    std::string::size_type const colon = type.find(':');
    if (colon == std::string::npos)
        return element->GetNamespaceURI();
    CXmlDocument const* const document = element->GetOwnerDocument();
    std::string const uri =
        document ? document->LookupNamespaceFromAlias(type.substr(0, colon).c_str()) : std::string();
    return uri.empty() ? element->GetNamespaceURI() : uri;
}

} // namespace KdBind
