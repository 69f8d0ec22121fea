// CDateTime's order and arithmetic: the field-by-field comparison, the
// comparison across zones, normalisation to UTC and the addition of a
// duration.
#include <climits>
#include <cmath>

#include "values/date_time_fields.h"

namespace KdBind {

int GetQuotient(long long a, int b)
{
    // Single precision on purpose: the date arithmetic has always been
    // inexact beyond 2^24. A quotient out of the range of int (a hostile
    // duration) is pinned rather than left to an undefined conversion.
    float const quotient = floorf(static_cast<float>(a) / static_cast<float>(b));
    if (std::isnan(quotient))
        return 0;
    if (quotient >= 2147483648.0f)
        return INT_MAX;
    if (quotient < -2147483648.0f)
        return INT_MIN;
    return static_cast<int>(quotient);
}

long long GetModulo(long long a, int b)
{
    // Wraps rather than overflows for the extremes a hostile duration brings.
    long long const product = static_cast<long long>(b) * GetQuotient(a, b);
    return static_cast<long long>(static_cast<unsigned long long>(a) - static_cast<unsigned long long>(product));
}

namespace {

// base + count * sign with the wrap of 64-bit arithmetic: the span's counts
// are unsigned and may hold any 64-bit pattern.
long long Advance(long long base, unsigned long long count, int sign)
{
    unsigned long long const step = sign < 0 ? 0 - count : count;
    return static_cast<long long>(static_cast<unsigned long long>(base) + step);
}

using DateTimeFields::Holds;

bool HoldsYear(CDateTime const& v) { return Holds(v.GetType(), DateTimeFields::Year); }
bool HoldsMonth(CDateTime const& v) { return Holds(v.GetType(), DateTimeFields::Month); }
bool HoldsDay(CDateTime const& v) { return Holds(v.GetType(), DateTimeFields::Day); }
bool HoldsTime(CDateTime const& v) { return Holds(v.GetType(), DateTimeFields::Time); }

// 3 when exactly one side is negative, else 1, 2 or 0 by the two numbers.
template <class Number>
int Order(Number a, Number b)
{
    if ((a < 0) != (b < 0) && a != 0 && b != 0)
        return 3;
    return a < b ? 1 : a > b ? 2 : 0;
}

} // namespace

int Compare(CDateTime const& a, CDateTime const& b)
{
    // A side that lacks a field counts -1 for it, so a field held by one side
    // only makes the pair indeterminate; so do years of opposite sign.
    int result = Order<long long>(HoldsYear(a) ? a.GetYear() : -1, HoldsYear(b) ? b.GetYear() : -1);
    if (result != 0)
        return result;
    // The month of b is read from a: two values with months are never
    // ordered by month, and a without one fails in its accessor.
    result = Order<long long>(HoldsMonth(a) ? a.GetMonth() : -1, HoldsMonth(b) ? a.GetMonth() : -1);
    if (result != 0)
        return result;
    result = Order<long long>(HoldsDay(a) ? a.GetDay() : -1, HoldsDay(b) ? b.GetDay() : -1);
    if (result != 0)
        return result;
    result = Order<long long>(HoldsTime(a) ? a.GetHour() : -1, HoldsTime(b) ? b.GetHour() : -1);
    if (result != 0)
        return result;
    result = Order<long long>(HoldsTime(a) ? a.GetMinute() : -1, HoldsTime(b) ? b.GetMinute() : -1);
    if (result != 0)
        return result;
    return Order<double>(HoldsTime(a) ? a.GetRealSecond() : -1.0, HoldsTime(b) ? b.GetRealSecond() : -1.0);
}

CDateTime CDateTime::GetNormalized() const
{
    CDateTime copy(*this);
    if (!m_hasTimeZone)
        return copy;
    try {
        CDateTimeSpan const offset(static_cast<unsigned long>(m_zoneHour < 0 ? -m_zoneHour : m_zoneHour),
                                   m_zoneMinute, 0);
        // The sign lies in the hour, so "-00:30" moves as "+00:30" does.
        if (m_zoneHour < 0)
            copy += offset;
        else
            copy -= offset;
        copy.SetTimeZone(0, 0);
    } catch (CKdInvalidValueException const&) {
    }
    return copy;
}

int CDateTime::CompareTo(CDateTime const& other) const
{
    try {
        CDateTime a = m_hasTimeZone ? GetNormalized() : *this;
        CDateTime b = other.m_hasTimeZone ? other.GetNormalized() : other;
        if (a.m_utc == b.m_utc)
            return Compare(a, b);
        // One side has a zone: the other may stand anywhere from -14:00 to
        // +14:00. The second shift undoes the first, so the second test runs
        // against the unshifted value.
        CDateTime& shifted = a.m_utc ? b : a;
        int const early = a.m_utc ? 1 : 2;
        int const late = a.m_utc ? 2 : 1;
        shifted.SetTimeZone(14, 0);
        shifted = shifted.GetNormalized();
        if (Compare(a, b) == early)
            return early;
        shifted.SetTimeZone(-14, 0);
        shifted = shifted.GetNormalized();
        if (Compare(a, b) == late)
            return late;
        return 3;
    } catch (CKdInvalidValueException const&) {
        return 3;
    }
}

bool CDateTime::operator<=(CDateTime const& other) const
{
    int const result = CompareTo(other);
    return result == 0 || result == 1;
}

bool CDateTime::operator>=(CDateTime const& other) const
{
    int const result = CompareTo(other);
    return result == 0 || result == 2;
}

namespace {

// The length of month mm of year as the addition walks it; a month outside
// 1 to 12 (left by a failed setter or a hostile span) counts as January.
int MonthLength(long long mm, int year)
{
    if (mm < 1 || mm > 12)
        return g_monthMax[0];
    if (mm == 2 && !IsLeapYear(year))
        return 28;
    return g_monthMax[mm - 1];
}

} // namespace

void CDateTime::AddDateTimeSpan(CDateTimeSpan const& span)
{
    int const s = span.IsNegative() ? -1 : 1;

    long long t = Advance(static_cast<long long>(m_month) - 1, span.GetMonths(), s);
    m_month = static_cast<unsigned char>(GetModulo(t, 12) + 1);
    int carry = GetQuotient(t, 12);
    // The year wraps in 16 bits, and year zero is not skipped.
    int year = static_cast<short>(static_cast<unsigned short>(
        Advance(static_cast<long long>(m_year) + carry, span.GetYears(), s)));

    t = Advance(m_nano, span.GetNanoSeconds(), s);
    m_nano = static_cast<unsigned short>(GetModulo(t, 1000));
    carry = GetQuotient(t, 1000);
    t = Advance(static_cast<long long>(m_micro) + carry, span.GetMicroSeconds(), s);
    m_micro = static_cast<unsigned short>(GetModulo(t, 1000));
    carry = GetQuotient(t, 1000);
    t = Advance(static_cast<long long>(m_milli) + carry, span.GetMilliSeconds(), s);
    m_milli = static_cast<unsigned short>(GetModulo(t, 1000));
    carry = GetQuotient(t, 1000);
    t = Advance(static_cast<long long>(m_second) + carry, span.GetSeconds(), s);
    m_second = static_cast<unsigned char>(GetModulo(t, 60));
    carry = GetQuotient(t, 60);
    t = Advance(static_cast<long long>(m_minute) + carry, span.GetMinutes(), s);
    m_minute = static_cast<unsigned char>(GetModulo(t, 60));
    carry = GetQuotient(t, 60);
    t = Advance(static_cast<long long>(m_hour) + carry, span.GetHours(), s);
    m_hour = static_cast<unsigned char>(GetModulo(t, 24));
    carry = GetQuotient(t, 24);

    // The days in 32 bits; each turn of the walk uses up a month, so it ends.
    long long days = static_cast<int>(static_cast<unsigned>(Advance(carry, span.GetDays(), s)));
    long long mm = m_month;
    long long day = m_day;
    while (days != 0) {
        if (days > 0) {
            int const max = MonthLength(mm, year);
            if (days + day > max) {
                days = days + day - max - 1;
                day = 1;
                ++mm;
            } else {
                day += days;
                days = 0;
            }
        } else {
            if (day - 1 < -days) {
                days += day;
                --mm;
                day = mm < 1 ? 31 : MonthLength(mm, year);
            } else {
                day += days;
                days = 0;
            }
        }
        if (mm == 0) {
            mm = 12;
            year = static_cast<short>(static_cast<unsigned short>(year - 1));
        } else if (mm == 13) {
            mm = 1;
            year = static_cast<short>(static_cast<unsigned short>(year + 1));
        }
    }
    m_year = static_cast<short>(year);
    m_month = static_cast<unsigned char>(mm);
    m_day = static_cast<unsigned char>(day);
}

CDateTime& CDateTime::operator+=(CDateTimeSpan const& span)
{
    AddDateTimeSpan(span);
    return *this;
}

// A negative span stays negative (GetAsNegative does not toggle), so
// subtracting one still moves back in time.
CDateTime& CDateTime::operator-=(CDateTimeSpan const& span)
{
    AddDateTimeSpan(span.GetAsNegative());
    return *this;
}

CDateTime CDateTime::operator+(CDateTimeSpan const& span) const
{
    CDateTime result(*this);
    result += span;
    return result;
}

CDateTime CDateTime::operator-(CDateTimeSpan const& span) const
{
    CDateTime result(*this);
    result -= span;
    return result;
}

CDateTimeSpan CDateTime::operator-(CDateTime const&) const { return CDateTimeSpan(); }

} // namespace KdBind
