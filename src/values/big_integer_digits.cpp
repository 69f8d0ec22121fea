// Magnitude arithmetic on digit vectors: one decimal digit per element, least
// significant first.
//
// Sums and differences work digit by digit. Products and quotients work in
// limbs of nine digits (base 10^9), which a digit vector turns into and back
// from by grouping alone, and they first set aside the low zeros of their
// operands: a power of ten costs a shift, however long it is. A quotient is
// found by long division, limb by limb, so its cost grows with the lengths of
// the operands and not with the size of the quotient.
#include <cassert>
#include <cmath>
#include <cstdint>

#include "kdbind/values.h"

namespace KdBind {

namespace {

typedef CBigInteger::Digits Digits;
typedef std::vector<std::uint32_t> Limbs;

constexpr std::uint32_t kLimbBase = 1000000000;
constexpr size_t kLimbDigits = 9;

// The length without high-order zeros; 0 for a zero or empty vector.
size_t SignificantLength(Digits const& digits)
{
    size_t length = digits.size();
    while (length > 0 && digits[length - 1] == 0)
        --length;
    return length;
}

// The number of low-order zeros below the first other digit.
size_t LowZeros(Digits const& digits, size_t length)
{
    size_t zeros = 0;
    while (zeros < length && digits[zeros] == 0)
        ++zeros;
    return zeros;
}

// Digits [from, to) as limbs, the lowest first.
Limbs ToLimbs(Digits const& digits, size_t from, size_t to)
{
    Limbs limbs((to - from + kLimbDigits - 1) / kLimbDigits);
    for (size_t limb = 0; limb < limbs.size(); ++limb) {
        size_t const low = from + limb * kLimbDigits;
        size_t high = low + kLimbDigits < to ? low + kLimbDigits : to;
        std::uint32_t value = 0;
        while (high-- > low)
            value = value * 10 + static_cast<std::uint32_t>(digits[high]);
        limbs[limb] = value;
    }
    return limbs;
}

// Appends the digits of the limbs to out, cleaned of high-order zeros.
void AppendLimbs(Limbs const& limbs, Digits& out)
{
    for (std::uint32_t value : limbs)
        for (size_t i = 0; i < kLimbDigits; ++i) {
            out.push_back(static_cast<char>(value % 10));
            value /= 10;
        }
    CBigInteger::Clean(out);
}

// Zeros below the given digits: the value times 10 to the `zeros`.
Digits Shifted(size_t zeros, Limbs const& limbs)
{
    Digits out(zeros, 0);
    out.reserve(zeros + limbs.size() * kLimbDigits);
    AppendLimbs(limbs, out);
    return out;
}

Limbs MultiplyLimbs(Limbs const& a, Limbs const& b)
{
    Limbs product(a.size() + b.size(), 0);
    for (size_t i = 0; i < a.size(); ++i) {
        std::uint64_t carry = 0;
        std::uint64_t const factor = a[i];
        for (size_t j = 0; j < b.size(); ++j) {
            std::uint64_t const current = product[i + j] + factor * b[j] + carry;
            product[i + j] = static_cast<std::uint32_t>(current % kLimbBase);
            carry = current / kLimbBase;
        }
        product[i + b.size()] = static_cast<std::uint32_t>(carry);
    }
    return product;
}

// Divides in place by one limb; returns the remainder.
std::uint32_t DivideBySmall(Limbs& limbs, std::uint32_t divisor)
{
    std::uint64_t remainder = 0;
    for (size_t i = limbs.size(); i-- > 0;) {
        std::uint64_t const current = remainder * kLimbBase + limbs[i];
        limbs[i] = static_cast<std::uint32_t>(current / divisor);
        remainder = current % divisor;
    }
    return static_cast<std::uint32_t>(remainder);
}

// Long division of u by v (at least two limbs, the top one not zero), with
// the quotient digit estimated from the top limbs after both are scaled so
// that v's top limb is at least half the base.
void DivideLimbs(Limbs const& u, Limbs const& v, Limbs& quotient, Limbs& remainder)
{
    size_t const n = v.size();
    assert(n >= 2 && v[n - 1] != 0 && u.size() >= n);
    size_t const m = u.size() - n;
    std::uint64_t const scale = kLimbBase / (std::uint64_t(v[n - 1]) + 1);

    auto scaled = [scale](Limbs const& in, size_t extra) {
        Limbs out(in.size() + extra, 0);
        std::uint64_t carry = 0;
        for (size_t i = 0; i < in.size(); ++i) {
            std::uint64_t const current = in[i] * scale + carry;
            out[i] = static_cast<std::uint32_t>(current % kLimbBase);
            carry = current / kLimbBase;
        }
        if (extra)
            out[in.size()] = static_cast<std::uint32_t>(carry);
        else
            assert(carry == 0);
        return out;
    };
    Limbs un = scaled(u, 1);
    Limbs const vn = scaled(v, 0);
    std::uint64_t const top = vn[n - 1];
    std::uint64_t const next = vn[n - 2];

    quotient.assign(m + 1, 0);
    for (size_t j = m + 1; j-- > 0;) {
        std::uint64_t const numerator = std::uint64_t(un[j + n]) * kLimbBase + un[j + n - 1];
        std::uint64_t estimate = numerator / top;
        if (estimate > kLimbBase - 1)
            estimate = kLimbBase - 1;
        std::uint64_t rest = numerator - estimate * top;
        while (rest < kLimbBase && estimate * next > rest * kLimbBase + un[j + n - 2]) {
            --estimate;
            rest += top;
        }
        // un[j .. j+n] -= estimate * vn
        std::uint64_t carry = 0;
        std::int64_t borrow = 0;
        for (size_t i = 0; i < n; ++i) {
            std::uint64_t const product = estimate * vn[i] + carry;
            carry = product / kLimbBase;
            std::int64_t difference =
                std::int64_t(un[i + j]) - std::int64_t(product % kLimbBase) - borrow;
            borrow = difference < 0;
            if (borrow)
                difference += kLimbBase;
            un[i + j] = static_cast<std::uint32_t>(difference);
        }
        std::int64_t high = std::int64_t(un[j + n]) - std::int64_t(carry) - borrow;
        if (high < 0) {
            // The estimate was one too large: add the divisor back once.
            --estimate;
            std::uint64_t sum = 0;
            for (size_t i = 0; i < n; ++i) {
                sum += std::uint64_t(un[i + j]) + vn[i];
                un[i + j] = static_cast<std::uint32_t>(sum % kLimbBase);
                sum /= kLimbBase;
            }
            high += static_cast<std::int64_t>(sum);
        }
        assert(high >= 0 && high < std::int64_t(kLimbBase));
        un[j + n] = static_cast<std::uint32_t>(high);
        quotient[j] = static_cast<std::uint32_t>(estimate);
    }
    un.resize(n);
    std::uint32_t const rest = DivideBySmall(un, static_cast<std::uint32_t>(scale));
    assert(rest == 0);
    (void)rest;
    remainder.swap(un);
}

} // namespace

int CBigInteger::Compare(Digits const& a, Digits const& b)
{
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    for (size_t i = a.size(); i-- > 0;)
        if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
    return 0;
}

int CBigInteger::Position(Digits const& digits) { return digits.empty() ? 1 : static_cast<int>(digits.size()); }

void CBigInteger::Clean(Digits& digits)
{
    size_t length = digits.size();
    while (length > 1 && digits[length - 1] == 0)
        --length;
    digits.resize(length);
}

void CBigInteger::ShiftLeft(Digits& digits, int n)
{
    if (n > 0)
        digits.insert(digits.begin(), static_cast<size_t>(n), 0);
}

void CBigInteger::Build(unsigned int value, Digits& digits) { BuildDWORDLONG(value, digits); }

void CBigInteger::BuildDWORDLONG(unsigned long long value, Digits& digits)
{
    digits.clear();
    do {
        digits.push_back(static_cast<char>(value % 10));
        value /= 10;
    } while (value != 0);
}

// Digit by digit from the low end in double arithmetic, so that a value past
// the precision of a double shows that double's own decimal noise.
void CBigInteger::BuildDouble(double magnitude, Digits& digits)
{
    digits.clear();
    double value = std::ceil(magnitude - 0.5);
    if (std::isinf(value))
        throw CKdOverFlowException("An infinite value can not be held by an integer");
    if (value == 0) {
        digits.push_back(0);
        return;
    }
    while (value > 0) {
        digits.push_back(static_cast<char>(std::fmod(value, 10.0)));
        double whole;
        std::modf(value / 10.0, &whole);
        value = whole;
    }
}

void CBigInteger::Build(std::string const& text, Digits& digits)
{
    size_t first = text.size();
    while (first > 0 && text[first - 1] >= '0' && text[first - 1] <= '9')
        --first;
    Digits built;
    built.reserve(text.size() - first);
    for (size_t i = text.size(); i-- > first;)
        built.push_back(static_cast<char>(text[i] - '0'));
    Clean(built);
    digits.swap(built);
}

void CBigInteger::Add(Digits const& a, Digits const& b, Digits& result)
{
    Digits const& longer = a.size() >= b.size() ? a : b;
    Digits const& shorter = a.size() >= b.size() ? b : a;
    Digits sum;
    sum.reserve(longer.size() + 1);
    int carry = 0;
    for (size_t i = 0; i < longer.size(); ++i) {
        int const digit = longer[i] + (i < shorter.size() ? shorter[i] : 0) + carry;
        carry = digit >= 10;
        sum.push_back(static_cast<char>(carry ? digit - 10 : digit));
    }
    if (carry)
        sum.push_back(1);
    if (sum.empty())
        sum.push_back(0);
    result.swap(sum);
}

void CBigInteger::Subtract(Digits const& a, Digits const& b, Digits& result)
{
    Digits difference;
    difference.reserve(a.size());
    int borrow = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        int digit = a[i] - (i < b.size() ? b[i] : 0) - borrow;
        borrow = digit < 0;
        difference.push_back(static_cast<char>(borrow ? digit + 10 : digit));
    }
    if (difference.empty())
        difference.push_back(0);
    Clean(difference);
    result.swap(difference);
}

void CBigInteger::Multiply(Digits const& a, char digit, Digits& result)
{
    if (digit == 0 || SignificantLength(a) == 0) {
        result.assign(1, 0);
        return;
    }
    Digits product;
    product.reserve(a.size() + 1);
    int carry = 0;
    for (char d : a) {
        int const current = d * digit + carry;
        product.push_back(static_cast<char>(current % 10));
        carry = current / 10;
    }
    if (carry)
        product.push_back(static_cast<char>(carry));
    Clean(product);
    result.swap(product);
}

void CBigInteger::Multiply(Digits const& a, Digits const& b, Digits& result)
{
    size_t const lengthA = SignificantLength(a);
    size_t const lengthB = SignificantLength(b);
    if (lengthA == 0 || lengthB == 0) {
        result.assign(1, 0);
        return;
    }
    size_t const zerosA = LowZeros(a, lengthA);
    size_t const zerosB = LowZeros(b, lengthB);
    Limbs const product = MultiplyLimbs(ToLimbs(a, zerosA, lengthA), ToLimbs(b, zerosB, lengthB));
    result = Shifted(zerosA + zerosB, product);
}

void CBigInteger::Divide(Digits const& a, Digits const& b, Digits& quotient, Digits& remainder)
{
    size_t const lengthB = SignificantLength(b);
    if (lengthB == 0)
        throw CKdInvalidValueException("ERROR: Overflow in operator/.");
    if (Compare(a, b) < 0) {
        remainder = a;
        quotient.assign(1, 0);
        return;
    }
    size_t const lengthA = SignificantLength(a);
    // a = high * 10^k + low and b = core * 10^k: the quotient is high / core,
    // and the remainder (high % core) * 10^k + low.
    size_t const zeros = LowZeros(b, lengthB);
    Digits low(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(zeros < lengthA ? zeros : lengthA));
    Limbs high = zeros < lengthA ? ToLimbs(a, zeros, lengthA) : Limbs();
    Limbs const core = ToLimbs(b, zeros, lengthB);
    Limbs quotientLimbs;
    Limbs remainderLimbs;
    while (!high.empty() && high.back() == 0)
        high.pop_back();
    if (high.size() < core.size()) {
        remainderLimbs = high;
    } else if (core.size() == 1) {
        remainderLimbs.assign(1, DivideBySmall(high, core[0]));
        quotientLimbs.swap(high);
    } else {
        DivideLimbs(high, core, quotientLimbs, remainderLimbs);
    }
    Digits q;
    AppendLimbs(quotientLimbs, q);
    if (q.empty())
        q.push_back(0);
    if (low.empty())
        low.push_back(0);
    // The remainder's high part goes above the low digits, which keep their
    // place; a zero high part leaves the low digits alone.
    Digits r;
    AppendLimbs(remainderLimbs, r);
    if (!(r.empty() || (r.size() == 1 && r[0] == 0))) {
        low.resize(zeros, 0);
        low.insert(low.end(), r.begin(), r.end());
    }
    Clean(low);
    quotient.swap(q);
    remainder.swap(low);
}

void CBigInteger::Pow10(unsigned int n, Digits& digits)
{
    digits.assign(static_cast<size_t>(n) + 1, 0);
    digits[n] = 1;
}

CBigInteger CBigInteger::Pow10(unsigned int n)
{
    CBigInteger value;
    Pow10(n, value.m_digits);
    return value;
}

} // namespace KdBind
