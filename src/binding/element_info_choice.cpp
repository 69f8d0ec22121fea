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

bool CElementInfoChoice::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const
{
    throw CKdException("Not implemented, should never be called");
}

CElementInfoChoiceCol::CElementInfoChoiceCol(char const* name, char const* ns, int propertyId)
    : CElementInfoChoice(name, ns, propertyId)
{
}

// No count check on output: a collection too small is written as it is, and
// an empty one lets the walk go on to the next alternative.
bool CElementInfoChoiceCol::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                         CXmlWriter* writer) const
{
    return ElementToXmlCol(context, object, writer);
}

// The count is checked only when the collection took something.
bool CElementInfoChoiceCol::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    return ReadCollection(context, object, parent, cursor, CountCheck_WhenConsumed);
}

CElementInfoChoiceClsOpt::CElementInfoChoiceClsOpt(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType, CElementInfoFactory factory,
                                                   int classId)
    : CElementInfoChoice(name, ns, propertyId), m_elementType(elementType), m_factory(factory), m_classId(classId)
{
}

// Optional for the child: a choice inside it may stay empty.
bool CElementInfoChoiceClsOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                            CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, true);
}

bool CElementInfoChoiceClsOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                              CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    // Only here on input is the tagged child read as optional.
    constexpr OptionalRules rules{kOptional.resultWhenAbsent, kOptional.storeBeforeRead, true};
    return ReadOptionalCls(context, object, parent, cursor, m_elementType, m_factory, m_classId, rules);
}

void CElementInfoChoiceClsOpt::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                         CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoChoiceClsCol::CElementInfoChoiceClsCol(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType)
    : CElementInfoChoiceCol(name, ns, propertyId), m_elementType(elementType)
{
}

void CElementInfoChoiceClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                         CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, true);
}

CElementInfoChoiceAbsClsOpt::CElementInfoChoiceAbsClsOpt(char const* name, char const* ns, int propertyId,
                                                         XmlElementType elementType,
                                                         CElementInfoElementFactory factory)
    : CElementInfoChoice(name, ns, propertyId), m_elementType(elementType), m_factory(factory)
{
}

// Not optional for the child, unlike a known class: kept so.
bool CElementInfoChoiceAbsClsOpt::ElementToXml(CXmlSerializationContext const& context,
                                               CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoChoiceAbsClsOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                                 CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    return ReadOptionalAbsCls(context, object, cursor, m_factory, kOptional);
}

void CElementInfoChoiceAbsClsOpt::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                            CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoChoiceAbsClsCol::CElementInfoChoiceAbsClsCol(char const* name, char const* ns, int propertyId,
                                                         XmlElementType elementType)
    : CElementInfoChoiceCol(name, ns, propertyId), m_elementType(elementType)
{
}

void CElementInfoChoiceAbsClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                            CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, true);
}

CElementInfoChoicePrimOpt::CElementInfoChoicePrimOpt(char const* name, char const* ns, int propertyId,
                                                     ItemType itemType, char const* format,
                                                     CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                                     CPrimitiveRestrictions const& restrictions)
    : CElementInfoChoice(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

bool CElementInfoChoicePrimOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                             CXmlWriter* writer) const
{
    return ElementToXmlPrimOpt(context, object, writer);
}

bool CElementInfoChoicePrimOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                               CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    if (!IsThisElement(context, *cursor))
        return false;
    ReadPrimitive(object, cursor);
    return true;
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

bool CElementInfoChoiceEnumOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                             CXmlWriter* writer) const
{
    return ElementToXmlEnumOpt(context, object, writer, m_toText);
}

bool CElementInfoChoiceEnumOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                               CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    if (!IsThisElement(context, *cursor))
        return false;
    ReadEnumeration(object, cursor, m_fromText);
    return true;
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

bool CElementInfoChoiceUntpdOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                              CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoChoiceUntpdOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                                CXmlElement* parent, CXmlElement** cursor, char const* ownerNamespace,
                                                XmlElementType)
{
    return ReadUntypedOptional(context, object, parent, cursor, ownerNamespace, m_anyNamespaceSpec,
                               m_targetNamespace, true);
}

CElementInfoChoiceUntpdCol::CElementInfoChoiceUntpdCol(char const* name, char const* ns, int propertyId)
    : CElementInfoChoiceCol(name, ns, propertyId)
{
}

bool CElementInfoChoiceUntpdCol::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                                CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    return ReadUntypedCollection(context, object, parent, cursor, CountCheck_WhenConsumed);
}

} // namespace KdBindData
