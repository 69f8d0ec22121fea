#include "kdbind/metadata.h"

namespace KdBindData {

CParentElementInfo::CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType,
                                       char const* elementName, char const* ns, int textPropertyId,
                                       bool rejectUnknownAttributes, bool writeTypeAttribute)
    : m_groupType(groupType), m_elementType(elementType), m_elementName(elementName ? elementName : ""),
      m_namespace(ns ? ns : ""), m_textPropertyId(textPropertyId),
      m_rejectUnknownAttributes(rejectUnknownAttributes), m_writeTypeAttribute(writeTypeAttribute)
{
}

} // namespace KdBindData
