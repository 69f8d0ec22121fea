// The two-character lookup tables of the hex and base64 bulk loops.
#ifndef KDBIND_SRC_VALUES_CHARACTER_PAIRS_H
#define KDBIND_SRC_VALUES_CHARACTER_PAIRS_H

#include <array>
#include <cstring>

namespace KdBind {

constexpr short kNotAPair = -1;

// The value of every pair of characters, keyed by the pair's two bytes as
// they lie in memory, so that a loop reads two characters with one load and
// one lookup: the first character's value shifted left by `shift` and joined
// with the second's, or kNotAPair when valueOf gives either a negative value.
template <class ValueOf>
std::array<short, 65536> MakePairValueTable(ValueOf valueOf, int shift)
{
    std::array<short, 65536> values{};
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            unsigned char const pair[2] = {static_cast<unsigned char>(first), static_cast<unsigned char>(second)};
            unsigned short key;
            memcpy(&key, pair, sizeof key);
            int const high = valueOf(pair[0]);
            int const low = valueOf(pair[1]);
            values[key] = high >= 0 && low >= 0 ? static_cast<short>(high << shift | low) : kNotAPair;
        }
    }
    return values;
}

} // namespace KdBind

#endif
