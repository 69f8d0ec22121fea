// CXmlGeneratedClass: the output walk over a generated class's metadata.
#include "kdbind/metadata.h"
#include "binding/nesting_level.h"

using namespace KdBindData;

namespace KdBind {

CXmlGeneratedClass::~CXmlGeneratedClass() = default;

namespace {
template <class Entry>
void DeleteTable(Entry**& table)
{
    if (!table)
        return;
    for (Entry** entry = table; *entry; ++entry) {
        delete *entry;
        *entry = nullptr;
    }
    delete[] table;
    table = nullptr;
}
} // namespace

void CXmlGeneratedClass::CleanMetaData(CParentElementInfo*& classInfo, CElementInfo**& elements,
                                       CAttributeInfo**& attributes)
{
    delete classInfo;
    classInfo = nullptr;
    DeleteTable(elements);
    DeleteTable(attributes);
}

void CXmlGeneratedClass::ReadProperty(int propertyId, KdVariant& value) const
{
    // The accessor is one slot for both directions; reading changes nothing.
    const_cast<CXmlGeneratedClass*>(this)->AccessProperty(propertyId, true, value);
}

int CXmlGeneratedClass::GetClassElementInfoCount() const
{
    int count = 0;
    for (CElementInfo** entry = GetClassElementInfo(); entry && *entry; ++entry)
        ++count;
    return count;
}

bool CXmlGeneratedClass::IsElementInList(CXmlSerializationContext const& context, CXmlElement* element) const
{
    for (CElementInfo** entry = GetClassElementInfo(); entry && *entry; ++entry)
        if ((*entry)->IsThisElement(context, element))
            return true;
    return false;
}

// A choice may stay empty when one of its alternatives is optional: an
// optional leaf, or a collection that may hold nothing.
bool CXmlGeneratedClass::DoesElementContainOptionalElements() const
{
    for (CElementInfo** entry = GetClassElementInfo(); entry && *entry; ++entry) {
        if (dynamic_cast<CElementInfoChoiceCol const*>(*entry)) {
            KdVariant value;
            ReadProperty((*entry)->GetPropertyId(), value);
            CSmartPtr<CXmlCollectionBase> collection = value.GetXmlCollection();
            if (collection && collection->GetMinOccurs() == 0)
                return true;
        } else if (dynamic_cast<CElementInfoChoice const*>(*entry)) {
            return true;
        }
    }
    return false;
}

void CXmlGeneratedClass::ToXml_Int(CXmlWriter* writer, bool root, char const* ns,
                                   CXmlSerializationContext const& context, bool isOptional) const
{
    try {
        CNestingLevel const level(context, CNestingLevel::Writing);
        CParentElementInfo const* info = GetClassInfo();
        bool const hasTag = info->GetElementType() == XmlElementType_Element;
        if (hasTag) {
            if (root) {
                for (std::string const& instruction : context.GetProcessingInstructions())
                    writer->WritePI(instruction);
                CNamespaceAliasMap const& aliases = context.GetNamespaceAliases();
                for (int i = 0; i < aliases.GetNamespaceCount(); ++i) {
                    std::string const uri = aliases.GetNamespaceAt(i);
                    writer->AddNamespace(aliases.GetAliasFromNamespace(uri.c_str()), uri);
                }
                if (!context.GetDefaultNamespaceURI().empty())
                    writer->SetDefaultNamespace(context.GetDefaultNamespaceURI());
            }
            writer->WriteStartElement(GetElementName(), ns ? ns : "");
            // The context's additional root attributes are written here once
            // the wildcard attribute collection that holds them is in the library.
            AttributesToXml_Int(writer, context);
            if (root && !context.GetInLineSchema().empty())
                writer->WriteInlineSchema(context.GetInLineSchema());
        }
        switch (info->GetGroupType()) {
        case XmlElementGroupType_Sequence: ProcessElementSeqToXml(context, GetClassElementInfo(), writer); break;
        case XmlElementGroupType_Choice:
            ProcessElementChoiceToXml(context, GetClassElementInfo(), writer, isOptional);
            break;
        case XmlElementGroupType_All: ProcessElementAllToXml(context, GetClassElementInfo(), writer); break;
        default: throw CKdException("Unknown XML Group Type");
        }
        if (info->GetTextPropertyId() != -1) {
            KdVariant text;
            ReadProperty(info->GetTextPropertyId(), text);
            writer->WriteString(text.GetString(), text.GetItemType());
        }
        if (hasTag)
            writer->WriteEndElement();
    } catch (CKdException& e) {
        throw CKdValidationException(FormatString("Failed to convert the element [%s] to XML", GetElementName().c_str()),
                                     std::move(e));
    }
}

void CXmlGeneratedClass::AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& context) const
{
    try {
        CParentElementInfo const* info = GetClassInfo();
        if (info->GetWriteTypeAttribute() && info->GetElementName() != GetElementName())
            writer->WriteAttributeType(info->GetNamespace(), info->GetElementName(), ItemType_string);
        ProcessAttributesToXml(context, GetClassElementInfo(), GetClassAttributeInfo(), writer);
    } catch (CKdException& e) {
        throw CKdException("Failed to convert attributes to XML", std::move(e));
    }
}

void CXmlGeneratedClass::ProcessAttributesToXml(CXmlSerializationContext const& context, CElementInfo** elements,
                                                CAttributeInfo** attributes, CXmlWriter* writer) const
{
    for (CAttributeInfo** entry = attributes; entry && *entry; ++entry)
        (*entry)->AttributeToXml(context, this, writer);
    for (CElementInfo** entry = elements; entry && *entry; ++entry)
        (*entry)->PseudoChildAttributeToXml(context, this, writer);
}

void CXmlGeneratedClass::ProcessElementSeqToXml(CXmlSerializationContext const& context, CElementInfo** elements,
                                                CXmlWriter* writer) const
{
    for (CElementInfo** entry = elements; entry && *entry; ++entry)
        (*entry)->ElementToXml(context, this, writer);
}

// An all-group is written in table order too.
void CXmlGeneratedClass::ProcessElementAllToXml(CXmlSerializationContext const& context, CElementInfo** elements,
                                                CXmlWriter* writer) const
{
    ProcessElementSeqToXml(context, elements, writer);
}

void CXmlGeneratedClass::ProcessElementChoiceToXml(CXmlSerializationContext const& context, CElementInfo** elements,
                                                   CXmlWriter* writer, bool isOptional) const
{
    for (CElementInfo** entry = elements; entry && *entry; ++entry)
        if ((*entry)->ElementToXml(context, this, writer))
            return;
    if (DoesElementContainOptionalElements() || isOptional || context.GetIgnoreMissingChoice())
        return;
    throw CKdValidationException("This element is a choice, and as such must have at one (and only one) valid item, "
                                 "currently there are none set");
}

} // namespace KdBind
