// CDecimal: the parser's forms and failures, rounding at 30 places, the
// arithmetic, the conversions to machine types, and the variant kinds.
#include <climits>
#include <cmath>
#include <string>

#include <kdbind/values.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

std::string Text(char const* text) { return CDecimal(text).ToString(); }

std::string ParseFailure(char const* text)
{
    return FailureOf<CKdInvalidValueException>([&] { CDecimal value(text); });
}

std::string InvalidAt(int position, std::string const& text)
{
    return "The string representing a Decimal, contained an invalid char at position " +
           std::to_string(position) + " [" + text + "]";
}

CDecimal D(char const* text) { return CDecimal(text); }

} // namespace

TEST(DecimalTest, ParsesEveryLexicalForm)
{
    EXPECT_EQ(Text(""), "0");
    EXPECT_EQ(Text("  1 2 . 5 "), "12.5");
    EXPECT_EQ(Text("1.50"), "1.5");
    EXPECT_EQ(Text("1.00"), "1");
    EXPECT_EQ(Text("-0.5"), "-0.5");
    EXPECT_EQ(Text("-0"), "0");
    EXPECT_EQ(Text("007.0500"), "7.05");
    EXPECT_EQ(Text(".5"), "0.5");
    EXPECT_EQ(Text("1-2"), "-12");  // signs anywhere in the integer part, the last wins
    EXPECT_EQ(Text("-+3"), "3");
    EXPECT_EQ(Text("1.5e3"), "1500");
    EXPECT_EQ(Text("1.5E-3"), "0.0015");
    EXPECT_EQ(Text("-2e - + -2"), "-0.02");
    EXPECT_EQ(Text("1e"), "1");
    EXPECT_EQ(Text("12\n"), "12");
    EXPECT_EQ(CDecimal(1.5).ToString(), "1.5");
    EXPECT_EQ(CDecimal(-0.25).ToString(), "-0.25");

    EXPECT_EQ(ParseFailure("1.2.3"), InvalidAt(3, "1.2.3"));
    EXPECT_EQ(ParseFailure("1e5 "), InvalidAt(3, "1e5 "));
    EXPECT_EQ(ParseFailure("abc"), InvalidAt(0, "abc"));
    EXPECT_EQ(ParseFailure("1.5-"), InvalidAt(3, "1.5-"));
    EXPECT_EQ(ParseFailure("1ex"), InvalidAt(2, "1ex"));
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { CDecimal value(std::nan("")); }), InvalidAt(0, "nan"));
    // Exponents are bounded: the digit that passes 100000 is refused.
    EXPECT_EQ(Text("1e-100000"), "0");
    EXPECT_EQ(ParseFailure("1e1000000"), InvalidAt(8, "1e1000000"));

    CDecimal kept("2.5");
    EXPECT_THROW(kept.Parse("2.x"), CKdInvalidValueException);
    EXPECT_EQ(kept.ToString(), "2.5");
}

TEST(DecimalTest, RoundsPastThirtyPlacesWithHalvesTowardsZero)
{
    std::string const thirty = "0." + std::string(29, '1') + "2";
    EXPECT_EQ(Text((thirty + "6").c_str()), "0." + std::string(29, '1') + "3");
    EXPECT_EQ(Text((thirty + "5").c_str()), thirty);
    EXPECT_EQ(Text(("-" + thirty + "6").c_str()), "-0." + std::string(29, '1') + "3");
    EXPECT_EQ(Text(("-" + thirty + "5").c_str()), "-" + thirty);
    EXPECT_EQ(Text(("1" + thirty.substr(1) + "51").c_str()), "1." + std::string(29, '1') + "3");

    CDecimal value("0.999");
    value.ChangeFractionalDivider(2);
    EXPECT_EQ(value.ToString(), "0.100");  // the carry stays in the fraction
    value = CDecimal("-0.06");
    value.ChangeFractionalDivider(1);
    EXPECT_EQ(value.ToString(), "-0.1");
    value = CDecimal("2.5");
    value.ChangeFractionalDivider(0);
    EXPECT_EQ(value.ToString(), "2");
    value = CDecimal("2.51");
    value.ChangeFractionalDivider(3);
    EXPECT_EQ(value.ToString(), "2.510");
    EXPECT_EQ(CDecimal("-7.6").ToBigInteger().ToString(), "-8");
}

TEST(DecimalTest, ArithmeticIsExactAndQuotientsStopAtThirtyPlaces)
{
    EXPECT_EQ((CDecimal(1) / CDecimal(3)).ToString(), "0." + std::string(30, '3'));
    EXPECT_EQ((CDecimal(2) / CDecimal(3)).ToString(), "0." + std::string(29, '6') + "7");
    EXPECT_EQ((CDecimal(-2) / CDecimal(3)).ToString(), "-0." + std::string(29, '6') + "7");
    EXPECT_EQ((D("7.5") / D("-2.5")).ToString(), "-3");
    EXPECT_TRUE(D("0.1") + D("0.2") == D("0.3"));
    EXPECT_TRUE(D("1.10") == D("1.1"));
    EXPECT_EQ((D("-1.5") + CDecimal(2)).ToString(), "0.5");
    EXPECT_EQ((D("1.5") - CDecimal(2)).ToString(), "-0.5");
    EXPECT_EQ((D("-1.25") - D("0.75")).ToString(), "-2");
    EXPECT_EQ((D("1.5") * D("-0.5")).ToString(), "-0.75");
    EXPECT_EQ((D("0.000000000000001") * D("0.000000000000001")).ToString(), "0." + std::string(29, '0') + "1");
    EXPECT_EQ((D("99999999999999999999.99") + D("0.01")).ToString(), "100000000000000000000");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { CDecimal(1) / D("-0.0"); }), "ERROR: Overflow in operator/.");

    CDecimal counter(5);
    EXPECT_EQ((counter++).ToString(), "6");
    EXPECT_EQ(counter.ToString(), "5");  // the postfix forms leave the object alone
    EXPECT_EQ((++counter).ToString(), "6");
    EXPECT_EQ((--counter).ToString(), "5");
    counter *= D("0.5");
    EXPECT_EQ(counter.ToString(), "2.5");

    EXPECT_TRUE(D("-1.7") < D("-1.25"));
    EXPECT_TRUE(D("0.5") > D("-0.5"));
    EXPECT_TRUE(D("2") >= D("2.000"));
    EXPECT_TRUE(D("12345678901234567890.1") > D("12345678901234567890.09"));
    EXPECT_FALSE(D("1.5") < D("1.5"));
}

TEST(DecimalTest, PrintsWithPlacesAndConvertsToMachineTypes)
{
    EXPECT_EQ(D("1.234").ToString(2), "1.73");
    EXPECT_EQ(CDecimal(5).ToString(0), "5.");
    EXPECT_EQ(D("-1.26").ToString(1), "-1.7");
    EXPECT_EQ(CConversions::decimalToString(D("1.234"), "2"), "1.73");
    EXPECT_EQ(CConversions::decimalToString(D("1.234"), nullptr), "1.234");

    EXPECT_EQ(D("1.9").ToLong(), 2);
    EXPECT_EQ(D("1.9").ToLongLong(), 1);
    EXPECT_EQ(D("-2147483648.4").ToLong(), -2147483648L);
    EXPECT_EQ(D("-9223372036854775808").ToLongLong(), LLONG_MIN);
    EXPECT_DOUBLE_EQ(D("-12345.678").ToDouble(), -12345.678);
    EXPECT_EQ(FailureOf<CKdOverFlowException>([] { D("2147483647.6").ToLong(); }),
              "The Decimal value if to large to fit into a LONG");
    EXPECT_EQ(FailureOf<CKdOverFlowException>([] { D("9223372036854775808").ToLongLong(); }),
              "The Decimal value if to large to fit into a LONGLONG");
    EXPECT_EQ(FailureOf<CKdOverFlowException>([] { D("-1.8e308").ToDouble(); }),
              "The Decimal value if to large to fit into a Double");
}

TEST(DecimalTest, VariantKindsCopyDeeplyAndReadThroughTheirConversions)
{
    KdVariant value;
    value.FromString(" 12345678901234567890.000000000000000001 ", ItemType_decimal,
                     CWhitespaceUtils::WhitespaceRule_Collapse);
    EXPECT_EQ(value.GetType(), "decimal");
    EXPECT_EQ(value.ToString(), "12345678901234567890.000000000000000001");
    EXPECT_EQ(value.ToString("3"), "12345678901234567890.500");
    KdVariant copy(value);
    value.SetInteger(CBigInteger("-123456789012345678901234567890"));
    EXPECT_EQ(copy.GetDecimal().ToString(), "12345678901234567890.000000000000000001");
    EXPECT_EQ(value.GetType(), "integer");
    EXPECT_EQ(value.ToString(), "-123456789012345678901234567890");
    EXPECT_EQ(value.GetDecimal().ToString(), "0");  // another kind reads as empty
    copy = value;
    EXPECT_EQ(copy.GetInteger().ToString(), "-123456789012345678901234567890");

    value.FromString("4e2", ItemType_integer);
    EXPECT_EQ(value.ToString(), "400");
    EXPECT_THROW(value.FromString("4x", ItemType_integer), CKdInvalidValueException);
    EXPECT_EQ(value.GetInteger().ToString(), "400");
}

// A long number, a long run of zeros and a huge quotient all finish quickly.
TEST(DecimalTest, HostileSizesStayBounded)
{
    std::string digits(100000, '7');
    std::string const text = digits + "." + digits;
    CDecimal const value(text.c_str());
    EXPECT_TRUE(value.ToString() == digits + "." + std::string(29, '7') + "8");
    EXPECT_EQ(Text(("1." + std::string(100000, '0')).c_str()), "1");
    EXPECT_EQ(Text(("0." + std::string(100000, '0') + "1").c_str()), "0");
    CDecimal const quotient = D("1e100000") / D("0.000000000000000000000000000001");
    EXPECT_TRUE(quotient.ToString() == "1" + std::string(100030, '0'));
    EXPECT_EQ((D("1e100000") * D("1e100000")).ToBigInteger().ToString().size(), 200001u);
}
