// The hexadecimal form of CBinaryData: upper case out, either case in.
// Both directions are bulk paths, driven by tables built at compile time.
#include <array>
#include <cstring>
#include <memory>

#include "kdbind/values.h"
#include "values/character_pairs.h"

namespace KdBind {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

// The two digits of every byte, high nibble first.
constexpr std::array<std::array<char, 2>, 256> MakeByteDigits()
{
    std::array<std::array<char, 2>, 256> table{};
    for (int byte = 0; byte < 256; ++byte)
        table[byte] = {kHexDigits[byte >> 4], kHexDigits[byte & 0xF]};
    return table;
}

constexpr auto kByteDigits = MakeByteDigits();

// Nibble value of a character; kNotHex for anything else, NUL included.
constexpr unsigned char kNotHex = 0x10;

constexpr std::array<unsigned char, 256> MakeNibbles()
{
    std::array<unsigned char, 256> table{};
    for (int c = 0; c < 256; ++c)
        table[c] = kNotHex;
    for (int digit = 0; digit < 10; ++digit)
        table['0' + digit] = static_cast<unsigned char>(digit);
    for (int letter = 0; letter < 6; ++letter) {
        table['A' + letter] = static_cast<unsigned char>(10 + letter);
        table['a' + letter] = static_cast<unsigned char>(10 + letter);
    }
    return table;
}

constexpr auto kNibbles = MakeNibbles();

int NibbleValue(unsigned char c) { return kNibbles[c] == kNotHex ? -1 : kNibbles[c]; }

// The byte of every two-character pair: one lookup per byte decoded.
std::array<short, 65536> const& PairValues()
{
    static std::array<short, 65536> const table = MakePairValueTable(&NibbleValue, 4);
    return table;
}

[[noreturn]] void ThrowInvalidHexChar(char c)
{
    throw CKdException(FormatString("Invalid char in hex string [%c]", c));
}

} // namespace

std::string CBinaryData::GetAsHexString(unsigned char* data, unsigned long length)
{
    if (!data)
        return std::string();
    std::string text(length * 2, '\0');
    char* out = &text[0];
    for (unsigned long i = 0; i < length; ++i, out += 2)
        memcpy(out, kByteDigits[data[i]].data(), 2);
    return text;
}

// Without a holder this gives the empty text, like the static form for null data.
std::string CBinaryData::GetAsHexString() const
{
    return GetAsHexString(const_cast<unsigned char*>(GetData()), GetLength());
}

unsigned long CBinaryData::ConvertToHexData(char const* text, unsigned char** out)
{
    size_t const length = text ? strlen(text) : 0;
    std::unique_ptr<unsigned char[]> data(new unsigned char[length / 2 + 1]);
    // Pairs are read to the end; an odd length pairs its last digit with the
    // terminating NUL, which is refused like any other character.
    std::array<short, 65536> const& pairs = PairValues();
    unsigned long count = 0;
    for (size_t i = 0; i < length; i += 2, ++count) {
        unsigned short key;
        memcpy(&key, text + i, sizeof key);
        short const value = pairs[key];
        if (value == kNotAPair)
            ThrowInvalidHexChar(kNibbles[static_cast<unsigned char>(text[i])] & kNotHex ? text[i] : text[i + 1]);
        data[count] = static_cast<unsigned char>(value);
    }
    *out = data.release();
    return count;
}

void CBinaryData::SetAsHexString(char const* text)
{
    Clear();
    unsigned char* data = nullptr;
    unsigned long const length = ConvertToHexData(text, &data);
    *this = CBinaryData(data, length, true);
}

} // namespace KdBind
