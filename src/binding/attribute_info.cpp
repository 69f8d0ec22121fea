// The root of the attribute metadata: identity, property access and the
// steps shared by the typed attribute entries.
#include "kdbind/metadata.h"

using namespace KdBind;

namespace KdBindData {

CAttributeInfo::CAttributeInfo(char const* name, char const* ns, int propertyId, bool optional,
                               char const* defaultValue)
    : m_name(name ? name : ""), m_namespace(ns ? ns : ""), m_propertyId(propertyId), m_optional(optional),
      m_defaultValue(defaultValue ? defaultValue : "")
{
}

bool CAttributeInfo::IsThisAttribute(CXmlSerializationContext const& context, CXmlAttribute const* attribute) const
{
    if (!attribute || attribute->GetLocalName() != m_name)
        return false;
    return context.GetIgnoreNamespaces() || attribute->GetNamespaceURI() == m_namespace;
}

void CAttributeInfo::AccessProperty(CXmlGeneratedClass* object, bool readAccess, KdVariant& value) const
{
    object->AccessProperty(m_propertyId, readAccess, value);
}

void CAttributeInfo::ReadProperty(CXmlGeneratedClass const* object, KdVariant& value) const
{
    object->ReadProperty(m_propertyId, value);
}

void CAttributeInfo::TestNamespace(std::string const& ns, std::string const& spec, std::string const& target)
{
    CXmlObjectHelper::TestNamespace(ns, spec, target);
}

std::string CAttributeInfo::GetTargetNamespace(CXmlObjectBase const* object)
{
    return object->GetTargetNamespace();
}

void CAttributeInfo::ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool root, char const* ns,
                               CXmlSerializationContext const& context)
{
    CXmlObjectBase::ToXml_Int(object, writer, root, ns, context, false);
}

bool CAttributeInfo::IsOmittedDefault(CXmlSerializationContext const& context, std::string const& text) const
{
    // A comparison of lexical forms: "1.0" against a default of "1" is written.
    return m_optional && !m_defaultValue.empty() && context.GetNoOptionalAttributeDefaultOutput() &&
           text == m_defaultValue;
}

void CAttributeInfo::ValidatePresence(bool found) const
{
    // No option relaxes this: attributes have no counterpart of IgnoreMissingMandatoryElements.
    if (!m_optional && !found)
        throw CKdValidationException(FormatString("Failed to find the required Attribute [%s]", m_name.c_str()));
}

} // namespace KdBindData
