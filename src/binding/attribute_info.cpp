#include "kdbind/metadata.h"

namespace KdBindData {

CAttributeInfo::CAttributeInfo(char const* name, char const* ns, int propertyId, bool optional,
                               char const* defaultValue)
    : m_name(name ? name : ""), m_namespace(ns ? ns : ""), m_propertyId(propertyId), m_optional(optional),
      m_defaultValue(defaultValue ? defaultValue : "")
{
}

} // namespace KdBindData
