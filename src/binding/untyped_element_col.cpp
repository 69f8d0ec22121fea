// CElementCol: a repeating xs:any, and the children of an untyped element.
#include "kdbind/binding.h"

namespace KdBind {

namespace {
std::string TextOrEmpty(char const* text) { return text ? text : ""; }

char const kAnyNamespace[] = "##any";

// A keyword restriction stands in for the namespace of new elements, so that
// elements made by Add(name) fit the wildcard they were made for.
std::string NewElementNamespace(char const* ns, char const* restriction)
{
    std::string const spec = TextOrEmpty(restriction);
    if (spec.size() > 1 && spec[0] == '#' && spec[1] == '#')
        return spec;
    return TextOrEmpty(ns);
}
} // namespace

// The occurs are not kept: a wildcard's count is never checked. The
// restriction is tested against once and then opened to "##any", since the
// content below a wildcard is open.
CElementCol::CElementCol(char const* ns, char const* restriction, char const* targetNamespace, int, int)
    : CXmlCollection("", "", 0, -1), CInstanceMonitor("CElementCol"), m_restriction(kAnyNamespace),
      m_targetNamespace(TextOrEmpty(targetNamespace))
{
    CXmlObjectHelper::TestNamespace(TextOrEmpty(ns), TextOrEmpty(restriction), m_targetNamespace);
    m_newElementNamespace = NewElementNamespace(ns, restriction);
}

CSmartPtr<CElement> CElementCol::Add(char const* name)
{
    if (m_newElementNamespace.empty())
        throw CKdInvalidStateException("A Namespace has not been set for this Collection");
    return Add(new CElement(name, m_newElementNamespace.c_str(), m_restriction.c_str(), m_targetNamespace.c_str()));
}

CSmartPtr<CElement> CElementCol::Add(char const* name, char const* ns)
{
    CXmlObjectHelper::TestNamespace(TextOrEmpty(ns), m_restriction, m_targetNamespace);
    return Add(new CElement(name, ns, m_restriction.c_str(), m_targetNamespace.c_str()));
}

CSmartPtr<CElement> CElementCol::Add(CElement* element)
{
    if (!element)
        throw CKdInvalidParamException("A null element cannot be added to the collection");
    // Held from here on, so that a refused element is freed.
    CSmartPtr<CElement> held = element;
    CXmlObjectHelper::TestNamespace(element->GetNamespace(), m_restriction, m_targetNamespace);
    AppendItem(element);
    return held;
}

CSmartPtr<CElement> CElementCol::Item(int index) const { return static_cast<CElement*>(GetNodeAtIndex(index)->item); }

CSmartPtr<CElementCol> CElementCol::Clone() const
{
    CSmartPtr<CElementCol> copy =
        new CElementCol(m_newElementNamespace.c_str(), m_restriction.c_str(), m_targetNamespace.c_str(),
                        GetMinOccurs(), GetMaxOccurs());
    for (CNode* node = begin(); node != end(); node = node->next)
        if (CElement const* element = dynamic_cast<CElement const*>(node->item))
            copy->Add(element->Clone());
    return copy;
}

void CElementCol::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& context,
                            bool) const
{
    ValidateCount(context);
    CElement::WriteElements(*this, writer, ns, context);
}

namespace {
// Reads consecutive elements into new untyped elements while make gives one
// for the element at the cursor. An element is added once it has been read,
// and one that consumes nothing ends the run.
template <class Make>
CXmlElement* ReadRun(CElementCol& elements, CXmlElement* parent, CXmlElement* cursor,
                     CXmlSerializationContext const& context, Make make)
{
    while (cursor) {
        CSmartPtr<CElement> element = make(cursor);
        if (!element)
            return cursor;
        CXmlElement* const reached = CXmlObjectBase::FromXml_Int(element, parent, cursor, context, false);
        if (reached == cursor)
            return cursor;
        elements.Add(element);
        cursor = reached;
    }
    return cursor;
}
} // namespace

CXmlElement* CElementCol::FromXml_Int(CXmlElement* parent, CXmlElement* cursor,
                                      CXmlSerializationContext const& context, bool)
{
    return ReadRun(*this, parent, cursor, context, [this](CXmlElement* at) -> CSmartPtr<CElement> {
        std::string const& ns = at->GetNamespaceURI();
        if (!CXmlObjectHelper::IsNamespaceValid(ns, m_restriction, m_targetNamespace))
            return nullptr;
        return new CElement(at->GetLocalName().c_str(), ns.c_str(), m_restriction.c_str(), m_targetNamespace.c_str());
    });
}

// The run of elements that agree in name and namespace with the first.
CXmlElement* CElementCol::FromXmlLockElementName_Int(std::string name, std::string ns, CXmlElement* parent,
                                                     CXmlElement* cursor, CXmlSerializationContext const& context)
{
    return ReadRun(*this, parent, cursor, context, [&](CXmlElement* at) -> CSmartPtr<CElement> {
        if (at->GetLocalName() != name || at->GetNamespaceURI() != ns)
            return nullptr;
        return new CElement(name.c_str(), ns.c_str(), kAnyNamespace, m_targetNamespace.c_str());
    });
}

} // namespace KdBind
