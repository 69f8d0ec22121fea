// Lexical forms of integer and decimal, through CBigInteger and CDecimal.
#include <algorithm>
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

namespace {

// The parsers skip white space themselves, but not always as a rule would
// (an integer stops at a line end), so the rule is applied first. A text
// without white space is left as it is by every rule, and that is the common
// case: it is read in place. An unknown rule is left to ApplyRule to report.
template <class Value>
Value ReadRuled(std::string const& text, CWhitespaceUtils::WhitespaceRule rule)
{
    bool const knownRule = rule >= CWhitespaceUtils::WhitespaceRule_None && rule <= CWhitespaceUtils::WhitespaceRule_Collapse;
    if (rule == CWhitespaceUtils::WhitespaceRule_None ||
        (knownRule && std::none_of(text.begin(), text.end(), &CWhitespaceUtils::IsWhiteSpace)))
        return Value(text.c_str());
    return Value(CWhitespaceUtils::ApplyRule(rule, text).c_str());
}

} // namespace

CBigInteger CConversions::integerFromString(std::string const& text, WhitespaceRule rule)
{
    return ReadRuled<CBigInteger>(text, rule);
}

CDecimal CConversions::decimalFromString(std::string const& text, WhitespaceRule rule)
{
    return ReadRuled<CDecimal>(text, rule);
}

} // namespace KdBind
