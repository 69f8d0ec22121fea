// The children of an xs:sequence. Only here does an entry see the position
// in the document, so the mandatory leaves carry the failure logic: a child
// that is not at the cursor is not where it belongs.
#include "kdbind/metadata.h"

using namespace KdBind;

namespace KdBindData {

// ---------------------------------------------------------------------------
// Bases.
// ---------------------------------------------------------------------------

CElementInfoSeq::CElementInfoSeq(char const* name, char const* ns, int propertyId)
    : CElementInfo(name, ns, propertyId)
{
}

CElementInfoSeq::CElementInfoSeq(char const* name, char const* ns, int propertyId, ItemType itemType,
                                 char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                 CPrimitiveRestrictions const& restrictions)
    : CElementInfo(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

bool CElementInfoSeq::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const
{
    throw CKdException("Not implemented, should never be called");
}

void CElementInfoSeq::ThrowRequired() const
{
    throw CKdValidationException(FormatString("Failed to find a required element [%s]", m_elementName.c_str()));
}

bool CElementInfoSeq::FindMandatory(CXmlSerializationContext const& context, CXmlElement** cursor) const
{
    for (;;) {
        if (IsThisElement(context, *cursor))
            return true;
        // Tested before skipping: under this option the cursor never moves here.
        if (context.GetIgnoreMissingMandatoryElements())
            return false;
        if (!context.GetIgnoreUnknownElements() || !*cursor)
            ThrowRequired();
        *cursor = (*cursor)->GetNextSiblingElement();
    }
}

CElementInfoSeqNonCol::CElementInfoSeqNonCol(char const* name, char const* ns, int propertyId)
    : CElementInfoSeq(name, ns, propertyId)
{
}

CElementInfoSeqCol::CElementInfoSeqCol(char const* name, char const* ns, int propertyId)
    : CElementInfoSeq(name, ns, propertyId)
{
}

bool CElementInfoSeqCol::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                      CXmlWriter* writer) const
{
    return ElementToXmlCheckedCol(context, object, writer);
}

bool CElementInfoSeqCol::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                        CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    ReadCollection(context, object, parent, cursor, CountCheck_Always);
    return true;
}

// ---------------------------------------------------------------------------
// Objects of a known class.
// ---------------------------------------------------------------------------

CElementInfoSeqClsMnd::CElementInfoSeqClsMnd(char const* name, char const* ns, int propertyId,
                                             XmlElementType elementType, CElementInfoFactory factory, int classId,
                                             bool contentRequired)
    : CElementInfoSeq(name, ns, propertyId), m_elementType(elementType), m_contentRequired(contentRequired),
      m_factory(factory), m_classId(classId)
{
}

bool CElementInfoSeqClsMnd::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                         CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoSeqClsMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, char const*,
                                           XmlElementType ownerType)
{
    bool const ownerIsElement = ownerType == XmlElementType_Element;
    if (m_elementType == XmlElementType_Element) {
        if (ownerIsElement) {
            if (!FindMandatory(context, cursor))
                return true;
        } else if (!IsThisElement(context, *cursor)) {
            return false;
        }
        ReadTaggedMandatory(context, object, cursor);
        return true;
    }
    // A pseudo child reads among the owner's children. The option to ignore
    // missing mandatory elements is deliberately not consulted for it.
    if (m_contentRequired && !*cursor) {
        if (ownerIsElement)
            ThrowRequired();
        return false;
    }
    CXmlElement* const reached = ReadPseudoMandatory(context, object, parent, *cursor);
    if (reached != *cursor || !*cursor) {
        *cursor = reached;
        return true;
    }
    // Nothing consumed.
    if (m_contentRequired) {
        if (ownerIsElement)
            ThrowRequired();
        return false;
    }
    // Lets the walk skip the element and offer it to this entry again.
    return !(context.GetIgnoreUnknownElements() && ownerIsElement);
}

void CElementInfoSeqClsMnd::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                      CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoSeqClsOpt::CElementInfoSeqClsOpt(char const* name, char const* ns, int propertyId,
                                             XmlElementType elementType, CElementInfoFactory factory, int classId)
    : CElementInfoSeq(name, ns, propertyId), m_elementType(elementType), m_factory(factory), m_classId(classId)
{
}

bool CElementInfoSeqClsOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                         CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoSeqClsOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    return ReadOptionalCls(context, object, parent, cursor, m_elementType, m_factory, m_classId, kOptional);
}

void CElementInfoSeqClsOpt::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                      CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoSeqClsCol::CElementInfoSeqClsCol(char const* name, char const* ns, int propertyId,
                                             XmlElementType elementType)
    : CElementInfoSeqCol(name, ns, propertyId), m_elementType(elementType)
{
}

void CElementInfoSeqClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                      CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, true);
}

// ---------------------------------------------------------------------------
// Objects whose class is told by the element.
// ---------------------------------------------------------------------------

CElementInfoSeqAbsClsMnd::CElementInfoSeqAbsClsMnd(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType, CElementInfoElementFactory factory)
    : CElementInfoSeq(name, ns, propertyId), m_elementType(elementType), m_factory(factory)
{
}

bool CElementInfoSeqAbsClsMnd::ElementToXml(CXmlSerializationContext const& context,
                                            CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoSeqAbsClsMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                              CXmlElement*, CXmlElement** cursor, char const*,
                                              XmlElementType ownerType)
{
    // No search and no option has a say: stricter than a known class, on purpose.
    bool const ownerIsElement = ownerType == XmlElementType_Element;
    KdVariant value;
    if (IsThisElement(context, *cursor))
        value.SetXmlObject(m_factory(*cursor));
    CXmlObjectBase* child = value.GetXmlObject().get();
    if (!child) {
        if (ownerIsElement)
            throw CKdValidationException(FormatString("Failed to find a suitable substitution element for [%s]",
                                                      m_elementName.c_str()));
        return false;
    }
    CXmlElement* const element = *cursor;
    FromXml_Int(child, element, element->GetFirstElement(), context, false);
    AccessProperty(object, false, value);
    *cursor = element->GetNextSiblingElement();
    return true;
}

void CElementInfoSeqAbsClsMnd::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                         CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoSeqAbsClsOpt::CElementInfoSeqAbsClsOpt(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType, CElementInfoElementFactory factory)
    : CElementInfoSeq(name, ns, propertyId), m_elementType(elementType), m_factory(factory)
{
}

bool CElementInfoSeqAbsClsOpt::ElementToXml(CXmlSerializationContext const& context,
                                            CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoSeqAbsClsOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                              CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    return ReadOptionalAbsCls(context, object, cursor, m_factory, kOptional);
}

void CElementInfoSeqAbsClsOpt::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                         CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoSeqAbsClsCol::CElementInfoSeqAbsClsCol(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType)
    : CElementInfoSeqCol(name, ns, propertyId), m_elementType(elementType)
{
}

void CElementInfoSeqAbsClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                         CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, true);
}

// ---------------------------------------------------------------------------
// Primitives.
// ---------------------------------------------------------------------------

CElementInfoSeqPrimMnd::CElementInfoSeqPrimMnd(char const* name, char const* ns, int propertyId, ItemType itemType,
                                               char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               CPrimitiveRestrictions const& restrictions)
    : CElementInfoSeq(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

bool CElementInfoSeqPrimMnd::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    return ElementToXmlPrim(context, object, writer);
}

bool CElementInfoSeqPrimMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, char const*,
                                            XmlElementType ownerType)
{
    if (ownerType == XmlElementType_Element) {
        if (FindMandatory(context, cursor))
            ReadPrimitive(object, cursor);
        return true;
    }
    // In a pseudo owner a primitive skips unknown elements too, but declines
    // instead of failing. What it skipped stays skipped.
    while (!IsThisElement(context, *cursor)) {
        if (!context.GetIgnoreUnknownElements() || !*cursor)
            return false;
        *cursor = (*cursor)->GetNextSiblingElement();
    }
    ReadPrimitive(object, cursor);
    return true;
}

CElementInfoSeqPrimOpt::CElementInfoSeqPrimOpt(char const* name, char const* ns, int propertyId, ItemType itemType,
                                               char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               CPrimitiveRestrictions const& restrictions)
    : CElementInfoSeq(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

bool CElementInfoSeqPrimOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    return ElementToXmlPrimOpt(context, object, writer);
}

bool CElementInfoSeqPrimOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    if (IsThisElement(context, *cursor))
        ReadPrimitive(object, cursor);
    return true;
}

CElementInfoSeqPrimCol::CElementInfoSeqPrimCol(char const* name, char const* ns, int propertyId)
    : CElementInfoSeqCol(name, ns, propertyId)
{
}

// ---------------------------------------------------------------------------
// Enumerations.
// ---------------------------------------------------------------------------

CElementInfoSeqEnumMnd::CElementInfoSeqEnumMnd(char const* name, char const* ns, int propertyId,
                                               char const* (*toText)(int), int (*fromText)(char const*))
    : CElementInfoSeq(name, ns, propertyId), m_fromText(fromText), m_toText(toText)
{
}

bool CElementInfoSeqEnumMnd::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    return ElementToXmlEnum(context, object, writer, m_toText);
}

bool CElementInfoSeqEnumMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, char const*,
                                            XmlElementType ownerType)
{
    if (ownerType == XmlElementType_Element) {
        if (FindMandatory(context, cursor))
            ReadEnumeration(object, cursor, m_fromText);
        return true;
    }
    // Unlike a primitive, no search in a pseudo owner.
    if (!IsThisElement(context, *cursor))
        return false;
    ReadEnumeration(object, cursor, m_fromText);
    return true;
}

CElementInfoSeqEnumOpt::CElementInfoSeqEnumOpt(char const* name, char const* ns, int propertyId,
                                               char const* (*toText)(int), int (*fromText)(char const*))
    : CElementInfoSeq(name, ns, propertyId), m_toText(toText), m_fromText(fromText)
{
}

bool CElementInfoSeqEnumOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    return ElementToXmlEnumOpt(context, object, writer, m_toText);
}

bool CElementInfoSeqEnumOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    if (IsThisElement(context, *cursor))
        ReadEnumeration(object, cursor, m_fromText);
    return true;
}

CElementInfoSeqEnumCol::CElementInfoSeqEnumCol(char const* name, char const* ns, int propertyId)
    : CElementInfoSeqCol(name, ns, propertyId)
{
}

// ---------------------------------------------------------------------------
// Untyped content.
// ---------------------------------------------------------------------------

CElementInfoSeqUntpdMnd::CElementInfoSeqUntpdMnd(char const* name, char const* ns, int propertyId,
                                                 char const* anyNamespaceSpec, char const* targetNamespace)
    : CElementInfoSeq(name, ns, propertyId), m_anyNamespaceSpec(anyNamespaceSpec ? anyNamespaceSpec : ""),
      m_targetNamespace(targetNamespace ? targetNamespace : "")
{
}

bool CElementInfoSeqUntpdMnd::ElementToXml(CXmlSerializationContext const& context,
                                           CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoSeqUntpdMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, char const*,
                                             XmlElementType ownerType)
{
    // A used-up cursor fails whatever the options and the owner.
    if (!*cursor)
        ThrowRequired();
    CXmlElement* const reached = ReadUntypedMandatory(context, object, parent, *cursor);
    if (reached == *cursor) {
        if (ownerType != XmlElementType_Element)
            return false;
        throw CKdValidationException(
            FormatString("Failed to find the required element from namespace [%s]", m_namespace.c_str()));
    }
    *cursor = reached;
    return true;
}

CElementInfoSeqUntpdOpt::CElementInfoSeqUntpdOpt(char const* name, char const* ns, int propertyId,
                                                 char const* anyNamespaceSpec, char const* targetNamespace)
    : CElementInfoSeq(name, ns, propertyId), m_anyNamespaceSpec(anyNamespaceSpec ? anyNamespaceSpec : ""),
      m_targetNamespace(targetNamespace ? targetNamespace : "")
{
}

bool CElementInfoSeqUntpdOpt::ElementToXml(CXmlSerializationContext const& context,
                                           CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoSeqUntpdOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, char const* ownerNamespace,
                                             XmlElementType)
{
    ReadUntypedOptional(context, object, parent, cursor, ownerNamespace, m_anyNamespaceSpec, m_targetNamespace,
                        false);
    return true;
}

CElementInfoSeqUntpdCol::CElementInfoSeqUntpdCol(char const* name, char const* ns, int propertyId)
    : CElementInfoSeqCol(name, ns, propertyId)
{
}

bool CElementInfoSeqUntpdCol::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, char const*,
                                             XmlElementType)
{
    ReadUntypedCollection(context, object, parent, cursor, CountCheck_Always);
    return true;
}

} // namespace KdBindData
