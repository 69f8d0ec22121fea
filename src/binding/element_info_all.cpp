// The children of an xs:all. Entries are offered elements in passes, in any
// order; matching never fails, and Validate decides afterwards what may be
// missing.
#include "kdbind/metadata.h"

using namespace KdBind;

namespace KdBindData {

CElementInfoAll::CElementInfoAll(char const* name, char const* ns, int propertyId)
    : CElementInfo(name, ns, propertyId)
{
}

CElementInfoAll::CElementInfoAll(char const* name, char const* ns, int propertyId, ItemType itemType,
                                 char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                 CPrimitiveRestrictions const& restrictions)
    : CElementInfo(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

CElementInfoAllCol::CElementInfoAllCol(char const* name, char const* ns, int propertyId)
    : CElementInfoAll(name, ns, propertyId)
{
}

CElementInfoAllNonCol::CElementInfoAllNonCol(char const* name, char const* ns, int propertyId)
    : CElementInfoAll(name, ns, propertyId)
{
}

CElementInfoAllClsMnd::CElementInfoAllClsMnd(char const* name, char const* ns, int propertyId,
                                             XmlElementType elementType, CElementInfoFactory factory, int classId,
                                             bool contentRequired)
    : CElementInfoAll(name, ns, propertyId), m_elementType(elementType), m_factory(factory), m_classId(classId),
      m_contentRequired(contentRequired)
{
}

CElementInfoAllClsOpt::CElementInfoAllClsOpt(char const* name, char const* ns, int propertyId,
                                             XmlElementType elementType, CElementInfoFactory factory, int classId)
    : CElementInfoAll(name, ns, propertyId), m_elementType(elementType), m_factory(factory), m_classId(classId)
{
}

CElementInfoAllClsCol::CElementInfoAllClsCol(char const* name, char const* ns, int propertyId,
                                             XmlElementType elementType)
    : CElementInfoAllCol(name, ns, propertyId), m_elementType(elementType)
{
}

CElementInfoAllAbsClsMnd::CElementInfoAllAbsClsMnd(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType, CElementInfoElementFactory factory,
                                                   int unused)
    : CElementInfoAll(name, ns, propertyId), m_elementType(elementType), m_factory(factory), m_unused(unused)
{
}

CElementInfoAllAbsClsOpt::CElementInfoAllAbsClsOpt(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType, CElementInfoElementFactory factory)
    : CElementInfoAll(name, ns, propertyId), m_elementType(elementType), m_factory(factory)
{
}

CElementInfoAllAbsClsCol::CElementInfoAllAbsClsCol(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType)
    : CElementInfoAllCol(name, ns, propertyId), m_elementType(elementType)
{
}

CElementInfoAllPrimMnd::CElementInfoAllPrimMnd(char const* name, char const* ns, int propertyId, ItemType itemType,
                                               char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               CPrimitiveRestrictions const& restrictions)
    : CElementInfoAll(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

CElementInfoAllPrimOpt::CElementInfoAllPrimOpt(char const* name, char const* ns, int propertyId, ItemType itemType,
                                               char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               CPrimitiveRestrictions const& restrictions)
    : CElementInfoAll(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

CElementInfoAllPrimCol::CElementInfoAllPrimCol(char const* name, char const* ns, int propertyId)
    : CElementInfoAllCol(name, ns, propertyId)
{
}

CElementInfoAllEnumMnd::CElementInfoAllEnumMnd(char const* name, char const* ns, int propertyId,
                                               char const* (*toText)(int), int (*fromText)(char const*))
    : CElementInfoAll(name, ns, propertyId), m_toText(toText), m_fromText(fromText)
{
}

CElementInfoAllEnumOpt::CElementInfoAllEnumOpt(char const* name, char const* ns, int propertyId,
                                               char const* (*toText)(int), int (*fromText)(char const*))
    : CElementInfoAll(name, ns, propertyId), m_toText(toText), m_fromText(fromText)
{
}

CElementInfoAllEnumCol::CElementInfoAllEnumCol(char const* name, char const* ns, int propertyId)
    : CElementInfoAll(name, ns, propertyId)
{
}

CElementInfoAllUntpdMnd::CElementInfoAllUntpdMnd(char const* name, char const* ns, int propertyId,
                                                 char const* anyNamespaceSpec, char const* targetNamespace)
    : CElementInfoAll(name, ns, propertyId), m_anyNamespaceSpec(anyNamespaceSpec ? anyNamespaceSpec : ""),
      m_targetNamespace(targetNamespace ? targetNamespace : "")
{
}

CElementInfoAllUntpdOpt::CElementInfoAllUntpdOpt(char const* name, char const* ns, int propertyId,
                                                 char const* anyNamespaceSpec, char const* targetNamespace)
    : CElementInfoAll(name, ns, propertyId), m_anyNamespaceSpec(anyNamespaceSpec ? anyNamespaceSpec : ""),
      m_targetNamespace(targetNamespace ? targetNamespace : "")
{
}

CElementInfoAllUntpdCol::CElementInfoAllUntpdCol(char const* name, char const* ns, int propertyId)
    : CElementInfoAllCol(name, ns, propertyId)
{
}

} // namespace KdBindData
