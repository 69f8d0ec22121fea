// CXmlGeneratedClass: the input walk that matches a parsed element tree
// against the class's metadata. The cursor is the next child element not yet
// consumed; each walk returns where it stopped.
#include <memory>

#include "kdbind/metadata.h"
#include "binding/nesting_level.h"

using namespace KdBindData;

namespace KdBind {

namespace {

template <class Entry>
int CountEntries(Entry** table)
{
    int count = 0;
    while (table && table[count])
        ++count;
    return count;
}

// One flag per entry of a table, all false: on the stack for the common
// small table, so that reading an element allocates nothing for them.
class CEntryFlags {
public:
    explicit CEntryFlags(int count)
        : m_heap(count > kOnStack ? new bool[count]() : nullptr), m_flags(m_heap ? m_heap.get() : m_stack)
    {
    }
    CEntryFlags(CEntryFlags const&) = delete;
    CEntryFlags& operator=(CEntryFlags const&) = delete;

    bool& operator[](int index) { return m_flags[index]; }

private:
    static constexpr int kOnStack = 32;
    bool m_stack[kOnStack] = {};
    std::unique_ptr<bool[]> m_heap;
    bool* m_flags;
};

[[noreturn]] void ThrowLeftOver(CXmlElement const* parent, CXmlElement const* cursor)
{
    throw CKdValidationException(FormatString("Failed read all the elements held within the element [%s]. The "
                                              "unexpected element [%s] remains un processed",
                                              parent->GetLocalName().c_str(), cursor->GetLocalName().c_str()));
}

// The end of a real element's content: whatever is left over is an error
// unless unknown elements are ignored.
CXmlElement* FinishElementContent(CXmlSerializationContext const& context, CXmlElement const* parent,
                                  CXmlElement* cursor)
{
    if (cursor && !context.GetIgnoreUnknownElements())
        ThrowLeftOver(parent, cursor);
    return cursor;
}

} // namespace

CXmlElement* CXmlGeneratedClass::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                             CXmlSerializationContext const& context, bool isOptional)
{
    try {
        CNestingLevel const level(context, CNestingLevel::Reading);
        Init();
        CParentElementInfo const* info = GetClassInfo();
        XmlElementType const elementType = info->GetElementType();
        if (elementType == XmlElementType_Element)
            SetElementName(element->GetLocalName().c_str());
        // A grouping class reads its attributes from the enclosing element too.
        ProcessAttributesFromXml(context, element, info->GetRejectUnknownAttributes());
        CXmlElement* cursor;
        switch (info->GetGroupType()) {
        case XmlElementGroupType_Sequence:
            cursor = ProcessElementSeqFromXml(context, element, firstChild, elementType);
            break;
        case XmlElementGroupType_Choice:
            cursor = ProcessElementChoiceFromXml(context, element, firstChild, elementType, isOptional);
            break;
        case XmlElementGroupType_All:
            cursor = ProcessElementAllFromXml(context, element, firstChild, elementType);
            break;
        default: throw CKdException("Unknow Group Type");
        }
        if (info->GetTextPropertyId() != -1) {
            KdVariant text;
            text.SetString(element->GetText());
            AccessProperty(info->GetTextPropertyId(), false, text);
        }
        return cursor;
    } catch (CKdException& e) {
        throw CKdValidationException(FormatString("Failed to process the element [%s]", element->GetLocalName().c_str()),
                                     std::move(e));
    }
}

void CXmlGeneratedClass::ProcessAttributesFromXml(CXmlSerializationContext const& context, CXmlElement* element,
                                                  bool rejectUnknown)
{
    CAttributeInfo** table = GetClassAttributeInfo();
    int const count = CountEntries(table);
    CEntryFlags found(count);
    for (CXmlAttribute* attribute : element->GetAttributes()) {
        if (attribute->IsNamespaceAttribute())
            continue;
        // Entries already found are offered again: a wildcard collects every
        // remaining attribute, and in a plain entry the last value wins.
        bool taken = false;
        for (int i = 0; i < count && !taken; ++i) {
            if (table[i]->AttributeFromXml(context, this, attribute))
                found[i] = taken = true;
        }
        if (!taken && rejectUnknown && !context.GetIgnoreUnknownAttributes())
            throw CKdValidationException(
                FormatString("Unexpected Attribute [%s] found.", attribute->GetLocalName().c_str()));
    }
    for (int i = 0; i < count; ++i)
        table[i]->Validate(context, found[i]);
}

CXmlElement* CXmlGeneratedClass::ProcessElementSeqFromXml(CXmlSerializationContext const& context,
                                                          CXmlElement* parent, CXmlElement* cursor,
                                                          XmlElementType ownerType)
{
    CXmlElement* const start = cursor;
    CElementInfo** table = GetClassElementInfo();
    std::string const ownerNamespace = GetNamespace();
    for (CElementInfo** entry = table; entry && *entry;) {
        if ((*entry)->ElementFromXml(context, this, parent, &cursor, ownerNamespace.c_str(), ownerType)) {
            ++entry;
            continue;
        }
        // Refused: nothing was consumed, unless unknown elements may be
        // skipped; then one element is dropped and the same entry retries.
        if (!context.GetIgnoreUnknownElements() || !cursor)
            return start;
        cursor = cursor->GetNextSiblingElement();
    }
    if (ownerType != XmlElementType_Element)
        return cursor;
    return FinishElementContent(context, parent, cursor);
}

CXmlElement* CXmlGeneratedClass::ProcessElementAllFromXml(CXmlSerializationContext const& context,
                                                          CXmlElement* parent, CXmlElement* cursor,
                                                          XmlElementType ownerType)
{
    CXmlElement* const start = cursor;
    CElementInfo** table = GetClassElementInfo();
    int const count = CountEntries(table);
    CEntryFlags done(count);
    std::string const ownerNamespace = GetNamespace();
    // The order is free: passes repeat while they consume something.
    while (cursor) {
        CXmlElement* const before = cursor;
        for (int i = 0; i < count; ++i) {
            if (!done[i])
                done[i] = table[i]->ElementFromXml(context, this, parent, &cursor, ownerNamespace.c_str(), ownerType);
        }
        if (cursor == before)
            break;
    }
    bool complete = true;
    for (int i = 0; i < count; ++i) {
        if (!table[i]->Validate(context, this, done[i], ownerType == XmlElementType_Element))
            complete = false;
    }
    if (!complete)
        return start;
    if (ownerType != XmlElementType_Element)
        return cursor;
    return FinishElementContent(context, parent, cursor);
}

CXmlElement* CXmlGeneratedClass::ProcessElementChoiceFromXml(CXmlSerializationContext const& context,
                                                             CXmlElement* parent, CXmlElement* cursor,
                                                             XmlElementType ownerType, bool isOptional)
{
    CXmlElement* const start = cursor;
    CElementInfo** table = GetClassElementInfo();
    std::string const ownerNamespace = GetNamespace();
    bool matched = false;
    for (;;) {
        for (CElementInfo** entry = table; entry && *entry && !matched; ++entry)
            matched = (*entry)->ElementFromXml(context, this, parent, &cursor, ownerNamespace.c_str(), ownerType);
        // In a real element unknown elements may be passed over until one matches.
        if (matched || ownerType != XmlElementType_Element || !cursor || !context.GetIgnoreUnknownElements())
            break;
        cursor = cursor->GetNextSiblingElement();
    }
    if (!matched && !isOptional) {
        if (ownerType == XmlElementType_PseudoChild)
            return context.GetIgnoreUnknownElements() ? start : cursor;
        if (ownerType != XmlElementType_Element)
            return cursor;
        if (!DoesElementContainOptionalElements() && !context.GetIgnoreMissingChoice())
            throw CKdValidationException(FormatString(
                "No child elements within the element [%s] were populated. The element represents a choice, so one "
                "and only one element should be populated. The element contained no sutable child elements",
                parent->GetLocalName().c_str()));
    } else if (ownerType != XmlElementType_Element) {
        return cursor;
    }
    return FinishElementContent(context, parent, cursor);
}

} // namespace KdBind
