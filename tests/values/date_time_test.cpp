// CDateTime: its fields and validation, its text forms, its order and its
// arithmetic.
#include <cstdlib>
#include <ctime>

#include <kdbind/values.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

CDateTime Parsed(char const* text, void (CDateTime::*parse)(char const*) = &CDateTime::ParseXSDDateTime)
{
    CDateTime value;
    (value.*parse)(text);
    return value;
}

CDateTime Date(char const* text) { return Parsed(text, &CDateTime::ParseXSDDate); }

// The message of the value failure a parse raises.
std::string ParseFailure(void (CDateTime::*parse)(char const*), char const* text)
{
    CDateTime value;
    return FailureOf<CKdInvalidValueException>([&] { (value.*parse)(text); });
}

// Sets TZ for one scope.
class TimeZoneScope {
public:
    explicit TimeZoneScope(char const* zone)
    {
        char const* previous = getenv("TZ");
        m_had = previous != nullptr;
        if (m_had)
            m_previous = previous;
        setenv("TZ", zone, 1);
        tzset();
    }
    ~TimeZoneScope()
    {
        if (m_had)
            setenv("TZ", m_previous.c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }

private:
    bool m_had;
    std::string m_previous;
};

} // namespace

TEST(DateTimeTest, ValueConstructorsComeBackUnsetWhereSettersThrow)
{
    EXPECT_EQ(CDateTime(2003, 2, 29).GetType(), CDateTime::dt_yearZero);
    EXPECT_EQ(CDateTime(2004, 2, 29).GetType(), CDateTime::dt_date);
    EXPECT_EQ(CDateTime(2004, 1, 1, 24, 0, 0).GetType(), CDateTime::dt_yearZero);
    EXPECT_EQ(CDateTime(2004, 1, 1, 23, 0, 0, 999, 999, 1000).GetType(), CDateTime::dt_yearZero);

    CDateTime value;
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.SetDate(2003, 2, 29); }),
              "Invalid Day [29] (1 <= day <= days in month");
    EXPECT_EQ(value.GetDay(), 29);  // no roll back
    value.Clear();
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.SetDate(0, 1, 1); }),
              "Invalid Year [0] (9999 <= year <= -9999 && year != 0)");
    value.Clear();
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.SetDate(2004, 13, 1); }),
              "Invalid Month [13] (1 <= month <= 12)");

    // A gMonthDay accepts 29 February in any year; its message has its bracket.
    value.Clear();
    value.SetGMonthDay(2, 29);
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.SetGMonthDay(2, 30); }),
              "Invalid Day [30] (1 <= day <= days in month)");
    // A gDay refuses only zero.
    value.Clear();
    value.SetGDay(40);
    EXPECT_EQ(value.ToString(), "---40");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.SetGDay(0); }), "Invalid Day [0] (1 <= day <= 31)");

    value.Clear();
    struct {
        void (*set)(CDateTime&);
        char const* message;
    } const timeFailures[] = {
        {[](CDateTime& v) { v.SetTime(24, 0, 0); }, "Invalid Hour [24] (0 <= hour <= 23)"},
        {[](CDateTime& v) { v.SetTime(0, 60, 0); }, "Invalid Minute [60] (0 <= minute <= 59)"},
        {[](CDateTime& v) { v.SetTime(0, 0, 60); }, "Invalid Second [60] (0 <= second <= 59)"},
        {[](CDateTime& v) { v.SetFracTime(1000, 0, 0); }, "Invalid Milli-Second [1000] (0 <= milli <= 999)"},
        {[](CDateTime& v) { v.SetFracTime(0, 1000, 0); }, "Invalid Micro-Second [1000] (0 <= micro <= 999)"},
        {[](CDateTime& v) { v.SetFracTime(0, 0, 1000); }, "Invalid Nano-Second [1000] (0 <= nano <= 999)"},
    };
    for (auto const& failure : timeFailures)
        EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { failure.set(value); }), failure.message);
}

TEST(DateTimeTest, ATypedValueKeepsItsTypeAndItsAccessorsGuardTheFields)
{
    CDateTime value(2004, 1, 1);
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([&] { value.SetTime(1, 2, 3); }),
              "Failed to copy CDateTime. Invalid Date Type: time, expected: date.");
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([&] { value.GetHour(); }),
              "Failed to GetHour. Invalid Date Type: date.");
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([&] { value.GetRealSecond(); }),
              "Failed to GetRealSecond. Invalid Date Type: date.");
    CDateTime time;
    time.SetTime(1, 2, 3, 500, 250, 125);
    EXPECT_DOUBLE_EQ(time.GetRealSecond(), 3.500250125);
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([&] { time.GetDayOfYear(); }),
              "Failed to GetDayOfYear. Invalid Date Type: time.");
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([&] { CDateTime().GetYear(); }),
              "Failed to GetYear. Invalid Date Type: yearZero.");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { CDateTime().Validate(); }), "Invalid Year Zero");
    EXPECT_EQ(CDateTime::GetTypeAsString(CDateTime::dt_gMonthDay), "gMonthDay");
    EXPECT_EQ(CDateTime::GetTypeAsString(static_cast<CDateTime::DTType>(9)), "");

    // The extra day of a leap year belongs to January and February.
    EXPECT_EQ(CDateTime(2004, 3, 1).GetDayOfYear(), 60);
    EXPECT_EQ(CDateTime(2003, 3, 1).GetDayOfYear(), 60);
    EXPECT_EQ(CDateTime(2004, 1, 1).GetDayOfYear(), 2);

    // Zones: "Z" is a zone without an offset, and the sign lies in the hour.
    value.SetUTC();
    EXPECT_TRUE(value.IsUTC());
    EXPECT_FALSE(value.HasTimeZone());
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([&] { value.GetZoneHour(); }), "TimeZone is not been used");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.SetTimeZone(24, 0); }), "Invalid TimeZone [24:0]");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.SetTimeZone(0, 60); }), "Invalid TimeZone [0:60]");
    EXPECT_FALSE(value.HasTimeZone());  // unchanged by the failures
    value.SetTimeZone(-23, 59);
    EXPECT_EQ(value.GetZoneHour(), -23);
    EXPECT_EQ(value.GetZoneMinute(), 59);
    EXPECT_EQ(value.ToString(), "2004-01-01-23:59");
}

TEST(DateTimeTest, ConversionBetweenTypesFollowsWhatTheSourceHolds)
{
    CDateTime const stamp("2004-05-06T07:08:09Z");
    CDateTime value;
    value.SetDateTime(stamp, CDateTime::dt_gMonthDay);
    EXPECT_EQ(value.GetType(), CDateTime::dt_gMonthDay);
    EXPECT_EQ(value.GetDay(), 6);
    EXPECT_TRUE(value.IsUTC());
    // The fields the new type does not hold keep their numbers.
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.Validate(); }), "Invalid Year [2004] for type gMonthDay");

    CDateTime const month = Date("--05");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.SetDateTime(month, CDateTime::dt_date); }),
              "Attempting to set a CDateTime of type gMonth using an XmlDateTime of type date. The source CDateTime "
              "does not contian enough data to allow the conversion.");
    EXPECT_TRUE(value.CheckConversion(CDateTime::dt_date, CDateTime::dt_gYearMonth));
    EXPECT_FALSE(value.CheckConversion(CDateTime::dt_date, CDateTime::dt_time));
    EXPECT_TRUE(value.CheckConversion(CDateTime::dt_gMonthDay, CDateTime::dt_gDay));
    EXPECT_FALSE(value.CheckConversion(CDateTime::dt_gYearMonth, CDateTime::dt_gMonthDay));
    EXPECT_TRUE(value.CheckConversion(CDateTime::dt_time, CDateTime::dt_yearZero));
    EXPECT_EQ(FailureOf<CKdInvalidValueException>(
                  [&] { value.CheckConversion(static_cast<CDateTime::DTType>(9), CDateTime::dt_date); }),
              "Unknown date type 9.");
}

TEST(DateTimeTest, EveryTypePrintsItsXmlFormAndReadsItBack)
{
    char const* const dates[] = {"2004-05-06", "-0001-01-01", "2004-05", "2004Z", "---31", "--12", "--02-29",
                                 "2004-05-06+05:30", "0001-01-01-23:59"};
    for (char const* text : dates)
        EXPECT_EQ(Date(text).ToString(), text);
    char const* const times[] = {"00:00:00", "23:59:59.999999999", "12:00:00.0000001Z", "12:30:00.25-05:00"};
    for (char const* text : times)
        EXPECT_EQ(Parsed(text, &CDateTime::ParseXSDTime).ToString(), text);
    // Fractions beyond milliseconds and the zone survive a round trip.
    char const* const stamps[] = {"2004-01-02T12:00:00", "2004-01-02T12:00:00.000001Z",
                                  "9999-12-31T23:59:59.123456789+14:00"};
    for (char const* text : stamps)
        EXPECT_EQ(CDateTime(text).ToString(), text);

    EXPECT_EQ(CDateTime("2004-01-02T12:00:00.100").ToString(), "2004-01-02T12:00:00.1");
    EXPECT_EQ(Date("--12--").ToString(), "--12");
    EXPECT_EQ(Date("--12xx").GetMonth(), 12);
    EXPECT_EQ(Parsed("12:00:00+24:00", &CDateTime::ParseXSDTime).ToString(), "12:00:00+00:00");
    EXPECT_EQ(Parsed("12:00:00-00:30", &CDateTime::ParseXSDTime).ToString(), "12:00:00+00:30");
    // Text behind a time that is not a zone is ignored; so is a bare point.
    CDateTime const lenient = Parsed("12:00:00abc", &CDateTime::ParseXSDTime);
    EXPECT_FALSE(lenient.IsUTC());
    EXPECT_EQ(lenient.ToString(), "12:00:00");
    EXPECT_EQ(Parsed("12:00:00.", &CDateTime::ParseXSDTime).ToString(), "12:00:00");
    EXPECT_EQ(Parsed("12:00:00.Z", &CDateTime::ParseXSDTime).ToString(), "12:00:00Z");
    // A zone on the date part stays unless the time brings its own.
    EXPECT_EQ(CDateTime("2004-01-02ZT10:00:00").ToString(), "2004-01-02T10:00:00Z");
    EXPECT_EQ(CDateTime("2004-01-02ZT10:00:00+01:00").ToString(), "2004-01-02T10:00:00+01:00");

    // Printing formats, and values that cannot print.
    CDateTime const date = Date("2004-05-06");
    EXPECT_EQ(date.ToString("x"), "Unknown Format: x");
    EXPECT_EQ(date.ToString("G"), "");
    EXPECT_EQ(date.ToString(nullptr), "");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { CDateTime().ToString(); }), "Date Not Set");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { CDateTime(CDateTime::dt_date).ToString(); }), "Date Not Set");
    EXPECT_EQ(CDateTime(CDateTime::dt_time).ToString(), "00:00:00");
}

TEST(DateTimeTest, ParsersRefuseMalformedAndHostileTextWithTheirMessages)
{
    auto const date = &CDateTime::ParseXSDDate;
    auto const time = &CDateTime::ParseXSDTime;
    auto const stamp = &CDateTime::ParseXSDDateTime;
    std::string const expectedDate = "] expected CCYY-MM-DD[Z|[+|-]hh:mm]";
    std::string const expectedTime = "] expected hh:mm:ss[.ff]";
    struct Case {
        void (CDateTime::*parse)(char const*);
        char const* text;
        std::string message;
    };
    std::string const longYear(40, '9');
    std::string const longFraction = "12:00:00." + std::string(1000, '5');
    Case const cases[] = {
        {date, nullptr, "Invalid Date (Null String)"},
        {date, "", "Invalid Date (Empty String)"},
        {date, "2004-01-01T", "Invalid Date ('T' not allowed)"},
        {date, "2004-01-01+05:00Z", "Invalid Date (Bad Zone value)"},
        {date, "2004-Z", "Invalid XSD Date [2004-Z" + expectedDate},
        {date, "2004-01-01+0500", "Invalid XSD Date [2004-01-01+0500" + expectedDate},
        {date, "2004-1-01", "Invalid XSD Date [2004-1-01" + expectedDate},
        {date, "--1", "Invalid XSD Date [--1" + expectedDate},
        {date, longYear.c_str(), "Invalid XSD Date [" + longYear + expectedDate},
        {date, "0000-01-01", "Invalid Year [0] (9999 <= year <= -9999 && year != 0)"},
        {date, "2004-13-01", "Invalid Month [13] (1 <= month <= 12)"},
        {date, "2004-02-30Z", "Invalid Day [30] (1 <= day <= days in month"},
        {date, "2004-01-01+05:0x", "Invalid XSD Time Zone [+05:0x]"},
        {date, "2004-01-01+25:00", "Invalid TimeZone [25:0]"},
        {time, nullptr, "Invalid Time (Null String)"},
        {time, "", "Invalid XSD Time (Empty String)"},
        {time, "24:00:00", "Invalid XSD Time [24:00:00" + expectedTime},
        {time, "12:60:00", "Invalid XSD Time [12:60:00" + expectedTime},
        {time, "12:00", "Invalid XSD Time [12:00" + expectedTime},
        {time, "12:00:00.1234567890", "Invalid XSD Time [12:00:00.1234567890] Fraction part too long"},
        {time, longFraction.c_str(), "Invalid XSD Time [" + longFraction + "] Fraction part too long"},
        {time, "12:00:00+5:00", "Invalid XSD Time Zone [+5:00]"},
        {stamp, nullptr, "Invalid DateTime (Null String)"},
        {stamp, "2004-01-01", "Invalid XSD DateTime [2004-01-01]"},
        {stamp, "2004-01T10:00:00", "Invalid XSD DateTime [2004-01T10:00:00] expected CCYY-MM-DDThh:mm:ss[.ff]"},
        {stamp, "2004-01-01T24:00:00", "Invalid XSD Time [24:00:00" + expectedTime},
        {stamp, "T10:00:00", "Invalid Date (Empty String)"},
        {stamp, "2003-02-29T10:00:00", "Invalid Day [29] (1 <= day <= days in month"},
    };
    for (Case const& c : cases)
        EXPECT_EQ(ParseFailure(c.parse, c.text), c.message) << (c.text ? c.text : "(null)");

    // A zone of +15:00 is within the offsets the class holds.
    EXPECT_EQ(CDateTime("2004-01-01T00:00:00+15:00").ToString(), "2004-01-01T00:00:00+15:00");
    // The parse clears whatever type the value held before.
    CDateTime value(CDateTime::dt_gYear);
    value.ParseXSDDate("2004-05-06");
    EXPECT_EQ(value.GetType(), CDateTime::dt_date);
    EXPECT_THROW(CDateTime("nonsense"), CKdInvalidValueException);
}

TEST(DateTimeTest, EpochSecondsAndTextIgnoreTheProcessZoneAndLocale)
{
    TimeZoneScope zone("XXX-9:30YYY,M3.5.0,M10.5.0");  // +09:30 with summer time
    LocaleScope locale("C.UTF-8");

    EXPECT_EQ(CDateTime("1970-01-01T00:00:00Z").GetTime(), 0);
    EXPECT_EQ(CDateTime("1970-01-01T00:00:00").GetTime(), 0);  // no zone counts as UTC
    EXPECT_EQ(CDateTime("1970-01-01T01:00:00+01:00").GetTime(), 0);
    EXPECT_EQ(CDateTime("2004-07-01T12:00:00-05:30").GetTime(), 1088703000);
    EXPECT_EQ(Date("2000-03-01").GetTime(), 951868800);
    EXPECT_EQ(Date("1900-01-01").GetTime(), -2208988800L);
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([] { Date("2004").GetTime(); }),
              "Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: gYear.");

    CDateTime const fromSeconds(1088688600L);
    EXPECT_EQ(fromSeconds.ToString(), "2004-07-01T13:30:00");
    EXPECT_EQ(fromSeconds.GetTime(), 1088688600);
    EXPECT_EQ(CDateTime(-2208988800L).ToString(), "1900-01-01T00:00:00");
    // Beyond year 9999 the constructor comes back unset.
    EXPECT_EQ(CDateTime(400000000000L).GetType(), CDateTime::dt_yearZero);
    long const now = static_cast<long>(time(nullptr));
    EXPECT_NEAR(CDateTime::GetCurrentTime().GetTime(), now, 5);

    CDateTime date(2004, 1, 1);
    EXPECT_THROW(date = 0L, CKdInvalidStateException);  // only an unset value or a dateTime takes seconds
}

TEST(DateTimeTest, ComparisonIsFieldByFieldWithItsIndeterminateCases)
{
    EXPECT_EQ(CDateTime("2004-01-01T00:00:00").CompareTo(CDateTime("2004-01-01T00:00:00.000000001")), 1);
    EXPECT_EQ(CDateTime("2004-01-02T00:00:00").CompareTo(CDateTime("2004-01-01T23:59:59")), 2);
    EXPECT_EQ(Compare(Date("-0001"), Date("0001")), 3);  // years of opposite sign are not ordered
    EXPECT_EQ(Compare(Date("-0002"), Date("-0001")), 1);
    // Months are read from the first operand on both sides.
    EXPECT_EQ(Date("2004-01-15").CompareTo(Date("2004-12-15")), 0);
    EXPECT_EQ(Date("2004-01-15").CompareTo(Date("2004-12-16")), 1);
    EXPECT_EQ(Date("2004-05-06").CompareTo(Date("2004")), 3);
    EXPECT_EQ(FailureOf<CKdInvalidStateException>([] { Date("2004").CompareTo(Date("2004-05-06")); }),
              "Failed to GetMonth. Invalid Date Type: gYear.");

    // Offsets are normalised away; "Z" against no zone leaves 14 hours of doubt.
    EXPECT_EQ(CDateTime("2004-01-01T05:00:00+05:00").CompareTo(CDateTime("2004-01-01T00:00:00Z")), 0);
    EXPECT_EQ(CDateTime("2004-01-01T00:00:00Z").CompareTo(CDateTime("2004-01-01T00:00:00")), 3);
    EXPECT_EQ(CDateTime("2004-01-01T00:00:00Z").CompareTo(CDateTime("2004-01-01T15:00:00")), 1);
    EXPECT_EQ(CDateTime("2004-01-01T00:00:00").CompareTo(CDateTime("2004-01-01T15:00:00Z")), 1);
    // The second test runs against the unshifted value.
    EXPECT_EQ(CDateTime("2004-01-02T00:00:00Z").CompareTo(CDateTime("2004-01-01T23:00:00")), 2);
    EXPECT_EQ(CDateTime("2004-01-01T00:00:00").CompareTo(CDateTime("2003-12-31T23:00:00Z")), 3);
    EXPECT_EQ(CDateTime("2004-01-02T00:00:00").CompareTo(CDateTime("2004-01-01T00:00:00Z")), 2);

    CDateTime const a("2004-01-01T00:00:00Z");
    CDateTime const b("2004-01-01T00:00:00");
    EXPECT_TRUE(a != b);
    EXPECT_FALSE(a == b || a < b || a <= b || a > b || a >= b);
    CDateTime const c("2004-01-01T00:00:01Z");
    EXPECT_TRUE(a < c && a <= c && c > a && c >= a && a <= a && a == a);

    CDateTime const normal = CDateTime("2004-01-01T00:10:00-00:30").GetNormalized();
    EXPECT_EQ(normal.ToString(), "2003-12-31T23:40:00+00:00");  // "-00:30" moves as "+00:30" does
    EXPECT_EQ(CDateTime("2004-12-31T23:00:00-05:00").GetNormalized().ToString(), "2005-01-01T04:00:00+00:00");
}

TEST(DateTimeTest, AddingADurationWalksMonthsAndLeapYearsUnvalidated)
{
    auto plus = [](char const* date, char const* duration) {
        CDateTimeSpan span;
        span.ParseXSDDuration(duration);
        return (Date(date) + span).ToString();
    };
    auto minus = [](char const* date, char const* duration) {
        CDateTimeSpan span;
        span.ParseXSDDuration(duration);
        return (Date(date) - span).ToString();
    };
    EXPECT_EQ(plus("2004-01-31", "P1M"), "2004-02-31");  // not pinned to the month's end
    EXPECT_EQ(minus("2004-03-01", "P1D"), "2004-02-29");
    EXPECT_EQ(minus("2003-03-01", "P1D"), "2003-02-28");
    EXPECT_EQ(plus("2004-02-28", "P1D"), "2004-02-29");
    EXPECT_EQ(plus("2003-02-28", "P1D"), "2003-03-01");
    EXPECT_EQ(plus("2004-12-31", "P1D"), "2005-01-01");
    EXPECT_EQ(minus("2005-01-01", "P1D"), "2004-12-31");
    EXPECT_EQ(plus("2004-01-01", "P400D"), "2005-02-04");
    EXPECT_EQ(plus("2004-01-01", "-P1Y13M"), "2001-12-01");
    EXPECT_EQ(plus("-0001-01-01", "P1Y"), "0000-01-01");  // year zero is not skipped
    EXPECT_EQ(plus("2004-01-01Z", "P1D"), "2004-01-02Z");  // the zone stays

    CDateTime stamp("2004-12-31T23:59:59.999999999+01:00");
    stamp += CDateTimeSpan(0, 0, 0, 0, 0, 0, 0, 0, 1);
    EXPECT_EQ(stamp.ToString(), "2005-01-01T00:00:00+01:00");
    // A negative span stays negative when subtracted.
    stamp -= CDateTimeSpan(0, 0, 1).GetAsNegative();
    EXPECT_EQ(stamp.ToString(), "2004-12-31T23:59:59+01:00");
    EXPECT_EQ((stamp - stamp).ToString(), "P");

    CDateTime time;
    time.SetTime(23, 0, 0);
    time += CDateTimeSpan(2, 0, 0);
    EXPECT_EQ(time.ToString(), "01:00:00");

    // Hostile spans end, and leave a value that prints.
    CDateTimeSpan huge;
    huge.ParseXSDDuration("P99999999999Y99999999999M2147483647DT99999999999H99999999999M99999999999.999999999S");
    CDateTime far("2004-01-01T00:00:00");
    far += huge;
    EXPECT_FALSE(far.ToString().empty());
    huge.Negate();
    far += huge;
    EXPECT_FALSE(far.ToString().empty());
    EXPECT_EQ(GetQuotient(-1, 12), -1);
    EXPECT_EQ(GetModulo(-1, 12), 11);
    EXPECT_EQ(GetQuotient(16777217, 1), 16777216);  // single precision, as the arithmetic has always had it
}
