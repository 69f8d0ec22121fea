// Lexical forms of hexBinary and base64Binary, through CBinaryData.
#include "kdbind/values.h"

namespace KdBind {

std::string CConversions::hexBinaryToString(CBinaryData const& value) { return value.GetAsHexString(); }

std::string CConversions::base64BinaryToString(CBinaryData const& value) { return value.GetAsBase64(); }

// The hexadecimal reader refuses white space, so only a rule that removes it
// lets a spaced text through.
CBinaryData CConversions::hexBinaryFromString(std::string const& text, WhitespaceRule rule)
{
    CBinaryData value;
    value.SetAsHexString(CWhitespaceUtils::ApplyRule(rule, text).c_str());
    return value;
}

CBinaryData CConversions::base64BinaryFromString(std::string const& text, WhitespaceRule rule)
{
    CBinaryData value;
    value.SetAsBase64(CWhitespaceUtils::ApplyRule(rule, text).c_str());
    return value;
}

} // namespace KdBind
