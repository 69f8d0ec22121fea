// The alternatives of an xs:choice. A leaf never fails for a missing element
// and never skips one: it takes the element at the cursor or declines, and
// the walk alone decides what having no alternative means.
#include "kdbind/metadata.h"

using namespace KdBind;

namespace KdBindData {

CElementInfoChoice::CElementInfoChoice(char const* name, char const* ns, int propertyId)
    : CElementInfo(name, ns, propertyId)
{
}

CElementInfoChoice::CElementInfoChoice(char const* name, char const* ns, int propertyId, ItemType itemType,
                                       char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                       CPrimitiveRestrictions const& restrictions)
    : CElementInfo(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

CElementInfoChoiceCol::CElementInfoChoiceCol(char const* name, char const* ns, int propertyId)
    : CElementInfoChoice(name, ns, propertyId)
{
}

CElementInfoChoiceClsOpt::CElementInfoChoiceClsOpt(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType, CElementInfoFactory factory,
                                                   int classId)
    : CElementInfoChoice(name, ns, propertyId), m_elementType(elementType), m_factory(factory), m_classId(classId)
{
}

CElementInfoChoiceClsCol::CElementInfoChoiceClsCol(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType)
    : CElementInfoChoiceCol(name, ns, propertyId), m_elementType(elementType)
{
}

CElementInfoChoiceAbsClsOpt::CElementInfoChoiceAbsClsOpt(char const* name, char const* ns, int propertyId,
                                                         XmlElementType elementType,
                                                         CElementInfoElementFactory factory)
    : CElementInfoChoice(name, ns, propertyId), m_elementType(elementType), m_factory(factory)
{
}

CElementInfoChoiceAbsClsCol::CElementInfoChoiceAbsClsCol(char const* name, char const* ns, int propertyId,
                                                         XmlElementType elementType)
    : CElementInfoChoiceCol(name, ns, propertyId), m_elementType(elementType)
{
}

CElementInfoChoicePrimOpt::CElementInfoChoicePrimOpt(char const* name, char const* ns, int propertyId,
                                                     ItemType itemType, char const* format,
                                                     CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                                     CPrimitiveRestrictions const& restrictions)
    : CElementInfoChoice(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

CElementInfoChoicePrimCol::CElementInfoChoicePrimCol(char const* name, char const* ns, int propertyId)
    : CElementInfoChoiceCol(name, ns, propertyId)
{
}

CElementInfoChoiceEnumOpt::CElementInfoChoiceEnumOpt(char const* name, char const* ns, int propertyId,
                                                     char const* (*toText)(int), int (*fromText)(char const*))
    : CElementInfoChoice(name, ns, propertyId), m_toText(toText), m_fromText(fromText)
{
}

CElementInfoChoiceEnumCol::CElementInfoChoiceEnumCol(char const* name, char const* ns, int propertyId)
    : CElementInfoChoiceCol(name, ns, propertyId)
{
}

CElementInfoChoiceUntpdOpt::CElementInfoChoiceUntpdOpt(char const* name, char const* ns, int propertyId,
                                                       char const* anyNamespaceSpec, char const* targetNamespace)
    : CElementInfoChoice(name, ns, propertyId), m_anyNamespaceSpec(anyNamespaceSpec ? anyNamespaceSpec : ""),
      m_targetNamespace(targetNamespace ? targetNamespace : "")
{
}

CElementInfoChoiceUntpdCol::CElementInfoChoiceUntpdCol(char const* name, char const* ns, int propertyId)
    : CElementInfoChoiceCol(name, ns, propertyId)
{
}

} // namespace KdBindData
