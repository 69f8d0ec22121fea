// Lexical forms of integer and decimal, through CBigInteger and CDecimal.
#include <cstdlib>

#include "kdbind/values.h"

namespace KdBind {

std::string CConversions::integerToString(CBigInteger const& value) { return value.ToString(); }

// Any format names a number of places, read as strtol reads it ("2" or
// " 2"); text that is no number reads as 0 places.
std::string CConversions::decimalToString(CDecimal const& value, char const* format)
{
    if (!format)
        return value.ToString();
    return value.ToString(static_cast<int>(std::strtol(format, nullptr, 10)));
}

// The parsers skip white space themselves, but not always as a rule would
// (an integer stops at a line end), so any rule but none is applied first.
CBigInteger CConversions::integerFromString(std::string const& text, WhitespaceRule rule)
{
    if (rule == CWhitespaceUtils::WhitespaceRule_None)
        return CBigInteger(text.c_str());
    return CBigInteger(CWhitespaceUtils::ApplyRule(rule, text).c_str());
}

CDecimal CConversions::decimalFromString(std::string const& text, WhitespaceRule rule)
{
    if (rule == CWhitespaceUtils::WhitespaceRule_None)
        return CDecimal(text.c_str());
    return CDecimal(CWhitespaceUtils::ApplyRule(rule, text).c_str());
}

} // namespace KdBind
