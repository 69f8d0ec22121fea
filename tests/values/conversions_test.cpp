#include <cfloat>
#include <climits>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include <locale.h>

#include "conversions_cases.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

double const kNaN = std::numeric_limits<double>::quiet_NaN();
double const kInf = std::numeric_limits<double>::infinity();

} // namespace

TEST(ConversionsTest, WideIntegersRefuseOnlyOverflowAndTrailingText)
{
    ExpectParses<CKdInvalidValueException, long>(&CConversions::i4FromString, {
        {"", kNone, 0, nullptr},
        {"+42", kNone, 42, nullptr},
        {" 12", kPreserve, 12, nullptr},  // the library call skips leading white space
        {"12 ", kPreserve, 0, "The value [12 ] can not be converted to a i4"},
        {" 12x ", kCollapse, 0, "The value [12x] can not be converted to a i4"},
        {"4294967296", kNone, 4294967296L, nullptr},  // no 32-bit test
        {"9223372036854775808", kNone, 0, "The value [9223372036854775808] is to large to fit in a i4"},
    });
    ExpectParses<CKdInvalidValueException, long long>(&CConversions::i8FromString, {
        {"-9223372036854775808", kNone, LLONG_MIN, nullptr},
        {"-9223372036854775809", kNone, 0, "The value [-9223372036854775809] is to large to fit in a i8"},
        {"1.5", kNone, 0, "The value [1.5] can not be converted to a i8"},
    });
    ExpectParses<CKdInvalidValueException, unsigned long>(&CConversions::ui4FromString, {
        {"-1", kNone, ULONG_MAX, nullptr},
        {"18446744073709551616", kNone, 0, "The value [18446744073709551616] is to large to fit in a ui4"},
    });
    ExpectParses<CKdInvalidValueException, unsigned long long>(&CConversions::ui8FromString, {
        {"", kNone, 0, nullptr},
        {"-1", kNone, ULLONG_MAX, nullptr},
        {"18446744073709551616", kNone, 0, "The value [18446744073709551616] is to large to fit in a ui8"},
        {"0x10", kNone, 0, "The value [0x10] can not be converted to a ui8"},  // base 10 only
    });
}

// The range failure shows the caller's text, before the rule; failures of
// the wide parse pass through with the wide kind's message.
TEST(ConversionsTest, NarrowIntegersTestTheirRangeAfterTheWideParse)
{
    ExpectParses<CKdInvalidValueException, char>(&CConversions::i1FromString, {
        {"-128", kNone, -128, nullptr},
        {"128", kNone, 0, "The value [128] is to large to fit in a i1"},
        {" -129 ", kCollapse, 0, "The value [ -129 ] is to large to fit in a i1"},
    });
    ExpectParses<CKdInvalidValueException, short>(&CConversions::i2FromString, {
        {"-32768", kNone, -32768, nullptr},
        {" 40000 ", kCollapse, 0, "The value [ 40000 ] is to large to fit in a i2"},
        {"abc", kNone, 0, "The value [abc] can not be converted to a i4"},
        {"99999999999999999999", kNone, 0, "The value [99999999999999999999] is to large to fit in a i4"},
    });
    ExpectParses<CKdInvalidValueException, unsigned char>(&CConversions::ui1FromString, {
        {"255", kNone, 255, nullptr},
        {"256", kNone, 0, "The value [256] is to large to fit in a ui1"},
        {"-1", kNone, 0, "The value [-1] is to large to fit in a ui1"},
        {"x", kNone, 0, "The value [x] can not be converted to a ui4"},
    });
    ExpectParses<CKdInvalidValueException, unsigned short>(&CConversions::ui2FromString, {
        {"65535", kNone, 65535, nullptr},
        {"65536", kNone, 0, "The value [65536] is to large to fit in a ui2"},
    });
}

// i4 and ui4 print only the low 32 bits of their long.
TEST(ConversionsTest, IntegersPrintInDecimal)
{
    ExpectPrints({
        {CConversions::i1ToString(static_cast<char>(-128)), "-128"},
        {CConversions::i2ToString(-32768), "-32768"},
        {CConversions::i4ToString(4294967296L), "0"},
        {CConversions::i4ToString(2147483648L), "-2147483648"},
        {CConversions::i8ToString(LLONG_MIN), "-9223372036854775808"},
        {CConversions::ui1ToString(255), "255"},
        {CConversions::ui4ToString(4294967296UL + 5), "5"},
        {CConversions::ui4ToString(ULONG_MAX), "4294967295"},
        {CConversions::ui8ToString(ULLONG_MAX), "18446744073709551615"},
    });
}

TEST(ConversionsTest, RealsPrintTheirSpecialValuesWithoutTheFormat)
{
    ExpectPrints({
        {CConversions::r4ToString(std::numeric_limits<float>::quiet_NaN(), "%.1f"), "NaN"},
        {CConversions::r4ToString(std::numeric_limits<float>::infinity(), "%.1f"), "INF"},
        {CConversions::r8ToString(kNaN), "NaN"},
        {CConversions::r8ToString(-kInf, "%.1f"), "-INF"},
        {CConversions::r4ToString(FLT_MAX), "3.402823e+38"},
        {CConversions::r8ToString(-DBL_MAX), "-1.797693134862316e+308"},
        {CConversions::r8ToString(1.0), "1"},
        {CConversions::r8ToString(-0.0), "-0"},
        {CConversions::r8ToString(1e20), "1e+20"},
        {CConversions::r8ToString(1.0 / 3), "0.3333333333333333"},
        {CConversions::r4ToString(1.0f / 3), "0.3333333"},
        {CConversions::r8ToString(5e-324), "4.940656458412465e-324"},
        {CConversions::r8ToString(2.5, "%.3f"), "2.500"},
        {CConversions::r4ToString(2.5f, "%e"), "2.500000e+00"},
        // Longer results are cut to the buffer: 31 characters for r4, 47 for r8.
        {CConversions::r4ToString(1.0f, "%.40f"), "1.00000000000000000000000000000"},
        {CConversions::r8ToString(1.0, "%.60f"), "1.000000000000000000000000000000000000000000000"},
    });
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
        if (std::isnan(r8) || std::isinf(r8))
            continue;
        snprintf(expected, sizeof expected, "%.16g", r8);
        ASSERT_EQ(CConversions::r8ToString(r8), expected);
        float r4;
        std::uint32_t const bits32 = static_cast<std::uint32_t>(bits);
        std::memcpy(&r4, &bits32, sizeof r4);
        if (std::isnan(r4) || std::isinf(r4))
            continue;
        snprintf(expected, sizeof expected, "%.7g", static_cast<double>(r4));
        ASSERT_EQ(CConversions::r4ToString(r4), expected);
    }
}

TEST(ConversionsTest, RealsReadTheirLiteralsThenTheLibraryForms)
{
    ExpectParses<CKdInvalidValueException, double>(&CConversions::r8FromString, {
        {"", kNone, kNaN, nullptr},  // absent, not an error
        {"NaN", kNone, kNaN, nullptr},
        {"1.#QNAN", kNone, kNaN, nullptr},
        {"-NAN", kNone, kNaN, nullptr},
        {"INF", kNone, kInf, nullptr},
        {" -INF ", kCollapse, -kInf, nullptr},
        {"inf", kNone, kInf, nullptr},  // the library's own spellings
        {"0x1p3", kNone, 8.0, nullptr},
        {"-0", kNone, -0.0, nullptr},
        {"1e400", kNone, kInf, nullptr},  // no overflow test
        {"1e-400", kNone, 0.0, nullptr},
        {" 1.5", kPreserve, 1.5, nullptr},
        {"1.5 ", kPreserve, 0, "The value [1.5 ] can not be converted to a r8"},
        {"1,5", kNone, 0, "The value [1,5] can not be converted to a r8"},
        {"1.#INF", kNone, 0, "The value [1.#INF] can not be converted to a r8"},
    });
    ExpectParses<CKdInvalidValueException, float>(&CConversions::r4FromString, {
        {"", kNone, std::numeric_limits<float>::quiet_NaN(), nullptr},
        {"0.1", kNone, 0.1f, nullptr},
        {"3.4028235e38", kNone, FLT_MAX, nullptr},
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
    std::string const printed = CConversions::r8ToString(1.5);
    std::string const formatted = CConversions::r4ToString(1.5f, "%.2f");
    double const parsed = CConversions::r8FromString("1.5", kNone);
    std::string const refused = FailureOf<CKdInvalidValueException>([] { CConversions::r8FromString("1,5", kNone); });
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

// Any mix of case; the failure shows the caller's text, before the rule.
TEST(ConversionsTest, Boolean)
{
    ExpectParses<CKdInvalidValueException, bool>(&CConversions::booleanFromString, {
        {"true", kNone, true, nullptr},
        {"1", kNone, true, nullptr},
        {"FALSE", kNone, false, nullptr},
        {"0", kNone, false, nullptr},
        {"\ttrue\r\n", kCollapse, true, nullptr},
        {"", kNone, false,
         "A Boolean Value read from an XML document was invalid []. Valid values are 'true', 'false', '1', or '0'"},
        {" yes ", kCollapse, false,
         "A Boolean Value read from an XML document was invalid [ yes ]. Valid values are 'true', 'false', '1', or "
         "'0'"},
        {" true", kPreserve, false,
         "A Boolean Value read from an XML document was invalid [ true]. Valid values are 'true', 'false', '1', or "
         "'0'"},
    });
    ExpectPrints({{CConversions::booleanToString(true), "true"}, {CConversions::booleanToString(false), "false"}});
}

TEST(ConversionsTest, CharIsExactlyOneCharacterAfterTheRule)
{
    ExpectParses<CKdInvalidValueException, char>(&CConversions::charFromString, {
        {"a", kNone, 'a', nullptr},
        {" a\r\n", kCollapse, 'a', nullptr},
        {"", kNone, 0, "The value [] can not be a char as it is either empty of greater than 1 char long"},
        {"   ", kCollapse, 0, "The value [] can not be a char as it is either empty of greater than 1 char long"},
        {" a ", kReplace, 0, "The value [ a ] can not be a char as it is either empty of greater than 1 char long"},
    });
    ExpectPrints({{CConversions::charToString('x'), "x"}, {CConversions::charToString('\0'), ""}});
}

TEST(ConversionsTest, StringIsTheTextAfterTheRule)
{
    EXPECT_EQ(CConversions::stringFromString(" a \r\n b ", kCollapse), "a b");
    EXPECT_EQ(CConversions::stringFromString(" a \r\n", kNone), " a \r\n");
    EXPECT_EQ(CConversions::stringToString("<&>"), "<&>");  // no escaping here
    EXPECT_EQ(FailureOf<CKdException>([] { CConversions::stringFromString("x", static_cast<Rule>(3 + 1)); }),
              "Unknown WhitespaceRule");
}

TEST(ConversionsTest, FractionHelpers)
{
    ExpectPrints({
        {TrimTrainingZeros(""), ""},
        {TrimTrainingZeros("0"), "0"},
        {TrimTrainingZeros("000"), "0"},
        {TrimTrainingZeros("120"), "12"},
        {TrimTrainingZeros("100"), "1"},
        {PadZero(7, 3), "007"},
        {PadZero(1234, 3), "1234"},
        {PadZero(-7, 3), "-07"},
        {ToFracString(500, 0, 0), ".5"},
        {ToFracString(0, 0, 100), ".0000001"},
        {ToFracString(100, 200, 0), ".1002"},
        {ToFracString(123, 456, 789), ".123456789"},
        {ToFracString(0, 0, 0), ""},
    });
}
