// CDateTime's model: the type tag, construction, the setters with their
// validation, the accessors and the conversions between types. The text
// forms stand in date_time_text.cpp, order and arithmetic in
// date_time_order.cpp.
#include <ctime>

#include "values/date_time_fields.h"

namespace KdBind {

int const g_monthMax[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
int const g_monthDayInYear[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

using namespace DateTimeFields;

namespace {

char const* const kTypeNames[9] = {"yearZero", "dateTime",  "date",   "gYearMonth", "gYear",
                                   "time",     "gDay",      "gMonth", "gMonthDay"};

char const* NameOf(CDateTime::DTType type) { return static_cast<unsigned>(type) < 9 ? kTypeNames[type] : ""; }

// The accessor's failure for a field the type does not hold.
void Require(CDateTime::DTType type, Field field, char const* accessor)
{
    if (!Holds(type, field))
        throw CKdInvalidStateException(
            FormatString("Failed to %s. Invalid Date Type: %s.", accessor, NameOf(type)));
}

// A field the type does not hold must be zero.
void RequireZero(int value, char const* what, CDateTime::DTType type)
{
    if (value != 0)
        throw CKdInvalidValueException(FormatString("Invalid %s [%d] for type %s", what, value, NameOf(type)));
}

// Days from 1970-01-01 of a proleptic Gregorian date; months outside 1 to
// 12 and days beyond the month's end count on linearly.
long long DaysFromCivil(long long year, long long month, long long day)
{
    year -= month <= 2;
    long long const era = (year >= 0 ? year : year - 399) / 400;
    long long const yearOfEra = year - era * 400;
    long long const dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    long long const dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

} // namespace

CDateTime::CDateTime() { Clear(); }

CDateTime::CDateTime(DTType type)
{
    Clear();
    m_type = type;
}

// The value constructors swallow validation failures and come back unset.
CDateTime::CDateTime(short year, unsigned char month, unsigned char day) : CDateTime()
{
    try {
        SetDate(year, month, day);
    } catch (CKdInvalidValueException const&) {
        Clear();
    }
}

CDateTime::CDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
                     unsigned char second)
    : CDateTime(year, month, day, hour, minute, second, 0, 0, 0)
{
}

CDateTime::CDateTime(short year, unsigned char month, unsigned char day, unsigned char hour, unsigned char minute,
                     unsigned char second, unsigned short milli, unsigned short micro, unsigned short nano)
    : CDateTime()
{
    try {
        SetDateTime(year, month, day, hour, minute, second, milli, micro, nano);
    } catch (CKdInvalidValueException const&) {
        Clear();
    }
}

CDateTime::CDateTime(long const& seconds) : CDateTime()
{
    try {
        *this = seconds;
    } catch (CKdInvalidValueException const&) {
        Clear();
    }
}

CDateTime::CDateTime(char const* text) : CDateTime() { ParseXSDDateTime(text); }

CDateTime::~CDateTime() = default;

std::string CDateTime::GetTypeAsString(DTType type) { return NameOf(type); }

CDateTime CDateTime::GetCurrentTime() { return CDateTime(static_cast<long>(time(nullptr))); }

void CDateTime::Clear()
{
    m_type = dt_yearZero;
    m_year = 0;
    m_month = m_day = m_hour = m_minute = m_second = 0;
    m_milli = m_micro = m_nano = 0;
    m_utc = m_hasTimeZone = false;
    m_zoneHour = 0;
    m_zoneMinute = 0;
}

void CDateTime::SetDateTime(DTType type, short year, unsigned char month, unsigned char day, unsigned char hour,
                            unsigned char minute, unsigned char second, unsigned short milli, unsigned short micro,
                            unsigned short nano)
{
    if (m_type != dt_yearZero && m_type != type)
        throw CKdInvalidStateException(FormatString("Failed to copy CDateTime. Invalid Date Type: %s, expected: %s.",
                                                    NameOf(type), NameOf(m_type)));
    Clear();
    m_type = type;
    m_year = year;
    m_month = month;
    m_day = day;
    m_hour = hour;
    m_minute = minute;
    m_second = second;
    m_milli = milli;
    m_micro = micro;
    m_nano = nano;
    Validate();  // a failure leaves the fields as stored
}

void CDateTime::SetDateTime(short year, unsigned char month, unsigned char day, unsigned char hour,
                            unsigned char minute, unsigned char second, unsigned short milli, unsigned short micro,
                            unsigned short nano)
{
    SetDateTime(dt_dateTime, year, month, day, hour, minute, second, milli, micro, nano);
}

void CDateTime::SetDateTime(short year, unsigned char month, unsigned char day, unsigned char hour,
                            unsigned char minute, unsigned char second)
{
    SetDateTime(dt_dateTime, year, month, day, hour, minute, second, 0, 0, 0);
}

void CDateTime::SetDate(short year, unsigned char month, unsigned char day)
{
    SetDateTime(dt_date, year, month, day, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetGYearMonth(short year, unsigned char month)
{
    SetDateTime(dt_gYearMonth, year, month, 0, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetGYear(short year) { SetDateTime(dt_gYear, year, 0, 0, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetGMonth(unsigned char month) { SetDateTime(dt_gMonth, 0, month, 0, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetGDay(unsigned char day) { SetDateTime(dt_gDay, 0, 0, day, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetGMonthDay(unsigned char month, unsigned char day)
{
    SetDateTime(dt_gMonthDay, 0, month, day, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetTime(unsigned char hour, unsigned char minute, unsigned char second, unsigned short milli,
                        unsigned short micro, unsigned short nano)
{
    SetDateTime(dt_time, 0, 0, 0, hour, minute, second, milli, micro, nano);
}

void CDateTime::SetTime(unsigned char hour, unsigned char minute, unsigned char second)
{
    SetDateTime(dt_time, 0, 0, 0, hour, minute, second, 0, 0, 0);
}

void CDateTime::SetFracTime(unsigned short milli, unsigned short micro, unsigned short nano)
{
    SetDateTime(dt_time, 0, 0, 0, 0, 0, 0, milli, micro, nano);
}

void CDateTime::Validate() const
{
    if (m_type == dt_yearZero)
        throw CKdInvalidValueException("Invalid Year Zero");

    if (Holds(m_type, Month)) {
        if (m_month < 1 || m_month > 12)
            throw CKdInvalidValueException(FormatString("Invalid Month [%d] (1 <= month <= 12)", m_month));
    } else {
        RequireZero(m_month, "Month", m_type);
    }

    if (Holds(m_type, Year)) {
        // The bounds stand as maximum, then minimum: the text reads "9999 <= year <= -9999".
        if (m_year == 0 || m_year < MIN_YEAR || m_year > MAX_YEAR)
            throw CKdInvalidValueException(FormatString("Invalid Year [%d] (%d <= year <= %d && year != 0)", m_year,
                                                        MAX_YEAR, MIN_YEAR));
    } else {
        RequireZero(m_year, "Year", m_type);
    }

    switch (m_type) {
    case dt_dateTime:
    case dt_date:
        if (m_day < 1 || m_day > g_monthMax[m_month - 1] || (m_month == 2 && m_day == 29 && !IsLeapYear(m_year)))
            throw CKdInvalidValueException(
                FormatString("Invalid Day [%d] (1 <= day <= days in month", m_day));  // no closing bracket
        break;
    case dt_gMonthDay:  // 29 February is always accepted
        if (m_day < 1 || m_day > g_monthMax[m_month - 1])
            throw CKdInvalidValueException(FormatString("Invalid Day [%d] (1 <= day <= days in month)", m_day));
        break;
    case dt_gDay:
        // The upper bound was always tested against the month field, which a
        // gDay leaves at zero, so only zero is refused: 32 to 255 pass.
        if (m_day == 0)
            throw CKdInvalidValueException(FormatString("Invalid Day [%d] (1 <= day <= 31)", m_day));
        break;
    default:
        RequireZero(m_day, "Day", m_type);
        break;
    }

    if (Holds(m_type, Time)) {
        struct Limit {
            int value;
            int max;
            char const* message;
        };
        Limit const limits[] = {
            {m_hour, 23, "Invalid Hour [%d] (0 <= hour <= 23)"},
            {m_minute, 59, "Invalid Minute [%d] (0 <= minute <= 59)"},
            {m_second, 59, "Invalid Second [%d] (0 <= second <= 59)"},
            {m_milli, 999, "Invalid Milli-Second [%d] (0 <= milli <= 999)"},
            {m_micro, 999, "Invalid Micro-Second [%d] (0 <= micro <= 999)"},
            {m_nano, 999, "Invalid Nano-Second [%d] (0 <= nano <= 999)"},
        };
        for (Limit const& limit : limits)
            if (limit.value > limit.max)
                throw CKdInvalidValueException(FormatString(limit.message, limit.value));
    } else {
        RequireZero(m_hour, "Hour", m_type);
        RequireZero(m_minute, "Minute", m_type);
        RequireZero(m_second, "Second", m_type);
        RequireZero(m_milli, "Milli-Second", m_type);
        RequireZero(m_micro, "Micro-Second", m_type);
        RequireZero(m_nano, "Nano-Second", m_type);
    }
}

void CDateTime::SetUTC()
{
    m_utc = true;
    m_hasTimeZone = false;
    m_zoneHour = 0;
    m_zoneMinute = 0;
}

void CDateTime::SetTimeZone(short hour, unsigned char minute)
{
    if (hour < -23 || hour > 23 || minute > 59)
        throw CKdInvalidValueException(FormatString("Invalid TimeZone [%d:%d]", hour, minute));
    m_utc = true;
    m_hasTimeZone = true;
    m_zoneHour = hour;
    m_zoneMinute = minute;
}

short CDateTime::GetZoneHour() const
{
    if (!m_hasTimeZone)
        throw CKdInvalidStateException("TimeZone is not been used");
    return m_zoneHour;
}

unsigned char CDateTime::GetZoneMinute() const
{
    if (!m_hasTimeZone)
        throw CKdInvalidStateException("TimeZone is not been used");
    return m_zoneMinute;
}

short CDateTime::GetYear() const
{
    Require(m_type, Year, "GetYear");
    return m_year;
}

unsigned char CDateTime::GetMonth() const
{
    Require(m_type, Month, "GetMonth");
    return m_month;
}

unsigned char CDateTime::GetDay() const
{
    Require(m_type, Day, "GetDay");
    return m_day;
}

unsigned char CDateTime::GetHour() const
{
    Require(m_type, Time, "GetHour");
    return m_hour;
}

unsigned char CDateTime::GetMinute() const
{
    Require(m_type, Time, "GetMinute");
    return m_minute;
}

unsigned char CDateTime::GetSecond() const
{
    Require(m_type, Time, "GetSecond");
    return m_second;
}

double CDateTime::GetRealSecond() const
{
    Require(m_type, Time, "GetRealSecond");
    return m_second + m_milli / 1000.0 + m_micro / 1e6 + m_nano / 1e9;
}

unsigned short CDateTime::GetMilliSecond() const
{
    Require(m_type, Time, "GetMilliSecond");
    return m_milli;
}

unsigned short CDateTime::GetMicroSecond() const
{
    Require(m_type, Time, "GetMicroSecond");
    return m_micro;
}

unsigned short CDateTime::GetNanoSecond() const
{
    Require(m_type, Time, "GetNanoSecond");
    return m_nano;
}

unsigned short CDateTime::GetDayOfYear() const
{
    Require(m_type, Ordinal, "GetDayOfYear");
    // A month outside 1 to 12 is left by a failed setter; it counts as January.
    int const month = m_month >= 1 && m_month <= 12 ? m_month : 1;
    int day = g_monthDayInYear[month - 1] + m_day;
    if (IsLeapYear(m_year) && month <= 2)
        ++day;
    return static_cast<unsigned short>(day);
}

unsigned char CDateTime::GetDayOfWeek() const
{
    Require(m_type, Ordinal, "GetDayOfWeek");
    int const y = m_year;
    int const d = GetDayOfYear();
    // The remainders stand where a calendar formula has quotients; the
    // library's day numbers have always come from this formula.
    return static_cast<unsigned char>((y * 365 + y % 4 - y % 400 + d) % 7);
}

CDateTime& CDateTime::operator=(long const& seconds)
{
    time_t const t = static_cast<time_t>(seconds);
    struct tm fields {};
    // gmtime_r: the shared buffer of gmtime would race between threads.
    bool const converted = gmtime_r(&t, &fields) != nullptr;
    long const year = converted ? fields.tm_year + 1900L : 0;
    if (year < MIN_YEAR || year > MAX_YEAR || year == 0)
        throw CKdInvalidValueException(FormatString("Invalid Year [%ld] (%d <= year <= %d && year != 0)", year,
                                                    MAX_YEAR, MIN_YEAR));
    SetDateTime(static_cast<short>(fields.tm_year + 1900), static_cast<unsigned char>(fields.tm_mon + 1),
                static_cast<unsigned char>(fields.tm_mday), static_cast<unsigned char>(fields.tm_hour),
                static_cast<unsigned char>(fields.tm_min), static_cast<unsigned char>(fields.tm_sec));
    return *this;
}

// The fields of the normalised value count as UTC. They are turned into
// seconds by calendar arithmetic rather than by mktime and a correction for
// the local zone: the result is the same, and it depends neither on TZ nor
// on the shared buffers of localtime and gmtime.
long CDateTime::GetTime() const
{
    CDateTime const utc = GetNormalized();
    if (utc.m_type != dt_dateTime && utc.m_type != dt_date)
        throw CKdInvalidValueException(FormatString(
            "Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: %s.", NameOf(utc.m_type)));
    long long seconds = DaysFromCivil(utc.m_year, utc.m_month, utc.m_day) * 86400LL;
    if (utc.m_type == dt_dateTime)
        seconds += utc.m_hour * 3600LL + utc.m_minute * 60LL + utc.m_second;
    return static_cast<long>(seconds);
}

bool CDateTime::CheckConversion(DTType from, DTType to) const
{
    if (static_cast<unsigned>(from) > 8)
        throw CKdInvalidValueException(FormatString("Unknown date type %d.", static_cast<int>(from)));
    if (from == to || to == dt_yearZero)
        return true;
    switch (from) {
    case dt_dateTime:
        return true;
    case dt_date:
        return to == dt_gYear || to == dt_gDay || to == dt_gMonth || to == dt_gMonthDay || to == dt_gYearMonth;
    case dt_gYearMonth:
        return to == dt_gMonth || to == dt_gYear;
    case dt_gMonthDay:
        return to == dt_gDay || to == dt_gMonth;
    default:
        return false;
    }
}

void CDateTime::SetDateTime(CDateTime const& source, DTType to)
{
    if (!CheckConversion(source.m_type, to))
        throw CKdInvalidValueException(
            FormatString("Attempting to set a CDateTime of type %s using an XmlDateTime of type %s. The source "
                         "CDateTime does not contian enough data to allow the conversion.",
                         NameOf(source.m_type), NameOf(to)));
    // The fields the new type does not hold keep the source's numbers.
    *this = source;
    m_type = to;
}

} // namespace KdBind
