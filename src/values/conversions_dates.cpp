// The date and duration kinds: each prints the XML form of its value and
// parses through the value class's own parser.
#include "kdbind/values.h"

namespace KdBind {

namespace {

// A value of the kind's type, then the parser. The parsers clear first, so
// the type of the result is the one the text has.
CDateTime ParseDate(std::string const& text, CWhitespaceUtils::WhitespaceRule rule, CDateTime::DTType type,
                    void (CDateTime::*parse)(char const*))
{
    std::string const ruled = CWhitespaceUtils::ApplyRule(rule, text);
    CDateTime value(type);
    (value.*parse)(ruled.c_str());
    return value;
}

} // namespace

std::string CConversions::durationToString(CDateTimeSpan const& value) { return value.ToString(); }
std::string CConversions::yearMonthToString(CDateTime const& value) { return value.ToString("s"); }
std::string CConversions::monthDayToString(CDateTime const& value) { return value.ToString("s"); }
std::string CConversions::dateToString(CDateTime const& value) { return value.ToString("s"); }
std::string CConversions::datetimeToString(CDateTime const& value) { return value.ToString("s"); }
std::string CConversions::timeToString(CDateTime const& value) { return value.ToString("s"); }

CDateTimeSpan CConversions::durationFromString(std::string const& text, WhitespaceRule rule)
{
    std::string const ruled = CWhitespaceUtils::ApplyRule(rule, text);
    CDateTimeSpan value;
    value.ParseXSDDuration(ruled.c_str());
    return value;
}

CDateTime CConversions::datetimeFromString(std::string const& text, WhitespaceRule rule)
{
    return ParseDate(text, rule, CDateTime::dt_dateTime, &CDateTime::ParseXSDDateTime);
}

CDateTime CConversions::dateFromString(std::string const& text, WhitespaceRule rule)
{
    return ParseDate(text, rule, CDateTime::dt_date, &CDateTime::ParseXSDDate);
}

CDateTime CConversions::timeFromString(std::string const& text, WhitespaceRule rule)
{
    return ParseDate(text, rule, CDateTime::dt_time, &CDateTime::ParseXSDTime);
}

CDateTime CConversions::yearMonthFromString(std::string const& text, WhitespaceRule rule)
{
    return ParseDate(text, rule, CDateTime::dt_gYearMonth, &CDateTime::ParseXSDDate);
}

CDateTime CConversions::monthDayFromString(std::string const& text, WhitespaceRule rule)
{
    return ParseDate(text, rule, CDateTime::dt_gMonthDay, &CDateTime::ParseXSDDate);
}

// year, month and day read any date-only form that holds their field:
// "2004-05-06" is year 2004. A form without it fails in the accessor.
// A negative year comes back as its 16-bit pattern: "-0005" gives 65531.
unsigned short CConversions::yearFromString(std::string const& text, WhitespaceRule rule)
{
    return static_cast<unsigned short>(
        ParseDate(text, rule, CDateTime::dt_gYear, &CDateTime::ParseXSDDate).GetYear());
}

unsigned char CConversions::monthFromString(std::string const& text, WhitespaceRule rule)
{
    return ParseDate(text, rule, CDateTime::dt_gMonth, &CDateTime::ParseXSDDate).GetMonth();
}

unsigned char CConversions::dayFromString(std::string const& text, WhitespaceRule rule)
{
    return ParseDate(text, rule, CDateTime::dt_gDay, &CDateTime::ParseXSDDate).GetDay();
}

} // namespace KdBind
