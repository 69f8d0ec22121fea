// CBigInteger: text forms, signed arithmetic and its guards, and the long
// arithmetic checked against identities on large random operands.
#include <climits>
#include <cmath>
#include <cstring>
#include <random>

#include <kdbind/values.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

std::string Text(char const* text) { return CBigInteger(text).ToString(); }

std::string RandomDigits(std::mt19937_64& random, size_t length, char const* alphabet = "0123456789")
{
    std::string text(length, '0');
    size_t const choices = std::strlen(alphabet);
    for (char& c : text)
        c = alphabet[random() % choices];
    text[0] = '1' + static_cast<char>(random() % 9);
    return text;
}

} // namespace

TEST(BigIntegerTest, ParsesEveryLexicalForm)
{
    EXPECT_EQ(Text(""), "0");
    EXPECT_EQ(Text("   "), "0");
    EXPECT_EQ(Text("-0"), "0");
    EXPECT_EQ(Text("  -123  "), "-123");
    EXPECT_EQ(Text("+5"), "5");
    EXPECT_EQ(Text("000123"), "123");
    EXPECT_EQ(Text("98765432109876543210987654321"), "98765432109876543210987654321");
    // Only the trailing run of digits counts.
    EXPECT_EQ(Text("12-34"), "34");
    EXPECT_EQ(Text("1 2"), "2");
    EXPECT_EQ(Text("5-"), "0");
    // A text ending in a line break has no digits: it prints 0 but is not == 0.
    CBigInteger const lineEnd("12\n");
    EXPECT_EQ(lineEnd.ToString(), "0");
    EXPECT_FALSE(lineEnd == CBigInteger(0));
    // Other characters route through the decimal parser and its rounding.
    EXPECT_EQ(Text("12.9"), "13");
    EXPECT_EQ(Text("12.5"), "12");
    EXPECT_EQ(Text("-12.6"), "-13");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { CBigInteger("abc"); }),
              "The string representing a Decimal, contained an invalid char at position 0 [abc]");

    EXPECT_EQ(CBigInteger(2.5).ToString(), "2");
    EXPECT_EQ(CBigInteger(2.6).ToString(), "3");
    EXPECT_EQ(CBigInteger(-2.6).ToString(), "-3");
    EXPECT_EQ(CBigInteger(1e20).ToString(), "100000000000000000000");
    EXPECT_EQ(CBigInteger(std::nan("")).ToString(), "0");
    EXPECT_EQ(FailureOf<CKdOverFlowException>([] { CBigInteger value(HUGE_VAL); }),
              "An infinite value can not be held by an integer");
}

TEST(BigIntegerTest, BoundsAreBuiltThroughTheDecimalParser)
{
    EXPECT_EQ(CBigInteger::MAX_LONG.ToString(), "2147483647");
    EXPECT_EQ(CBigInteger::MIN_LONG.ToString(), "-2147483648");
    EXPECT_EQ(CBigInteger::MAX_LONGLONG.ToString(), "9223372036854775807");
    EXPECT_EQ(CBigInteger::MIN_LONGLONG.ToString(), "-9223372036854775808");
    EXPECT_EQ(CBigInteger::MAX_DOUBLE.ToString(), "17" + std::string(307, '0'));
    EXPECT_EQ(CBigInteger::MIN_DOUBLE.ToString(), "-17" + std::string(307, '0'));
}

TEST(BigIntegerTest, SignedArithmeticAndTheZeroWithASign)
{
    CBigInteger const seven(7);
    EXPECT_EQ((seven + CBigInteger(-9)).ToString(), "-2");
    EXPECT_EQ((CBigInteger(-9) - CBigInteger(-9)).ToString(), "0");
    EXPECT_EQ((CBigInteger(-12) * CBigInteger(12)).ToString(), "-144");
    EXPECT_EQ((CBigInteger(INT_MIN) - CBigInteger(1)).ToString(), "-2147483649");

    // -5 * 0 keeps sign -1 on its zero: equal to 0, yet below it.
    CBigInteger const negativeZero = CBigInteger(-5) * CBigInteger(0);
    EXPECT_EQ(negativeZero.ToString(), "0");
    EXPECT_TRUE(negativeZero == CBigInteger(0));
    EXPECT_TRUE(negativeZero < CBigInteger(0));
    EXPECT_TRUE(CBigInteger("-0") < CBigInteger("0"));
    EXPECT_TRUE(CBigInteger(-3) < CBigInteger(-2));
    EXPECT_TRUE(CBigInteger(100) > CBigInteger(99));
    EXPECT_TRUE(CBigInteger(5) <= CBigInteger(5));

    // Unary minus negates in place.
    CBigInteger value(4);
    CBigInteger& same = -value;
    EXPECT_EQ(&same, &value);
    EXPECT_EQ(value.ToString(), "-4");
    EXPECT_EQ(value.GetAbs().ToString(), "4");
    EXPECT_EQ(value.ToString(), "-4");

    EXPECT_EQ(static_cast<int>(CBigInteger("-2147483648")), INT_MIN);
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { static_cast<void>(static_cast<int>(CBigInteger("2147483648"))); }),
              "ERROR: Value out of bound of int.");
}

TEST(BigIntegerTest, DivisionTruncatesAndEachOperatorKeepsItsGuard)
{
    EXPECT_EQ((CBigInteger(7) / CBigInteger(2)).ToString(), "3");
    EXPECT_EQ((CBigInteger(-7) / CBigInteger(2)).ToString(), "-3");
    EXPECT_EQ((CBigInteger(7) / CBigInteger(-2)).ToString(), "-3");
    EXPECT_EQ((CBigInteger(-7) % CBigInteger(2)).ToString(), "-1");
    EXPECT_EQ((CBigInteger(3) / CBigInteger(7)).ToString(), "0");

    auto failure = [](auto action) { return FailureOf<CKdInvalidValueException>(action); };
    CBigInteger value(7);
    EXPECT_EQ(failure([&] { value / CBigInteger(0); }), "ERROR: Overflow in operator/.");
    EXPECT_EQ(failure([&] { value / CBigInteger("-0"); }), "ERROR: Overflow in operator/.");
    EXPECT_EQ(failure([&] { value % CBigInteger(-2); }), "ERROR: Overflow in operator%.");
    EXPECT_EQ(failure([&] { value /= CBigInteger(-2); }), "ERROR: Overflow in operator /=.");
    EXPECT_EQ(failure([&] { value %= CBigInteger(-2); }), "ERROR: Overflow in operator%=.");
    // Zero divisors fail too instead of dividing for ever.
    EXPECT_EQ(failure([&] { value % CBigInteger(0); }), "ERROR: Overflow in operator%.");
    EXPECT_EQ(failure([&] { value /= CBigInteger(0); }), "ERROR: Overflow in operator /=.");
    EXPECT_EQ(failure([&] { value %= CBigInteger(0); }), "ERROR: Overflow in operator%=.");
    EXPECT_EQ(value.ToString(), "7");

    EXPECT_EQ(CBigInteger(1).SquareRoot().ToString(), "1");
    EXPECT_EQ(CBigInteger(15).SquareRoot().ToString(), "3");
    EXPECT_EQ(CBigInteger(16).SquareRoot().ToString(), "4");
    EXPECT_EQ(CBigInteger(10000).SquareRoot().ToString(), "100");
    EXPECT_EQ(failure([] { CBigInteger(0).SquareRoot(); }), "ERROR: Overflow in operator/.");
    EXPECT_EQ(failure([] { CBigInteger(-4).SquareRoot(); }), "ERROR: Negative Number in function SquareRoot().");
}

// Products and quotients of long operands, including divisors whose leading
// limbs make the quotient estimate too large and powers of ten, checked by
// a = q * b + r with 0 <= r < b and by round trips through the product.
TEST(BigIntegerTest, LongDivisionAndMultiplicationHoldTheirIdentities)
{
    std::mt19937_64 random(11);
    for (int round = 0; round < 300; ++round) {
        char const* alphabet = round % 3 == 0 ? "09" : "0123456789";
        CBigInteger const a(RandomDigits(random, 1 + random() % 120, alphabet).c_str());
        CBigInteger b(RandomDigits(random, 1 + random() % 60, alphabet).c_str());
        if (round % 7 == 0)
            b = CBigInteger::Pow10(static_cast<unsigned int>(random() % 40)) * CBigInteger(3);
        CBigInteger const q = a / b;
        CBigInteger const r = a % b;
        ASSERT_TRUE(q * b + r == a) << a.ToString() << " / " << b.ToString();
        ASSERT_TRUE(r < b && r >= CBigInteger(0)) << a.ToString() << " % " << b.ToString();
        ASSERT_TRUE(a * b / b == a);
        ASSERT_TRUE((a * b) % a == CBigInteger(0));
    }
    CBigInteger const n("123456789012345678901234567890123456789");
    EXPECT_TRUE((n * n).SquareRoot() == n);
    EXPECT_TRUE((n * n - CBigInteger(1)).SquareRoot() == n - CBigInteger(1));
}

// Values far larger than any schema bound finish quickly: a 100,000-digit
// number prints, parses and divides, and a 20,000-digit one takes its root.
TEST(BigIntegerTest, HostileSizesStayBounded)
{
    std::mt19937_64 random(5);
    std::string const text = RandomDigits(random, 100000);
    CBigInteger const big(text.c_str());
    EXPECT_TRUE(big.ToString() == text);
    CBigInteger const small(RandomDigits(random, 12).c_str());
    EXPECT_TRUE(big / small * small + big % small == big);
    CBigInteger const huge = CBigInteger::Pow10(200000);
    EXPECT_TRUE(huge / CBigInteger::Pow10(100000) == CBigInteger::Pow10(100000));
    EXPECT_TRUE(huge / small * small + huge % small == huge);
    EXPECT_TRUE(CBigInteger::Pow10(20000).SquareRoot() == CBigInteger::Pow10(10000));
}
