// CDecimal: exact decimals as an integer part, a fractional part and the
// count of fractional digits, with their text form and arithmetic.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "kdbind/values.h"

namespace KdBind {

namespace {

typedef CBigInteger::Digits Digits;

// The largest exponent magnitude the parser takes. Past it, the power of ten
// alone would run to megabytes; the digit that crosses it is refused like
// any other character the parser cannot use.
constexpr unsigned long kMaxExponent = 100000;

CKdInvalidValueException InvalidCharacter(size_t position, char const* text)
{
    return CKdInvalidValueException(FormatString(
        "The string representing a Decimal, contained an invalid char at position %d [%s]",
        static_cast<int>(position), text));
}

// Digits read highest first, turned around into a cleaned digit vector; no
// digits at all give zero.
Digits ToDigitVector(Digits&& highFirst)
{
    if (highFirst.empty()) {
        highFirst.push_back(0);
        return std::move(highFirst);
    }
    std::reverse(highFirst.begin(), highFirst.end());
    CBigInteger::Clean(highFirst);
    return std::move(highFirst);
}

// The value of a digit vector; the caller has checked that it fits.
unsigned long long Magnitude(Digits const& digits)
{
    unsigned long long value = 0;
    for (size_t i = digits.size(); i-- > 0;)
        value = value * 10 + static_cast<unsigned long long>(digits[i]);
    return value;
}

} // namespace

CDecimal::CDecimal() : m_integer(), m_fraction(), m_digitCount(1) {}

CDecimal::CDecimal(int value) : m_integer(value), m_fraction(), m_digitCount(1) {}

CDecimal::CDecimal(CBigInteger const& value) : m_integer(value), m_fraction(), m_digitCount(1) {}

CDecimal::CDecimal(CBigInteger const& integerPart, CBigInteger const& fraction, int digitCount)
    : m_integer(integerPart), m_fraction(fraction), m_digitCount(digitCount)
{
}

CDecimal::CDecimal(CBigInteger&& integerPart, CBigInteger&& fraction, int digitCount)
    : m_integer(std::move(integerPart)), m_fraction(std::move(fraction)), m_digitCount(digitCount)
{
}

CDecimal::CDecimal(char const* text) : m_integer(1, Digits()), m_fraction(1, Digits()), m_digitCount(1)
{
    Parse(text);
}

// Printed as "%.13f" would print it (std::to_chars with a precision gives
// that text, whatever the locale), then parsed.
CDecimal::CDecimal(double value) : m_integer(1, Digits()), m_fraction(1, Digits()), m_digitCount(1)
{
    char text[1024];
    std::to_chars_result const printed = std::to_chars(text, text + sizeof text - 1, value,
                                                       std::chars_format::fixed, 13);
    *printed.ptr = '\0';
    Parse(text);
}

CDecimal::~CDecimal() = default;

// One pass over the text, by position: integer digits with signs and white
// space anywhere, then after "." the fraction digits and white space, then
// after "e" white space and signs, then the exponent's digits to the end.
// The digit buffers grow with the text.
void CDecimal::Parse(char const* text)
{
    if (!text)
        text = "";
    enum Phase { Integer, Fraction, ExponentSign, ExponentDigits } phase = Integer;
    Digits integerDigits;
    Digits fractionDigits;
    bool negative = false;
    bool negativeExponent = false;
    unsigned long exponent = 0;
    size_t const length = std::strlen(text);
    integerDigits.reserve(length);
    fractionDigits.reserve(length);
    for (size_t i = 0; i < length; ++i) {
        char const c = text[i];
        bool const isDigit = c >= '0' && c <= '9';
        switch (phase) {
        case Integer:
            if (isDigit)
                integerDigits.push_back(static_cast<char>(c - '0'));
            else if (c == '-' || c == '+')
                negative = c == '-';
            else if (c == '.')
                phase = Fraction;
            else if (c == 'e' || c == 'E')
                phase = ExponentSign;
            else if (!CWhitespaceUtils::IsWhiteSpace(c))
                throw InvalidCharacter(i, text);
            break;
        case Fraction:
            if (isDigit)
                fractionDigits.push_back(static_cast<char>(c - '0'));
            else if (c == 'e' || c == 'E')
                phase = ExponentSign;
            else if (!CWhitespaceUtils::IsWhiteSpace(c))
                throw InvalidCharacter(i, text);
            break;
        case ExponentSign:
            if (c == '-' || c == '+') {
                negativeExponent = c == '-';
                break;
            }
            if (CWhitespaceUtils::IsWhiteSpace(c))
                break;
            phase = ExponentDigits;
            [[fallthrough]];
        case ExponentDigits:
            if (!isDigit)
                throw InvalidCharacter(i, text);
            exponent = exponent * 10 + static_cast<unsigned long>(c - '0');
            if (exponent > kMaxExponent)
                throw InvalidCharacter(i, text);
            break;
        }
    }

    int const digitCount = fractionDigits.empty() ? 1 : static_cast<int>(fractionDigits.size());
    CDecimal value(CBigInteger(1, ToDigitVector(std::move(integerDigits))),
                   CBigInteger(1, ToDigitVector(std::move(fractionDigits))), digitCount);
    if (negative)
        value.Negate();
    if (phase == ExponentDigits) {
        CDecimal const scale(CBigInteger::Pow10(static_cast<unsigned int>(exponent)));
        value = negativeExponent ? value / scale : value * scale;
    }
    value.Settle();
    *this = std::move(value);
}

std::string CDecimal::ToString() const
{
    if (m_fraction.IsZero())
        return m_integer.ToString();
    Digits const& whole = m_integer.m_digits;
    Digits const& fraction = m_fraction.m_digits;
    size_t const padding = m_digitCount > 0 && fraction.size() < static_cast<size_t>(m_digitCount)
                               ? static_cast<size_t>(m_digitCount) - fraction.size()
                               : 0;
    std::string text;
    text.reserve(whole.size() + fraction.size() + padding + 2);
    if (m_integer.m_sign == -1)
        text.push_back('-');
    if (whole.empty())
        text.push_back('0');
    for (size_t i = whole.size(); i-- > 0;)
        text.push_back(static_cast<char>('0' + whole[i]));
    text.push_back('.');
    text.append(padding, '0');
    for (size_t i = fraction.size(); i-- > 0;)
        text.push_back(static_cast<char>('0' + fraction[i]));
    return text;
}

// The rounding term is 0.5 whatever the places: one half of a unit, added
// away from zero, after which the fraction is cut. So 1.234 at two places
// gives "1.73", and 5 at no places "5.".
std::string CDecimal::ToString(int places) const
{
    int const sign = m_integer.m_sign == -1 ? -1 : 1;
    CDecimal const half(CBigInteger(sign, Digits(1, 0)), CBigInteger(sign, Digits(1, 5)), 1);
    CDecimal const rounded = half + *this;

    std::string fraction = rounded.m_fraction.GetAbs().ToString();
    if (rounded.m_digitCount > 0 && fraction.size() < static_cast<size_t>(rounded.m_digitCount))
        fraction.insert(0, static_cast<size_t>(rounded.m_digitCount) - fraction.size(), '0');
    if (fraction.size() > static_cast<size_t>(std::max(places, 0)))
        fraction.resize(static_cast<size_t>(std::max(places, 0)));
    std::string text = rounded.m_integer.m_sign == -1 ? "-" : "";
    text += rounded.m_integer.GetAbs().ToString();
    text += '.';
    text += fraction;
    return text;
}

void CDecimal::Negate()
{
    m_integer.Negate();
    m_fraction.Negate();
}

CDecimal CDecimal::GetNegative() const
{
    CDecimal copy(*this);
    copy.Negate();
    return copy;
}

void CDecimal::ChangeFractionalDivider(int digitCount)
{
    // A negative count has no meaning; it is read as none.
    int const n = std::max(digitCount, 0);
    if (m_digitCount <= n) {
        // Times 10 to the difference; a zero stays the single digit 0.
        if (!m_fraction.IsZero())
            CBigInteger::ShiftLeft(m_fraction.m_digits, n - m_digitCount);
        m_digitCount = n;
        return;
    }
    CBigInteger const p = CBigInteger::Pow10(static_cast<unsigned int>(m_digitCount - n));
    CBigInteger rest;
    CBigInteger::DivideSigned(m_fraction, p, &m_fraction, &rest);
    m_digitCount = n;

    // An exact half is not rounded: it goes towards zero.
    int carry = 0;
    if (rest > p / CBigInteger(2))
        carry = 1;
    else if (rest < p / CBigInteger(-2))
        carry = -1;
    if (carry == 0)
        return;
    if (n == 0) {
        m_integer += CBigInteger(carry);
        return;
    }
    m_fraction += CBigInteger(carry);
    CBigInteger const zero(0);
    CBigInteger const unit = CBigInteger::Pow10(static_cast<unsigned int>(n));
    if (m_integer > zero && m_fraction < zero) {
        m_fraction += unit;
        m_integer -= CBigInteger(1);
    } else if (m_integer < zero && m_fraction > zero) {
        m_fraction -= unit;
        m_integer += CBigInteger(1);
    }
    if (m_integer == zero)
        m_integer.m_sign = m_fraction.m_sign;
}

// A count below zero, which only the constructor from parts can give, is
// raised to zero with the other.
int CDecimal::Normalize(CDecimal& a, CDecimal& b)
{
    int const count = std::max({a.m_digitCount, b.m_digitCount, 0});
    if (a.m_digitCount < count)
        a.ChangeFractionalDivider(count);
    if (b.m_digitCount < count)
        b.ChangeFractionalDivider(count);
    return count;
}

// Each step is fraction /= 10: a zero fraction becomes a plain zero (sign +1)
// at the first step, any other loses its low zero digit and keeps its sign.
void CDecimal::Rationalise()
{
    if (m_digitCount <= 1)
        return;
    Digits& fraction = m_fraction.m_digits;
    if (m_fraction.IsZero()) {
        m_fraction = CBigInteger(0);
        m_digitCount = 1;
        return;
    }
    size_t zeros = 0;
    while (zeros < fraction.size() && fraction[zeros] == 0 && zeros + 1 < static_cast<size_t>(m_digitCount))
        ++zeros;
    fraction.erase(fraction.begin(), fraction.begin() + static_cast<std::ptrdiff_t>(zeros));
    m_digitCount -= static_cast<int>(zeros);
}

void CDecimal::Settle()
{
    Rationalise();
    if (m_digitCount > m_maxDivider)
        ChangeFractionalDivider(m_maxDivider);
}

CDecimal CDecimal::operator+(CDecimal const& other) const
{
    CDecimal a(*this);
    CDecimal b(other);
    int const n = Normalize(a, b);
    CBigInteger const unit = CBigInteger::Pow10(static_cast<unsigned int>(n));
    CBigInteger const negativeUnit = unit.GetNegative();
    CBigInteger const zero(0);
    CBigInteger const one(1);
    CBigInteger fraction = a.m_fraction + b.m_fraction;
    CBigInteger integer = a.m_integer + b.m_integer;
    while (fraction >= unit) {
        fraction -= unit;
        integer += one;
    }
    while (fraction <= negativeUnit) {
        fraction += unit;
        integer -= one;
    }
    if (integer > zero && fraction < zero) {
        fraction += unit;
        integer -= one;
    } else if (integer < zero && fraction > zero) {
        fraction -= unit;
        integer += one;
    }
    if (integer == zero)
        integer.m_sign = fraction.m_sign;
    CDecimal sum(std::move(integer), std::move(fraction), n);
    sum.Rationalise();
    return sum;
}

CDecimal CDecimal::operator-(CDecimal const& other) const { return *this + other.GetNegative(); }

CDecimal CDecimal::operator*(CDecimal const& other) const
{
    CDecimal a(*this);
    CDecimal b(other);
    int const n = Normalize(a, b);
    CBigInteger const scale = CBigInteger::Pow10(static_cast<unsigned int>(n));
    CBigInteger const divider = CBigInteger::Pow10(static_cast<unsigned int>(2 * n));
    CBigInteger const sum = b.m_integer * a.m_integer * divider + b.m_integer * a.m_fraction * scale +
                            b.m_fraction * a.m_integer * scale + b.m_fraction * a.m_fraction;
    CBigInteger integer;
    CBigInteger fraction;
    CBigInteger::DivideSigned(sum, divider, &integer, &fraction);
    CDecimal product(std::move(integer), std::move(fraction), 2 * n);
    product.Settle();
    return product;
}

CDecimal CDecimal::operator/(CDecimal const& other) const
{
    CDecimal a(*this);
    CDecimal b(other);
    int const n = Normalize(a, b);
    CBigInteger const scale = CBigInteger::Pow10(static_cast<unsigned int>(n));
    CBigInteger const extra = CBigInteger::Pow10(static_cast<unsigned int>(m_maxDivider + 2));
    CBigInteger const numerator = (a.m_integer * scale + a.m_fraction) * extra;
    CBigInteger const denominator = b.m_integer * scale + b.m_fraction;
    CBigInteger const quotient = numerator / denominator;
    CBigInteger integer;
    CBigInteger fraction;
    CBigInteger::DivideSigned(quotient, extra, &integer, &fraction);
    CDecimal result(std::move(integer), std::move(fraction), m_maxDivider + 2);
    result.Settle();
    return result;
}

CDecimal& CDecimal::operator+=(CDecimal const& other) { return *this = *this + other; }
CDecimal& CDecimal::operator-=(CDecimal const& other) { return *this = *this - other; }
CDecimal& CDecimal::operator*=(CDecimal const& other) { return *this = *this * other; }
CDecimal& CDecimal::operator/=(CDecimal const& other) { return *this = *this / other; }
CDecimal& CDecimal::operator++() { return *this = *this + CDecimal(1); }
CDecimal& CDecimal::operator--() { return *this = *this - CDecimal(1); }
CDecimal CDecimal::operator++(int) const { return *this + CDecimal(1); }
CDecimal CDecimal::operator--(int) const { return *this - CDecimal(1); }

namespace {

// Runs the test on the two values brought to one digit count; copies only
// when the counts differ.
template <class Test>
bool OnNormalized(CDecimal const& a, CDecimal const& b, int countA, int countB, Test test)
{
    if (countA == countB)
        return test(a, b);
    CDecimal left(a);
    CDecimal right(b);
    CDecimal::Normalize(left, right);
    return test(left, right);
}

} // namespace

// Integer parts first, then the fractional parts, each by CBigInteger's own
// operators (so a negative zero stays below zero, as it does there).
bool CDecimal::operator==(CDecimal const& other) const
{
    return OnNormalized(*this, other, m_digitCount, other.m_digitCount, [](CDecimal const& a, CDecimal const& b) {
        return a.m_integer == b.m_integer && a.m_fraction == b.m_fraction;
    });
}

bool CDecimal::operator<(CDecimal const& other) const
{
    return OnNormalized(*this, other, m_digitCount, other.m_digitCount, [](CDecimal const& a, CDecimal const& b) {
        return a.m_integer == b.m_integer ? a.m_fraction < b.m_fraction : a.m_integer < b.m_integer;
    });
}

bool CDecimal::operator>(CDecimal const& other) const
{
    return OnNormalized(*this, other, m_digitCount, other.m_digitCount, [](CDecimal const& a, CDecimal const& b) {
        return a.m_integer == b.m_integer ? a.m_fraction > b.m_fraction : a.m_integer > b.m_integer;
    });
}

CBigInteger CDecimal::ToBigInteger() const
{
    CDecimal whole(*this);
    whole.ChangeFractionalDivider(0);
    return whole.m_integer;
}

long CDecimal::ToLong() const
{
    CDecimal whole(*this);
    whole.ChangeFractionalDivider(0);
    if (whole.m_integer > CBigInteger::MAX_LONG || whole.m_integer < CBigInteger::MIN_LONG)
        throw CKdOverFlowException("The Decimal value if to large to fit into a LONG");
    long const magnitude = static_cast<long>(Magnitude(whole.m_integer.m_digits));
    return whole.m_integer.m_sign == -1 ? -magnitude : magnitude;
}

// Cuts rather than rounds: the integer part read from the text, which stops
// at the point.
long long CDecimal::ToLongLong() const
{
    CDecimal cut(*this);
    cut.ChangeFractionalDivider(1);
    if (cut.m_integer > CBigInteger::MAX_LONGLONG || cut.m_integer < CBigInteger::MIN_LONGLONG)
        throw CKdOverFlowException("The Decimal value if to large to fit into a LONGLONG");
    unsigned long long const magnitude = Magnitude(cut.m_integer.m_digits);
    return cut.m_integer.m_sign == -1 ? static_cast<long long>(0 - magnitude) : static_cast<long long>(magnitude);
}

// The text read back as strtod reads it in the "C" locale.
double CDecimal::ToDouble() const
{
    if (m_integer > CBigInteger::MAX_DOUBLE || m_integer < CBigInteger::MIN_DOUBLE)
        throw CKdOverFlowException("The Decimal value if to large to fit into a Double");
    std::string const text = ToString();
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

} // namespace KdBind
