// The UTF converters. Every direction is one walk: a reader takes a code
// point from the source form, a writer sizes and stores it in the target form.
// The readers and writers differ; the walk, with its counting mode, its stop
// on malformed input and its stop on a full target, is shared.
#include <cstdint>
#include <cstring>
#include <vector>

#include "kdbind/runtime.h"

namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;
constexpr char32_t kMaxCodePoint = 0x10FFFF;
constexpr char32_t kSurrogateFirst = 0xD800;
constexpr char32_t kLowSurrogateFirst = 0xDC00;
constexpr char32_t kSurrogateLast = 0xDFFF;

bool IsSurrogate(char32_t c) { return c >= kSurrogateFirst && c <= kSurrogateLast; }

// Trailing bytes announced by a lead byte; the five- and six-byte forms are
// known here so that they are skipped as one illegal sequence.
constexpr unsigned char TrailingBytes(unsigned char lead)
{
    return lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
}

// What the lead byte of a sequence of n bytes contributes before its bits.
constexpr char32_t kLeadOffset[6] = {0, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};

// ---------------------------------------------------------------------------
// Readers: take one code point from [p, end) and advance p; false means
// malformed input, which ends the conversion.
// ---------------------------------------------------------------------------

struct Utf8 {
    using Unit = unsigned char;

    static bool Read(Unit const*& p, Unit const* end, char32_t& c)
    {
        if (*p < 0x80) {  // the common case, kept cheap
            c = *p++;
            return true;
        }
        int const trailing = TrailingBytes(*p);
        if (trailing >= end - p || !IsLegalUTF8(p, trailing + 1))
            return false;
        c = *p++ - kLeadOffset[trailing];
        for (int i = 0; i < trailing; ++i)
            c = (c << 6) + (*p++ - 0x80);
        return !IsSurrogate(c);
    }

    static int Size(char32_t c)
    {
        if (c > kMaxCodePoint)
            return 3;  // written as U+FFFD
        return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    }

    static void Store(char32_t c, int size, Unit* out)
    {
        if (c > kMaxCodePoint)
            c = kReplacementCharacter;
        static constexpr Unit kFirstByteMark[5] = {0, 0, 0xC0, 0xE0, 0xF0};
        for (int i = size - 1; i > 0; --i) {
            out[i] = static_cast<Unit>((c & 0x3F) | 0x80);
            c >>= 6;
        }
        out[0] = static_cast<Unit>(c | kFirstByteMark[size]);
    }
};

struct Utf16 {
    using Unit = unsigned short;

    static bool Read(Unit const*& p, Unit const* end, char32_t& c)
    {
        c = *p++;
        if (!IsSurrogate(c))
            return true;
        if (c >= kLowSurrogateFirst || p == end || *p < kLowSurrogateFirst || *p > kSurrogateLast)
            return false;  // a lone low or a high without its low half
        c = 0x10000 + ((c - kSurrogateFirst) << 10) + (*p++ - kLowSurrogateFirst);
        return true;
    }

    // Above the last code point there is no UTF-16 form: 0 ends the work.
    static int Size(char32_t c) { return c > kMaxCodePoint ? 0 : c > 0xFFFF ? 2 : 1; }

    static void Store(char32_t c, int size, Unit* out)
    {
        if (size == 1) {
            out[0] = static_cast<Unit>(c);
            return;
        }
        c -= 0x10000;
        out[0] = static_cast<Unit>(kSurrogateFirst + (c >> 10));
        out[1] = static_cast<Unit>(kLowSurrogateFirst + (c & 0x3FF));
    }
};

// UTF-32 as unsigned int, or as wchar_t for the wide-text entry points.
template <class UnitType>
struct Utf32 {
    using Unit = UnitType;

    static bool Read(Unit const*& p, Unit const*, char32_t& c)
    {
        c = static_cast<char32_t>(static_cast<std::uint32_t>(*p++));
        return !IsSurrogate(c);
    }

    static int Size(char32_t) { return 1; }

    static void Store(char32_t c, int, Unit* out)
    {
        *out = static_cast<Unit>(c > kMaxCodePoint ? kReplacementCharacter : c);
    }
};

// The shared walk. A null target counts; otherwise it writes up to targetEnd.
template <class From, class To>
unsigned long Convert(typename From::Unit const* source, typename From::Unit const* sourceEnd,
                      typename To::Unit* target, typename To::Unit* targetEnd)
{
    bool const counting = target == nullptr;
    unsigned long units = 0;
    while (source < sourceEnd) {
        char32_t c;
        int size = 0;
        if (!From::Read(source, sourceEnd, c) || (size = To::Size(c)) == 0)
            return counting ? 0 : units;
        if (!counting) {
            if (targetEnd - target < size)
                return units;
            To::Store(c, size, target);
            target += size;
        }
        units += static_cast<unsigned long>(size);
    }
    return units;
}

template <class T>
bool IsAligned(void const* p) { return reinterpret_cast<std::uintptr_t>(p) % alignof(T) == 0; }

} // namespace

bool IsLegalUTF8(unsigned char const* source, int length)
{
    if (length < 1 || length > 4)
        return false;
    unsigned char const lead = source[0];
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4)
        return false;
    if (length == 1)
        return true;
    for (int i = 2; i < length; ++i) {
        if (source[i] < 0x80 || source[i] > 0xBF)
            return false;
    }
    // The second byte carries the limits that keep out overlong forms,
    // surrogates and values above the last code point.
    unsigned char const second = source[1];
    switch (lead) {
    case 0xE0: return second >= 0xA0 && second <= 0xBF;
    case 0xED: return second >= 0x80 && second <= 0x9F;
    case 0xF0: return second >= 0x90 && second <= 0xBF;
    case 0xF4: return second >= 0x80 && second <= 0x8F;
    default: return second >= 0x80 && second <= 0xBF;
    }
}

bool IsLegalUTF8Sequence(unsigned char const* source, unsigned char const* sourceEnd)
{
    if (source >= sourceEnd)
        return false;
    int const length = TrailingBytes(*source) + 1;
    if (length > sourceEnd - source)
        return false;
    return IsLegalUTF8(source, length);
}

unsigned long ConvertUTF32toUTF16(unsigned int const* sourceStart, unsigned int const* sourceEnd,
                                  unsigned short* targetStart, unsigned short* targetEnd)
{
    return Convert<Utf32<unsigned int>, Utf16>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF16toUTF32(unsigned short const* sourceStart, unsigned short const* sourceEnd,
                                  unsigned int* targetStart, unsigned int* targetEnd)
{
    unsigned long const units = Convert<Utf16, Utf32<unsigned int>>(sourceStart, sourceEnd, targetStart, targetEnd);
    // Writing reports nothing; its callers size the target with a counting call.
    return targetStart ? 0 : units;
}

unsigned long ConvertUTF16toUTF8(unsigned short const* sourceStart, unsigned short const* sourceEnd,
                                 unsigned char* targetStart, unsigned char* targetEnd)
{
    return Convert<Utf16, Utf8>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF8toUTF16(unsigned char const* sourceStart, unsigned char const* sourceEnd,
                                 unsigned short* targetStart, unsigned short* targetEnd)
{
    return Convert<Utf8, Utf16>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF32toUTF8(unsigned int const* sourceStart, unsigned int const* sourceEnd,
                                 unsigned char* targetStart, unsigned char* targetEnd)
{
    return Convert<Utf32<unsigned int>, Utf8>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF8toUTF32(unsigned char const* sourceStart, unsigned char const* sourceEnd,
                                 unsigned int* targetStart, unsigned int* targetEnd)
{
    return Convert<Utf8, Utf32<unsigned int>>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long UnicodeToUTF8(wchar_t const* source, unsigned long count, unsigned char* target,
                            unsigned long capacity)
{
    return Convert<Utf32<wchar_t>, Utf8>(source, source + count, target, target ? target + capacity : nullptr);
}

unsigned long UTF8ToUnicode(unsigned char* source, unsigned long count, wchar_t* target, unsigned long capacity)
{
    return Convert<Utf8, Utf32<wchar_t>>(source, source + count, target, target ? target + capacity : nullptr);
}

unsigned long UnicodeToUTF16(wchar_t const* source, unsigned long count, unsigned char* target,
                             unsigned long capacity)
{
    if (!target || IsAligned<unsigned short>(target)) {
        auto* units = reinterpret_cast<unsigned short*>(target);
        return Convert<Utf32<wchar_t>, Utf16>(source, source + count, units, units ? units + capacity : nullptr);
    }
    // A byte buffer need not be aligned for 16-bit units: convert aside.
    std::vector<unsigned short> aside(capacity);
    unsigned long const written =
        Convert<Utf32<wchar_t>, Utf16>(source, source + count, aside.data(), aside.data() + capacity);
    memcpy(target, aside.data(), written * sizeof(unsigned short));
    return written;
}

unsigned long UTF16ToUnicode(unsigned char* source, unsigned long count, wchar_t* target, unsigned long capacity)
{
    std::vector<unsigned short> aside;
    unsigned short const* units = reinterpret_cast<unsigned short const*>(source);
    if (!IsAligned<unsigned short>(source)) {
        aside.resize(count);
        memcpy(aside.data(), source, count * sizeof(unsigned short));
        units = aside.data();
    }
    unsigned long const written =
        Convert<Utf16, Utf32<wchar_t>>(units, units + count, target, target ? target + capacity : nullptr);
    // As ConvertUTF16toUTF32: only the counting form reports a size.
    return target ? 0 : written;
}

bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(wchar_t const* text, int length)
{
    for (int i = length - 1; i >= 0; --i) {
        if (static_cast<std::uint32_t>(text[i]) > 127)
            return true;
    }
    return false;
}

bool DoesUTF8StrContainAnyCharsLargerThanOneByte(unsigned char* text, unsigned long length)
{
    // Eight bytes at a time: any high bit in the word is a byte above 127.
    constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
    unsigned long i = 0;
    for (; i + 8 <= length; i += 8) {
        std::uint64_t word;
        memcpy(&word, text + i, sizeof word);
        if (word & kHighBits)
            return true;
    }
    for (; i < length; ++i) {
        if (text[i] > 127)
            return true;
    }
    return false;
}
