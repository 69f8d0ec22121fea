// Lexical forms of the scalar kinds: integers, reals, boolean, char, string.
//
// Locale: XML's lexical forms do not depend on the reader's or writer's
// locale, so neither do these. Integers and reals in their default format
// are printed by std::to_chars, which never consults the locale. A caller's
// own r4/r8 format, and every parse, run inside a ClassicLocaleScope, which
// switches the calling thread to the "C" locale for the one call: a point is
// the decimal separator and only ASCII white space is skipped even when the
// application has set, say, LC_NUMERIC=de_DE. Under the "C" locale every
// result is the one snprintf and the strto* family would give.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include <locale.h>
#include <strings.h>

#include "kdbind/values.h"

namespace KdBind {

namespace {

typedef CWhitespaceUtils::WhitespaceRule WhitespaceRule;

// The "C" locale object, made once. glibc hands back its static "C" object
// here; should a system fail to make one, uselocale(0) changes nothing and
// the conversions run in the thread's current locale.
locale_t ClassicLocale()
{
    static locale_t const classic = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return classic;
}

// Switches the calling thread, and only it, to the "C" locale for the life
// of the scope. uselocale swaps a thread-local pointer: no lookup, no lock.
class ClassicLocaleScope {
public:
    ClassicLocaleScope() : m_previous(uselocale(ClassicLocale())) {}
    ~ClassicLocaleScope() { uselocale(m_previous); }
    ClassicLocaleScope(ClassicLocaleScope const&) = delete;
    ClassicLocaleScope& operator=(ClassicLocaleScope const&) = delete;

private:
    locale_t m_previous;
};

// Whether the rule would hand the text back unchanged. A text without any
// white space is left as it is by every rule, and that is the common case
// for numbers; an unknown rule is left to ApplyRule to report.
bool RuleKeepsText(WhitespaceRule rule, std::string const& text)
{
    switch (rule) {
    case CWhitespaceUtils::WhitespaceRule_None:
        return true;
    case CWhitespaceUtils::WhitespaceRule_Preserve:
    case CWhitespaceUtils::WhitespaceRule_Replace:
    case CWhitespaceUtils::WhitespaceRule_Collapse:
        return std::none_of(text.begin(), text.end(), &CWhitespaceUtils::IsWhiteSpace);
    }
    return false;
}

// The text after the rule, as the parsers read it: the caller's own string
// when the rule changes nothing, else the ruled copy kept in `scratch`.
char const* RuledText(std::string const& text, WhitespaceRule rule, std::string& scratch)
{
    if (RuleKeepsText(rule, text))
        return text.c_str();
    scratch = CWhitespaceUtils::ApplyRule(rule, text);
    return scratch.c_str();
}

template <class Integer>
std::string DecimalText(Integer value)
{
    char buffer[24];  // the 20 digits of 2^64 and a sign
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

// ---------------------------------------------------------------------------
// Integers. The four wide kinds share one parser; the narrow ones parse as
// their wide kind and then test the range.
// ---------------------------------------------------------------------------

template <class Integer>
struct WideIntegerForm {
    Integer (*parse)(char const* text, char** end, int base);
    char const* tooLarge;
    char const* notConvertible;
};

WideIntegerForm<long> const kI4Form = {
    &strtol, "The value [%s] is to large to fit in a i4", "The value [%s] can not be converted to a i4"};
WideIntegerForm<long long> const kI8Form = {
    &strtoll, "The value [%s] is to large to fit in a i8", "The value [%s] can not be converted to a i8"};
WideIntegerForm<unsigned long> const kUI4Form = {
    &strtoul, "The value [%s] is to large to fit in a ui4", "The value [%s] can not be converted to a ui4"};
WideIntegerForm<unsigned long long> const kUI8Form = {
    &strtoull, "The value [%s] is to large to fit in a ui8", "The value [%s] can not be converted to a ui8"};

// Only overflow and trailing text are refused. The library call's own
// leniency stays: leading white space, a "+" sign, a "-" on the unsigned
// kinds (wrapping to the top of the range), and the empty text as zero.
template <class Integer>
Integer ParseWideInteger(WideIntegerForm<Integer> const& form, std::string const& text, WhitespaceRule rule)
{
    std::string scratch;
    char const* const ruled = RuledText(text, rule, scratch);
    ClassicLocaleScope classic;
    errno = 0;
    char* end = nullptr;
    Integer const value = form.parse(ruled, &end, 10);
    if (errno == ERANGE)
        throw CKdInvalidValueException(FormatString(form.tooLarge, ruled));
    if (*end != '\0')
        throw CKdInvalidValueException(FormatString(form.notConvertible, ruled));
    return value;
}

// The range failure shows the text as the caller passed it, before the rule,
// unlike the failures of the wide parse, which show it after.
template <class Narrow, class Wide>
Narrow NarrowInteger(Wide value, std::string const& callerText, char const* tooLarge)
{
    // In range exactly when the value survives the round trip.
    if (static_cast<Wide>(static_cast<Narrow>(value)) != value)
        throw CKdInvalidValueException(FormatString(tooLarge, callerText.c_str()));
    return static_cast<Narrow>(value);
}

// ---------------------------------------------------------------------------
// Reals.
// ---------------------------------------------------------------------------

struct RealForm {
    int defaultPrecision;       // of the default format, "%.<precision>g"
    char const* defaultFormat;
    char const* notConvertible;
};

RealForm const kR4Form = {7, "%.7g", "The value [%s] can not be converted to a r4"};
RealForm const kR8Form = {16, "%.16g", "The value [%s] can not be converted to a r8"};

// "%.<precision>g" of a double by exact integer arithmetic, for the common
// range where value * 10^k fits 128 bits: magnitudes of about 1e-4 to 2^64.
// Writes at most 24 characters and answers their count, or 0 for a value it
// leaves to the general printer. Ties round to even, as printf does.
size_t PrintGeneralExactly(double value, int precision, char* out)
{
    static std::uint64_t const kPowers10[20] = {1ULL,
                                                10ULL,
                                                100ULL,
                                                1000ULL,
                                                10000ULL,
                                                100000ULL,
                                                1000000ULL,
                                                10000000ULL,
                                                100000000ULL,
                                                1000000000ULL,
                                                10000000000ULL,
                                                100000000000ULL,
                                                1000000000000ULL,
                                                10000000000000ULL,
                                                100000000000000ULL,
                                                1000000000000000ULL,
                                                10000000000000000ULL,
                                                100000000000000000ULL,
                                                1000000000000000000ULL,
                                                10000000000000000000ULL};
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    int const biased = static_cast<int>((bits >> 52) & 0x7ff);
    if (biased == 0 || biased == 0x7ff || precision < 1 || precision > 17)
        return 0;
    if ((bits >> 63) != 0) {
        *out = '-';
        size_t const length = PrintGeneralExactly(-value, precision, out + 1);
        return length ? length + 1 : 0;
    }
    std::uint64_t const mantissa = (bits & ((std::uint64_t(1) << 52) - 1)) | (std::uint64_t(1) << 52);
    int const binaryExponent = biased - 1075;  // value = mantissa * 2^binaryExponent
    if (binaryExponent > 11 || binaryExponent < -116)
        return 0;
    typedef unsigned __int128 Wide;
    // value * 10^k rounded to an integer; false when that leaves 64 bits or
    // needs a division this does not do.
    auto scaled = [&](int k, std::uint64_t& result) {
        if (k > 19 || k < -19)
            return false;
        if (binaryExponent >= 0) {
            std::uint64_t const whole = mantissa << binaryExponent;  // below 2^64
            if (k >= 0) {
                Wide const product = Wide(whole) * kPowers10[k];
                if (product >> 64)
                    return false;
                result = static_cast<std::uint64_t>(product);
                return true;
            }
            std::uint64_t const divisor = kPowers10[-k];
            std::uint64_t quotient = whole / divisor;
            std::uint64_t const rest = whole % divisor;
            if (rest > divisor - rest || (rest == divisor - rest && (quotient & 1) != 0))
                ++quotient;
            result = quotient;
            return true;
        }
        if (k < 0)
            return false;
        int const shift = -binaryExponent;
        Wide const product = Wide(mantissa) * kPowers10[k];
        Wide quotient = product >> shift;
        Wide const rest = product & ((Wide(1) << shift) - 1);
        Wide const half = Wide(1) << (shift - 1);
        if (rest > half || (rest == half && (quotient & 1) != 0))
            ++quotient;
        if (quotient >> 64)
            return false;
        result = static_cast<std::uint64_t>(quotient);
        return true;
    };
    std::uint64_t const low = kPowers10[precision - 1];
    std::uint64_t const high = low * 10;
    // floor(log10(2^(binaryExponent + 52))): the exponent or one below it.
    int decimalExponent = ((binaryExponent + 52) * 78913) >> 18;
    std::uint64_t digits = 0;
    for (int attempt = 0;; ++attempt) {
        int const k = precision - 1 - decimalExponent;
        if (attempt == 3 || !scaled(k, digits))
            return 0;
        if (digits >= high) {
            if (digits == high) {  // rounded up to the next power of ten
                digits = low;
                ++decimalExponent;
                break;
            }
            ++decimalExponent;
        } else if (digits < low) {
            --decimalExponent;
        } else {
            // Exactly the lowest digits may have been rounded up from the
            // decade below; they stand only if that decade rounds up to here.
            if (digits == low) {
                std::uint64_t below;
                if (!scaled(k + 1, below))
                    return 0;
                if (below < high) {
                    digits = below;
                    --decimalExponent;
                }
            }
            break;
        }
    }
    char text[20];
    for (int i = precision - 1; i >= 0; --i) {
        text[i] = static_cast<char>('0' + digits % 10);
        digits /= 10;
    }
    int significant = precision;  // without the trailing zeros %g drops
    while (significant > 1 && text[significant - 1] == '0')
        --significant;
    char* p = out;
    if (decimalExponent >= -4 && decimalExponent < precision) {
        if (decimalExponent >= 0) {
            int const whole = decimalExponent + 1;
            std::memcpy(p, text, static_cast<size_t>(whole));
            p += whole;
            if (significant > whole) {
                *p++ = '.';
                std::memcpy(p, text + whole, static_cast<size_t>(significant - whole));
                p += significant - whole;
            }
        } else {
            *p++ = '0';
            *p++ = '.';
            for (int i = -1; i > decimalExponent; --i)
                *p++ = '0';
            std::memcpy(p, text, static_cast<size_t>(significant));
            p += significant;
        }
    } else {
        *p++ = text[0];
        if (significant > 1) {
            *p++ = '.';
            std::memcpy(p, text + 1, static_cast<size_t>(significant - 1));
            p += significant - 1;
        }
        *p++ = 'e';
        *p++ = decimalExponent < 0 ? '-' : '+';
        int const magnitude = decimalExponent < 0 ? -decimalExponent : decimalExponent;
        *p++ = static_cast<char>('0' + magnitude / 10);
        *p++ = static_cast<char>('0' + magnitude % 10);
    }
    return static_cast<size_t>(p - out);
}

// A caller's format for a real: any text, "%%" included, around exactly one
// conversion of a double (flags, a width and a precision in digits, then one
// of e E f F g G a A). Anything else would make snprintf read an argument it
// is not given, or of another type.
bool IsRealFormat(char const* format)
{
    int conversions = 0;
    for (char const* p = format; *p; ++p) {
        if (*p != '%')
            continue;
        if (*++p == '%')
            continue;
        p += strspn(p, "-+ #0");
        p += strspn(p, "0123456789");
        if (*p == '.')
            p += 1 + strspn(p + 1, "0123456789");
        if (*p == 'l')  // "%lf" is "%f"
            ++p;
        if (!*p || !strchr("eEfFgGaA", *p))
            return false;
        ++conversions;
    }
    return conversions == 1;
}

// A text longer than the buffer is cut off, as the library always has.
template <class Real, size_t BufferSize>
std::string RealText(RealForm const& form, Real value, char const* format)
{
    if (std::isnan(value))
        return "NaN";
    if (value < -std::numeric_limits<Real>::max())
        return "-INF";
    if (value > std::numeric_limits<Real>::max())
        return "INF";
    char buffer[BufferSize];
    double const widened = value;
    if (format == nullptr) {
        // Most values print faster by integer arithmetic than by to_chars.
        if (size_t const length = PrintGeneralExactly(widened, form.defaultPrecision, buffer))
            return std::string(buffer, length);
        // The same text as the default format in the "C" locale, without
        // parsing a format; it always fits.
        std::to_chars_result const printed = std::to_chars(
            buffer, buffer + BufferSize - 1, widened, std::chars_format::general, form.defaultPrecision);
        if (printed.ec == std::errc())
            return std::string(buffer, printed.ptr);
        format = form.defaultFormat;
    } else if (!IsRealFormat(format)) {
        throw CKdInvalidParamException(FormatString("Invalid format [%s] for a real value", format));
    }
    ClassicLocaleScope classic;
    buffer[0] = '\0';
    snprintf(buffer, BufferSize, format, widened);
    return buffer;
}

struct RealLiteral {
    char const* text;
    double value;
};

// Compared exactly, case included, before the library parse. The three
// spellings of NaN are all accepted on purpose.
RealLiteral const kRealLiterals[] = {
    {"NaN", std::numeric_limits<double>::quiet_NaN()},
    {"1.#QNAN", std::numeric_limits<double>::quiet_NaN()},
    {"-NAN", std::numeric_limits<double>::quiet_NaN()},
    {"-INF", -std::numeric_limits<double>::infinity()},
    {"INF", std::numeric_limits<double>::infinity()},
};

// No overflow test: strtod's infinities, zeros and denormals stand, and so
// do its own spellings ("inf", "nan", hexadecimal floats).
double ParseReal(RealForm const& form, std::string const& text, WhitespaceRule rule)
{
    std::string scratch;
    char const* const ruled = RuledText(text, rule, scratch);
    if (*ruled == '\0')
        return std::numeric_limits<double>::quiet_NaN();  // absent, not an error
    for (RealLiteral const& literal : kRealLiterals) {
        if (strcmp(ruled, literal.text) == 0)
            return literal.value;
    }
    ClassicLocaleScope classic;
    char* end = nullptr;
    double const value = strtod(ruled, &end);
    if (*end != '\0')
        throw CKdInvalidValueException(FormatString(form.notConvertible, ruled));
    return value;
}

} // namespace

// i1 and i2 print their sign-extended value; i4 and ui4 only the low 32 bits
// of their long, so a value beyond 32 bits prints wrapped.
std::string CConversions::i1ToString(char value) { return DecimalText(static_cast<int>(static_cast<signed char>(value))); }
std::string CConversions::i2ToString(short value) { return DecimalText(static_cast<int>(value)); }
std::string CConversions::i4ToString(long value) { return DecimalText(static_cast<std::int32_t>(value)); }
std::string CConversions::i8ToString(long long value) { return DecimalText(value); }
std::string CConversions::ui1ToString(unsigned char value) { return DecimalText(static_cast<unsigned>(value)); }
std::string CConversions::ui2ToString(unsigned short value) { return DecimalText(static_cast<unsigned>(value)); }
std::string CConversions::ui4ToString(unsigned long value) { return DecimalText(static_cast<std::uint32_t>(value)); }
std::string CConversions::ui8ToString(unsigned long long value) { return DecimalText(value); }

long CConversions::i4FromString(std::string const& text, WhitespaceRule rule) { return ParseWideInteger(kI4Form, text, rule); }
long long CConversions::i8FromString(std::string const& text, WhitespaceRule rule) { return ParseWideInteger(kI8Form, text, rule); }
unsigned long CConversions::ui4FromString(std::string const& text, WhitespaceRule rule) { return ParseWideInteger(kUI4Form, text, rule); }
unsigned long long CConversions::ui8FromString(std::string const& text, WhitespaceRule rule) { return ParseWideInteger(kUI8Form, text, rule); }

char CConversions::i1FromString(std::string const& text, WhitespaceRule rule)
{
    return NarrowInteger<signed char>(i4FromString(text, rule), text, "The value [%s] is to large to fit in a i1");
}

short CConversions::i2FromString(std::string const& text, WhitespaceRule rule)
{
    return NarrowInteger<short>(i4FromString(text, rule), text, "The value [%s] is to large to fit in a i2");
}

unsigned char CConversions::ui1FromString(std::string const& text, WhitespaceRule rule)
{
    return NarrowInteger<unsigned char>(ui4FromString(text, rule), text, "The value [%s] is to large to fit in a ui1");
}

unsigned short CConversions::ui2FromString(std::string const& text, WhitespaceRule rule)
{
    return NarrowInteger<unsigned short>(ui4FromString(text, rule), text, "The value [%s] is to large to fit in a ui2");
}

std::string CConversions::r4ToString(float value, char const* format) { return RealText<float, 32>(kR4Form, value, format); }
std::string CConversions::r8ToString(double value, char const* format) { return RealText<double, 48>(kR8Form, value, format); }

// A double beyond the range of float narrows to an infinity.
float CConversions::r4FromString(std::string const& text, WhitespaceRule rule) { return static_cast<float>(ParseReal(kR4Form, text, rule)); }
double CConversions::r8FromString(std::string const& text, WhitespaceRule rule) { return ParseReal(kR8Form, text, rule); }

std::string CConversions::booleanToString(bool value) { return value ? "true" : "false"; }

// strcasecmp needs no locale switch: no locale folds any other byte to the
// letters of "true" and "false".
bool CConversions::booleanFromString(std::string const& text, WhitespaceRule rule)
{
    static struct {
        char const* text;
        bool value;
    } const spellings[] = {{"true", true}, {"1", true}, {"false", false}, {"0", false}};
    std::string scratch;
    char const* const ruled = RuledText(text, rule, scratch);
    for (auto const& spelling : spellings) {
        if (strcasecmp(ruled, spelling.text) == 0)
            return spelling.value;
    }
    throw CKdInvalidValueException(FormatString(
        "A Boolean Value read from an XML document was invalid [%s]. Valid values are 'true', 'false', '1', or '0'",
        text.c_str()));
}

// A NUL character has no text of its own.
std::string CConversions::charToString(char value) { return value == '\0' ? std::string() : std::string(1, value); }

char CConversions::charFromString(std::string const& text, WhitespaceRule rule)
{
    std::string const ruled = CWhitespaceUtils::ApplyRule(rule, text);
    if (ruled.size() != 1)
        throw CKdInvalidValueException(FormatString(
            "The value [%s] can not be a char as it is either empty of greater than 1 char long", ruled.c_str()));
    return ruled[0];
}

std::string CConversions::stringToString(std::string const& value) { return value; }

std::string CConversions::stringFromString(std::string const& text, WhitespaceRule rule)
{
    return CWhitespaceUtils::ApplyRule(rule, text);
}

} // namespace KdBind
