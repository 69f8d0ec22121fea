// The collections of primitive values: one template, the date lists on their
// shared base, and per kind its facet check, its conversions and its class
// name. Both families share the steps of adding, removing and writing.
#include "kdbind/binding.h"

namespace KdBind {

namespace {

typedef CXmlObjectHelper H;
typedef CConversions C;

// A kind's operations. Formatted kinds (the reals) hand the collection's
// format to their printer.
template <auto Check, auto Parse, auto Print, bool Formatted = false>
struct ValueOps {
    template <class Arg>
    static void CheckValue(char const* name, Arg const& value, CPrimitiveRestrictions const& restrictions)
    {
        Check(name, value, restrictions);
    }
    static auto ParseText(std::string const& text, CWhitespaceUtils::WhitespaceRule rule) { return Parse(text, rule); }
    template <class Value>
    static std::string PrintValue(Value const& value, char const* format)
    {
        if constexpr (Formatted)
            return Print(value, format);
        else
            return (void)format, Print(value);
    }
};

template <ItemType Kind> struct CollectionKind;
#define KDBIND_COLLECTION_KIND(kind, className, ...)                            \
    template <> struct CollectionKind<kind> : ValueOps<__VA_ARGS__> {           \
        static constexpr char const* kClassName = className;                    \
    }
KDBIND_COLLECTION_KIND(ItemType_i1, "Ci1Col", &H::CheckRestrictionFori1, &C::i1FromString, &C::i1ToString);
KDBIND_COLLECTION_KIND(ItemType_i2, "Ci2Col", &H::CheckRestrictionFori2, &C::i2FromString, &C::i2ToString);
KDBIND_COLLECTION_KIND(ItemType_i4, "Ci4Col", &H::CheckRestrictionFori4, &C::i4FromString, &C::i4ToString);
KDBIND_COLLECTION_KIND(ItemType_i8, "Ci8Col", &H::CheckRestrictionFori8, &C::i8FromString, &C::i8ToString);
KDBIND_COLLECTION_KIND(ItemType_ui1, "Cui1Col", &H::CheckRestrictionForui1, &C::ui1FromString, &C::ui1ToString);
KDBIND_COLLECTION_KIND(ItemType_ui2, "Cui2Col", &H::CheckRestrictionForui2, &C::ui2FromString, &C::ui2ToString);
KDBIND_COLLECTION_KIND(ItemType_ui4, "Cui4Col", &H::CheckRestrictionForui4, &C::ui4FromString, &C::ui4ToString);
KDBIND_COLLECTION_KIND(ItemType_ui8, "Cui8Col", &H::CheckRestrictionForui8, &C::ui8FromString, &C::ui8ToString);
KDBIND_COLLECTION_KIND(ItemType_r4, "Cr4Col", &H::CheckRestrictionForr4, &C::r4FromString, &C::r4ToString, true);
KDBIND_COLLECTION_KIND(ItemType_r8, "Cr8Col", &H::CheckRestrictionForr8, &C::r8FromString, &C::r8ToString, true);
KDBIND_COLLECTION_KIND(ItemType_boolean, "CbooleanCol", &H::CheckRestrictionForboolean, &C::booleanFromString,
                       &C::booleanToString);
KDBIND_COLLECTION_KIND(ItemType_string, "CstringCol", &H::CheckRestrictionForstring, &C::stringFromString,
                       &C::stringToString);
KDBIND_COLLECTION_KIND(ItemType_hexBinary, "ChexBinaryCol", &H::CheckRestrictionForhexBinary,
                       &C::hexBinaryFromString, &C::hexBinaryToString);
KDBIND_COLLECTION_KIND(ItemType_base64Binary, "Cbase64BinaryCol", &H::CheckRestrictionForbase64Binary,
                       &C::base64BinaryFromString, &C::base64BinaryToString);
KDBIND_COLLECTION_KIND(ItemType_year, "CyearCol", &H::CheckRestrictionForyear, &C::yearFromString,
                       &C::yearToString);
KDBIND_COLLECTION_KIND(ItemType_month, "CmonthCol", &H::CheckRestrictionFormonth, &C::monthFromString,
                       &C::monthToString);
KDBIND_COLLECTION_KIND(ItemType_day, "CdayCol", &H::CheckRestrictionForday, &C::dayFromString, &C::dayToString);
KDBIND_COLLECTION_KIND(ItemType_decimal, "CdecimalCol", &H::CheckRestrictionFordecimal, &C::decimalFromString,
                       &C::decimalToString, true);
KDBIND_COLLECTION_KIND(ItemType_integer, "CintegerCol", &H::CheckRestrictionForinteger, &C::integerFromString,
                       &C::integerToString);
KDBIND_COLLECTION_KIND(ItemType_duration, "CdurationCol", &H::CheckRestrictionForduration, &C::durationFromString,
                       &C::durationToString);
#undef KDBIND_COLLECTION_KIND

// The date leaves add the CDateTime type they accept and the refusal of any
// other.
template <ItemType Kind> struct DateKind;
#define KDBIND_DATE_KIND(kind, className, dateType, ...)                        \
    template <> struct DateKind<kind> : ValueOps<__VA_ARGS__> {                 \
        static constexpr char const* kClassName = className;                    \
        static constexpr CDateTime::DTType kDateType = CDateTime::dateType;     \
        static constexpr char const* kWrongType =                               \
            "Dates added to this collection must be of type " #dateType;        \
    }
KDBIND_DATE_KIND(ItemType_datetime, "CdatetimeCol", dt_dateTime, &H::CheckRestrictionFordatetime,
                 &C::datetimeFromString, &C::datetimeToString);
KDBIND_DATE_KIND(ItemType_date, "CdateCol", dt_date, &H::CheckRestrictionFordate, &C::dateFromString,
                 &C::dateToString);
KDBIND_DATE_KIND(ItemType_time, "CtimeCol", dt_time, &H::CheckRestrictionFortime, &C::timeFromString,
                 &C::timeToString);
KDBIND_DATE_KIND(ItemType_yearMonth, "CyearMonthCol", dt_gYearMonth, &H::CheckRestrictionForyearMonth,
                 &C::yearMonthFromString, &C::yearMonthToString);
KDBIND_DATE_KIND(ItemType_monthDay, "CmonthDayCol", dt_gMonthDay, &H::CheckRestrictionFormonthDay,
                 &C::monthDayFromString, &C::monthDayToString);
#undef KDBIND_DATE_KIND

// The listeners receive a pointer to the value being added; they may not
// change it, but the event carries a plain pointer.
template <class T>
void* EventItem(T const& value)
{
    return const_cast<T*>(&value);
}

// The index test of Item and Remove; the upper end shown is the count, not
// the last index.
void TestItemIndex(int index, int count)
{
    if (index > count - 1 || index < 0)
        throw CKdInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, count));
}

// Inserts after the add event and the index test; check runs between the
// two, where a list tests its facets.
template <class Items, class Value, class Check>
void InsertItem(CXmlCollectionBase& list, Items& items, int index, Value const& value, Check check)
{
    list.FireOnCollectionAdd(EventItem(value));
    if (index < 0 || index > static_cast<int>(items.size()))
        throw CKdInvalidParamException("Index out of range");
    check();
    items.insert(items.begin() + index, value);
    list.FireOnCollectionAddComplete(EventItem(value));
    list.FireOnCollectionChange();
}

// The removal event comes before the index test; the completed removal
// reports 0 whatever the index, so listeners learn it from the first event.
template <class Items>
void RemoveItem(CXmlCollectionBase& list, Items& items, int index)
{
    list.FireOnCollectionRemove(index);
    TestItemIndex(index, static_cast<int>(items.size()));
    items.erase(items.begin() + index);
    list.FireOnCollectionRemoveComplete(0);
    list.FireOnCollectionChange();
}

// After its own count check, a list writes one element per item under its
// own name and namespace.
template <class Items, class Print>
void WriteItems(CXmlTypeCollection const& list, Items const& items, CXmlWriter* writer,
                CXmlSerializationContext const& context, ItemType kind, Print print)
{
    list.ValidateCount(context);
    std::string const& name = list.GetElementName();
    std::string const ns = list.GetNamespace();
    for (auto const& item : items) {
        writer->WriteStartElement(name, ns);
        writer->WriteString(print(item), kind);
        writer->WriteEndElement();
    }
}

} // namespace

template <ItemType Kind>
CValueCollection<Kind>::CValueCollection(char const* elementName, char const* ns, int minOccurs, int maxOccurs,
                                         char const* pattern, int minLength, int maxLength,
                                         char const* minInclusive, char const* maxInclusive,
                                         char const* minExclusive, char const* maxExclusive, int length,
                                         CWhitespaceUtils::WhitespaceRule whitespaceRule, char const* format)
    : CXmlTypeCollection(Kind, elementName, ns, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive,
                         maxInclusive, minExclusive, maxExclusive, length, whitespaceRule, format),
      CInstanceMonitor(CollectionKind<Kind>::kClassName)
{
}

template <ItemType Kind>
void CValueCollection<Kind>::Clear()
{
    while (GetCount() != 0)
        Remove(0);
}

template <ItemType Kind>
void CValueCollection<Kind>::Remove(int index)
{
    RemoveItem(*this, m_items, index);
}

template <ItemType Kind>
void CValueCollection<Kind>::AddFromString(std::string text)
{
    Add(CollectionKind<Kind>::ParseText(text, GetWhitespaceRule()));
}

template <ItemType Kind>
void CValueCollection<Kind>::Add(Arg value)
{
    AddAt(GetCount(), value);
}

// Listeners hear of an add that the index or the facets then refuse.
template <ItemType Kind>
void CValueCollection<Kind>::AddAt(int index, Arg value)
{
    InsertItem(*this, m_items, index, value, [&] {
        CollectionKind<Kind>::CheckValue(GetElementName().c_str(), value, GetRestrictions());
    });
}

template <ItemType Kind>
typename CValueCollection<Kind>::Stored CValueCollection<Kind>::Item(int index) const
{
    TestItemIndex(index, GetCount());
    return m_items[static_cast<std::size_t>(index)];
}

template <ItemType Kind>
void CValueCollection<Kind>::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const& context,
                                       bool) const
{
    WriteItems(*this, m_items, writer, context, Kind,
               [this](Stored const& item) { return CollectionKind<Kind>::PrintValue(item, GetFormat()); });
}

template class CValueCollection<ItemType_i1>;
template class CValueCollection<ItemType_i2>;
template class CValueCollection<ItemType_i4>;
template class CValueCollection<ItemType_i8>;
template class CValueCollection<ItemType_ui1>;
template class CValueCollection<ItemType_ui2>;
template class CValueCollection<ItemType_ui4>;
template class CValueCollection<ItemType_ui8>;
template class CValueCollection<ItemType_r4>;
template class CValueCollection<ItemType_r8>;
template class CValueCollection<ItemType_boolean>;
template class CValueCollection<ItemType_string>;
template class CValueCollection<ItemType_hexBinary>;
template class CValueCollection<ItemType_base64Binary>;
template class CValueCollection<ItemType_year>;
template class CValueCollection<ItemType_month>;
template class CValueCollection<ItemType_day>;
template class CValueCollection<ItemType_decimal>;
template class CValueCollection<ItemType_integer>;
template class CValueCollection<ItemType_duration>;

// ---------------------------------------------------------------------------
// The date lists.
// ---------------------------------------------------------------------------

CdatetimeBaseCol::CdatetimeBaseCol(ItemType itemType, char const* elementName, char const* ns, int minOccurs,
                                   int maxOccurs, char const* pattern, int minLength, int maxLength,
                                   char const* minInclusive, char const* maxInclusive, char const* minExclusive,
                                   char const* maxExclusive, int length,
                                   CWhitespaceUtils::WhitespaceRule whitespaceRule, char const* format)
    : CXmlTypeCollection(itemType, elementName, ns, minOccurs, maxOccurs, pattern, minLength, maxLength,
                         minInclusive, maxInclusive, minExclusive, maxExclusive, length, whitespaceRule, format)
{
}

void CdatetimeBaseCol::Clear()
{
    while (GetCount() != 0)
        Remove(0);
}

void CdatetimeBaseCol::Remove(int index) { RemoveItem(*this, m_items, index); }

void CdatetimeBaseCol::Add(CDateTime const& value) { AddAt(GetCount(), value); }

CDateTime CdatetimeBaseCol::Item(int index) const
{
    TestItemIndex(index, GetCount());
    return m_items[static_cast<std::size_t>(index)];
}

void CdatetimeBaseCol::BaseAddAt(int index, CDateTime const& value)
{
    InsertItem(*this, m_items, index, value, [] {});
}

void CdatetimeBaseCol::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const& context,
                                 bool) const
{
    WriteItems(*this, m_items, writer, context, ItemType_datetime,
               [this](CDateTime const& item) { return ItemToString(item); });
}

template <ItemType Kind>
CDateCollection<Kind>::CDateCollection(char const* elementName, char const* ns, int minOccurs, int maxOccurs,
                                       char const* pattern, int minLength, int maxLength, char const* minInclusive,
                                       char const* maxInclusive, char const* minExclusive,
                                       char const* maxExclusive, int length,
                                       CWhitespaceUtils::WhitespaceRule whitespaceRule, char const* format)
    : CdatetimeBaseCol(Kind, elementName, ns, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive,
                       maxInclusive, minExclusive, maxExclusive, length, whitespaceRule, format),
      CInstanceMonitor(DateKind<Kind>::kClassName)
{
}

template <ItemType Kind>
void CDateCollection<Kind>::AddFromString(std::string text)
{
    Add(DateKind<Kind>::ParseText(text, GetWhitespaceRule()));
}

// Type and facets are tested before any event, unlike the other lists.
template <ItemType Kind>
void CDateCollection<Kind>::AddAt(int index, CDateTime const& value)
{
    if (value.GetType() != DateKind<Kind>::kDateType)
        throw CKdInvalidParamException(DateKind<Kind>::kWrongType);
    DateKind<Kind>::CheckValue(GetElementName().c_str(), value, GetRestrictions());
    BaseAddAt(index, value);
}

template <ItemType Kind>
std::string CDateCollection<Kind>::ItemToString(CDateTime const& value) const
{
    return DateKind<Kind>::PrintValue(value, GetFormat());
}

template class CDateCollection<ItemType_datetime>;
template class CDateCollection<ItemType_date>;
template class CDateCollection<ItemType_time>;
template class CDateCollection<ItemType_yearMonth>;
template class CDateCollection<ItemType_monthDay>;

} // namespace KdBind
