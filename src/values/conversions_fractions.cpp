// Zero padding and the fraction of a second, shared by the printers of the
// date and duration kinds.
#include <algorithm>
#include <cstdio>

#include "kdbind/values.h"

namespace KdBind {

std::string TrimTrainingZeros(std::string text)
{
    // Keeps the first character, so "000" gives "0" rather than nothing.
    size_t const kept = text.find_last_not_of('0');
    text.resize(kept == std::string::npos ? std::min<size_t>(text.size(), 1) : kept + 1);
    return text;
}

// %d is the same in every locale; a result longer than 255 characters is cut.
std::string PadZero(int value, unsigned char width)
{
    char buffer[256];
    snprintf(buffer, sizeof buffer, "%0*d", static_cast<int>(width), value);
    return buffer;
}

// The fraction is held as three groups of three digits; only the last
// group that is not zero loses its trailing zeros.
std::string ToFracString(unsigned short milli, unsigned short micro, unsigned short nano)
{
    if (nano != 0)
        return "." + PadZero(milli, 3) + PadZero(micro, 3) + TrimTrainingZeros(PadZero(nano, 3));
    if (micro != 0)
        return "." + PadZero(milli, 3) + TrimTrainingZeros(PadZero(micro, 3));
    if (milli != 0)
        return "." + TrimTrainingZeros(PadZero(milli, 3));
    return std::string();
}

} // namespace KdBind
