// The facet tests of primitive values: bounds in the value's own type,
// lengths of strings and binary data, and the pattern of strings.
#include <cmath>

#include "kdbind/binding.h"

namespace KdBind {

namespace {

typedef CConversions::WhitespaceRule WhitespaceRule;

// The four bounds, in the order in which they are tested.
enum Bound { MinInclusive, MaxInclusive, MinExclusive, MaxExclusive, BoundCount };

std::string const& BoundText(CPrimitiveRestrictions const& restrictions, int bound)
{
    switch (bound) {
    case MinInclusive: return restrictions.minInclusive;
    case MaxInclusive: return restrictions.maxInclusive;
    case MinExclusive: return restrictions.minExclusive;
    default: return restrictions.maxExclusive;
    }
}

// How a value stands to a bound: the four answers of the dates' CompareTo.
enum Order { Equal = 0, Less = 1, Greater = 2, Unordered = 3 };

// Whether a value in the given order to a bound passes it. Unordered means a
// NaN for reals, which fails every bound, and an indeterminate comparison for
// dates and durations, which passes every bound.
bool Passes(int bound, Order order, bool unorderedPasses)
{
    if (order == Unordered)
        return unorderedPasses;
    switch (bound) {
    case MinInclusive: return order != Less;
    case MaxInclusive: return order != Greater;
    case MinExclusive: return order == Greater;
    default: return order == Less;
    }
}

// Arg is the way the value is passed: a machine number by value, a value
// class by const reference.
template <class Arg>
Order NaturalOrder(Arg value, Arg bound)
{
    return value < bound ? Less : value > bound ? Greater : Equal;
}

// Dates and durations order themselves, with an indeterminate answer when
// time zones or month lengths leave the order open.
template <class T>
Order CompareToOrder(T const& value, T const& bound)
{
    return static_cast<Order>(value.CompareTo(bound));
}

template <class T>
Order RealOrder(T value, T bound)
{
    return std::isnan(value) || std::isnan(bound) ? Unordered : NaturalOrder<T>(value, bound);
}

// What sets one kind of bounded value apart: its conversion, its order and
// its refusal. Value is the type tested, Arg the way it is passed. The exact
// numbers order through their operators, dates and durations through their
// CompareTo, whose indeterminate answer passes every bound.
template <class Value, class Arg, Value (*Parse)(std::string const&, WhitespaceRule), Order (*Compare)(Arg, Arg),
          std::string (*Refusal)(char const*, Arg), bool UnorderedPasses>
struct BoundedKind {
    typedef Value ValueType;
    typedef Arg ArgType;
    static Value ParseBound(std::string const& text) { return Parse(text, CWhitespaceUtils::WhitespaceRule_Collapse); }
    static Order Compare_(Arg value, Arg bound) { return Compare(value, bound); }
    static std::string Refuse(char const* name, Arg value) { return Refusal(name, value); }
    static constexpr bool kUnorderedPasses = UnorderedPasses;
};

// "%d" takes the value as an int, as the messages always have: an i4 or ui4
// beyond 32 bits shows its low half.
template <class T>
std::string RefusalAsInt(char const* name, T value)
{
    return FormatString("Invalid Value for %s [%d]", name, static_cast<int>(value));
}

template <class T>
std::string RefusalAsReal(char const* name, T value)
{
    return FormatString("Invalid Value for %s [%f]", name, static_cast<double>(value));
}

template <class T, std::string (*Print)(T)>
std::string RefusalAsText(char const* name, T value)
{
    return FormatString("Invalid Value for %s [%s]", name, Print(value).c_str());
}

template <class T>
std::string RefusalAsOwnText(char const* name, T const& value)
{
    return FormatString("Invalid Value for %s [%s]", name, value.ToString().c_str());
}

typedef CConversions C;
typedef BoundedKind<char, char, &C::i1FromString, &NaturalOrder<char>, &RefusalAsInt<char>, false> I1Kind;
typedef BoundedKind<short, short, &C::i2FromString, &NaturalOrder<short>, &RefusalAsInt<short>, false> I2Kind;
typedef BoundedKind<long, long, &C::i4FromString, &NaturalOrder<long>, &RefusalAsInt<long>, false> I4Kind;
typedef BoundedKind<long long, long long, &C::i8FromString, &NaturalOrder<long long>,
                    &RefusalAsText<long long, &C::i8ToString>, false> I8Kind;
typedef BoundedKind<unsigned char, unsigned char, &C::ui1FromString, &NaturalOrder<unsigned char>,
                    &RefusalAsInt<unsigned char>, false> UI1Kind;
typedef BoundedKind<unsigned short, unsigned short, &C::ui2FromString, &NaturalOrder<unsigned short>,
                    &RefusalAsInt<unsigned short>, false> UI2Kind;
typedef BoundedKind<unsigned long, unsigned long, &C::ui4FromString, &NaturalOrder<unsigned long>,
                    &RefusalAsInt<unsigned long>, false> UI4Kind;
typedef BoundedKind<unsigned long long, unsigned long long, &C::ui8FromString, &NaturalOrder<unsigned long long>,
                    &RefusalAsText<unsigned long long, &C::ui8ToString>, false> UI8Kind;
typedef BoundedKind<unsigned short, unsigned short, &C::yearFromString, &NaturalOrder<unsigned short>,
                    &RefusalAsInt<unsigned short>, false> YearKind;
typedef BoundedKind<unsigned char, unsigned char, &C::monthFromString, &NaturalOrder<unsigned char>,
                    &RefusalAsInt<unsigned char>, false> MonthKind;
typedef BoundedKind<unsigned char, unsigned char, &C::dayFromString, &NaturalOrder<unsigned char>,
                    &RefusalAsInt<unsigned char>, false> DayKind;
typedef BoundedKind<float, float, &C::r4FromString, &RealOrder<float>, &RefusalAsReal<float>, false> R4Kind;
typedef BoundedKind<double, double, &C::r8FromString, &RealOrder<double>, &RefusalAsReal<double>, false> R8Kind;
typedef BoundedKind<CDecimal, CDecimal const&, &C::decimalFromString, &NaturalOrder<CDecimal const&>,
                    &RefusalAsOwnText<CDecimal>, false> DecimalKind;
typedef BoundedKind<CBigInteger, CBigInteger const&, &C::integerFromString, &NaturalOrder<CBigInteger const&>,
                    &RefusalAsOwnText<CBigInteger>, false> IntegerKind;
typedef BoundedKind<CDateTimeSpan, CDateTimeSpan const&, &C::durationFromString, &CompareToOrder<CDateTimeSpan>,
                    &RefusalAsOwnText<CDateTimeSpan>, true> DurationKind;
// The date kinds differ only in the form their bounds are read in.
template <CDateTime (*Parse)(std::string const&, WhitespaceRule)>
using DateKind = BoundedKind<CDateTime, CDateTime const&, Parse, &CompareToOrder<CDateTime>,
                             &RefusalAsOwnText<CDateTime>, true>;

// The parsed bounds of one record for one kind, with the texts they came
// from: a record whose public fields were changed after its first check is
// recognised and checked from its texts.
template <class Kind>
class CParsedBounds final : public CParsedRestrictions {
public:
    typedef typename Kind::ValueType Value;

    // Null when a bound does not convert: such a record is checked from its
    // texts every time, so that the conversion fails at its turn.
    static CParsedBounds* Parse(CPrimitiveRestrictions const& restrictions, ItemType kind)
    {
        auto* parsed = new CParsedBounds(kind);
        try {
            for (int bound = 0; bound < BoundCount; ++bound) {
                parsed->m_texts[bound] = BoundText(restrictions, bound);
                parsed->m_set[bound] = !parsed->m_texts[bound].empty();
                if (parsed->m_set[bound])
                    parsed->m_values[bound] = Kind::ParseBound(parsed->m_texts[bound]);
            }
        } catch (CKdException const&) {
            delete parsed;
            return nullptr;
        } catch (...) {
            delete parsed;
            throw;
        }
        return parsed;
    }

    bool Matches(CPrimitiveRestrictions const& restrictions) const
    {
        for (int bound = 0; bound < BoundCount; ++bound)
            if (m_texts[bound] != BoundText(restrictions, bound))
                return false;
        return true;
    }

    bool IsSet(int bound) const { return m_set[bound]; }
    Value const& Get(int bound) const { return m_values[bound]; }

private:
    explicit CParsedBounds(ItemType kind) : CParsedRestrictions(kind) {}

    std::string m_texts[BoundCount];
    bool m_set[BoundCount] = {};
    Value m_values[BoundCount] = {};
};

// The record's parsed bounds for this kind, parsing and installing them on
// its first check; null when they cannot serve (see CParsedBounds).
template <class Kind>
CParsedBounds<Kind> const* ParsedBoundsOf(CPrimitiveRestrictions const& restrictions, ItemType kind)
{
    CParsedRestrictions const* parsed = restrictions.GetParsed();
    if (!parsed) {
        CParsedBounds<Kind>* built = CParsedBounds<Kind>::Parse(restrictions, kind);
        if (!built)
            return nullptr;
        parsed = restrictions.InstallParsed(built);
    }
    if (parsed->GetKind() != kind)
        return nullptr;
    auto const* bounds = static_cast<CParsedBounds<Kind> const*>(parsed);
    return bounds->Matches(restrictions) ? bounds : nullptr;
}

// Tests the bounds in their order; the first one failed refuses the value.
template <class Kind>
void CheckBounds(char const* name, typename Kind::ArgType value, CPrimitiveRestrictions const& restrictions,
                 ItemType kind)
{
    if (CParsedBounds<Kind> const* parsed = ParsedBoundsOf<Kind>(restrictions, kind)) {
        for (int bound = 0; bound < BoundCount; ++bound)
            if (parsed->IsSet(bound) &&
                !Passes(bound, Kind::Compare_(value, parsed->Get(bound)), Kind::kUnorderedPasses))
                throw CKdException(Kind::Refuse(name, value));
        return;
    }
    for (int bound = 0; bound < BoundCount; ++bound) {
        std::string const& text = BoundText(restrictions, bound);
        if (!text.empty() &&
            !Passes(bound, Kind::Compare_(value, Kind::ParseBound(text)), Kind::kUnorderedPasses))
            throw CKdException(Kind::Refuse(name, value));
    }
}

// minLength, maxLength and length, in that order; each negative one is unset.
bool LengthPasses(int length, CPrimitiveRestrictions const& restrictions)
{
    if (restrictions.minLength >= 0 && length < restrictions.minLength)
        return false;
    if (restrictions.maxLength >= 0 && length > restrictions.maxLength)
        return false;
    return restrictions.length < 0 || length == restrictions.length;
}

void CheckBinaryLength(char const* name, CBinaryData const& value, CPrimitiveRestrictions const& restrictions)
{
    if (!LengthPasses(static_cast<int>(value.GetLength()), restrictions))
        throw CKdException(FormatString("Invalid Value for %s [%s]", name, value.GetAsHexString().c_str()));
}

// Word-wide: values can be long.
bool IsAscii(std::string const& text)
{
    return !DoesUTF8StrContainAnyCharsLargerThanOneByte(
        reinterpret_cast<unsigned char*>(const_cast<char*>(text.data())), text.size());
}

// The compiled pattern of a record. Kept only for an ASCII pattern, whose
// UTF-8 form does not depend on the locale of the moment.
class CParsedPattern final : public CParsedRestrictions {
public:
    explicit CParsedPattern(std::string const& pattern)
        : CParsedRestrictions(ItemType_string), m_text(pattern), m_compiled(CCompiledPattern::Shared(pattern))
    {
    }
    bool Matches(CPrimitiveRestrictions const& restrictions) const { return m_text == restrictions.pattern; }
    bool Test(std::string const& value) const { return m_compiled->Matches(value); }

private:
    std::string m_text;
    std::shared_ptr<CCompiledPattern const> m_compiled;
};

bool PatternMatches(std::string const& value, CPrimitiveRestrictions const& restrictions)
{
    std::string const& pattern = restrictions.pattern;
    if (IsAscii(pattern)) {
        CParsedRestrictions const* parsed = restrictions.GetParsed();
        if (!parsed)
            parsed = restrictions.InstallParsed(new CParsedPattern(pattern));
        if (parsed->GetKind() == ItemType_string && static_cast<CParsedPattern const*>(parsed)->Matches(restrictions))
            return static_cast<CParsedPattern const*>(parsed)->Test(value);
    }
    CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(pattern.c_str());
    std::string const utf8Pattern =
        utf8.GetData() ? std::string(reinterpret_cast<char const*>(utf8.GetData()), utf8.GetLength()) : std::string();
    return TestRegEx(utf8Pattern, value);
}

// The value from the variant by the kind asked for, then that kind's check.
typedef void (*VariantCheck)(char const* name, KdVariant const& value, CPrimitiveRestrictions const& restrictions);

template <class T, T (KdVariant::*Get)() const, void (*Check)(char const*, T, CPrimitiveRestrictions const&)>
void CheckVariant(char const* name, KdVariant const& value, CPrimitiveRestrictions const& restrictions)
{
    Check(name, (value.*Get)(), restrictions);
}

template <class T, T (KdVariant::*Get)() const, void (*Check)(char const*, T const&, CPrimitiveRestrictions const&)>
void CheckVariantByReference(char const* name, KdVariant const& value, CPrimitiveRestrictions const& restrictions)
{
    Check(name, (value.*Get)(), restrictions);
}

void CheckStringVariant(char const* name, KdVariant const& value, CPrimitiveRestrictions const& restrictions)
{
    CXmlObjectHelper::CheckRestrictionForstring(name, value.GetString(), restrictions);
}

typedef CXmlObjectHelper H;
typedef KdVariant V;

// Indexed by ItemType; null rows (invalid, char) cannot be restricted.
VariantCheck const kChecks[] = {
    nullptr,                                                                            // 0 invalid
    &CheckVariantByReference<CBinaryData, &V::GetHexBinary, &H::CheckRestrictionForhexBinary>,        // 1
    &CheckVariantByReference<CBinaryData, &V::GetBase64Binary, &H::CheckRestrictionForbase64Binary>,  // 2
    &CheckVariant<char, &V::GetI1, &H::CheckRestrictionFori1>,                          // 3 i1
    &CheckVariant<short, &V::GetI2, &H::CheckRestrictionFori2>,                         // 4 i2
    &CheckVariant<long, &V::GetI4, &H::CheckRestrictionFori4>,                          // 5 i4
    &CheckVariant<long long, &V::GetI8, &H::CheckRestrictionFori8>,                     // 6 i8
    &CheckVariant<unsigned char, &V::GetUI1, &H::CheckRestrictionForui1>,               // 7 ui1
    &CheckVariant<unsigned short, &V::GetUI2, &H::CheckRestrictionForui2>,              // 8 ui2
    &CheckVariant<unsigned long, &V::GetUI4, &H::CheckRestrictionForui4>,               // 9 ui4
    &CheckVariant<unsigned long long, &V::GetUI8, &H::CheckRestrictionForui8>,          // 10 ui8
    &CheckVariant<float, &V::GetR4, &H::CheckRestrictionForr4>,                         // 11 r4
    &CheckVariant<double, &V::GetR8, &H::CheckRestrictionForr8>,                        // 12 r8
    &CheckVariantByReference<CDateTimeSpan, &V::GetDuration, &H::CheckRestrictionForduration>,   // 13 duration
    &CheckVariantByReference<CDateTime, &V::GetYearMonth, &H::CheckRestrictionForyearMonth>,     // 14 yearMonth
    &CheckVariantByReference<CDateTime, &V::GetMonthDay, &H::CheckRestrictionFormonthDay>,       // 15 monthDay
    &CheckVariant<unsigned short, &V::GetYear, &H::CheckRestrictionForyear>,            // 16 year
    &CheckVariant<unsigned char, &V::GetMonth, &H::CheckRestrictionFormonth>,           // 17 month
    &CheckVariant<unsigned char, &V::GetDay, &H::CheckRestrictionForday>,               // 18 day
    &CheckVariantByReference<CDateTime, &V::GetDate, &H::CheckRestrictionFordate>,               // 19 date
    &CheckVariantByReference<CDateTime, &V::GetDateTime, &H::CheckRestrictionFordatetime>,       // 20 datetime
    &CheckVariantByReference<CDateTime, &V::GetTime, &H::CheckRestrictionFortime>,               // 21 time
    nullptr,                                                                            // 22 char
    &CheckStringVariant,                                                                // 23 string
    &CheckVariant<bool, &V::GetBoolean, &H::CheckRestrictionForboolean>,                // 24 boolean
    &CheckVariantByReference<CDecimal, &V::GetDecimal, &H::CheckRestrictionFordecimal>,          // 25 decimal
    &CheckVariantByReference<CBigInteger, &V::GetInteger, &H::CheckRestrictionForinteger>,       // 26 integer
};

constexpr int kCheckCount = static_cast<int>(sizeof(kChecks) / sizeof(kChecks[0]));
static_assert(kCheckCount == ItemType_integer + 1, "one row per primitive kind");

} // namespace

void CXmlObjectHelper::CheckRestriction(char const* name, KdVariant const& value, ItemType type,
                                        CPrimitiveRestrictions const& restrictions)
{
    int const row = static_cast<int>(type);
    VariantCheck const check = row >= 0 && row < kCheckCount ? kChecks[row] : nullptr;
    // The type shown is the variant's own, not the one asked for.
    if (!check)
        throw CKdInvalidValueException("unknown type [" + value.GetType() + "]");
    check(name, value, restrictions);
}

void CXmlObjectHelper::CheckRestrictionForhexBinary(char const* name, CBinaryData const& value,
                                                    CPrimitiveRestrictions const& restrictions)
{
    CheckBinaryLength(name, value, restrictions);
}

void CXmlObjectHelper::CheckRestrictionForbase64Binary(char const* name, CBinaryData const& value,
                                                       CPrimitiveRestrictions const& restrictions)
{
    CheckBinaryLength(name, value, restrictions);
}

void CXmlObjectHelper::CheckRestrictionFori1(char const* name, char value, CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<I1Kind>(name, value, restrictions, ItemType_i1);
}

void CXmlObjectHelper::CheckRestrictionFori2(char const* name, short value, CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<I2Kind>(name, value, restrictions, ItemType_i2);
}

void CXmlObjectHelper::CheckRestrictionFori4(char const* name, long value, CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<I4Kind>(name, value, restrictions, ItemType_i4);
}

void CXmlObjectHelper::CheckRestrictionFori8(char const* name, long long value,
                                             CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<I8Kind>(name, value, restrictions, ItemType_i8);
}

void CXmlObjectHelper::CheckRestrictionForui1(char const* name, unsigned char value,
                                              CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<UI1Kind>(name, value, restrictions, ItemType_ui1);
}

void CXmlObjectHelper::CheckRestrictionForui2(char const* name, unsigned short value,
                                              CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<UI2Kind>(name, value, restrictions, ItemType_ui2);
}

void CXmlObjectHelper::CheckRestrictionForui4(char const* name, unsigned long value,
                                              CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<UI4Kind>(name, value, restrictions, ItemType_ui4);
}

void CXmlObjectHelper::CheckRestrictionForui8(char const* name, unsigned long long value,
                                              CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<UI8Kind>(name, value, restrictions, ItemType_ui8);
}

void CXmlObjectHelper::CheckRestrictionForr4(char const* name, float value, CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<R4Kind>(name, value, restrictions, ItemType_r4);
}

void CXmlObjectHelper::CheckRestrictionForr8(char const* name, double value, CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<R8Kind>(name, value, restrictions, ItemType_r8);
}

void CXmlObjectHelper::CheckRestrictionForyear(char const* name, unsigned short value,
                                               CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<YearKind>(name, value, restrictions, ItemType_year);
}

void CXmlObjectHelper::CheckRestrictionFormonth(char const* name, unsigned char value,
                                                CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<MonthKind>(name, value, restrictions, ItemType_month);
}

void CXmlObjectHelper::CheckRestrictionForday(char const* name, unsigned char value,
                                              CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<DayKind>(name, value, restrictions, ItemType_day);
}

void CXmlObjectHelper::CheckRestrictionFordecimal(char const* name, CDecimal const& value,
                                                  CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<DecimalKind>(name, value, restrictions, ItemType_decimal);
}

void CXmlObjectHelper::CheckRestrictionForinteger(char const* name, CBigInteger const& value,
                                                  CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<IntegerKind>(name, value, restrictions, ItemType_integer);
}

void CXmlObjectHelper::CheckRestrictionForduration(char const* name, CDateTimeSpan const& value,
                                                   CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<DurationKind>(name, value, restrictions, ItemType_duration);
}

void CXmlObjectHelper::CheckRestrictionForyearMonth(char const* name, CDateTime const& value,
                                                    CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<DateKind<&C::yearMonthFromString>>(name, value, restrictions, ItemType_yearMonth);
}

void CXmlObjectHelper::CheckRestrictionFormonthYear(char const* name, CDateTime const& value,
                                                    CPrimitiveRestrictions const& restrictions)
{
    CheckRestrictionForyearMonth(name, value, restrictions);
}

void CXmlObjectHelper::CheckRestrictionFormonthDay(char const* name, CDateTime const& value,
                                                   CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<DateKind<&C::monthDayFromString>>(name, value, restrictions, ItemType_monthDay);
}

void CXmlObjectHelper::CheckRestrictionFordate(char const* name, CDateTime const& value,
                                               CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<DateKind<&C::dateFromString>>(name, value, restrictions, ItemType_date);
}

void CXmlObjectHelper::CheckRestrictionFordatetime(char const* name, CDateTime const& value,
                                                   CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<DateKind<&C::datetimeFromString>>(name, value, restrictions, ItemType_datetime);
}

void CXmlObjectHelper::CheckRestrictionFortime(char const* name, CDateTime const& value,
                                               CPrimitiveRestrictions const& restrictions)
{
    CheckBounds<DateKind<&C::timeFromString>>(name, value, restrictions, ItemType_time);
}

void CXmlObjectHelper::CheckRestrictionForstring(char const* name, std::string value,
                                                 CPrimitiveRestrictions const& restrictions)
{
    // Lengths are counted in bytes, not characters, and come before the pattern.
    if (!LengthPasses(static_cast<int>(value.size()), restrictions))
        throw CKdException(FormatString("Invalid Value for %s [%s]", name, value.c_str()));
    if (restrictions.pattern.empty())
        return;
    bool matches = false;
    try {
        matches = PatternMatches(value, restrictions);
    } catch (CKdException const&) {
        // A text the pattern test cannot handle is treated as a refused pattern.
        __builtin_trap();
    }
    if (!matches)
        throw CKdException(FormatString("Invalid Value for %s [%s]", name, value.c_str()));
}

void CXmlObjectHelper::CheckRestrictionForboolean(char const*, bool, CPrimitiveRestrictions const&) {}

} // namespace KdBind
