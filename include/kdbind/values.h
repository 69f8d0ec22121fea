// KdBind XML Schema value types: whitespace rules, lexical conversions, the
// value classes and the tagged value KdVariant that carries them.
#ifndef KDBIND_VALUES_H
#define KDBIND_VALUES_H

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kdbind/runtime.h"

namespace KdBind {

class CBinaryData;
class CDateTime;
class CDateTimeSpan;
class CDecimal;
class CBigInteger;
class CXmlObjectBase;
class CXmlCollectionBase;

// ---------------------------------------------------------------------------
// Whitespace rules (xsd:whiteSpace), applied before every conversion.
// ---------------------------------------------------------------------------

class CWhitespaceUtils {
public:
    // Over int, so that any number the metadata holds is a value of the type
    // and an unknown one reaches ApplyRule's failure rather than undefined
    // behaviour.
    enum WhitespaceRule : int {
        WhitespaceRule_None = 0,
        WhitespaceRule_Preserve = 1,
        WhitespaceRule_Replace = 2,
        WhitespaceRule_Collapse = 3
    };

    static bool IsWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    static std::string Preserve(char const* text, int length);
    static std::string Preserve(std::string const& text);
    static std::string Replace(std::string const& text);
    static std::string Collapse(std::string const& text);
    static std::string ApplyRule(WhitespaceRule rule, std::string const& text);
};

// ---------------------------------------------------------------------------
// Lexical conversions: the one place where a primitive value meets its XML
// text. <kind>ToString prints a value; <kind>FromString applies the
// whitespace rule, then parses, and throws CKdInvalidValueException on text
// it cannot convert. Output does not depend on the process's locale; input
// is read as in the "C" locale.
// ---------------------------------------------------------------------------

class CConversions {
public:
    CConversions() = delete;

    typedef CWhitespaceUtils::WhitespaceRule WhitespaceRule;

    static std::string booleanToString(bool value);
    // i4 and ui4 hold a long, but print only its low 32 bits.
    static std::string i1ToString(char value);
    static std::string i2ToString(short value);
    static std::string i4ToString(long value);
    static std::string i8ToString(long long value);
    static std::string ui1ToString(unsigned char value);
    static std::string ui2ToString(unsigned short value);
    static std::string ui4ToString(unsigned long value);
    static std::string ui8ToString(unsigned long long value);
    // A null format prints "%.7g" (r4) or "%.16g" (r8); NaN and the
    // infinities print "NaN", "INF", "-INF" whatever the format.
    static std::string r4ToString(float value, char const* format = nullptr);
    static std::string r8ToString(double value, char const* format = nullptr);
    static std::string yearToString(unsigned short value);
    static std::string monthToString(unsigned char value);
    static std::string dayToString(unsigned char value);
    static std::string charToString(char value);
    static std::string stringToString(std::string const& value);
    static std::string hexBinaryToString(CBinaryData const& value);
    static std::string base64BinaryToString(CBinaryData const& value);
    static std::string integerToString(CBigInteger const& value);
    // A null format prints every fractional digit; any other is read as a
    // number of places for CDecimal::ToString(int).
    static std::string decimalToString(CDecimal const& value, char const* format = nullptr);
    static std::string durationToString(CDateTimeSpan const& value);
    // The date kinds print the XML form of the value's own type.
    static std::string yearMonthToString(CDateTime const& value);
    static std::string monthDayToString(CDateTime const& value);
    static std::string dateToString(CDateTime const& value);
    static std::string datetimeToString(CDateTime const& value);
    static std::string timeToString(CDateTime const& value);

    static std::string stringFromString(std::string const& text, WhitespaceRule rule);
    static bool booleanFromString(std::string const& text, WhitespaceRule rule);
    static char charFromString(std::string const& text, WhitespaceRule rule);
    // i4 and ui4 accept the whole range of long; no 32-bit test.
    static char i1FromString(std::string const& text, WhitespaceRule rule);
    static short i2FromString(std::string const& text, WhitespaceRule rule);
    static long i4FromString(std::string const& text, WhitespaceRule rule);
    static long long i8FromString(std::string const& text, WhitespaceRule rule);
    static unsigned char ui1FromString(std::string const& text, WhitespaceRule rule);
    static unsigned short ui2FromString(std::string const& text, WhitespaceRule rule);
    static unsigned long ui4FromString(std::string const& text, WhitespaceRule rule);
    static unsigned long long ui8FromString(std::string const& text, WhitespaceRule rule);
    // The empty text is a NaN, not a failure.
    static float r4FromString(std::string const& text, WhitespaceRule rule);
    static double r8FromString(std::string const& text, WhitespaceRule rule);
    // Any date form that holds the field is read: "2004-05-06" is year 2004.
    static unsigned short yearFromString(std::string const& text, WhitespaceRule rule);
    static unsigned char monthFromString(std::string const& text, WhitespaceRule rule);
    static unsigned char dayFromString(std::string const& text, WhitespaceRule rule);
    static CBinaryData hexBinaryFromString(std::string const& text, WhitespaceRule rule);
    static CBinaryData base64BinaryFromString(std::string const& text, WhitespaceRule rule);
    static CBigInteger integerFromString(std::string const& text, WhitespaceRule rule);
    static CDecimal decimalFromString(std::string const& text, WhitespaceRule rule);
    static CDateTimeSpan durationFromString(std::string const& text, WhitespaceRule rule);
    static CDateTime datetimeFromString(std::string const& text, WhitespaceRule rule);
    // date, yearMonth and monthDay read every date-only form, so the type of
    // the result is that of the text.
    static CDateTime dateFromString(std::string const& text, WhitespaceRule rule);
    static CDateTime timeFromString(std::string const& text, WhitespaceRule rule);
    static CDateTime yearMonthFromString(std::string const& text, WhitespaceRule rule);
    static CDateTime monthDayFromString(std::string const& text, WhitespaceRule rule);
};

// Removes trailing "0" characters but never the first one: "100" -> "1".
// (The name is kept as the library has always spelt it.)
std::string TrimTrainingZeros(std::string text);
// value printed with at least width digits, zero-padded: PadZero(7, 3) -> "007".
std::string PadZero(int value, unsigned char width);
// The fraction of a second in its shortest form with its point, ".5" for
// 500 ms; the empty string when all three groups are zero.
std::string ToFracString(unsigned short milli, unsigned short micro, unsigned short nano);

// ---------------------------------------------------------------------------
// The xsd:pattern facet, decided by PCRE2.
// ---------------------------------------------------------------------------

// Whether the whole of value (local code page) matches pattern (UTF-8). The
// XML Schema escapes \i \I \c \C and the blocks IsBasicLatin,
// IsLatin-1Supplement, IsLatinExtended-A and IsLatinExtended-B are rewritten
// into PCRE terms; everything else is PCRE's own syntax, with \w and \d
// ASCII only. A pattern PCRE2 refuses stops the process on a trap: a bad
// pattern is a fault of the schema's translation, not of the document.
// Compiled patterns are kept and shared by all threads.
bool TestRegEx(std::string pattern, std::string value);

// One compiled pattern. Immutable once built, so one instance serves any
// number of threads.
class CCompiledPattern {
public:
    // Rewrites and compiles; traps on a pattern PCRE2 refuses.
    explicit CCompiledPattern(std::string pattern);
    CCompiledPattern(CCompiledPattern const&) = delete;
    CCompiledPattern& operator=(CCompiledPattern const&) = delete;
    ~CCompiledPattern();

    // The match of TestRegEx: anchored at the start, and it must end at the
    // end of the value (up to a first NUL). A match that runs out of its step
    // or memory budget is a non-match, never a hang.
    bool Matches(std::string const& value) const;

    // Why PCRE2 refuses pattern after the same translation and compilation
    // as the constructor's, without trapping; empty when it compiles. Schema
    // compilers ask it, so that a pattern refused while generating is
    // exactly one that would stop the process at run time.
    static std::string Diagnose(std::string const& pattern);

    // The compiled form of pattern from the process-wide cache, compiled on
    // first use. Holders keep their pattern alive even if the cache drops it.
    static std::shared_ptr<CCompiledPattern const> Shared(std::string const& pattern);

private:
    void* m_code;  // pcre2_code, owned
};

// ---------------------------------------------------------------------------
// Exact numbers: integers of any size (xsd:integer and its relatives) and
// decimals (xsd:decimal).
// ---------------------------------------------------------------------------

// An integer of any size: a sign and its decimal digits.
//
// Zero normally has sign +1, but "-0" and a product with zero keep -1 on it:
// == calls such a zero equal to 0 while < and > order by sign first, so -0 is
// less than 0. A text ending in a line break parses to an empty digit vector,
// which prints "0" and is not == 0.
//
// The conversions from double, text and CDecimal are explicit, and so is the
// one to int (it throws when out of range): with both directions implicit,
// `value == 0` would be ambiguous.
class CBigInteger {
public:
    // One decimal digit (the number 0-9, not a character) per element, least
    // significant first. Values made by the operations have no high-order
    // zeros; zero is the single digit 0.
    typedef std::vector<char> Digits;

    CBigInteger();
    CBigInteger(int value);
    // Rounds to the nearest whole number, halves towards zero. A NaN gives the
    // empty digit vector; an infinity throws CKdOverFlowException.
    explicit CBigInteger(double value);
    // Parse.
    explicit CBigInteger(char const* text);
    // The decimal rounded to a whole number by ChangeFractionalDivider(0).
    explicit CBigInteger(CDecimal const& value);
    CBigInteger(CBigInteger const& other) = default;
    CBigInteger(CBigInteger&& other) noexcept = default;
    CBigInteger& operator=(CBigInteger const& other) = default;
    CBigInteger& operator=(CBigInteger&& other) noexcept = default;
    virtual ~CBigInteger();

    void Abs() { m_sign = 1; }
    // -1 becomes +1, anything else -1.
    void Negate() { m_sign = m_sign == -1 ? 1 : -1; }
    CBigInteger GetAbs() const;
    CBigInteger GetNegative() const;
    // Negates this object in place and returns it: no copy is made.
    CBigInteger& operator-();

    // Leading and trailing blanks are stripped and a first "-" makes the value
    // negative; then only the trailing run of digits counts ("12-34" is 34).
    // A text holding any character but digits, signs, blanks, tabs and line
    // ends is read as a CDecimal and rounded, so "12.9" is 13 and "1.7E+308"
    // is 17 followed by 307 zeros; its failures are the decimal's.
    void Parse(char const* text);
    std::string ToString() const;

    CBigInteger& operator+=(CBigInteger const& other);
    CBigInteger& operator-=(CBigInteger const& other);
    CBigInteger& operator*=(CBigInteger const& other);
    // The guards differ on purpose: / refuses a zero divisor, the other three
    // a negative one (and, since it has no quotient, zero as well). All throw
    // CKdInvalidValueException. Quotients truncate towards zero; a remainder
    // has the sign of the dividend.
    CBigInteger& operator/=(CBigInteger const& other);
    CBigInteger& operator%=(CBigInteger const& other);
    CBigInteger operator+(CBigInteger const& other) const;
    CBigInteger operator-(CBigInteger const& other) const;
    CBigInteger operator*(CBigInteger const& other) const;
    CBigInteger operator/(CBigInteger const& other) const;
    CBigInteger operator%(CBigInteger const& other) const;

    bool operator==(CBigInteger const& other) const;
    bool operator!=(CBigInteger const& other) const { return !(*this == other); }
    bool operator<(CBigInteger const& other) const;
    bool operator>(CBigInteger const& other) const;
    bool operator<=(CBigInteger const& other) const { return !(*this > other); }
    bool operator>=(CBigInteger const& other) const { return !(*this < other); }

    // The truncated square root; a negative value and zero throw.
    CBigInteger SquareRoot() const;
    // Throws CKdInvalidValueException outside the range of a 32-bit int.
    explicit operator int() const;

    // Magnitude operations on digit vectors. The result arguments may be the
    // same vectors as the operands.
    // -1, 0 or 1; a shorter vector is the smaller.
    static int Compare(Digits const& a, Digits const& b);
    // The length, but 1 for an empty vector.
    static int Position(Digits const& digits);
    // Removes high-order zeros, always keeping the lowest element.
    static void Clean(Digits& digits);
    // Multiplies by 10 to the n; nothing for n below 1.
    static void ShiftLeft(Digits& digits, int n);
    static void Build(unsigned int value, Digits& digits);
    static void BuildDWORDLONG(unsigned long long value, Digits& digits);
    static void BuildDouble(double magnitude, Digits& digits);
    // The trailing run of digits of the text, Clean-ed.
    static void Build(std::string const& text, Digits& digits);
    static void Add(Digits const& a, Digits const& b, Digits& result);
    // a - b for a at least b.
    static void Subtract(Digits const& a, Digits const& b, Digits& result);
    static void Multiply(Digits const& a, char digit, Digits& result);
    static void Multiply(Digits const& a, Digits const& b, Digits& result);
    // A zero divisor throws CKdInvalidValueException.
    static void Divide(Digits const& a, Digits const& b, Digits& quotient, Digits& remainder);
    static void Pow10(unsigned int n, Digits& digits);
    static CBigInteger Pow10(unsigned int n);

    // Bounds of the conversions of CDecimal. MAX_LONG and MIN_LONG are the
    // 32-bit bounds whatever the platform's long.
    static CBigInteger const MAX_LONG;
    static CBigInteger const MIN_LONG;
    static CBigInteger const MAX_LONGLONG;
    static CBigInteger const MIN_LONGLONG;
    static CBigInteger const MAX_DOUBLE;
    static CBigInteger const MIN_DOUBLE;

private:
    friend class CDecimal;

    CBigInteger(int sign, Digits&& digits) : m_sign(sign), m_digits(std::move(digits)) {}
    bool IsZero() const { return m_digits.size() == 1 && m_digits[0] == 0; }
    // Signed quotient and remainder behind the operators' guards.
    static void DivideSigned(CBigInteger const& dividend, CBigInteger const& divisor, CBigInteger* quotient,
                             CBigInteger* remainder);
    void AddSigned(CBigInteger const& other, int otherSign);

    int m_sign;  // +1 or -1
    Digits m_digits;
};

// An exact decimal: an integer part, a fractional part (the digits after the
// point read as an integer) and the count of fractional digits it stands
// for. Both parts carry the value's sign, so -1.5 is -1 and -5, and -0.5 is
// a zero integer part with sign -1 and -5.
//
// Sums are exact; products, quotients and parsed texts keep at most
// m_maxDivider fractional digits. Rounding, by ChangeFractionalDivider,
// sends an exact half towards zero. The arithmetic and comparison operators
// take and change copies, never their operands.
class CDecimal {
public:
    static constexpr int m_maxDivider = 30;

    CDecimal();
    CDecimal(int value);
    CDecimal(CBigInteger const& value);
    CDecimal(CBigInteger const& integerPart, CBigInteger const& fraction, int digitCount);
    // Parse.
    explicit CDecimal(char const* text);
    // The value printed with 13 fractional digits, then parsed; a NaN or an
    // infinity throws the parser's failure.
    explicit CDecimal(double value);
    CDecimal(CDecimal const& other) = default;
    CDecimal(CDecimal&& other) noexcept = default;
    CDecimal& operator=(CDecimal const& other) = default;
    CDecimal& operator=(CDecimal&& other) noexcept = default;
    virtual ~CDecimal();

    // Reads digits, a point and an exponent ("1.5E-3"). White space is
    // skipped anywhere before the exponent's digits, and signs may stand
    // anywhere in the integer part, the last one winning ("1-2" is -12).
    // A refused character throws CKdInvalidValueException naming its
    // position, and leaves the value as it was.
    void Parse(char const* text);
    // Every fractional digit; no point for a whole value.
    std::string ToString() const;
    // Adds one half of a unit (not of the last place) away from zero, then
    // cuts the fraction to `places` digits; the point is always written.
    std::string ToString(int places) const;

    void Negate();
    CDecimal GetNegative() const;
    // Brings the value to digitCount fractional digits, rounding as above. A
    // carry that fills the fraction is not passed on: 0.999 at two digits
    // holds a fraction of 100 and prints "0.100".
    void ChangeFractionalDivider(int digitCount);
    // Raises the one with fewer fractional digits; returns the common count.
    static int Normalize(CDecimal& a, CDecimal& b);
    // Removes trailing zeros from the fraction.
    void Rationalise();

    CDecimal operator+(CDecimal const& other) const;
    CDecimal operator-(CDecimal const& other) const;
    CDecimal operator*(CDecimal const& other) const;
    // Truncated at m_maxDivider + 2 places, then rounded. A zero divisor
    // throws CKdInvalidValueException.
    CDecimal operator/(CDecimal const& other) const;
    CDecimal& operator+=(CDecimal const& other);
    CDecimal& operator-=(CDecimal const& other);
    CDecimal& operator*=(CDecimal const& other);
    CDecimal& operator/=(CDecimal const& other);
    CDecimal& operator++();
    CDecimal& operator--();
    // The postfix forms return the stepped copy and leave the object as it was.
    CDecimal operator++(int) const;
    CDecimal operator--(int) const;

    bool operator==(CDecimal const& other) const;
    bool operator!=(CDecimal const& other) const { return !(*this == other); }
    bool operator<(CDecimal const& other) const;
    bool operator>(CDecimal const& other) const;
    bool operator<=(CDecimal const& other) const { return !(*this > other); }
    bool operator>=(CDecimal const& other) const { return !(*this < other); }

    CBigInteger ToBigInteger() const;
    // Rounds; throws CKdOverFlowException outside the 32-bit range.
    long ToLong() const;
    // Truncates; throws CKdOverFlowException outside the 64-bit range.
    long long ToLongLong() const;
    // Throws CKdOverFlowException when the integer part passes 1.7E+308.
    double ToDouble() const;

private:
    CDecimal(CBigInteger&& integerPart, CBigInteger&& fraction, int digitCount);
    // Rationalise, then round to m_maxDivider places when there are more.
    void Settle();

    CBigInteger m_integer;
    CBigInteger m_fraction;
    int m_digitCount;  // fractional digits m_fraction stands for; 1 for a whole value
};

// ---------------------------------------------------------------------------
// Binary data: the value of hexBinary and base64Binary and the library's byte
// buffer. A handle to a counted, copy-on-write holder.
// ---------------------------------------------------------------------------

class CBinaryData {
public:
    class CDataHolder;

    CBinaryData();
    CBinaryData(CBinaryData const& other);
    explicit CBinaryData(char const* text);
    CBinaryData(unsigned char* data, unsigned long length, bool adopt);
    CBinaryData& operator=(CBinaryData const& other);
    virtual ~CBinaryData();

    void Clear();
    unsigned char const* GetData() const;
    unsigned long GetLength() const;
    unsigned char& operator[](unsigned long index);
    unsigned char const& operator[](unsigned long index) const;
    bool operator==(CBinaryData const& other) const;
    bool operator!=(CBinaryData const& other) const;
    void Append(unsigned char* data, unsigned long length);
    void Append(CBinaryData const& data);
    void Append(char const* text);
    void Append(std::string const& text);
    void Append(char c);
    void Append(unsigned char c);
    void SetBuffer(unsigned char* data, unsigned long length);
    void SetBuffer(char const* text);
    unsigned char* ReleaseData();
    std::string GetAsHexString() const;
    static std::string GetAsHexString(unsigned char* data, unsigned long length);
    void SetAsHexString(char const* text);
    static unsigned long ConvertToHexData(char const* text, unsigned char** out);
    std::string GetAsBase64() const;
    void SetAsBase64(char const* text);

private:
    CDataHolder* m_holder;
};

// ---------------------------------------------------------------------------
// Dates and times: one class for the eight date and time types of XML
// Schema, told apart by a type tag, and the duration. Both print and parse
// by their own code, independent of the process's locale and time zone.
// ---------------------------------------------------------------------------

constexpr short MIN_YEAR = -9999;
constexpr short MAX_YEAR = 9999;
// The longest length of each month (February 29).
extern int const g_monthMax[12];
// The days before each month in a common year; the 13th entry is the year.
extern int const g_monthDayInYear[13];

// Negative years take the same test; there is no shift for the missing year zero.
bool IsLeapYear(int year);

// floor(a / b) in single precision, as the date arithmetic has always
// computed it: inexact beyond about 16.7 million. A quotient outside the
// range of int is pinned to its nearest end.
int GetQuotient(long long a, int b);
// a - b * GetQuotient(a, b), so it always agrees with the quotient.
long long GetModulo(long long a, int b);

class CDateTimeSpan;

class CDateTime {
public:
    enum DTType {
        dt_yearZero = 0,  // not set
        dt_dateTime = 1,
        dt_date = 2,
        dt_gYearMonth = 3,
        dt_gYear = 4,
        dt_time = 5,
        dt_gDay = 6,
        dt_gMonth = 7,
        dt_gMonthDay = 8
    };

    CDateTime();
    explicit CDateTime(DTType type);
    // The value constructors come back unset (dt_yearZero) when the fields
    // are invalid, where the setters throw.
    CDateTime(short year, unsigned char month, unsigned char day);
    CDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
              unsigned char second);
    CDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
              unsigned char second, unsigned short milli, unsigned short micro, unsigned short nano);
    // Seconds of the epoch, as UTC.
    explicit CDateTime(long const& seconds);
    // Parses a dateTime and lets the failure through.
    explicit CDateTime(char const* text);
    CDateTime(CDateTime const&) = default;
    CDateTime& operator=(CDateTime const&) = default;
    virtual ~CDateTime();

    // "dateTime", "date", ...; the empty string for a number above 8.
    static std::string GetTypeAsString(DTType type);
    std::string GetTypeAsString() const { return GetTypeAsString(m_type); }
    static CDateTime GetCurrentTime();

    // Setters throw CKdInvalidStateException when the value already holds
    // another type (Clear first), and CKdInvalidValueException when the
    // fields are invalid; the failed fields then stay stored.
    void SetDateTime(DTType type, short year, unsigned char month, unsigned char day, unsigned char hour,
                     unsigned char minute, unsigned char second, unsigned short milli, unsigned short micro,
                     unsigned short nano);
    void SetDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
                     unsigned char second, unsigned short milli, unsigned short micro, unsigned short nano);
    void SetDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
                     unsigned char second);
    void SetDate(short year, unsigned char month, unsigned char day);
    void SetGYearMonth(short year, unsigned char month);
    void SetGYear(short year);
    void SetGMonth(unsigned char month);
    void SetGDay(unsigned char day);
    void SetGMonthDay(unsigned char month, unsigned char day);
    void SetTime(unsigned char hour, unsigned char minute, unsigned char second, unsigned short milli,
                 unsigned short micro, unsigned short nano);
    void SetTime(unsigned char hour, unsigned char minute, unsigned char second);
    void SetFracTime(unsigned short milli, unsigned short micro, unsigned short nano);
    // Copies source under the type to, when source holds enough for it;
    // fields the new type does not hold keep the source's numbers.
    void SetDateTime(CDateTime const& source, DTType to);
    bool CheckConversion(DTType from, DTType to) const;

    void Clear();
    DTType GetType() const { return m_type; }
    void Validate() const;

    // IsUTC: a zone is present ("Z" or an offset). HasTimeZone: a numeric
    // offset is present, "+00:00" included.
    bool IsUTC() const { return m_utc; }
    bool HasTimeZone() const { return m_hasTimeZone; }
    void SetUTC();
    // The sign of the offset lies in the hour alone.
    void SetTimeZone(short hour, unsigned char minute);
    short GetZoneHour() const;
    unsigned char GetZoneMinute() const;

    // Accessors throw CKdInvalidStateException for a field the type does not hold.
    short GetYear() const;
    unsigned char GetMonth() const;
    unsigned char GetDay() const;
    unsigned char GetHour() const;
    unsigned char GetMinute() const;
    unsigned char GetSecond() const;
    double GetRealSecond() const;
    unsigned short GetMilliSecond() const;
    unsigned short GetMicroSecond() const;
    unsigned short GetNanoSecond() const;
    // In a leap year January and February carry the extra day, so 1 March is
    // day 60 in any year.
    unsigned short GetDayOfYear() const;
    unsigned char GetDayOfWeek() const;

    CDateTime& operator=(long const& seconds);
    // Seconds of the epoch of a dateTime or date, after normalisation to UTC.
    long GetTime() const;

    // Text. ToString() is ToString("s"), the XML form; any unknown format
    // gives "Unknown Format: " and the format.
    std::string ToString(char const* format) const;
    std::string ToString() const { return ToString("s"); }
    // The type comes from the shape of the text.
    void ParseXSDDate(char const* text);
    void ParseXSDTime(char const* text);
    void ParseXSDDateTime(char const* text);
    // The working parsers: they neither clear nor validate.
    void SetXSDDate(char const* text);
    void SetXSDTime(char const* text);
    void SetZone(char const* text);

    // Order: 0 equal, 1 less, 2 greater, 3 indeterminate.
    CDateTime GetNormalized() const;
    int CompareTo(CDateTime const& other) const;
    bool operator==(CDateTime const& other) const { return CompareTo(other) == 0; }
    bool operator!=(CDateTime const& other) const { return CompareTo(other) != 0; }
    bool operator<(CDateTime const& other) const { return CompareTo(other) == 1; }
    bool operator<=(CDateTime const& other) const;
    bool operator>(CDateTime const& other) const { return CompareTo(other) == 2; }
    bool operator>=(CDateTime const& other) const;

    // Arithmetic. The result is not validated: 2004-01-31 plus P1M is 2004-02-31.
    void AddDateTimeSpan(CDateTimeSpan const& span);
    CDateTime& operator+=(CDateTimeSpan const& span);
    CDateTime& operator-=(CDateTimeSpan const& span);
    CDateTime operator+(CDateTimeSpan const& span) const;
    CDateTime operator-(CDateTimeSpan const& span) const;
    // The difference of two dates is not computed: a zero span.
    CDateTimeSpan operator-(CDateTime const& other) const;

private:
    // Formats the XML form into out (at least 64 bytes); returns its length.
    size_t FormatXml(char* out) const;
    void SetXSDDate(char const* text, size_t length);
    void SetXSDTime(char const* text, size_t length);
    void SetZone(char const* text, size_t length);

    DTType m_type;
    short m_year;  // negative: before the common era
    unsigned char m_month;
    unsigned char m_day;
    unsigned char m_hour;
    unsigned char m_minute;
    unsigned char m_second;
    // The fraction of a second as three groups of three digits, 0 to 999 each.
    unsigned short m_milli;
    unsigned short m_micro;
    unsigned short m_nano;
    bool m_utc;          // a zone is present
    bool m_hasTimeZone;  // the zone is a numeric offset
    short m_zoneHour;    // -23 to 23, with the offset's sign
    unsigned char m_zoneMinute;  // 0 to 59, no sign of its own
};

// 0 equal, 1 less, 2 greater, 3 indeterminate, field by field and without
// regard to zones. Months are taken from a for both sides.
int Compare(CDateTime const& a, CDateTime const& b);

// xsd:duration: a sign and separate counts, never normalised into one
// another since a month has no fixed length.
class CDateTimeSpan {
public:
    CDateTimeSpan();
    CDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds);
    CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                  unsigned long long minutes, unsigned long long seconds);
    CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                  unsigned long long minutes, unsigned long long seconds, unsigned short milli,
                  unsigned short micro, unsigned short nano);
    CDateTimeSpan(CDateTimeSpan const&) = default;
    CDateTimeSpan& operator=(CDateTimeSpan const&) = default;
    virtual ~CDateTimeSpan();

    // Each clears first: the span is then positive and the fields left out zero.
    void SetDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds);
    void SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                         unsigned long long minutes, unsigned long long seconds);
    void SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                         unsigned long long minutes, unsigned long long seconds, unsigned short milli,
                         unsigned short micro, unsigned short nano);
    void Clear();

    unsigned short GetYears() const { return m_years; }
    unsigned long GetMonths() const { return m_months; }
    unsigned long GetDays() const { return m_days; }
    unsigned long GetHours() const { return m_hours; }
    unsigned long long GetMinutes() const { return m_minutes; }
    unsigned long long GetSeconds() const { return m_seconds; }
    unsigned short GetMilliSeconds() const { return m_milli; }
    unsigned short GetMicroSeconds() const { return m_micro; }
    unsigned short GetNanoSeconds() const { return m_nano; }
    void SetYears(unsigned short value) { m_years = value; }
    void SetMonths(unsigned long value) { m_months = value; }
    void SetDays(unsigned long value) { m_days = value; }
    void SetHours(unsigned long value) { m_hours = value; }
    void SetMinutes(unsigned long long value) { m_minutes = value; }
    void SetSeconds(unsigned long long value) { m_seconds = value; }
    void SetMilliSeconds(unsigned short value) { m_milli = value; }
    void SetMicroSeconds(unsigned short value) { m_micro = value; }
    void SetNanoSeconds(unsigned short value) { m_nano = value; }

    bool IsNegative() const { return m_negative; }
    void Negate() { m_negative = !m_negative; }
    // A negative copy; the copy of a negative span stays negative.
    CDateTimeSpan GetAsNegative() const;

    // The zero span prints "P", which the parser refuses.
    std::string ToString() const;
    void ParseXSDDuration(char const* text);

    // Ordered by adding both to four reference dates: 0 equal, 1 less,
    // 2 greater, 3 indeterminate.
    int CompareTo(CDateTimeSpan const& other) const;
    bool operator<(CDateTimeSpan const& other) const { return CompareTo(other) == 1; }
    bool operator>(CDateTimeSpan const& other) const { return CompareTo(other) == 2; }
    bool operator==(CDateTimeSpan const& other) const { return CompareTo(other) == 0; }
    bool operator!=(CDateTimeSpan const& other) const { return CompareTo(other) != 0; }

private:
    unsigned short m_years;
    unsigned long m_months;
    unsigned long m_days;
    unsigned long m_hours;
    unsigned long long m_minutes;
    unsigned long long m_seconds;
    unsigned short m_milli;  // the fraction of a second in groups of three digits
    unsigned short m_micro;
    unsigned short m_nano;
    bool m_negative;  // the sign of the whole span
};

// ---------------------------------------------------------------------------
// Byte sinks: an in-memory block, and the same written to a file at the end.
// (Declared here rather than beside the other streams because they hold a
// CBinaryData by value.)
// ---------------------------------------------------------------------------

class CBinaryStream : private CInstanceMonitor {
public:
    CBinaryStream();
    // Starts from the given block, shared until the first append.
    explicit CBinaryStream(CBinaryData& data);
    CBinaryStream(CBinaryStream const&) = delete;
    CBinaryStream& operator=(CBinaryStream const&) = delete;
    ~CBinaryStream() override;

    CBinaryData GetBinaryStream() const { return m_data; }
    void Append(unsigned char c) { m_data.Append(c); }
    void Append(CBinaryData const& data) { m_data.Append(data); }
    void Append(unsigned char* data, unsigned long length) { m_data.Append(data, length); }

protected:
    explicit CBinaryStream(char const* monitorName);
    CBinaryStream(char const* monitorName, CBinaryData& data);

private:
    CBinaryData m_data;
};

class CFileBinaryStream : public CBinaryStream {
public:
    CFileBinaryStream(char const* path, XmlEncoding encoding);
    CFileBinaryStream(char const* path, XmlEncoding encoding, CBinaryData& data);

    // Writes the block to the file, truncating it; UTF-16 encodings start
    // with the byte order mark FF FE. An empty block is a failed write.
    void ToFile();

private:
    std::string m_path;
    XmlEncoding m_encoding;
};

// ---------------------------------------------------------------------------
// Compression: gzip (1) or zlib (2) framing on the way out, recognition and
// expansion of either on the way in. Blocks are new[] arrays; ownership
// passes in and out through data, and the old block is freed on success.
// ---------------------------------------------------------------------------

class CKdZip : private CInstanceMonitor {
public:
    CKdZip() : CInstanceMonitor("CKdZip") {}
    ~CKdZip() override = default;

    // Compresses at level 1 into a buffer no larger than the input: a block
    // that does not shrink fails. Types other than 1 and 2 leave it alone.
    static void Compress(unsigned char** data, unsigned long* size, CompressionType type);
    // The same over a CBinaryData; an empty block stays empty. On failure the
    // block has already left data, which stays empty.
    static void CompressData(CBinaryData& data, CompressionType type);
    // Replaces the block by its expansion when it is a complete gzip or zlib
    // stream; anything else (plain text, Fast Infoset, truncated or corrupt
    // streams) is left as it is, with no failure. An expansion that would
    // pass GetMaxExpandedSize is refused with CKdException instead, so that
    // a small hostile block cannot claim unbounded memory.
    static void Decompress(unsigned char** data, unsigned long* size);

    // The largest expansion Decompress accepts, 1 GiB unless set otherwise.
    // Process-wide, like the other switches: set it before work starts.
    static void SetMaxExpandedSize(unsigned long bytes);
    static unsigned long GetMaxExpandedSize();
};

// ---------------------------------------------------------------------------
// The tagged value: one ItemType tag and one word of payload. It is how
// values cross between the engine and generated code.
// ---------------------------------------------------------------------------

class KdVariant {
public:
    KdVariant();
    KdVariant(KdVariant const& other);
    // No self-assignment guard: assigning a variant to itself empties it.
    KdVariant& operator=(KdVariant const& other);
    virtual ~KdVariant();

    void Clear();
    bool IsValid() const { return m_type != ItemType_invalid; }
    void SetInvalid() { Clear(); }
    // The tag as stored (the enumerator, not the name text).
    ItemType GetItemType() const { return m_type; }
    // The name text of the tag ("i4", "string", ...).
    std::string GetType() const;

    std::string ToString(char const* format = nullptr) const;
    void FromString(std::string const& value, ItemType type,
                    CWhitespaceUtils::WhitespaceRule rule = CWhitespaceUtils::WhitespaceRule_None);

    void SetHexBinary(CBinaryData const& value);
    void SetBase64Binary(CBinaryData const& value);
    void SetI1(char value);
    void SetI2(short value);
    void SetI4(long value);
    void SetI8(long long value);
    void SetUI1(unsigned char value);
    void SetUI2(unsigned short value);
    void SetUI4(unsigned long value);
    void SetUI8(unsigned long long value);
    void SetR4(float value);
    void SetR8(double value);
    void SetDuration(CDateTimeSpan const& value);
    void SetYearMonth(CDateTime const& value);
    void SetMonthDay(CDateTime const& value);
    void SetYear(unsigned short value);
    void SetMonth(unsigned char value);
    void SetDay(unsigned char value);
    void SetDate(CDateTime const& value);
    void SetDateTime(CDateTime const& value);
    void SetTime(CDateTime const& value);
    void SetChar(char value);
    void SetString(std::string value);
    void SetBoolean(bool value);
    void SetDecimal(CDecimal const& value);
    void SetInteger(CBigInteger const& value);
    void SetXmlObject(CXmlObjectBase* value);
    void SetXmlCollection(CXmlCollectionBase* value);

    // Getters of inline kinds check nothing: asking for another kind than the
    // tag reads the payload word as that kind. Callers test the tag or know
    // what they stored. Getters of owned and counted kinds give an empty value
    // under another tag rather than follow a word that is no pointer.
    CBinaryData GetHexBinary() const;
    CBinaryData GetBase64Binary() const;
    char GetI1() const { return m_value.i1; }
    short GetI2() const { return m_value.i2; }
    long GetI4() const { return m_value.i4; }
    long long GetI8() const { return m_value.i8; }
    unsigned char GetUI1() const { return m_value.ui1; }
    unsigned short GetUI2() const { return m_value.ui2; }
    unsigned long GetUI4() const { return m_value.ui4; }
    unsigned long long GetUI8() const { return m_value.ui8; }
    float GetR4() const { return m_value.r4; }
    double GetR8() const { return m_value.r8; }
    CDateTimeSpan GetDuration() const;
    CDateTime GetYearMonth() const;
    CDateTime GetMonthDay() const;
    unsigned short GetYear() const { return m_value.ui2; }
    unsigned char GetMonth() const { return m_value.ui1; }
    unsigned char GetDay() const { return m_value.ui1; }
    CDateTime GetDate() const;
    CDateTime GetDateTime() const;
    CDateTime GetTime() const;
    char GetChar() const { return m_value.i1; }
    std::string GetString() const
    {
        return m_type == ItemType_string && m_value.string ? *m_value.string : std::string();
    }
    // The text ToString would give: a string payload in place, any other kind
    // printed into scratch. Valid while the variant and scratch are unchanged.
    std::string const& TextOf(char const* format, std::string& scratch) const
    {
        if (m_type == ItemType_string && m_value.string)
            return *m_value.string;
        return scratch = ToString(format);
    }
    bool GetBoolean() const { return m_value.boolean; }
    CDecimal GetDecimal() const;
    CBigInteger GetInteger() const;
    CSmartPtr<CXmlObjectBase> GetXmlObject() const;
    CSmartPtr<CXmlCollectionBase> GetXmlCollection() const;

private:
    union Payload {
        char i1;
        short i2;
        long i4;
        long long i8;
        unsigned char ui1;
        unsigned short ui2;
        unsigned long ui4;
        unsigned long long ui8;
        float r4;
        double r8;
        bool boolean;
        std::string* string;
        CBinaryData* binary;
        CDateTime* dateTime;
        CDateTimeSpan* duration;
        CDecimal* decimal;
        CBigInteger* integer;
        CXmlObjectBase* object;
        CXmlCollectionBase* collection;
        void* pointer;
    };

    // Clears, then stores a tag with a zeroed payload; setters fill it in.
    Payload& Reset(ItemType type);

    ItemType m_type;
    Payload m_value;
};

} // namespace KdBind

// ---------------------------------------------------------------------------
// The base64 codec (RFC 4648 alphabet, no line breaks).
// ---------------------------------------------------------------------------

class CBase64 {
public:
    CBase64();
    virtual ~CBase64();

    // Null data or a length of 0 gives the empty text. The output is padded
    // with "=" to a multiple of four, except that a single byte encodes as two
    // characters, one "=" and a NUL.
    std::string Encode(unsigned char* data, int length);
    // Writes the bytes of text to out, which must hold strlen(text) + 1 bytes
    // (all of them are zeroed first), and returns their number. Blanks, tabs,
    // line ends and "=" are skipped wherever they stand; any other character
    // outside the alphabet makes the result 0. Only the low 7 bits of each
    // character count.
    int Decode(char const* text, unsigned char* out);

    // Takes bits (1 to 8) from the input of the running Encode, high bits
    // first; got tells how many were there. A short last group is filled with
    // zero bits.
    unsigned int Read(int bits, int* got, int& position);
    // Adds bits of value to the accumulator and stores each full byte at
    // out[position++].
    void Write(unsigned int value, int bits, unsigned char* out, int& position);

    // The low-bit mask for a count of bits.
    static constexpr int m_nMask[9] = {0, 1, 3, 7, 15, 31, 63, 127, 255};
    static constexpr char m_sBase64Alphabet[65] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

private:
    int m_inputLength = 0;
    int m_bitCount = 0;
    unsigned long m_accumulator = 0;
    unsigned char* m_input = nullptr;
};

#endif
