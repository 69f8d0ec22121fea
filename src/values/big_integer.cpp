// CBigInteger: the signed value over its digit vector, with its text form.
// The magnitude arithmetic stands in big_integer_digits.cpp.
#include <climits>
#include <cmath>
#include <cstring>

#include "kdbind/values.h"

namespace KdBind {

namespace {

bool IsPlainIntegerCharacter(char c)
{
    return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// True for a zero or empty digit vector, or one of zeros only.
bool HasNoMagnitude(CBigInteger::Digits const& digits)
{
    for (char digit : digits)
        if (digit != 0)
            return false;
    return true;
}

} // namespace

// Built when the library is loaded, through CDecimal so that the exponent
// forms read as they do everywhere else.
CBigInteger const CBigInteger::MAX_LONG(CDecimal("2147483647"));
CBigInteger const CBigInteger::MIN_LONG(CDecimal("-2147483648"));
CBigInteger const CBigInteger::MAX_LONGLONG(CDecimal("9223372036854775807"));
CBigInteger const CBigInteger::MIN_LONGLONG(CDecimal("-9223372036854775808"));
CBigInteger const CBigInteger::MAX_DOUBLE(CDecimal("1.7E+308"));
CBigInteger const CBigInteger::MIN_DOUBLE(CDecimal("-1.7E+308"));

CBigInteger::CBigInteger() : m_sign(1), m_digits(1, 0) {}

CBigInteger::CBigInteger(int value) : m_sign(value < 0 ? -1 : 1)
{
    long long const wide = value;
    BuildDWORDLONG(static_cast<unsigned long long>(wide < 0 ? -wide : wide), m_digits);
}

// A NaN is not below zero, so it counts as positive.
CBigInteger::CBigInteger(double value) : m_sign(value < 0 ? -1 : 1) { BuildDouble(std::fabs(value), m_digits); }

CBigInteger::CBigInteger(char const* text) : m_sign(1) { Parse(text); }

CBigInteger::CBigInteger(CDecimal const& value)
{
    CBigInteger whole = value.ToBigInteger();
    m_sign = whole.m_sign;
    m_digits.swap(whole.m_digits);
}

CBigInteger::~CBigInteger() = default;

CBigInteger CBigInteger::GetAbs() const
{
    CBigInteger copy(*this);
    copy.Abs();
    return copy;
}

CBigInteger CBigInteger::GetNegative() const
{
    CBigInteger copy(*this);
    copy.Negate();
    return copy;
}

CBigInteger& CBigInteger::operator-()
{
    Negate();
    return *this;
}

void CBigInteger::Parse(char const* text)
{
    if (!text)
        text = "";
    size_t length = std::strlen(text);
    for (size_t i = 0; i < length; ++i)
        if (!IsPlainIntegerCharacter(text[i])) {
            CBigInteger value{CDecimal(text)};
            *this = std::move(value);
            return;
        }
    // Only blanks are stripped: a line end stays and stops the digit run.
    size_t first = 0;
    while (first < length && text[first] == ' ')
        ++first;
    while (length > first && text[length - 1] == ' ')
        --length;
    if (first == length) {
        m_sign = 1;
        m_digits.assign(1, 0);
        return;
    }
    int const sign = text[first] == '-' ? -1 : 1;
    if (sign == -1)
        ++first;
    Build(std::string(text + first, text + length), m_digits);
    m_sign = sign;
}

std::string CBigInteger::ToString() const
{
    if (m_digits.empty() || IsZero())
        return "0";
    std::string text;
    text.reserve(m_digits.size() + 1);
    if (m_sign == -1)
        text.push_back('-');
    for (size_t i = m_digits.size(); i-- > 0;)
        text.push_back(static_cast<char>('0' + m_digits[i]));
    return text;
}

void CBigInteger::AddSigned(CBigInteger const& other, int otherSign)
{
    if (m_sign == otherSign) {
        Add(m_digits, other.m_digits, m_digits);
        return;
    }
    int const order = Compare(m_digits, other.m_digits);
    if (order == 0) {
        *this = CBigInteger(0);
    } else if (order > 0) {
        Subtract(m_digits, other.m_digits, m_digits);
    } else {
        Subtract(other.m_digits, m_digits, m_digits);
        m_sign = otherSign;
    }
}

CBigInteger& CBigInteger::operator+=(CBigInteger const& other)
{
    AddSigned(other, other.m_sign);
    return *this;
}

CBigInteger& CBigInteger::operator-=(CBigInteger const& other)
{
    AddSigned(other, other.m_sign == -1 ? 1 : -1);
    return *this;
}

// The sign is the product of the signs even when the magnitude is zero.
CBigInteger& CBigInteger::operator*=(CBigInteger const& other)
{
    Multiply(m_digits, other.m_digits, m_digits);
    m_sign *= other.m_sign;
    return *this;
}

void CBigInteger::DivideSigned(CBigInteger const& dividend, CBigInteger const& divisor, CBigInteger* quotient,
                               CBigInteger* remainder)
{
    if (dividend.IsZero()) {
        if (quotient)
            *quotient = CBigInteger(0);
        if (remainder)
            *remainder = CBigInteger(0);
        return;
    }
    Digits q;
    Digits r;
    Divide(dividend.m_digits, divisor.m_digits, q, r);
    int const quotientSign = dividend.m_sign == divisor.m_sign ? 1 : -1;
    int const remainderSign = dividend.m_sign;
    if (quotient) {
        quotient->m_digits.swap(q);
        quotient->m_sign = quotientSign;
    }
    if (remainder) {
        remainder->m_digits.swap(r);
        remainder->m_sign = remainderSign;
    }
}

// The guards of % and the assigning forms refuse a negative divisor. A zero
// one gets the same answer: long division by zero has no end, and a caller
// is better served by the failure.
CBigInteger& CBigInteger::operator/=(CBigInteger const& other)
{
    if (other.m_sign == -1 || HasNoMagnitude(other.m_digits))
        throw CKdInvalidValueException("ERROR: Overflow in operator /=.");
    DivideSigned(*this, other, this, nullptr);
    return *this;
}

CBigInteger& CBigInteger::operator%=(CBigInteger const& other)
{
    if (other.m_sign == -1 || HasNoMagnitude(other.m_digits))
        throw CKdInvalidValueException("ERROR: Overflow in operator%=.");
    DivideSigned(*this, other, nullptr, this);
    return *this;
}

CBigInteger CBigInteger::operator+(CBigInteger const& other) const { return CBigInteger(*this) += other; }
CBigInteger CBigInteger::operator-(CBigInteger const& other) const { return CBigInteger(*this) -= other; }
CBigInteger CBigInteger::operator*(CBigInteger const& other) const { return CBigInteger(*this) *= other; }

CBigInteger CBigInteger::operator/(CBigInteger const& other) const
{
    if (other == CBigInteger(0))
        throw CKdInvalidValueException("ERROR: Overflow in operator/.");
    CBigInteger quotient;
    DivideSigned(*this, other, &quotient, nullptr);
    return quotient;
}

CBigInteger CBigInteger::operator%(CBigInteger const& other) const
{
    if (other.m_sign == -1 || HasNoMagnitude(other.m_digits))
        throw CKdInvalidValueException("ERROR: Overflow in operator%.");
    CBigInteger remainder;
    DivideSigned(*this, other, nullptr, &remainder);
    return remainder;
}

bool CBigInteger::operator==(CBigInteger const& other) const
{
    return m_digits == other.m_digits && (IsZero() || m_sign == other.m_sign);
}

// Different signs decide alone, even between two zeros.
bool CBigInteger::operator<(CBigInteger const& other) const
{
    if (m_sign != other.m_sign)
        return m_sign < other.m_sign;
    int const order = Compare(m_digits, other.m_digits);
    return m_sign > 0 ? order < 0 : order > 0;
}

bool CBigInteger::operator>(CBigInteger const& other) const
{
    if (m_sign != other.m_sign)
        return m_sign > other.m_sign;
    int const order = Compare(m_digits, other.m_digits);
    return m_sign > 0 ? order > 0 : order < 0;
}

// Newton's iteration from an estimate above the root. Zero walks the
// estimate down to zero and fails dividing by it.
CBigInteger CBigInteger::SquareRoot() const
{
    if (*this < CBigInteger(0))
        throw CKdInvalidValueException("ERROR: Negative Number in function SquareRoot().");
    // 10 times 10 to the number of times the value can be divided by 100
    // before it reaches zero.
    size_t length = m_digits.size();
    while (length > 0 && m_digits[length - 1] == 0)
        --length;
    unsigned int const halvings = length > 0 ? static_cast<unsigned int>((length - 1) / 2) : 0;
    CBigInteger estimate = Pow10(halvings + 1);
    CBigInteger const two(2);
    CBigInteger previous;
    do {
        previous = estimate;
        estimate = (*this / estimate + estimate) / two;
    } while (estimate < previous);
    return previous;
}

CBigInteger::operator int() const
{
    if (*this < CBigInteger(INT_MIN) || *this > CBigInteger(INT_MAX))
        throw CKdInvalidValueException("ERROR: Value out of bound of int.");
    long long value = 0;
    for (size_t i = m_digits.size(); i-- > 0;)
        value = value * 10 + m_digits[i];
    return static_cast<int>(m_sign == -1 ? -value : value);
}

} // namespace KdBind
