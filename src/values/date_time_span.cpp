// CDateTimeSpan: the value of xsd:duration, its text and its order.
#include <cstdint>

#include "kdbind/values.h"

namespace KdBind {

CDateTimeSpan::CDateTimeSpan() { Clear(); }

CDateTimeSpan::CDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds)
{
    SetDateTimeSpan(hours, minutes, seconds);
}

CDateTimeSpan::CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                             unsigned long long minutes, unsigned long long seconds)
{
    SetDateTimeSpan(years, months, days, hours, minutes, seconds);
}

CDateTimeSpan::CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                             unsigned long long minutes, unsigned long long seconds, unsigned short milli,
                             unsigned short micro, unsigned short nano)
{
    SetDateTimeSpan(years, months, days, hours, minutes, seconds, milli, micro, nano);
}

CDateTimeSpan::~CDateTimeSpan() = default;

void CDateTimeSpan::Clear() { SetDateTimeSpan(0, 0, 0, 0, 0, 0, 0, 0, 0); }

void CDateTimeSpan::SetDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds)
{
    SetDateTimeSpan(0, 0, 0, hours, minutes, seconds, 0, 0, 0);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                                    unsigned long hours, unsigned long long minutes, unsigned long long seconds)
{
    SetDateTimeSpan(years, months, days, hours, minutes, seconds, 0, 0, 0);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                                    unsigned long hours, unsigned long long minutes, unsigned long long seconds,
                                    unsigned short milli, unsigned short micro, unsigned short nano)
{
    m_years = years;
    m_months = months;
    m_days = days;
    m_hours = hours;
    m_minutes = minutes;
    m_seconds = seconds;
    m_milli = milli;
    m_micro = micro;
    m_nano = nano;
    m_negative = false;
}

CDateTimeSpan CDateTimeSpan::GetAsNegative() const
{
    CDateTimeSpan copy(*this);
    copy.m_negative = true;
    return copy;
}

std::string CDateTimeSpan::ToString() const
{
    std::string text = m_negative ? "-P" : "P";
    if (m_years)
        text += CConversions::ui2ToString(m_years) + "Y";
    if (m_months)
        text += CConversions::ui4ToString(m_months) + "M";
    if (m_days)
        text += CConversions::ui4ToString(m_days) + "D";
    bool const fraction = m_milli || m_micro || m_nano;
    if (m_hours || m_minutes || m_seconds || fraction)
        text += "T";
    if (m_hours)
        text += CConversions::ui4ToString(m_hours) + "H";
    if (m_minutes)
        text += CConversions::ui8ToString(m_minutes) + "M";
    if (m_seconds || fraction)
        text += CConversions::ui8ToString(m_seconds) + ToFracString(m_milli, m_micro, m_nano) + "S";
    return text;
}

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Where the parser stands: what the designators read so far allow next.
enum State { Start = 0, AfterYears = 1, AfterMonths = 2, AfterDays = 3, InTime = 4, AfterHours = 5,
             AfterMinutes = 6, AfterSeconds = 7, AfterFraction = 8 };

} // namespace

void CDateTimeSpan::ParseXSDDuration(char const* text)
{
    Clear();
    if (!text)
        throw CKdInvalidValueException("Invalid XSD Duration (Null String)");
    if (!*text)
        throw CKdInvalidValueException("Invalid XSD Duration (Empty String)");
    auto failure = [text] {
        return CKdInvalidValueException(
            FormatString("Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]", text));
    };

    char const* p = text;
    if (*p == '-') {
        m_negative = true;
        ++p;
    }
    if (*p++ != 'P')
        throw failure();
    State state = Start;
    while (*p) {
        // Numbers keep their low 32 bits, read as signed, however long the
        // run of digits; no digits read as 0.
        uint32_t digits = 0;
        for (; IsDigit(*p); ++p)
            digits = digits * 10u + static_cast<uint32_t>(*p - '0');
        long const number = static_cast<int32_t>(digits);
        char const designator = *p;
        if (!designator)
            throw failure();
        ++p;
        switch (designator) {
        case 'Y':  // accepted in any state, and back to the one behind years
            m_years = static_cast<unsigned short>(number);
            state = AfterYears;
            break;
        case 'M':
            if (state == Start || state == AfterYears) {
                m_months = static_cast<unsigned long>(number);
                state = AfterMonths;
            } else if (state == InTime || state == AfterHours) {
                m_minutes = static_cast<unsigned long long>(number);
                state = AfterMinutes;
            } else {
                throw failure();
            }
            break;
        case 'D':
            if (state > AfterMonths)
                throw failure();
            m_days = static_cast<unsigned long>(number);
            state = AfterDays;
            break;
        case 'T':
            if (state > AfterDays)
                throw failure();
            state = InTime;
            break;
        case 'H':
            if (state != InTime)
                throw failure();
            m_hours = static_cast<unsigned long>(number);
            state = AfterHours;
            break;
        case 'S':
        case '.':
            if (state < InTime || state > AfterMinutes)
                throw failure();
            m_seconds = static_cast<unsigned long long>(number);
            state = AfterSeconds;
            // "PT1." ends at its point and is one second.
            if (designator == '.' && *p) {
                // Digits 1 to 6 fill milli and micro by weight; each of digits
                // 7 to 9 overwrites nano with its plain value, as the library
                // has always read them.
                static unsigned short const weights[3] = {100, 10, 1};
                int count = 0;
                for (; IsDigit(*p); ++p, ++count) {
                    if (count == 9)
                        throw CKdInvalidValueException(
                            FormatString("Invalid XSD Duration [%s] Fraction part too long", text));
                    unsigned short const digit = static_cast<unsigned short>(*p - '0');
                    if (count < 3)
                        m_milli = static_cast<unsigned short>(m_milli + digit * weights[count]);
                    else if (count < 6)
                        m_micro = static_cast<unsigned short>(m_micro + digit * weights[count - 3]);
                    else
                        m_nano = digit;
                }
                if (*p != 'S')
                    throw failure();
                ++p;
                state = AfterFraction;
            }
            break;
        default:
            throw failure();
        }
    }
    if (state == Start || state == InTime)
        throw failure();
}

int CDateTimeSpan::CompareTo(CDateTimeSpan const& other) const
{
    // The order of XML Schema: both spans added to four reference dates,
    // chosen so that months of every length and leap days are crossed.
    static short const references[4][3] = {{1696, 9, 1}, {1697, 2, 1}, {1903, 3, 1}, {1903, 7, 1}};
    try {
        int first = 0;
        for (int i = 0; i < 4; ++i) {
            CDateTime reference;
            reference.SetDate(references[i][0], static_cast<unsigned char>(references[i][1]),
                              static_cast<unsigned char>(references[i][2]));
            reference.SetUTC();
            int const result = (reference + *this).CompareTo(reference + other);
            if (result == 3 || (i > 0 && result != first))
                return 3;
            first = i == 0 ? result : first;
        }
        return first;
    } catch (CKdInvalidValueException const&) {
        return 3;
    }
}

} // namespace KdBind
