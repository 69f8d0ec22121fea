// The base64 codec and the base64 form of CBinaryData.
//
// The bulk of either direction goes through tables, three bytes to four
// characters at a time; the bit reader and writer handle what does not fall
// on a group boundary (the last bytes, characters around skipped ones).
#include <array>
#include <cstring>

#include "kdbind/values.h"
#include "values/character_pairs.h"

namespace {

constexpr signed char kRefused = -2;
constexpr signed char kSkipped = -1;

// Indexed by a character's low 7 bits: its value, kSkipped or kRefused.
constexpr std::array<signed char, 128> MakeDecodeTable()
{
    std::array<signed char, 128> table{};
    for (auto& entry : table)
        entry = kRefused;
    for (int i = 0; i < 64; ++i)
        table[static_cast<unsigned char>(CBase64::m_sBase64Alphabet[i])] = static_cast<signed char>(i);
    for (char c : {'=', ' ', '\t', '\r', '\n'})
        table[static_cast<unsigned char>(c)] = kSkipped;
    return table;
}

constexpr auto kDecode = MakeDecodeTable();

// The two characters of every 12-bit value: a group of three bytes is two
// lookups.
constexpr std::array<std::array<char, 2>, 4096> MakeCharacterPairs()
{
    std::array<std::array<char, 2>, 4096> pairs{};
    for (int value = 0; value < 4096; ++value)
        pairs[value] = {CBase64::m_sBase64Alphabet[value >> 6], CBase64::m_sBase64Alphabet[value & 63]};
    return pairs;
}

constexpr auto kCharacterPairs = MakeCharacterPairs();

int DecodeValue(unsigned char c) { return kDecode[c & 0x7F]; }

// The 12 bits of every pair of data characters.
std::array<short, 65536> const& PairValues()
{
    static std::array<short, 65536> const table = KdBind::MakePairValueTable(&DecodeValue, 6);
    return table;
}

} // namespace

CBase64::CBase64() = default;

CBase64::~CBase64() = default;

unsigned int CBase64::Read(int bits, int* got, int& position)
{
    if (bits < 1 || bits > 8) {
        *got = 0;
        return 0;
    }
    while (m_bitCount < bits && position < m_inputLength) {
        m_accumulator = (m_accumulator << 8) | m_input[position++];
        m_bitCount += 8;
    }
    if (m_bitCount >= bits) {
        *got = bits;
        m_bitCount -= bits;
        return static_cast<unsigned int>(m_accumulator >> m_bitCount) & m_nMask[bits];
    }
    // Input exhausted: the last group is filled with zero bits.
    int const left = m_bitCount;
    *got = left;
    m_bitCount = 0;
    return static_cast<unsigned int>(m_accumulator << (bits - left)) & m_nMask[bits];
}

void CBase64::Write(unsigned int value, int bits, unsigned char* out, int& position)
{
    m_accumulator = (m_accumulator << bits) | value;
    m_bitCount += bits;
    while (m_bitCount >= 8) {
        out[position++] = static_cast<unsigned char>(m_accumulator >> (m_bitCount - 8));
        m_bitCount -= 8;
    }
}

std::string CBase64::Encode(unsigned char* data, int length)
{
    if (!data || length <= 0)
        return std::string();
    m_input = data;
    m_inputLength = length;
    m_bitCount = 0;

    std::string text((static_cast<size_t>(length) + 2) / 3 * 4, '=');
    char* out = &text[0];
    int position = 0;
    for (int const whole = length - length % 3; position < whole; position += 3, out += 4) {
        unsigned int const group = static_cast<unsigned int>(data[position]) << 16 |
                                   static_cast<unsigned int>(data[position + 1]) << 8 | data[position + 2];
        memcpy(out, kCharacterPairs[group >> 12].data(), 2);
        memcpy(out + 2, kCharacterPairs[group & 4095].data(), 2);
    }
    int got = 0;
    for (unsigned int value = Read(6, &got, position); got > 0; value = Read(6, &got, position))
        *out++ = m_sBase64Alphabet[value];
    // A single byte has its group laid out in three prepared places only, so
    // the fourth is a NUL rather than "=".
    if (length == 1)
        text[3] = '\0';

    m_input = nullptr;
    m_inputLength = 0;
    return text;
}

int CBase64::Decode(char const* text, unsigned char* out)
{
    if (!text || !*text || !out)
        return 0;
    size_t const length = strlen(text);
    memset(out, 0, length + 1);
    m_bitCount = 0;
    m_accumulator = 0;

    auto const* in = reinterpret_cast<unsigned char const*>(text);
    auto const* const end = in + length;
    std::array<short, 65536> const& pairs = PairValues();
    int position = 0;
    while (in < end) {
        if (m_bitCount == 0 && end - in >= 4) {
            unsigned short keys[2];
            memcpy(keys, in, sizeof keys);
            int const high = pairs[keys[0]];
            int const low = pairs[keys[1]];
            if ((high | low) >= 0) {  // four data characters on a byte boundary
                unsigned int const group = static_cast<unsigned int>(high) << 12 | static_cast<unsigned int>(low);
                out[position] = static_cast<unsigned char>(group >> 16);
                out[position + 1] = static_cast<unsigned char>(group >> 8);
                out[position + 2] = static_cast<unsigned char>(group);
                position += 3;
                in += 4;
                continue;
            }
        }
        int const value = DecodeValue(*in++);
        if (value == kRefused)
            return 0;
        if (value != kSkipped)
            Write(static_cast<unsigned int>(value), 6, out, position);
    }
    return position;  // bits short of a byte are dropped
}

namespace KdBind {

std::string CBinaryData::GetAsBase64() const
{
    if (!m_holder)
        return std::string();
    return CBase64().Encode(const_cast<unsigned char*>(GetData()), static_cast<int>(GetLength()));
}

void CBinaryData::SetAsBase64(char const* text)
{
    Clear();
    if (!text)
        text = "";
    auto* decoded = new unsigned char[strlen(text) + 1];
    int const length = CBase64().Decode(text, decoded);
    *this = CBinaryData(decoded, static_cast<unsigned long>(length), true);
}

} // namespace KdBind
