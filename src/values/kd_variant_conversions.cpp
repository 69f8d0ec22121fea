// KdVariant's lexical side: each kind prints and parses through its
// CConversions pair, so a value reads and writes the same way whichever path
// carries it.
#include "kdbind/values.h"

namespace KdBind {

namespace {

typedef CWhitespaceUtils::WhitespaceRule WhitespaceRule;

// One kind's way to its text and back: print the payload, and parse a text
// and store it through the kind's setter. The parse comes first, so a failed
// one leaves the variant as it was.
struct KindConversion {
    std::string (*toString)(KdVariant const& value, char const* format);
    void (*fromString)(KdVariant& target, std::string const& text, WhitespaceRule rule);
};

template <auto Get, auto Print>
std::string PrintPayload(KdVariant const& value, char const* /*format*/) { return Print((value.*Get)()); }

template <auto Get, auto Print>
std::string PrintPayloadWithFormat(KdVariant const& value, char const* format) { return Print((value.*Get)(), format); }

template <auto Set, auto Parse>
void StorePayload(KdVariant& target, std::string const& text, WhitespaceRule rule) { (target.*Set)(Parse(text, rule)); }

// Kinds whose printer takes no format; the format is dropped for them.
template <auto Get, auto Set, auto Print, auto Parse>
constexpr KindConversion Kind() { return {&PrintPayload<Get, Print>, &StorePayload<Set, Parse>}; }

// r4, r8 and decimal hand the format on.
template <auto Get, auto Set, auto Print, auto Parse>
constexpr KindConversion KindWithFormat() { return {&PrintPayloadWithFormat<Get, Print>, &StorePayload<Set, Parse>}; }

// stringToString is a plain copy, and GetString already hands back a copy.
std::string PrintString(KdVariant const& value, char const* /*format*/) { return value.GetString(); }

typedef CConversions C;
typedef KdVariant V;

// Indexed by tag, one row per primitive kind.
KindConversion const kKinds[] = {
    {nullptr, nullptr},                                                                        // 0 invalid, never read
    Kind<&V::GetHexBinary, &V::SetHexBinary, &C::hexBinaryToString, &C::hexBinaryFromString>(),  // 1 hexBinary
    Kind<&V::GetBase64Binary, &V::SetBase64Binary, &C::base64BinaryToString,
         &C::base64BinaryFromString>(),                                                        // 2 base64Binary
    Kind<&V::GetI1, &V::SetI1, &C::i1ToString, &C::i1FromString>(),                            // 3 i1
    Kind<&V::GetI2, &V::SetI2, &C::i2ToString, &C::i2FromString>(),                            // 4 i2
    Kind<&V::GetI4, &V::SetI4, &C::i4ToString, &C::i4FromString>(),                            // 5 i4
    Kind<&V::GetI8, &V::SetI8, &C::i8ToString, &C::i8FromString>(),                            // 6 i8
    Kind<&V::GetUI1, &V::SetUI1, &C::ui1ToString, &C::ui1FromString>(),                        // 7 ui1
    Kind<&V::GetUI2, &V::SetUI2, &C::ui2ToString, &C::ui2FromString>(),                        // 8 ui2
    Kind<&V::GetUI4, &V::SetUI4, &C::ui4ToString, &C::ui4FromString>(),                        // 9 ui4
    Kind<&V::GetUI8, &V::SetUI8, &C::ui8ToString, &C::ui8FromString>(),                        // 10 ui8
    KindWithFormat<&V::GetR4, &V::SetR4, &C::r4ToString, &C::r4FromString>(),                  // 11 r4
    KindWithFormat<&V::GetR8, &V::SetR8, &C::r8ToString, &C::r8FromString>(),                  // 12 r8
    Kind<&V::GetDuration, &V::SetDuration, &C::durationToString, &C::durationFromString>(),    // 13 duration
    Kind<&V::GetYearMonth, &V::SetYearMonth, &C::yearMonthToString, &C::yearMonthFromString>(),// 14 yearMonth
    Kind<&V::GetMonthDay, &V::SetMonthDay, &C::monthDayToString, &C::monthDayFromString>(),    // 15 monthDay
    Kind<&V::GetYear, &V::SetYear, &C::yearToString, &C::yearFromString>(),                    // 16 year
    Kind<&V::GetMonth, &V::SetMonth, &C::monthToString, &C::monthFromString>(),                // 17 month
    Kind<&V::GetDay, &V::SetDay, &C::dayToString, &C::dayFromString>(),                        // 18 day
    Kind<&V::GetDate, &V::SetDate, &C::dateToString, &C::dateFromString>(),                    // 19 date
    Kind<&V::GetDateTime, &V::SetDateTime, &C::datetimeToString, &C::datetimeFromString>(),    // 20 datetime
    Kind<&V::GetTime, &V::SetTime, &C::timeToString, &C::timeFromString>(),                    // 21 time
    Kind<&V::GetChar, &V::SetChar, &C::charToString, &C::charFromString>(),                    // 22 char
    {&PrintString, &StorePayload<&V::SetString, &C::stringFromString>},                        // 23 string
    Kind<&V::GetBoolean, &V::SetBoolean, &C::booleanToString, &C::booleanFromString>(),        // 24 boolean
    KindWithFormat<&V::GetDecimal, &V::SetDecimal, &C::decimalToString, &C::decimalFromString>(),  // 25 decimal
    Kind<&V::GetInteger, &V::SetInteger, &C::integerToString, &C::integerFromString>(),            // 26 integer
};

constexpr int kKindCount = static_cast<int>(sizeof(kKinds) / sizeof(kKinds[0]));
static_assert(kKindCount == ItemType_integer + 1, "one row per primitive kind");

// The row of a primitive kind; null for 0, the object kinds 27 and 28, and
// anything out of range.
KindConversion const* ConversionOf(int type) { return type > 0 && type < kKindCount ? &kKinds[type] : nullptr; }

} // namespace

std::string KdVariant::ToString(char const* format) const
{
    KindConversion const* kind = ConversionOf(m_type);
    if (!kind)
        throw CKdException(FormatString("Invalid Type %d to convert to string", static_cast<int>(m_type)));
    return kind->toString(*this, format);
}

void KdVariant::FromString(std::string const& value, ItemType type, CWhitespaceUtils::WhitespaceRule rule)
{
    KindConversion const* kind = ConversionOf(type);
    // The number shown is the variant's own tag, not the type asked for: the
    // library has always reported it so.
    if (!kind)
        throw CKdException(FormatString("Invalid Type %d to convert to string", static_cast<int>(m_type)));
    kind->fromString(*this, value, rule);
}

} // namespace KdBind
