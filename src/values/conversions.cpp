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
        // The same text as the default format in the "C" locale, without
        // parsing a format; it always fits.
        std::to_chars_result const printed = std::to_chars(
            buffer, buffer + BufferSize - 1, widened, std::chars_format::general, form.defaultPrecision);
        if (printed.ec == std::errc())
            return std::string(buffer, printed.ptr);
        format = form.defaultFormat;
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
