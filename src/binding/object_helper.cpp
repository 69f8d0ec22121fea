// Name and namespace matching: wildcard namespace restrictions and element
// identity under the options of a context.
#include <string_view>

#include "kdbind/binding.h"

namespace KdBind {

namespace {

// One token of a wildcard restriction. A literal token is compared with the
// whole restriction, not with itself, and always lets the empty namespace
// through: generated code relies on both.
bool TokenAccepts(std::string const& token, std::string const& ns, std::string const& restriction,
                  std::string const& targetNamespace)
{
    if (token == "##any")
        return true;
    if (token == "##other")  // the empty namespace is other, even beside an empty target
        return ns.empty() || ns != targetNamespace;
    if (token == "##local")
        return ns.empty();
    if (token == "##targetNamespace")
        return ns == targetNamespace;
    return ns == restriction || ns.empty();
}

std::string TextOrEmpty(char const* text) { return text ? text : ""; }

// Schema type 2 compares local names only; the context already reports it as
// ignoring namespaces, so one test covers both. Compared in place: generated
// collections ask for every element they read.
bool ElementNameMatches(CXmlSerializationContext const& context, CXmlElement const* element, std::string_view name,
                        std::string_view ns)
{
    if (!element || element->GetLocalName() != name)
        return false;
    return context.GetIgnoreNamespaces() || element->GetNamespaceURI() == ns;
}

} // namespace

// Only the first token of a list is judged as a token. Behind the first
// blank the search sees nothing but an empty token, so later tokens never
// count. The reading is kept on purpose, since changing it would change
// which documents load; generated code passes one token, or a list whose
// first token accepts. The empty token's answer cannot change from one pass
// to the next, so where a search over it would go on for ever we answer
// false after one look.
bool CXmlObjectHelper::IsNamespaceValid(std::string const& ns, std::string const& restriction,
                                        std::string const& targetNamespace)
{
    std::string::size_type const blank = restriction.find(' ');
    if (TokenAccepts(restriction.substr(0, blank), ns, restriction, targetNamespace))
        return true;
    if (blank == std::string::npos)
        return false;
    return TokenAccepts(std::string(), ns, restriction, targetNamespace);
}

void CXmlObjectHelper::TestNamespace(std::string const& ns, std::string const& restriction,
                                     std::string const& targetNamespace)
{
    if (!IsNamespaceValid(ns, restriction, targetNamespace))
        throw CKdInvalidNamespaceException(FormatString(
            "Invalid namespace [%s]. The namespace must be one of [%s] where the target namespace is [%s]",
            ns.c_str(), restriction.c_str(), targetNamespace.c_str()));
}

bool CXmlObjectHelper::DoesElementNameMatch(CXmlSerializationContext const& context, CXmlElement const* element,
                                            std::string const& name, std::string const& ns)
{
    return ElementNameMatches(context, element, name, ns);
}

bool CXmlObjectBase::IsNamespaceValid(char const* ns, char const* restriction, char const* targetNamespace) const
{
    return CXmlObjectHelper::IsNamespaceValid(TextOrEmpty(ns), TextOrEmpty(restriction), TextOrEmpty(targetNamespace));
}

void CXmlObjectBase::TestNamespace(char const* ns, char const* restriction, char const* targetNamespace) const
{
    CXmlObjectHelper::TestNamespace(TextOrEmpty(ns), TextOrEmpty(restriction), TextOrEmpty(targetNamespace));
}

bool CXmlObjectBase::DoesElementNameMatch(CXmlSerializationContext const& context, CXmlElement const* element,
                                          char const* name, char const* ns) const
{
    return ElementNameMatches(context, element, name ? name : "", ns ? ns : "");
}

} // namespace KdBind
