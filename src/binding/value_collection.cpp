// The collections of primitive values: one template, and per kind its facet
// check, its conversions and its class name.
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
    static void CheckValue(char const* name, Arg value, CPrimitiveRestrictions const& restrictions)
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
#undef KDBIND_COLLECTION_KIND

// The listeners receive a pointer to the value being added; they may not
// change it, but the event carries a plain pointer.
template <class T>
void* EventItem(T const& value)
{
    return const_cast<T*>(&value);
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
    FireOnCollectionRemove(index);
    if (index > GetCount() - 1 || index < 0)
        throw CKdInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, GetCount()));
    m_items.erase(m_items.begin() + index);
    // Listeners learn the index from the first event only.
    FireOnCollectionRemoveComplete(0);
    FireOnCollectionChange();
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

// The add event comes first: listeners hear of an add that the index or the
// facets then refuse.
template <ItemType Kind>
void CValueCollection<Kind>::AddAt(int index, Arg value)
{
    FireOnCollectionAdd(EventItem(value));
    if (index < 0 || index > GetCount())
        throw CKdInvalidParamException("Index out of range");
    CollectionKind<Kind>::CheckValue(GetElementName().c_str(), value, GetRestrictions());
    m_items.insert(m_items.begin() + index, value);
    FireOnCollectionAddComplete(EventItem(value));
    FireOnCollectionChange();
}

template <ItemType Kind>
typename CValueCollection<Kind>::Stored CValueCollection<Kind>::Item(int index) const
{
    // The upper end shown is the count, not the last index.
    if (index > GetCount() - 1 || index < 0)
        throw CKdInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, GetCount()));
    return m_items[static_cast<std::size_t>(index)];
}

template <ItemType Kind>
void CValueCollection<Kind>::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const& context,
                                       bool) const
{
    ValidateCount(context);
    std::string const& name = GetElementName();
    std::string const ns = GetNamespace();
    for (Stored const& item : m_items) {
        writer->WriteStartElement(name, ns);
        writer->WriteString(CollectionKind<Kind>::PrintValue(item, GetFormat()), Kind);
        writer->WriteEndElement();
    }
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

} // namespace KdBind
