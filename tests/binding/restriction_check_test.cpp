#include <cmath>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kdbind/binding.h>

#include "runtime/test_support.h"

using namespace KdBind;
using KdBindTest::FailureOf;

namespace {

typedef CXmlObjectHelper H;

CPrimitiveRestrictions Bounds(std::string minInclusive, std::string maxInclusive, std::string minExclusive = "",
                              std::string maxExclusive = "")
{
    return CPrimitiveRestrictions("", -1, -1, std::move(minInclusive), std::move(maxInclusive),
                                  std::move(minExclusive), std::move(maxExclusive), -1);
}

CPrimitiveRestrictions Lengths(int minLength, int maxLength, int length, std::string pattern = "")
{
    return CPrimitiveRestrictions(std::move(pattern), minLength, maxLength, "", "", "", "", length);
}

std::string const kPassed = "<no failure>";

TEST(CheckRestriction, BoundsAreTestedInTheValuesOwnType)
{
    CPrimitiveRestrictions const none;
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori1("x", -128, none); }), kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori1("x", 5, Bounds("5", "")); }), kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori1("x", 5, Bounds("", "", "5")); }), "Invalid Value for x [5]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori1("x", 6, Bounds("", "", "", "6")); }),
              "Invalid Value for x [6]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori2("x", 7, Bounds(" 5 ", " 7\t")); }), kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori2("x", 8, Bounds("5", "7")); }), "Invalid Value for x [8]");
    // A bound outside the kind's range fails as its conversion does.
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { H::CheckRestrictionFori1("x", 0, Bounds("1000", "")); }),
              "The value [1000] is to large to fit in a i1");
    // Bounds that make no sense as signed numbers are read as unsigned ones.
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForui1("x", 200, Bounds("150", "")); }), kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForui8("x", 18446744073709551615ull, Bounds("", "", "", "1")); }),
              "Invalid Value for x [18446744073709551615]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori8("x", -9000000000ll, Bounds("-8000000000", "")); }),
              "Invalid Value for x [-9000000000]");
    // "%d" shows the low 32 bits of a wide value.
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForui4("x", 4294967295ul, Bounds("", "10")); }),
              "Invalid Value for x [-1]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForyear("x", 1999, Bounds("2000", "")); }),
              "Invalid Value for x [1999]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFormonth("x", 13, Bounds("", "--12")); }),
              "Invalid Value for x [13]");
}

TEST(CheckRestriction, RealBoundsRefuseNaN)
{
    float const nan = std::nanf("");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForr4("x", nan, CPrimitiveRestrictions()); }), kPassed);
    for (auto const& bounds : {Bounds("0", ""), Bounds("", "0"), Bounds("", "", "0"), Bounds("", "", "", "0")})
        EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForr4("x", nan, bounds); }), "Invalid Value for x [nan]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForr8("x", 1.5, Bounds("1.5", "1.5")); }), kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForr8("x", 2.25, Bounds("", "", "", "2.25")); }),
              "Invalid Value for x [2.250000]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForr8("x", -0.0, Bounds("", "", "", "0")); }),
              "Invalid Value for x [-0.000000]");
}

TEST(CheckRestriction, ExactNumbersDatesAndDurations)
{
    auto const collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
    CDecimal const price = CConversions::decimalFromString("1.50", collapse);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFordecimal("d", price, Bounds("", "1.5")); }), kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFordecimal("d", price, Bounds("", "", "", "1.5")); }),
              "Invalid Value for d [" + price.ToString() + "]");
    CBigInteger const huge = CConversions::integerFromString("123456789012345678901234567890", collapse);
    EXPECT_EQ(FailureOf([&] {
                  H::CheckRestrictionForinteger("i", huge, Bounds("", "", "123456789012345678901234567889"));
              }),
              kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForinteger("i", huge, Bounds("", "99999999999999999999")); }),
              "Invalid Value for i [123456789012345678901234567890]");

    // A zone on one side only leaves the order open: every bound passes.
    CDateTime const zoned = CConversions::dateFromString("2004-05-06Z", collapse);
    EXPECT_EQ(FailureOf([&] {
                  H::CheckRestrictionFordate("day", zoned, Bounds("", "", "2004-05-06", "2004-05-06"));
              }),
              kPassed);
    CDateTime const plain = CConversions::dateFromString("2004-05-06", collapse);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFordate("day", plain, Bounds("", "", "2004-05-06")); }),
              "Invalid Value for day [" + plain.ToString() + "]");
    CDateTime const noon = CConversions::timeFromString("12:00:00", collapse);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFortime("t", noon, Bounds("08:00:00", "17:00:00")); }), kPassed);
    EXPECT_THROW(H::CheckRestrictionFortime("t", noon, Bounds("", "11:59:59")), CKdException);

    CDateTimeSpan const month = CConversions::durationFromString("P1M", collapse);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForduration("p", month, Bounds("", "P30D", "P30D")); }), kPassed);
    CDateTimeSpan const days = CConversions::durationFromString("P2D", collapse);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForduration("p", days, Bounds("", "P1D")); }),
              "Invalid Value for p [" + days.ToString() + "]");
    // Through the variant, by the kind asked for.
    KdVariant value;
    value.SetDecimal(price);
    EXPECT_EQ(FailureOf([&] { H::CheckRestriction("d", value, ItemType_decimal, Bounds("2", "")); }),
              "Invalid Value for d [" + price.ToString() + "]");
    value.SetYearMonth(CConversions::yearMonthFromString("2004-05", collapse));
    EXPECT_THROW(H::CheckRestriction("ym", value, ItemType_yearMonth, Bounds("2005-01", "")), CKdException);
    EXPECT_THROW(H::CheckRestrictionFormonthYear("ym", value.GetYearMonth(), Bounds("2005-01", "")), CKdException);
}

TEST(CheckRestriction, LengthsAndPatternOfStringsAndBinaryData)
{
    // Lengths come first, in bytes.
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForstring("s", "ab", Lengths(-1, 1, -1, "(")); }),
              "Invalid Value for s [ab]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForstring("s", "\xC3\xA9", Lengths(-1, -1, 1)); }),
              "Invalid Value for s [\xC3\xA9]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForstring("s", "aaa", Lengths(-1, -1, 3, "a*")); }), kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForstring("s", "aab", Lengths(-1, -1, 3, "a*")); }),
              "Invalid Value for s [aab]");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForstring("s", "", Lengths(1, -1, -1)); }), "Invalid Value for s []");

    CBinaryData three;
    three.SetAsHexString("0A0B0C");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForhexBinary("h", three, Lengths(-1, -1, 3)); }), kPassed);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForhexBinary("h", three, Lengths(4, -1, -1)); }),
              "Invalid Value for h [0A0B0C]");
    // base64 data is reported in hex too.
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForbase64Binary("b", three, Lengths(-1, -1, 2)); }),
              "Invalid Value for b [0A0B0C]");
    // Bounds are not looked at for strings and binary data.
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForstring("s", "z", Bounds("not a number", "")); }), kPassed);
}

TEST(CheckRestriction, DispatchesByTheKindAsked)
{
    KdVariant value;
    value.SetI4(12);
    CPrimitiveRestrictions const upTo10 = Bounds("", "10");
    EXPECT_EQ(FailureOf([&] { H::CheckRestriction("n", value, ItemType_i4, upTo10); }), "Invalid Value for n [12]");
    value.SetString("hello");
    EXPECT_EQ(FailureOf([&] { H::CheckRestriction("s", value, ItemType_string, Lengths(-1, 4, -1)); }),
              "Invalid Value for s [hello]");
    value.SetBoolean(true);
    EXPECT_EQ(FailureOf([&] { H::CheckRestriction("b", value, ItemType_boolean, upTo10); }), kPassed);
    // A facet failure is a plain CKdException, not a validation failure.
    value.SetI2(11);
    try {
        H::CheckRestriction("n", value, ItemType_i2, upTo10);
        ADD_FAILURE() << "no failure";
    } catch (CKdValidationException const&) {
        ADD_FAILURE() << "a validation failure";
    } catch (CKdException const& failure) {
        EXPECT_EQ(failure.GetMessage(), "Invalid Value for n [11]");
    }
    // The message shows the variant's own type, not the one asked for.
    value.SetChar('c');
    for (int type : {0, 22, 27, 99, -1})
        EXPECT_EQ(FailureOf<CKdInvalidValueException>(
                      [&] { H::CheckRestriction("c", value, static_cast<ItemType>(type), upTo10); }),
                  "unknown type [char]");
}

TEST(CheckRestriction, ParsedFacetsFollowTheRecord)
{
    CPrimitiveRestrictions record = Bounds("", "10");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori4("n", 10, record); }), kPassed);
    // A changed field is seen at once, whatever was parsed before.
    record.maxInclusive = "9";
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori4("n", 10, record); }), "Invalid Value for n [10]");
    // The same record read as another kind parses in that kind.
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { H::CheckRestrictionFori1("n", 1, Bounds("", "300")); }),
              "The value [300] is to large to fit in a i1");
    CPrimitiveRestrictions wide = Bounds("", "300");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori4("n", 300, wide); }), kPassed);
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { H::CheckRestrictionFori1("n", 1, wide); }),
              "The value [300] is to large to fit in a i1");
    // An unreadable bound fails at its turn on every check: an earlier bound
    // that refuses the value is reported first.
    CPrimitiveRestrictions broken = Bounds("5", "x");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori4("n", 4, broken); }), "Invalid Value for n [4]");
        EXPECT_THROW(H::CheckRestrictionFori4("n", 6, broken), CKdInvalidValueException);
    }
    // Copies and assignments carry the facets.
    CPrimitiveRestrictions copy(record);
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori4("n", 10, copy); }), "Invalid Value for n [10]");
    copy = wide;
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionFori4("n", 10, copy); }), kPassed);
    // A pattern changed after its first use.
    CPrimitiveRestrictions pattern = Lengths(-1, -1, -1, "a+");
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForstring("s", "aa", pattern); }), kPassed);
    pattern.pattern = "b+";
    EXPECT_EQ(FailureOf([&] { H::CheckRestrictionForstring("s", "aa", pattern); }), "Invalid Value for s [aa]");
}

TEST(CheckRestriction, OneRecordServesManyThreads)
{
    CPrimitiveRestrictions const record("\\d{3}-[A-Z]{2}", -1, -1, "", "", "", "", -1);
    CPrimitiveRestrictions const range = Bounds("1", "100");
    std::vector<std::thread> threads;
    std::vector<int> refused(4, 0);
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 1000; ++i) {
                try {
                    H::CheckRestrictionForstring("part", i % 2 ? "872-AA" : "872-A", record);
                } catch (CKdException const&) {
                    ++refused[t];
                }
                try {
                    H::CheckRestrictionFori4("n", i % 200, range);
                } catch (CKdException const&) {
                    ++refused[t];
                }
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int count : refused)
        EXPECT_EQ(count, 500 + 5 * 100);
}

TEST(CheckRestrictionDeathTest, FailuresInsideThePatternTestTrap)
{
    EXPECT_DEATH(H::CheckRestrictionForstring("s", "x", Lengths(-1, -1, -1, "(")), "");
}

} // namespace
