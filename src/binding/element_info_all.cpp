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

namespace {
constexpr char kSupportAddress[] = "support@kdbind.org";
} // namespace

void CElementInfoAll::ThrowMandatory() const
{
    throw CKdValidationException(FormatString("Failed to find the mandatory element [%s]", m_elementName.c_str()));
}

bool CElementInfoAll::ValidateMandatory(bool found, bool ownerIsElement) const
{
    if (found)
        return true;
    if (!ownerIsElement)
        return false;
    ThrowMandatory();
}

// Both the mandatory and the optional leaf say "Mnd": the text is kept as it is.
void CElementInfoAll::ThrowAbstractNotImplemented() const
{
    throw CKdException(std::string("AllAbsClsMndElm.ProcessXml, has not been implemented fully, contact ") +
                       kSupportAddress);
}

CElementInfoAllCol::CElementInfoAllCol(char const* name, char const* ns, int propertyId)
    : CElementInfoAll(name, ns, propertyId)
{
}

bool CElementInfoAllCol::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                      CXmlWriter* writer) const
{
    return ElementToXmlCheckedCol(context, object, writer);
}

// False always, so that later passes offer the entry further elements.
bool CElementInfoAllCol::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                        CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    ReadCollection(context, object, parent, cursor, CountCheck_Never);
    return false;
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

bool CElementInfoAllClsMnd::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                         CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoAllClsMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    if (m_elementType == XmlElementType_Element) {
        if (!IsThisElement(context, *cursor))
            return false;
        ReadTaggedMandatory(context, object, cursor);
        return true;
    }
    // contentRequired plays no part here: Validate weighs it.
    CXmlElement* const start = *cursor;
    *cursor = ReadPseudoMandatory(context, object, parent, start);
    return *cursor != start;
}

bool CElementInfoAllClsMnd::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool found,
                                     bool ownerIsElement) const
{
    if (found)
        return true;
    if (!ownerIsElement)
        return false;
    if (m_elementType == XmlElementType_PseudoChild)
        ThrowMandatory();
    // A tagged child (or a pseudo group) without required content may be
    // missing: the object the owner holds simply stays as it is.
    if (!m_contentRequired)
        return true;
    ThrowMandatory();
}

void CElementInfoAllClsMnd::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                      CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoAllClsOpt::CElementInfoAllClsOpt(char const* name, char const* ns, int propertyId,
                                             XmlElementType elementType, CElementInfoFactory factory, int classId)
    : CElementInfoAll(name, ns, propertyId), m_elementType(elementType), m_factory(factory), m_classId(classId)
{
}

bool CElementInfoAllClsOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                         CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoAllClsOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    return ReadOptionalCls(context, object, parent, cursor, m_elementType, m_factory, m_classId, kOptional);
}

bool CElementInfoAllClsOpt::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const
{
    return true;
}

void CElementInfoAllClsOpt::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                      CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoAllClsCol::CElementInfoAllClsCol(char const* name, char const* ns, int propertyId,
                                             XmlElementType elementType)
    : CElementInfoAllCol(name, ns, propertyId), m_elementType(elementType)
{
}

void CElementInfoAllClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                      CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, true);
}

CElementInfoAllAbsClsMnd::CElementInfoAllAbsClsMnd(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType, CElementInfoElementFactory factory,
                                                   int unused)
    : CElementInfoAll(name, ns, propertyId), m_elementType(elementType), m_factory(factory), m_unused(unused)
{
}

bool CElementInfoAllAbsClsMnd::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                            CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoAllAbsClsMnd::ElementFromXml(CXmlSerializationContext const&, CXmlGeneratedClass*, CXmlElement*,
                                              CXmlElement**, char const*, XmlElementType)
{
    ThrowAbstractNotImplemented();
}

bool CElementInfoAllAbsClsMnd::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool found,
                                        bool ownerIsElement) const
{
    return ValidateMandatory(found, ownerIsElement);
}

void CElementInfoAllAbsClsMnd::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                         CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoAllAbsClsOpt::CElementInfoAllAbsClsOpt(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType, CElementInfoElementFactory factory)
    : CElementInfoAll(name, ns, propertyId), m_elementType(elementType), m_factory(factory)
{
}

bool CElementInfoAllAbsClsOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                            CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoAllAbsClsOpt::ElementFromXml(CXmlSerializationContext const&, CXmlGeneratedClass*, CXmlElement*,
                                              CXmlElement**, char const*, XmlElementType)
{
    ThrowAbstractNotImplemented();
}

bool CElementInfoAllAbsClsOpt::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const
{
    return true;
}

void CElementInfoAllAbsClsOpt::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                         CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, false);
}

CElementInfoAllAbsClsCol::CElementInfoAllAbsClsCol(char const* name, char const* ns, int propertyId,
                                                   XmlElementType elementType)
    : CElementInfoAllCol(name, ns, propertyId), m_elementType(elementType)
{
}

void CElementInfoAllAbsClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& context,
                                                         CXmlGeneratedClass const* object, CXmlWriter* writer) const
{
    ForwardPseudoChildAttributes(context, object, writer, m_elementType, true);
}

CElementInfoAllPrimMnd::CElementInfoAllPrimMnd(char const* name, char const* ns, int propertyId, ItemType itemType,
                                               char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               CPrimitiveRestrictions const& restrictions)
    : CElementInfoAll(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

bool CElementInfoAllPrimMnd::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    return ElementToXmlPrim(context, object, writer);
}

bool CElementInfoAllPrimMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    if (!IsThisElement(context, *cursor))
        return false;
    ReadPrimitive(object, cursor);
    return true;
}

bool CElementInfoAllPrimMnd::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool found,
                                      bool ownerIsElement) const
{
    return ValidateMandatory(found, ownerIsElement);
}

CElementInfoAllPrimOpt::CElementInfoAllPrimOpt(char const* name, char const* ns, int propertyId, ItemType itemType,
                                               char const* format, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               CPrimitiveRestrictions const& restrictions)
    : CElementInfoAll(name, ns, propertyId, itemType, format, whitespaceRule, restrictions)
{
}

bool CElementInfoAllPrimOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    return ElementToXmlPrimOpt(context, object, writer);
}

bool CElementInfoAllPrimOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    if (!IsThisElement(context, *cursor))
        return false;
    ReadPrimitive(object, cursor);
    return true;
}

bool CElementInfoAllPrimOpt::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const
{
    return true;
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

bool CElementInfoAllEnumMnd::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    return ElementToXmlEnum(context, object, writer, m_toText);
}

bool CElementInfoAllEnumMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    if (!IsThisElement(context, *cursor))
        return false;
    ReadEnumeration(object, cursor, m_fromText);
    return true;
}

bool CElementInfoAllEnumMnd::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool found,
                                      bool ownerIsElement) const
{
    return ValidateMandatory(found, ownerIsElement);
}

CElementInfoAllEnumOpt::CElementInfoAllEnumOpt(char const* name, char const* ns, int propertyId,
                                               char const* (*toText)(int), int (*fromText)(char const*))
    : CElementInfoAll(name, ns, propertyId), m_toText(toText), m_fromText(fromText)
{
}

bool CElementInfoAllEnumOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    return ElementToXmlEnumOpt(context, object, writer, m_toText);
}

bool CElementInfoAllEnumOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, char const*, XmlElementType)
{
    if (!IsThisElement(context, *cursor))
        return false;
    ReadEnumeration(object, cursor, m_fromText);
    return true;
}

bool CElementInfoAllEnumOpt::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const
{
    return true;
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

bool CElementInfoAllUntpdMnd::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                           CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoAllUntpdMnd::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType)
{
    CXmlElement* const start = *cursor;
    if (!start)
        return false;
    *cursor = ReadUntypedMandatory(context, object, parent, start);
    return *cursor != start;
}

bool CElementInfoAllUntpdMnd::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool found,
                                       bool ownerIsElement) const
{
    return ValidateMandatory(found, ownerIsElement);
}

CElementInfoAllUntpdOpt::CElementInfoAllUntpdOpt(char const* name, char const* ns, int propertyId,
                                                 char const* anyNamespaceSpec, char const* targetNamespace)
    : CElementInfoAll(name, ns, propertyId), m_anyNamespaceSpec(anyNamespaceSpec ? anyNamespaceSpec : ""),
      m_targetNamespace(targetNamespace ? targetNamespace : "")
{
}

bool CElementInfoAllUntpdOpt::ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                           CXmlWriter* writer) const
{
    return ElementToXmlCls(context, object, writer, false);
}

bool CElementInfoAllUntpdOpt::ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, char const* ownerNamespace,
                                             XmlElementType)
{
    return ReadUntypedOptional(context, object, parent, cursor, ownerNamespace, m_anyNamespaceSpec,
                               m_targetNamespace, false);
}

bool CElementInfoAllUntpdOpt::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, bool, bool) const
{
    return true;
}

CElementInfoAllUntpdCol::CElementInfoAllUntpdCol(char const* name, char const* ns, int propertyId)
    : CElementInfoAllCol(name, ns, propertyId)
{
}

} // namespace KdBindData
