// Attributes of a primitive type.
#include "kdbind/metadata.h"

using namespace KdBind;

namespace KdBindData {

CAttributeInfoPrimitive::CAttributeInfoPrimitive(char const* name, char const* ns, int propertyId, bool optional,
                                                 ItemType itemType, char const* format,
                                                 CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                                 CPrimitiveRestrictions const& restrictions, char const* defaultValue)
    : CAttributeInfo(name, ns, propertyId, optional, defaultValue), m_restrictions(restrictions),
      m_itemType(itemType), m_format(format), m_whitespaceRule(whitespaceRule)
{
}

void CAttributeInfoPrimitive::AttributeToXml(CXmlSerializationContext const& context,
                                             CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    KdVariant value;
    ReadProperty(object, value);
    // A required attribute is not tested: ToString of an unset value is its failure.
    if (m_optional && !value.IsValid())
        return;
    std::string scratch;
    std::string const& text = value.TextOf(m_format, scratch);
    // Left out before the facet check, so a default value is never checked.
    if (IsOmittedDefault(context, text))
        return;
    // The check itself, without CheckRestriction's copy of the variant.
    CXmlObjectHelper::CheckRestriction(m_name.c_str(), value, m_itemType, m_restrictions);
    writer->WriteAttributeString(m_name, m_namespace, text, value.GetItemType());
}

bool CAttributeInfoPrimitive::AttributeFromXml(CXmlSerializationContext const&, CXmlGeneratedClass* object,
                                               CXmlAttribute* attribute)
{
    // Deliberately not IsThisAttribute: IgnoreNamespaces does not reach
    // primitive attributes, whose namespace must always match.
    if (!attribute || attribute->GetLocalName() != m_name || attribute->GetNamespaceURI() != m_namespace)
        return false;
    KdVariant value;
    value.FromString(attribute->GetValue(), m_itemType, m_whitespaceRule);
    AccessProperty(object, false, value);
    return true;
}

void CAttributeInfoPrimitive::Validate(CXmlSerializationContext const&, bool found) const
{
    ValidatePresence(found);
}

void CAttributeInfoPrimitive::CheckRestriction(KdVariant value) const
{
    CXmlObjectHelper::CheckRestriction(m_name.c_str(), value, m_itemType, m_restrictions);
}

} // namespace KdBindData
