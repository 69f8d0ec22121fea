// CAttribute and CAttributeCol: the attributes of an xs:anyAttribute and of
// untyped elements.
#include "kdbind/binding.h"

namespace KdBind {

namespace {
std::string TextOrEmpty(char const* text) { return text ? text : ""; }
} // namespace

// ---------------------------------------------------------------------------
// CAttribute
// ---------------------------------------------------------------------------

CAttribute::CAttribute(char const* name, char const* value, char const* ns)
    : CInstanceMonitor("CAttribute"), m_name(TextOrEmpty(name)), m_value(TextOrEmpty(value)),
      m_namespace(TextOrEmpty(ns))
{
}

void CAttribute::SetName(char const* name)
{
    m_name = TextOrEmpty(name);
    FireOnChangeName(name);
}

void CAttribute::SetNamespace(char const* ns)
{
    m_namespace = TextOrEmpty(ns);
    FireOnChangeNamespace(ns);
}

CSmartPtr<CAttribute> CAttribute::Clone() const
{
    return new CAttribute(m_name.c_str(), m_value.c_str(), m_namespace.c_str());
}

void CAttribute::FireOnChangeName(char const*) {}

void CAttribute::FireOnChangeNamespace(char const*) {}

void CAttribute::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const&, bool) const
{
    writer->WriteAttributeString(m_name, m_namespace, m_value, ItemType_string);
}

CXmlElement* CAttribute::FromXml_Int(CXmlElement*, CXmlElement*, CXmlSerializationContext const&, bool)
{
    throw CKdException("This should be done by the collection");
}

// ---------------------------------------------------------------------------
// CAttributeCol
// ---------------------------------------------------------------------------

namespace {
// A restriction that lists URIs supplies the namespace of a collection made
// without one: its first token, unless that is a keyword.
std::string CollectionNamespace(char const* ns, char const* restriction)
{
    std::string const given = TextOrEmpty(ns);
    std::string const spec = TextOrEmpty(restriction);
    std::string const token = spec.substr(0, spec.find(' '));
    if (given.empty() && token.size() > 1 && token[0] != '#' && token[1] != '#')
        return token;
    return given;
}
} // namespace

CAttributeCol::CAttributeCol(char const* ns, char const* restriction, char const* targetNamespace)
    : CXmlCollection("", CollectionNamespace(ns, restriction).c_str(), 0, -1), CInstanceMonitor("CAttributeCol"),
      m_restriction(TextOrEmpty(restriction)), m_targetNamespace(TextOrEmpty(targetNamespace))
{
}

CSmartPtr<CAttribute> CAttributeCol::Add(char const* name) { return Add(name, ""); }

CSmartPtr<CAttribute> CAttributeCol::Add(char const* name, char const* value)
{
    std::string const ns = GetNamespace();
    return Add(name, value, ns.c_str());
}

CSmartPtr<CAttribute> CAttributeCol::Add(char const* name, char const* value, char const* ns)
{
    CXmlObjectHelper::TestNamespace(TextOrEmpty(ns), m_restriction, m_targetNamespace);
    return Add(new CAttribute(name, value, ns));
}

CSmartPtr<CAttribute> CAttributeCol::Add(CAttribute* attribute)
{
    if (!attribute)
        throw CKdInvalidParamException("A null attribute cannot be added to the collection");
    // Held across AppendItem: a listener that refuses the add leaves no leak.
    CSmartPtr<CAttribute> held = attribute;
    AppendItem(attribute);
    return held;
}

CSmartPtr<CAttribute> CAttributeCol::Item(int index) const
{
    return static_cast<CAttribute*>(GetNodeAtIndex(index)->item);
}

CSmartPtr<CAttributeCol> CAttributeCol::Clone() const
{
    std::string const ns = GetNamespace();
    CSmartPtr<CAttributeCol> copy =
        new CAttributeCol(ns.c_str(), m_restriction.c_str(), m_targetNamespace.c_str());
    for (CNode* node = begin(); node != end(); node = node->next)
        copy->Add(static_cast<CAttribute*>(node->item)->Clone());
    return copy;
}

void CAttributeCol::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& context,
                              bool) const
{
    for (CNode* node = begin(); node != end(); node = node->next)
        if (node->item)
            CXmlObjectBase::ToXml_Int(node->item->GetBase(), writer, false, ns, context, false);
}

CXmlElement* CAttributeCol::FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const&,
                                        bool)
{
    for (CXmlAttribute const* attribute : parent->GetAttributes()) {
        if (!CXmlObjectHelper::IsNamespaceValid(attribute->GetNamespaceURI(), m_restriction, m_targetNamespace))
            throw CKdInvalidNamespaceException(
                FormatString("Invalid Attribute [%s]. The attributes namespace is Inappropriate.",
                             attribute->GetLocalName().c_str()));
        Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(),
            attribute->GetNamespaceURI().c_str());
    }
    return cursor;
}

} // namespace KdBind
