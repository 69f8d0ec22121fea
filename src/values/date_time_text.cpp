// CDateTime's text: the XML forms it prints, the three parsers and the zone
// parser. Digits are read and written by hand, so neither the locale nor the
// time zone of the process has a say, and the hot path allocates only the
// result string.
#include <cstring>

#include "kdbind/values.h"

namespace KdBind {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int TwoDigits(char const* p) { return (p[0] - '0') * 10 + (p[1] - '0'); }

bool AreDigits(char const* p, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        if (!IsDigit(p[i]))
            return false;
    return true;
}

// value in decimal with at least width digits, zero-padded, as "%0*d"
// prints a non-negative number; returns the end of the digits.
char* WritePadded(char* out, unsigned value, int width)
{
    char digits[10];
    int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    for (int i = count; i < width; ++i)
        *out++ = '0';
    while (count > 0)
        *out++ = digits[--count];
    return out;
}

// The fraction as ToFracString prints it: the groups up to the last one
// that is not zero, that last one without its trailing zeros (but never
// emptied).
char* WriteFraction(char* out, unsigned short milli, unsigned short micro, unsigned short nano)
{
    unsigned short const groups[3] = {milli, micro, nano};
    int last = nano ? 2 : micro ? 1 : milli ? 0 : -1;
    if (last < 0)
        return out;
    *out++ = '.';
    for (int i = 0; i <= last; ++i) {
        char* const start = out;
        out = WritePadded(out, groups[i], 3);
        if (i == last)
            while (out - start > 1 && out[-1] == '0')
                --out;
    }
    return out;
}

} // namespace

size_t CDateTime::FormatXml(char* out) const
{
    char* p = out;
    auto year = [&] {
        if (m_year < 0)
            *p++ = '-';
        p = WritePadded(p, static_cast<unsigned>(m_year < 0 ? -m_year : m_year), 4);
    };
    auto two = [&](unsigned value) { p = WritePadded(p, value, 2); };
    auto time = [&] {
        two(m_hour);
        *p++ = ':';
        two(m_minute);
        *p++ = ':';
        two(m_second);
        p = WriteFraction(p, m_milli, m_micro, m_nano);
    };
    switch (m_type) {
    case dt_date:
    case dt_dateTime:
        year();
        *p++ = '-';
        two(m_month);
        *p++ = '-';
        two(m_day);
        if (m_type == dt_dateTime) {
            *p++ = 'T';
            time();
        }
        break;
    case dt_gDay:
        *p++ = '-';
        *p++ = '-';
        *p++ = '-';
        two(m_day);
        break;
    case dt_gMonth:
    case dt_gMonthDay:
        *p++ = '-';
        *p++ = '-';
        two(m_month);
        if (m_type == dt_gMonthDay) {
            *p++ = '-';
            two(m_day);
        }
        break;
    case dt_time:
        time();
        break;
    case dt_gYear:
    case dt_gYearMonth:
        year();
        if (m_type == dt_gYearMonth) {
            *p++ = '-';
            two(m_month);
        }
        break;
    default:
        break;
    }
    if (m_utc) {
        if (m_hasTimeZone) {
            // The sign lies in the hour alone: "-00:30" prints as "+00:30".
            *p++ = m_zoneHour < 0 ? '-' : '+';
            two(static_cast<unsigned>(m_zoneHour < 0 ? -m_zoneHour : m_zoneHour));
            *p++ = ':';
            two(m_zoneMinute);
        } else {
            *p++ = 'Z';
        }
    }
    return static_cast<size_t>(p - out);
}

std::string CDateTime::ToString(char const* format) const
{
    bool const allZero = m_year == 0 && m_month == 0 && m_day == 0 && m_hour == 0 && m_minute == 0 &&
                         m_second == 0 && m_milli == 0 && m_micro == 0 && m_nano == 0;
    if (m_type == dt_yearZero || (m_type != dt_time && allZero))
        throw CKdInvalidValueException("Date Not Set");
    // A null format, and "G", print nothing. An empty format of the caller's
    // is an unknown format like any other.
    if (!format || (format[0] == 'G' && format[1] == '\0'))
        return std::string();
    if (format[0] != 's' || format[1] != '\0')
        return std::string("Unknown Format: ") + format;
    // Holds the longest form with room to spare: fields out of range (left by
    // a failed setter) print with more digits.
    char buffer[80];
    return std::string(buffer, FormatXml(buffer));
}

// ---------------------------------------------------------------------------
// Parsers. The public ones take a C string; the working ones a length too,
// so that a dateTime is read in place without copying its two halves.
// ---------------------------------------------------------------------------

void CDateTime::SetZone(char const* text)
{
    if (text)
        SetZone(text, strlen(text));
}

void CDateTime::SetZone(char const* text, size_t length)
{
    if (length == 0)
        return;
    if (text[0] == 'Z') {
        SetUTC();
        return;
    }
    // Text behind a time that is not a zone at all is ignored.
    if (text[0] != '+' && text[0] != '-')
        return;
    if (length != 6 || !AreDigits(text + 1, 2) || text[3] != ':' || !AreDigits(text + 4, 2))
        throw CKdInvalidValueException(
            FormatString("Invalid XSD Time Zone [%s]", std::string(text, length).c_str()));
    int hour = TwoDigits(text + 1);
    if (hour == 24)
        hour = 0;
    SetTimeZone(static_cast<short>(text[0] == '-' ? -hour : hour), static_cast<unsigned char>(TwoDigits(text + 4)));
}

void CDateTime::SetXSDTime(char const* text)
{
    if (!text)
        throw CKdInvalidValueException("Invalid Time (Null String)");
    SetXSDTime(text, strlen(text));
}

void CDateTime::SetXSDTime(char const* text, size_t length)
{
    if (length == 0)
        throw CKdInvalidValueException("Invalid XSD Time (Empty String)");
    auto failure = [&](char const* format) {
        return CKdInvalidValueException(FormatString(format, std::string(text, length).c_str()));
    };
    if (length < 8 || !AreDigits(text, 2) || text[2] != ':' || !AreDigits(text + 3, 2) || text[5] != ':' ||
        !AreDigits(text + 6, 2))
        throw failure("Invalid XSD Time [%s] expected hh:mm:ss[.ff]");
    m_hour = static_cast<unsigned char>(TwoDigits(text));
    m_minute = static_cast<unsigned char>(TwoDigits(text + 3));
    m_second = static_cast<unsigned char>(TwoDigits(text + 6));
    // The fields stay stored when they fail: 24:00:00 is refused.
    if (m_hour > 23 || m_minute > 59 || m_second > 59)
        throw failure("Invalid XSD Time [%s] expected hh:mm:ss[.ff]");

    size_t position = 8;
    if (position < length && text[position] == '.') {
        ++position;  // a point with no digits behind it is accepted
        unsigned short* const groups[3] = {&m_milli, &m_micro, &m_nano};
        static unsigned short const weights[3] = {100, 10, 1};
        int count = 0;
        for (; position < length && IsDigit(text[position]); ++position, ++count) {
            if (count == 9)
                throw failure("Invalid XSD Time [%s] Fraction part too long");
            *groups[count / 3] = static_cast<unsigned short>(*groups[count / 3] +
                                                             (text[position] - '0') * weights[count % 3]);
        }
    }
    if (position < length)
        SetZone(text + position, length - position);
    m_type = dt_time;
}

void CDateTime::SetXSDDate(char const* text)
{
    if (!text)
        throw CKdInvalidValueException("Invalid Date (Null String)");
    SetXSDDate(text, strlen(text));
}

void CDateTime::SetXSDDate(char const* text, size_t length)
{
    if (length == 0)
        throw CKdInvalidValueException("Invalid Date (Empty String)");
    if (memchr(text, 'T', length))
        throw CKdInvalidValueException("Invalid Date ('T' not allowed)");
    bool const hasColon = memchr(text, ':', length) != nullptr;
    bool const endsInZ = text[length - 1] == 'Z';
    if (endsInZ && hasColon)
        throw CKdInvalidValueException("Invalid Date (Bad Zone value)");
    // A numeric zone takes the last six characters.
    long const bodyLength = static_cast<long>(length) - (endsInZ ? 1 : hasColon ? 6 : 0);
    auto mismatch = [&] {
        return CKdInvalidValueException(FormatString("Invalid XSD Date [%s] expected CCYY-MM-DD[Z|[+|-]hh:mm]",
                                                     std::string(text, length).c_str()));
    };

    DTType type = dt_yearZero;
    int year = 0, month = 0, day = 0;
    if (length >= 2 && text[0] == '-' && text[1] == '-') {
        switch (bodyLength) {
        case 4:  // --MM
        case 6:  // --MM--, the old form; its last two characters are not inspected
            if (!AreDigits(text + 2, 2))
                throw mismatch();
            type = dt_gMonth;
            month = TwoDigits(text + 2);
            break;
        case 5:  // ---DD
            if (text[2] != '-' || !AreDigits(text + 3, 2))
                throw mismatch();
            type = dt_gDay;
            day = TwoDigits(text + 3);
            break;
        case 7:  // --MM-DD
            if (!AreDigits(text + 2, 2) || text[4] != '-' || !AreDigits(text + 5, 2))
                throw mismatch();
            type = dt_gMonthDay;
            month = TwoDigits(text + 2);
            day = TwoDigits(text + 5);
            break;
        default:
            throw mismatch();
        }
    } else {
        bool const negative = text[0] == '-';
        char const* const body = text + (negative ? 1 : 0);
        // No year has more than four digits.
        switch (bodyLength - (negative ? 1 : 0)) {
        case 10:  // YYYY-MM-DD
            if (body[7] != '-' || !AreDigits(body + 8, 2))
                throw mismatch();
            day = TwoDigits(body + 8);
            type = dt_date;
            [[fallthrough]];
        case 7:  // YYYY-MM
            if (body[4] != '-' || !AreDigits(body + 5, 2))
                throw mismatch();
            month = TwoDigits(body + 5);
            if (type == dt_yearZero)
                type = dt_gYearMonth;
            [[fallthrough]];
        case 4:  // YYYY
            if (!AreDigits(body, 4))
                throw mismatch();
            year = TwoDigits(body) * 100 + TwoDigits(body + 2);
            if (negative)
                year = -year;
            if (type == dt_yearZero)
                type = dt_gYear;
            break;
        default:
            throw mismatch();
        }
    }
    m_type = type;
    m_year = static_cast<short>(year);
    m_month = static_cast<unsigned char>(month);
    m_day = static_cast<unsigned char>(day);
    if (endsInZ || hasColon)
        SetZone(text + bodyLength, length - static_cast<size_t>(bodyLength));
}

void CDateTime::ParseXSDDate(char const* text)
{
    Clear();
    SetXSDDate(text);
    Validate();
}

void CDateTime::ParseXSDTime(char const* text)
{
    Clear();
    SetXSDTime(text);
    Validate();
}

void CDateTime::ParseXSDDateTime(char const* text)
{
    if (!text)
        throw CKdInvalidValueException("Invalid DateTime (Null String)");
    char const* const t = strchr(text, 'T');
    if (!t)
        throw CKdInvalidValueException(FormatString("Invalid XSD DateTime [%s]", text));
    Clear();
    // A zone on the date part stays unless the time part brings its own.
    SetXSDDate(text, static_cast<size_t>(t - text));
    if (m_type != dt_date)
        throw CKdInvalidValueException(
            FormatString("Invalid XSD DateTime [%s] expected CCYY-MM-DDThh:mm:ss[.ff]", text));
    SetXSDTime(t + 1, strlen(t + 1));
    m_type = dt_dateTime;
    Validate();
}

} // namespace KdBind
