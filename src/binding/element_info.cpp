#include "kdbind/metadata.h"

namespace KdBindData {

CElementInfo::CElementInfo(char const* name, char const* ns, int propertyId)
    : m_elementName(name ? name : ""), m_namespace(ns ? ns : ""), m_propertyId(propertyId)
{
}

CElementInfo::CElementInfo(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType,
                           char const* format, KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                           KdBind::CPrimitiveRestrictions const& restrictions)
    : m_elementName(name ? name : ""), m_namespace(ns ? ns : ""), m_propertyId(propertyId),
      m_restrictions(restrictions), m_itemType(itemType), m_format(format), m_whitespaceRule(whitespaceRule),
      m_hasPrimitiveInformation(true)
{
}

void CElementInfo::PseudoChildAttributeToXml(CXmlSerializationContext const&, CXmlGeneratedClass const*,
                                             CXmlWriter*) const
{
}

} // namespace KdBindData
