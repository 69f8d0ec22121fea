// CDateTimeSpan: its lexical form both ways and its order.
#include <kdbind/values.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

CDateTimeSpan Span(char const* text)
{
    CDateTimeSpan span;
    span.ParseXSDDuration(text);
    return span;
}

std::string Expected(char const* text)
{
    return std::string("Invalid XSD Duration [") + text + "] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]";
}

} // namespace

TEST(DateTimeSpanTest, ReadsAndPrintsTheLexicalForm)
{
    struct Case {
        char const* text;
        char const* printed;
    };
    Case const cases[] = {
        {"P1Y2M3DT4H5M6.7S", "P1Y2M3DT4H5M6.7S"},
        {"-P1D", "-P1D"},
        {"PT1M", "PT1M"},
        {"P1M", "P1M"},
        {"P1D1Y", "P1Y1D"},        // "Y" is taken in any state
        {"PT1H2Y3M", "P2Y3MT1H"},  // and leads back to the months
        {"PT0S", "P"},
        {"PT1.", "PT1S"},
        {"PT1.S", "PT1S"},
        {"P5T1H", "PT1H"},  // digits before "T" are dropped
        {"PT0.000001S", "PT0.000001S"},
        {"PT1.123456789S", "PT1.123456009S"},  // digits 7 to 9 each overwrite the last group
        {"PT0.0000001S", "PT0.000000001S"},
        {"PT4294967297S", "PT1S"},  // numbers keep their low 32 bits
        {"PT4294967295S", "PT18446744073709551615S"},  // ... read as signed
    };
    for (Case const& c : cases)
        EXPECT_EQ(Span(c.text).ToString(), c.printed) << c.text;

    CDateTimeSpan const span = Span("P1Y2M3DT4H5M6.007008009S");
    EXPECT_EQ(span.GetYears(), 1);
    EXPECT_EQ(span.GetMonths(), 2u);
    EXPECT_EQ(span.GetDays(), 3u);
    EXPECT_EQ(span.GetHours(), 4u);
    EXPECT_EQ(span.GetMinutes(), 5u);
    EXPECT_EQ(span.GetSeconds(), 6u);
    EXPECT_EQ(span.GetMilliSeconds(), 7);
    EXPECT_EQ(span.GetMicroSeconds(), 8);
    EXPECT_EQ(span.GetNanoSeconds(), 9);
    EXPECT_EQ(Span("P70000Y").GetYears(), 70000 % 65536);

    EXPECT_EQ(CDateTimeSpan().ToString(), "P");
    EXPECT_EQ(CDateTimeSpan(0, 0, 0, 0, 0, 0, 0, 0, 5).ToString(), "PT0.000000005S");
    CDateTimeSpan changed = Span("-P1Y");
    changed.SetDateTimeSpan(1, 2, 3);
    EXPECT_EQ(changed.ToString(), "PT1H2M3S");  // the setters clear the sign too

    // Negate toggles; GetAsNegative only ever sets.
    CDateTimeSpan sign = Span("P1D");
    sign.Negate();
    EXPECT_TRUE(sign.IsNegative());
    sign.Negate();
    EXPECT_FALSE(sign.IsNegative());
    EXPECT_TRUE(sign.GetAsNegative().GetAsNegative().IsNegative());
}

TEST(DateTimeSpanTest, RefusesMalformedTextWithItsMessages)
{
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { Span(nullptr); }), "Invalid XSD Duration (Null String)");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { Span(""); }), "Invalid XSD Duration (Empty String)");
    char const* const refused[] = {"P", "PT", "P1YT", "P-1D", "1D", "-", "P1S", "PT1H1H", "PT1.5", "PT1.5X",
                                   "P1", "PT1D", "P1DT1M1H", "P1M1M", "PT1S1S", "P 1D"};
    for (char const* text : refused)
        EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { Span(text); }), Expected(text)) << text;
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { Span("PT1.1234567890S"); }),
              "Invalid XSD Duration [PT1.1234567890S] Fraction part too long");
    // A hostile run of digits is just a wrapped number.
    std::string const longNumber = "P" + std::string(1000, '9') + "D";
    EXPECT_NO_THROW(Span(longNumber.c_str()));
}

TEST(DateTimeSpanTest, OrderComesFromTheFourReferenceDates)
{
    struct Case {
        char const* a;
        char const* b;
        int result;
    };
    Case const cases[] = {
        {"PT60S", "PT1M", 0},
        {"P1D", "PT24H", 0},
        {"PT1S", "PT2S", 0},  // only what carries into another day counts
        {"PT1H", "PT25H", 1},
        {"P2D", "P1D", 2},
        {"P1Y", "P365D", 3},  // a year is 365 or 366 days
        {"P1M", "P30D", 3},
        {"P1M", "P2M", 0},   // months are not told apart
        {"-P1D", "P1D", 2},  // months are read from one side only, so day 31 beats day 2
        {"P1Y", "P1Y", 0},
    };
    for (Case const& c : cases) {
        EXPECT_EQ(Span(c.a).CompareTo(Span(c.b)), c.result) << c.a << " " << c.b;
    }
    CDateTimeSpan const day = Span("P1D");
    CDateTimeSpan const twoDays = Span("P2D");
    EXPECT_TRUE(day < twoDays && twoDays > day && day != twoDays && day == Span("PT24H"));
    EXPECT_TRUE(Span("P1M") != Span("P30D"));  // also for an indeterminate pair
    EXPECT_FALSE(Span("P1M") < Span("P30D") || Span("P1M") > Span("P30D") || Span("P1M") == Span("P30D"));
}
