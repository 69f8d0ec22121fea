// The whitespace rules, the lexical conversions of the scalar kinds and the
// fraction helpers.
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include <locale.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

// Each row of a parse table is a text, a whitespace rule, and either the
// value it must give or the message of the failure it must raise.
using Rule = CWhitespaceUtils::WhitespaceRule;
constexpr Rule kNone = CWhitespaceUtils::WhitespaceRule_None;
constexpr Rule kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr Rule kReplace = CWhitespaceUtils::WhitespaceRule_Replace;
constexpr Rule kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

template <class T>
struct ParseCase {
    std::string text;
    Rule rule;
    T expected;           // when no failure is expected
    char const* failure;  // the expected message, or null
};

// NaN matches NaN; a zero must keep its sign.
bool SameValue(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}
bool SameValue(float a, float b) { return SameValue(static_cast<double>(a), static_cast<double>(b)); }
template <class T>
bool SameValue(T a, T b) { return a == b; }

template <class T, class Failure = CKdInvalidValueException, class Parse>
void ExpectParses(Parse parse, std::vector<ParseCase<T>> const& cases)
{
    for (ParseCase<T> const& c : cases) {
        SCOPED_TRACE("text [" + c.text + "], rule " + std::to_string(static_cast<int>(c.rule)));
        if (c.failure) {
            EXPECT_EQ(FailureOf<Failure>([&] { parse(c.text, c.rule); }), c.failure);
        } else {
            T const value = parse(c.text, c.rule);
            EXPECT_TRUE(SameValue(value, c.expected)) << "got " << +value << ", expected " << +c.expected;
        }
    }
}

double const kNaN = std::numeric_limits<double>::quiet_NaN();
double const kInf = std::numeric_limits<double>::infinity();
typedef CConversions C;

} // namespace

TEST(ConversionsTest, IntegersRefuseOnlyOverflowTrailingTextAndTheNarrowRange)
{
    ExpectParses<long>(&C::i4FromString, {
        {"", kNone, 0, nullptr},
        {" 12", kPreserve, 12, nullptr},  // the library call skips leading white space
        {"12 ", kPreserve, 0, "The value [12 ] can not be converted to a i4"},
        {" 12x ", kCollapse, 0, "The value [12x] can not be converted to a i4"},
        {"4294967296", kNone, 4294967296L, nullptr},  // no 32-bit test
        {"9223372036854775808", kNone, 0, "The value [9223372036854775808] is to large to fit in a i4"},
    });
    ExpectParses<long long>(&C::i8FromString, {
        {"-9223372036854775809", kNone, 0, "The value [-9223372036854775809] is to large to fit in a i8"},
        {"1.5", kNone, 0, "The value [1.5] can not be converted to a i8"},
    });
    ExpectParses<unsigned long>(&C::ui4FromString, {
        {"-1", kNone, ULONG_MAX, nullptr},
        {"18446744073709551616", kNone, 0, "The value [18446744073709551616] is to large to fit in a ui4"},
    });
    ExpectParses<unsigned long long>(&C::ui8FromString, {
        {"-1", kNone, ULLONG_MAX, nullptr},
        {"18446744073709551616", kNone, 0, "The value [18446744073709551616] is to large to fit in a ui8"},
        {"0x10", kNone, 0, "The value [0x10] can not be converted to a ui8"},  // base 10 only
    });
    // The narrow kinds parse as their wide kind, whose failures pass through,
    // then test the range, whose failure shows the text before the rule.
    ExpectParses<char>(&C::i1FromString, {
        {"-128", kNone, -128, nullptr},
        {"128", kNone, 0, "The value [128] is to large to fit in a i1"},
    });
    ExpectParses<short>(&C::i2FromString, {
        {"-32768", kNone, -32768, nullptr},
        {" 40000 ", kCollapse, 0, "The value [ 40000 ] is to large to fit in a i2"},
        {"abc", kNone, 0, "The value [abc] can not be converted to a i4"},
        {"99999999999999999999", kNone, 0, "The value [99999999999999999999] is to large to fit in a i4"},
    });
    ExpectParses<unsigned char>(&C::ui1FromString, {
        {"255", kNone, 255, nullptr},
        {"-1", kNone, 0, "The value [-1] is to large to fit in a ui1"},
        {"x", kNone, 0, "The value [x] can not be converted to a ui4"},
    });
    ExpectParses<unsigned short>(&C::ui2FromString, {
        {"65535", kNone, 65535, nullptr},
        {"65536", kNone, 0, "The value [65536] is to large to fit in a ui2"},
    });
}

TEST(ConversionsTest, IntegersPrintInDecimalAndI4AndUI4OnlyTheirLow32Bits)
{
    EXPECT_EQ(C::i1ToString(static_cast<char>(-128)), "-128");
    EXPECT_EQ(C::i4ToString(4294967296L), "0");
    EXPECT_EQ(C::i4ToString(2147483648L), "-2147483648");
    EXPECT_EQ(C::i8ToString(LLONG_MIN), "-9223372036854775808");
    EXPECT_EQ(C::ui4ToString(4294967296UL + 5), "5");
    EXPECT_EQ(C::ui8ToString(ULLONG_MAX), "18446744073709551615");
}

TEST(ConversionsTest, RealsPrintTheirSpecialValuesWithoutTheFormat)
{
    EXPECT_EQ(C::r4ToString(std::numeric_limits<float>::quiet_NaN(), "%.1f"), "NaN");
    EXPECT_EQ(C::r4ToString(std::numeric_limits<float>::infinity(), "%.1f"), "INF");
    EXPECT_EQ(C::r8ToString(-kInf, "%.1f"), "-INF");
    EXPECT_EQ(C::r8ToString(1.0), "1");
    EXPECT_EQ(C::r8ToString(-0.0), "-0");
    // Longer results are cut to the buffer: 31 characters for r4, 47 for r8.
    EXPECT_EQ(C::r4ToString(1.0f, "%.40f"), "1." + std::string(29, '0'));
    EXPECT_EQ(C::r8ToString(1.0, "%.60f"), "1." + std::string(45, '0'));
}

// The default forms are printed without snprintf; they must match it.
TEST(ConversionsTest, DefaultRealFormsMatchThePrintfFormats)
{
    std::mt19937_64 random(20040506);
    char expected[64];
    for (int i = 0; i < 20000; ++i) {
        std::uint64_t const bits = random();
        double r8;
        std::memcpy(&r8, &bits, sizeof r8);
        float r4;
        std::uint32_t const bits32 = static_cast<std::uint32_t>(bits);
        std::memcpy(&r4, &bits32, sizeof r4);
        if (std::isfinite(r8)) {
            snprintf(expected, sizeof expected, "%.16g", r8);
            ASSERT_EQ(C::r8ToString(r8), expected);
        }
        if (std::isfinite(r4)) {
            snprintf(expected, sizeof expected, "%.7g", static_cast<double>(r4));
            ASSERT_EQ(C::r4ToString(r4), expected);
        }
    }    // Random bits seldom give the everyday magnitudes, which take another
    // path: amounts in cents, integers past the precision, ties of the last
    // digit, powers of ten and their neighbours, and small fractions.
    std::vector<double> everyday = {0.5, 2.5, 1e-4, 9.99999999999999999e-5, 1e15, 1e16, 1e17, 1e19,
                                    12345678901234565.0, 1234567.5, 0.1 + 0.2, 9.3, 9999999999999999.0};
    for (int i = 0; i < 100000; ++i) {
        std::uint64_t const bits = random();
        int const kind = static_cast<int>(bits % 5);
        double const sign = (bits & 0x100) ? -1.0 : 1.0;
        if (kind == 0)
            everyday.push_back(sign * static_cast<double>(bits >> 20) / 100.0);
        else if (kind == 1)
            everyday.push_back(sign * static_cast<double>(bits >> (bits % 40)));
        else if (kind == 2)
            everyday.push_back(sign * static_cast<double>((bits >> 12) % 1000000) / (1 << (bits % 30)));
        else if (kind == 3)
            everyday.push_back(sign * std::ldexp(static_cast<double>(bits >> 11), -static_cast<int>(bits % 130)));
        else
            everyday.push_back(std::nextafter(std::pow(10.0, static_cast<int>(bits % 40) - 20), (bits & 1) ? 0.0 : 1e30));
    }
    for (double const r8 : everyday) {
        snprintf(expected, sizeof expected, "%.16g", r8);
        ASSERT_EQ(C::r8ToString(r8), expected) << r8;
        float const r4 = static_cast<float>(r8);
        snprintf(expected, sizeof expected, "%.7g", static_cast<double>(r4));
        ASSERT_EQ(C::r4ToString(r4), expected) << r4;
    }
}

TEST(ConversionsTest, RealsReadTheirLiteralsThenTheLibraryForms)
{
    ExpectParses<double>(&C::r8FromString, {
        {"", kNone, kNaN, nullptr},  // absent, not an error
        {"NaN", kNone, kNaN, nullptr},
        {"1.#QNAN", kNone, kNaN, nullptr},
        {"-NAN", kNone, kNaN, nullptr},
        {"INF", kNone, kInf, nullptr},
        {" -INF ", kCollapse, -kInf, nullptr},
        {"inf", kNone, kInf, nullptr},  // the library's own spellings
        {"-0", kNone, -0.0, nullptr},
        {"1e400", kNone, kInf, nullptr},  // no overflow test
        {"1.5 ", kPreserve, 0, "The value [1.5 ] can not be converted to a r8"},
        {"1.#INF", kNone, 0, "The value [1.#INF] can not be converted to a r8"},
    });
    ExpectParses<float>(&C::r4FromString, {
        {"", kNone, std::numeric_limits<float>::quiet_NaN(), nullptr},
        {"0.1", kNone, 0.1f, nullptr},
        {"1e39", kNone, std::numeric_limits<float>::infinity(), nullptr},  // narrows to an infinity
        {"1.#INF", kNone, 0, "The value [1.#INF] can not be converted to a r4"},
    });
}

// Under a locale with a decimal comma, XML text keeps its point both ways,
// and the thread's locale is left as it was.
TEST(ConversionsTest, RealsIgnoreTheNumericLocale)
{
    locale_t const comma = newlocale(LC_ALL_MASK, "de_DE.UTF-8", static_cast<locale_t>(0));
    if (comma == static_cast<locale_t>(0))
        GTEST_SKIP() << "the de_DE.UTF-8 locale is not installed";
    locale_t const previous = uselocale(comma);
    char probe[16];
    snprintf(probe, sizeof probe, "%.1f", 1.5);
    std::string const localText = probe;
    std::string const printed = C::r8ToString(1.5);
    std::string const formatted = C::r4ToString(1.5f, "%.2f");
    double const parsed = C::r8FromString("1.5", kNone);
    std::string const refused = FailureOf<CKdInvalidValueException>([] { C::r8FromString("1,5", kNone); });
    bool const localeKept = uselocale(static_cast<locale_t>(0)) == comma;
    uselocale(previous);
    freelocale(comma);

    EXPECT_EQ(localText, "1,5");  // the locale is really in force
    EXPECT_EQ(printed, "1.5");
    EXPECT_EQ(formatted, "1.50");
    EXPECT_EQ(parsed, 1.5);
    EXPECT_EQ(refused, "The value [1,5] can not be converted to a r8");
    EXPECT_TRUE(localeKept);
}

// Boolean failures show the caller's text, before the rule; char failures
// the text after it.
TEST(ConversionsTest, BooleanAndChar)
{
    std::string const invalid = "A Boolean Value read from an XML document was invalid [";
    std::string const valid = "]. Valid values are 'true', 'false', '1', or '0'";
    ExpectParses<bool>(&C::booleanFromString, {
        {"1", kNone, true, nullptr},
        {"FALSE", kNone, false, nullptr},
        {"0", kNone, false, nullptr},
        {"\ttrue\r\n", kCollapse, true, nullptr},
        {"", kNone, false, (invalid + valid).c_str()},
        {" yes ", kCollapse, false, (invalid + " yes " + valid).c_str()},
    });

    std::string const notAChar = " can not be a char as it is either empty of greater than 1 char long";
    ExpectParses<char>(&C::charFromString, {
        {" a\r\n", kCollapse, 'a', nullptr},
        {"   ", kCollapse, 0, ("The value []" + notAChar).c_str()},
        {" a ", kReplace, 0, ("The value [ a ]" + notAChar).c_str()},
    });
    EXPECT_EQ(C::charToString('\0'), "");
}

TEST(ConversionsTest, FractionHelpersAndTheNumericDatePrinters)
{
    EXPECT_EQ(TrimTrainingZeros(""), "");
    EXPECT_EQ(TrimTrainingZeros("000"), "0");
    EXPECT_EQ(TrimTrainingZeros("120"), "12");
    EXPECT_EQ(PadZero(7, 3), "007");
    EXPECT_EQ(ToFracString(500, 0, 0), ".5");
    EXPECT_EQ(ToFracString(0, 0, 100), ".0000001");
    EXPECT_EQ(ToFracString(100, 200, 0), ".1002");
    EXPECT_EQ(ToFracString(0, 0, 0), "");
    EXPECT_EQ(C::yearToString(99), "99");  // no padding to four digits
    EXPECT_EQ(C::monthToString(5), "--05");
    EXPECT_EQ(C::monthToString(255), "--255");
    EXPECT_EQ(C::dayToString(5), "---05");
}

// Any date form that holds the field is read; the zone is checked, then dropped.
TEST(ConversionsTest, YearMonthAndDayReadEveryFormThatHoldsThem)
{
    std::string const expected = " expected CCYY-MM-DD[Z|[+|-]hh:mm]";
    ExpectParses<unsigned short>(&C::yearFromString, {
        {"2004-05", kNone, 2004, nullptr},
        {" 2004Z ", kCollapse, 2004, nullptr},
        {"2004-24:00", kNone, 2004, nullptr},  // hour 24 counts as 0
        {"2004x05:00", kNone, 2004, nullptr},  // not a zone: ignored
        {"-0005", kNone, 65531, nullptr},      // the 16-bit pattern of -5
        {"", kNone, 0, "Invalid Date (Empty String)"},
        {"2004-05-06T10:00:00", kNone, 0, "Invalid Date ('T' not allowed)"},
        {"2004-05:00Z", kNone, 0, "Invalid Date (Bad Zone value)"},
        {"20045", kNone, 0, ("Invalid XSD Date [20045]" + expected).c_str()},
        {"2004+a5:00", kNone, 0, "Invalid XSD Time Zone [+a5:00]"},
        {"2004-25:00", kNone, 0, "Invalid TimeZone [-25:0]"},
        {"2004+05:60", kNone, 0, "Invalid TimeZone [5:60]"},
        {"0000", kNone, 0, "Invalid Year [0] (9999 <= year <= -9999 && year != 0)"},
        {"2004-13", kNone, 0, "Invalid Month [13] (1 <= month <= 12)"},
        {"2003-02-29", kNone, 0, "Invalid Day [29] (1 <= day <= days in month"},
    });
    ExpectParses<unsigned char>(&C::monthFromString, {
        {"--12--", kNone, 12, nullptr},  // the old form, its tail not inspected
        {"--02-29", kNone, 2, nullptr},  // 29 February always stands without a year
        {"2004-07Z", kNone, 7, nullptr},
        {"--02-30", kNone, 0, "Invalid Day [30] (1 <= day <= days in month)"},
        {"--5", kNone, 0, ("Invalid XSD Date [--5]" + expected).c_str()},
    });
    ExpectParses<unsigned char>(&C::dayFromString, {
        {"---45", kNone, 45, nullptr},  // a lone day has no upper bound
        {"2004-04-30-05:00", kNone, 30, nullptr},
        {"---00", kNone, 0, "Invalid Day [0] (1 <= day <= 31)"},
    });
    // A form without the field fails as the date's accessor does.
    auto stateFailure = [](auto parse, char const* text) {
        return FailureOf<CKdInvalidStateException>([&] { parse(text, kNone); });
    };
    EXPECT_EQ(stateFailure(&C::yearFromString, "---05"), "Failed to GetYear. Invalid Date Type: gDay.");
    EXPECT_EQ(stateFailure(&C::monthFromString, "2004"), "Failed to GetMonth. Invalid Date Type: gYear.");
    EXPECT_EQ(stateFailure(&C::dayFromString, "--05"), "Failed to GetDay. Invalid Date Type: gMonth.");
}

// Every rule drops a carriage return rather than turning it into a blank.
TEST(WhitespaceTest, RulesAsAppliedBeforeEveryConversion)
{
    struct Case {
        Rule rule;
        std::string text;
        std::string expected;
    };
    std::vector<Case> const cases = {
        {kNone, "a\r\nb ", "a\r\nb "},
        {kPreserve, "a\r\nb", "a\nb"},
        {kPreserve, std::string("a\0b", 3), std::string("a\0b", 3)},  // no CR: handed back whole
        {kPreserve, std::string("a\r\0b", 4), "a"},                    // copied up to a NUL
        {kReplace, "a\rb", "ab"},
        {kReplace, " a\t\r\n", " a  "},
        {kCollapse, "  a \t b\r\n", "a b"},
        {kCollapse, "   ", ""},
        {kCollapse, "a\rb", "ab"},
        {kCollapse, "a \r b", "a b"},  // the CR leaves the blank flag alone
        {kCollapse, "\r a\v", "a\v"},  // only blank, tab, CR and LF are white space
    };
    for (Case const& c : cases) {
        SCOPED_TRACE("rule " + std::to_string(static_cast<int>(c.rule)) + ", text [" + c.text + "]");
        EXPECT_EQ(CWhitespaceUtils::ApplyRule(c.rule, c.text), c.expected);
    }
    EXPECT_EQ(CWhitespaceUtils::Preserve("a\rbc", 3), "ab");
    for (int rule : {4, -1})
        EXPECT_EQ(FailureOf([rule] { CWhitespaceUtils::ApplyRule(static_cast<Rule>(rule), "a"); }),
                  "Unknown WhitespaceRule");
}
