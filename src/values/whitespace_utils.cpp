// The xsd:whiteSpace rules. Unlike XML Schema's own replace and collapse,
// every rule here drops a carriage return instead of turning it into a
// blank, so that a CR LF pair counts as one line feed.
#include "kdbind/values.h"

namespace KdBind {

namespace {

// Copies the text without carriage returns, stopping at the first NUL.
std::string WithoutCarriageReturns(char const* text, size_t length)
{
    std::string result;
    result.reserve(length);
    for (char const* p = text; p != text + length && *p != '\0'; ++p) {
        if (*p != '\r')
            result += *p;
    }
    return result;
}

} // namespace

std::string CWhitespaceUtils::Preserve(char const* text, int length)
{
    if (text == nullptr || length <= 0)
        return std::string();
    return WithoutCarriageReturns(text, static_cast<size_t>(length));
}

std::string CWhitespaceUtils::Preserve(std::string const& text)
{
    if (text.find('\r') == std::string::npos)
        return text;
    return WithoutCarriageReturns(text.data(), text.size());
}

std::string CWhitespaceUtils::Replace(std::string const& text)
{
    // A blank stays a blank, so only CR, tab and line feed change anything.
    if (text.find_first_of("\r\t\n") == std::string::npos)
        return text;
    std::string result;
    result.reserve(text.size());
    for (char c : text) {
        if (c == '\r')
            continue;
        result += IsWhiteSpace(c) ? ' ' : c;
    }
    return result;
}

std::string CWhitespaceUtils::Collapse(std::string const& text)
{
    std::string result;
    result.reserve(text.size());
    // Starts true so that leading white space is dropped.
    bool blankWritten = true;
    for (char c : text) {
        if (c == '\r')
            continue;  // leaves the flag alone: "a \r b" still gives one blank
        if (IsWhiteSpace(c)) {
            if (!blankWritten) {
                result += ' ';
                blankWritten = true;
            }
        } else {
            result += c;
            blankWritten = false;
        }
    }
    if (!result.empty() && result.back() == ' ')
        result.pop_back();
    return result;
}

std::string CWhitespaceUtils::ApplyRule(WhitespaceRule rule, std::string const& text)
{
    switch (rule) {
    case WhitespaceRule_None: return text;
    case WhitespaceRule_Preserve: return Preserve(text);
    case WhitespaceRule_Replace: return Replace(text);
    case WhitespaceRule_Collapse: return Collapse(text);
    }
    throw CKdException("Unknown WhitespaceRule");
}

} // namespace KdBind
