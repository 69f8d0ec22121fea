// CElementInfo: what every element entry shares, on output and on input.
#include <cstring>

#include "kdbind/metadata.h"

using namespace KdBind;

namespace KdBindData {

namespace {

// The element name that stands for any name in untyped entries.
char const kAnyElement[] = "AnyElement";

// A variant answers for its tag: a wrong or empty one reads as no object.
// The pointer stays valid while the variant holds its reference.
CXmlObjectBase* ObjectIn(KdVariant const& value)
{
    return value.GetItemType() == ItemType_xmlObject ? value.GetXmlObject().get() : nullptr;
}

} // namespace

CElementInfo::CElementInfo(char const* name, char const* ns, int propertyId)
    : m_elementName(name ? name : ""), m_namespace(ns ? ns : ""), m_propertyId(propertyId)
{
}

CElementInfo::CElementInfo(char const* name, char const* ns, int propertyId, ItemType itemType, char const* format,
                           CWhitespaceUtils::WhitespaceRule whitespaceRule, CPrimitiveRestrictions const& restrictions)
    : m_elementName(name ? name : ""), m_namespace(ns ? ns : ""), m_propertyId(propertyId),
      m_restrictions(restrictions), m_itemType(itemType), m_format(format), m_whitespaceRule(whitespaceRule),
      m_hasPrimitiveInformation(true)
{
}

void CElementInfo::PseudoChildAttributeToXml(CXmlSerializationContext const&, CXmlGeneratedClass const*,
                                             CXmlWriter*) const
{
}

// ---------------------------------------------------------------------------
// Property access and the ways into an object's protected slots.
// ---------------------------------------------------------------------------

void CElementInfo::AccessProperty(CXmlGeneratedClass* object, bool readAccess, KdVariant& value) const
{
    object->AccessProperty(m_propertyId, readAccess, value);
}

void CElementInfo::ReadProperty(CXmlGeneratedClass const* object, KdVariant& value) const
{
    object->ReadProperty(m_propertyId, value);
}

CXmlElement* CElementInfo::FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* first,
                                       CXmlSerializationContext const& context, bool isOptional)
{
    return CXmlObjectBase::FromXml_Int(object, parent, first, context, isOptional);
}

void CElementInfo::AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer,
                                       CXmlSerializationContext const& context)
{
    CXmlObjectBase::AttributesToXml_Int(object, writer, context);
}

// ---------------------------------------------------------------------------
// Matching.
// ---------------------------------------------------------------------------

bool CElementInfo::IsThisElement(CXmlSerializationContext const& context, CXmlElement const* element) const
{
    if (!element || element->GetLocalName() != m_elementName)
        return false;
    return context.GetIgnoreNamespaces() || element->GetNamespaceURI() == m_namespace;
}

std::string CElementInfo::GetAnyDefaultNamespace(char const* spec, char const* ownerNamespace,
                                                 char const* targetNamespace)
{
    spec = spec ? spec : "";
    if (std::strcmp(spec, "##any") == 0)
        return ownerNamespace ? ownerNamespace : "";
    if (std::strcmp(spec, "##other") == 0)
        // Stands for some namespace other than none.
        return ownerNamespace && *ownerNamespace ? "" : "DefaultNamespace";
    if (std::strcmp(spec, "##local") == 0)
        return "";
    if (std::strcmp(spec, "##targetNamespace") == 0)
        return targetNamespace ? targetNamespace : "";
    // Of a list only a leading keyword counts; a list led by a URI, or a
    // single URI, starts in no namespace.
    char const* blank = std::strchr(spec, ' ');
    if (blank && std::strlen(spec) >= 3 && spec[0] == '#' && spec[1] == '#')
        return GetAnyDefaultNamespace(std::string(spec, blank).c_str(), ownerNamespace, targetNamespace);
    return "";
}

// ---------------------------------------------------------------------------
// Output.
// ---------------------------------------------------------------------------

bool CElementInfo::ElementToXmlCls(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer, bool isOptional) const
{
    KdVariant value;
    ReadProperty(object, value);
    CXmlObjectBase const* child = ObjectIn(value);
    if (!child)
        return false;
    // The child writes its own tag under its own name, so that a name taken
    // on input (a substitution) goes out as it came in.
    CXmlObjectBase::ToXml_Int(child, writer, false, m_namespace.c_str(), context, isOptional);
    return true;
}

namespace {
// A collection property must exist; a generated class that has none is at
// fault, and is told so rather than followed into a null pointer.
CXmlCollectionBase* CollectionIn(KdVariant const& value, std::string const& name)
{
    CXmlCollectionBase* collection =
        value.GetItemType() == ItemType_xmlCollection ? value.GetXmlCollection().get() : nullptr;
    if (!collection)
        throw CKdInvalidStateException(
            FormatString("The collection property of the element [%s] is not set", name.c_str()));
    return collection;
}
} // namespace

bool CElementInfo::ElementToXmlCol(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const
{
    KdVariant value;
    ReadProperty(object, value);
    CXmlCollectionBase* collection = CollectionIn(value, m_elementName);
    if (collection->GetCount() <= 0)
        return false;
    CXmlObjectBase::ToXml_Int(collection->GetBase(), writer, false, m_namespace.c_str(), context, false);
    return true;
}

bool CElementInfo::ElementToXmlCheckedCol(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                          CXmlWriter* writer) const
{
    // A count out of bounds fails before anything of the collection is written.
    if (!context.GetIgnoreInvalidCollectionCounts()) {
        KdVariant value;
        ReadProperty(object, value);
        CollectionIn(value, m_elementName)->ValidateCount(context);
    }
    return ElementToXmlCol(context, object, writer);
}

bool CElementInfo::ElementToXmlPrim(CXmlSerializationContext const&, CXmlGeneratedClass const* object,
                                    CXmlWriter* writer) const
{
    KdVariant value;
    ReadProperty(object, value);
    if (!value.IsValid())
        return false;
    CheckRestriction(value);
    writer->WriteStartElement(m_elementName, m_namespace);
    // The variant's own tag, not the entry's item type, tells the writer the kind.
    std::string scratch;
    writer->WriteString(value.TextOf(m_format, scratch), value.GetItemType());
    writer->WriteEndElement();
    return true;
}

bool CElementInfo::ElementToXmlPrimOpt(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                       CXmlWriter* writer) const
{
    return ElementToXmlPrim(context, object, writer);
}

bool CElementInfo::ElementToXmlEnum(CXmlSerializationContext const&, CXmlGeneratedClass const* object,
                                    CXmlWriter* writer, EnumToText toText) const
{
    KdVariant value;
    ReadProperty(object, value);
    if (!value.IsValid())
        return false;
    long const number = value.GetI4();
    // A generated function answers null for a value outside the enumeration;
    // that fails before anything of the element is written.
    char const* text = toText(static_cast<int>(number));
    if (!text)
        throw CKdInvalidValueException(FormatString("Invalid Value for %s [%ld]", m_elementName.c_str(), number));
    writer->WriteStartElement(m_elementName, m_namespace);
    writer->WriteString(text, ItemType_string);
    writer->WriteEndElement();
    return true;
}

bool CElementInfo::ElementToXmlEnumOpt(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                       CXmlWriter* writer, EnumToText toText) const
{
    return ElementToXmlEnum(context, object, writer, toText);
}

void CElementInfo::CheckRestriction(KdVariant const& value) const
{
    if (!m_hasPrimitiveInformation) {
        char const* type = ItemTypeName(value.GetItemType());
        throw CKdException(std::string("Cannot CheckRestriction for type: ") +
                           (type ? type : std::to_string(static_cast<int>(value.GetItemType()))));
    }
    CXmlObjectHelper::CheckRestriction(m_elementName.c_str(), value, m_itemType, m_restrictions);
}

void CElementInfo::ForwardPseudoChildAttributes(CXmlSerializationContext const& context,
                                                CXmlGeneratedClass const* object, CXmlWriter* writer,
                                                XmlElementType elementType, bool isCollection) const
{
    // A pseudo group keeps its attributes to itself.
    if (elementType != XmlElementType_PseudoChild)
        return;
    KdVariant value;
    ReadProperty(object, value);
    CXmlObjectBase const* child = isCollection ? CollectionIn(value, m_elementName) : ObjectIn(value);
    if (child)
        AttributesToXml_Int(child, writer, context);
}

// ---------------------------------------------------------------------------
// Input: the shapes of reading a child.
// ---------------------------------------------------------------------------

void CElementInfo::ReadPrimitive(CXmlGeneratedClass* object, CXmlElement** cursor) const
{
    // No facet check here: FromString refuses what it cannot convert, and
    // the generated setter decides about the rest.
    KdVariant value;
    value.FromString((*cursor)->GetText(), m_itemType, m_whitespaceRule);
    AccessProperty(object, false, value);
    *cursor = (*cursor)->GetNextSiblingElement();
}

void CElementInfo::ReadEnumeration(CXmlGeneratedClass* object, CXmlElement** cursor, EnumFromText fromText) const
{
    KdVariant value;
    value.SetI4(fromText((*cursor)->GetText().c_str()));
    AccessProperty(object, false, value);
    *cursor = (*cursor)->GetNextSiblingElement();
}

namespace {
// A mandatory object is made by the generated class, never by the engine.
CXmlObjectBase* ExistingChild(KdVariant const& value, std::string const& name)
{
    CXmlObjectBase* child = ObjectIn(value);
    if (!child)
        throw CKdInvalidStateException(
            FormatString("The mandatory child [%s] does not exist in its owner", name.c_str()));
    return child;
}
} // namespace

void CElementInfo::ReadTaggedMandatory(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                       CXmlElement** cursor) const
{
    KdVariant value;
    AccessProperty(object, true, value);
    CXmlElement* element = *cursor;
    FromXml_Int(ExistingChild(value, m_elementName), element, element->GetFirstElement(), context, false);
    *cursor = element->GetNextSiblingElement();
}

CXmlElement* CElementInfo::ReadPseudoMandatory(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                               CXmlElement* parent, CXmlElement* cursor) const
{
    KdVariant value;
    AccessProperty(object, true, value);
    return FromXml_Int(ExistingChild(value, m_elementName), parent, cursor, context, false);
}

bool CElementInfo::ReadOptionalCls(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                   CXmlElement* parent, CXmlElement** cursor, XmlElementType elementType,
                                   CElementInfoFactory factory, int classId, OptionalRules rules) const
{
    bool const tagged = elementType == XmlElementType_Element;
    if (tagged ? !IsThisElement(context, *cursor) : !*cursor)
        return rules.resultWhenAbsent;
    KdVariant value;
    value.SetXmlObject(factory(classId, m_elementName.c_str()));
    CXmlObjectBase* child = ObjectIn(value);
    // The factory of a known class always makes one; a generated table that
    // says otherwise is at fault.
    if (!child)
        throw CKdInvalidStateException(
            FormatString("The factory made no object for the element [%s]", m_elementName.c_str()));
    if (rules.storeBeforeRead)
        AccessProperty(object, false, value);
    CXmlElement* const start = *cursor;
    if (tagged) {
        FromXml_Int(child, start, start->GetFirstElement(), context, rules.readAsOptional);
        *cursor = start->GetNextSiblingElement();
    } else {
        CXmlElement* const reached = FromXml_Int(child, parent, start, context, false);
        if (reached == start) {
            // Nothing consumed: no empty object is left behind.
            if (rules.storeBeforeRead) {
                value.SetXmlObject(nullptr);
                AccessProperty(object, false, value);
            }
            return rules.resultWhenAbsent;
        }
        *cursor = reached;
    }
    // Stored after its content, so that a failed read leaves the property unset.
    if (!rules.storeBeforeRead)
        AccessProperty(object, false, value);
    return true;
}

bool CElementInfo::ReadOptionalAbsCls(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                      CXmlElement** cursor, CElementInfoElementFactory factory,
                                      OptionalRules rules) const
{
    if (!IsThisElement(context, *cursor))
        return rules.resultWhenAbsent;
    CXmlElement* const element = *cursor;
    KdVariant value;
    value.SetXmlObject(factory(element));
    // A choice stores what the factory gave, a null object included.
    if (rules.storeBeforeRead)
        AccessProperty(object, false, value);
    CXmlObjectBase* child = ObjectIn(value);
    if (!child)
        return rules.resultWhenAbsent;
    FromXml_Int(child, element, element->GetFirstElement(), context, false);
    if (!rules.storeBeforeRead)
        AccessProperty(object, false, value);
    *cursor = element->GetNextSiblingElement();
    return true;
}

namespace {
// The property of an untyped collection entry holds untyped elements.
CElementCol* UntypedCollectionIn(KdVariant const& value, std::string const& name)
{
    CElementCol* elements = dynamic_cast<CElementCol*>(CollectionIn(value, name));
    if (!elements)
        throw CKdInvalidStateException(
            FormatString("The collection property of the element [%s] is not a CElementCol", name.c_str()));
    return elements;
}
} // namespace

bool CElementInfo::ReadCollection(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                  CXmlElement* parent, CXmlElement** cursor, CountCheck check) const
{
    KdVariant value;
    AccessProperty(object, true, value);
    CXmlCollectionBase* collection = CollectionIn(value, m_elementName);
    CXmlElement* const start = *cursor;
    *cursor = FromXml_Int(collection, parent, start, context, false);
    return CheckCountAfterRead(context, collection, *cursor != start, check);
}

bool CElementInfo::CheckCountAfterRead(CXmlSerializationContext const& context, CXmlCollectionBase* collection,
                                       bool consumed, CountCheck check)
{
    if (check == CountCheck_Always || (check == CountCheck_WhenConsumed && consumed)) {
        if (!context.GetIgnoreInvalidCollectionCounts())
            collection->ValidateCount(context);
    }
    return consumed;
}

bool CElementInfo::ReadUntypedCollection(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                         CXmlElement* parent, CXmlElement** cursor, CountCheck check) const
{
    if (m_elementName == kAnyElement)
        return ReadCollection(context, object, parent, cursor, check);
    // Locked to the entry's name: the run of elements that share the
    // namespace of the first. A used-up cursor reads as the empty namespace
    // in every group, so that a choice sees it as a sequence does.
    KdVariant value;
    AccessProperty(object, true, value);
    CElementCol* elements = UntypedCollectionIn(value, m_elementName);
    CXmlElement* const start = *cursor;
    std::string const ns = start ? start->GetNamespaceURI() : std::string();
    *cursor = elements->FromXmlLockElementName_Int(m_elementName, ns, parent, start, context);
    return CheckCountAfterRead(context, elements, *cursor != start, check);
}

CXmlElement* CElementInfo::ReadUntypedMandatory(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                                CXmlElement* parent, CXmlElement* cursor) const
{
    KdVariant value;
    AccessProperty(object, true, value);
    // The name only: the untyped element tests the namespace against its
    // wildcard itself.
    if (m_elementName != kAnyElement && m_elementName != cursor->GetLocalName())
        return cursor;
    return FromXml_Int(ExistingChild(value, m_elementName), parent, cursor, context, false);
}

bool CElementInfo::ReadUntypedOptional(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                       CXmlElement* parent, CXmlElement** cursor, char const* ownerNamespace,
                                       std::string const& anyNamespaceSpec, std::string const& targetNamespace,
                                       bool clearWhenAbsent) const
{
    CXmlElement* const start = *cursor;
    if (!start)
        return false;
    std::string const ns =
        GetAnyDefaultNamespace(anyNamespaceSpec.c_str(), ownerNamespace, targetNamespace.c_str());
    CSmartPtr<CElement> element =
        new CElement(m_elementName.c_str(), ns.c_str(), anyNamespaceSpec.c_str(), targetNamespace.c_str());
    CXmlElement* reached = start;
    if (m_elementName == kAnyElement || m_elementName == start->GetLocalName())
        reached = FromXml_Int(element, parent, start, context, false);
    KdVariant value;
    if (reached == start) {
        // Nothing consumed: the element is dropped.
        if (clearWhenAbsent) {
            value.SetXmlObject(nullptr);
            AccessProperty(object, false, value);
        }
        return false;
    }
    value.SetXmlObject(element);
    AccessProperty(object, false, value);
    *cursor = reached;
    return true;
}

} // namespace KdBindData
