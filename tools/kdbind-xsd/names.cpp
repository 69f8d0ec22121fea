#include "names.h"

#include <cctype>
#include <cstdio>

namespace KdXsd {

namespace {

char const* const kKeywords[] = {
    "alignas", "alignof", "and", "and_eq", "asm", "auto", "bitand", "bitor", "bool", "break", "case", "catch",
    "char", "char16_t", "char32_t", "class", "compl", "const", "constexpr", "const_cast", "continue",
    "decltype", "default", "delete", "do", "double", "dynamic_cast", "else", "enum", "explicit", "export",
    "extern", "false", "float", "for", "friend", "goto", "if", "inline", "int", "long", "mutable", "namespace",
    "new", "noexcept", "not", "not_eq", "nullptr", "operator", "or", "or_eq", "private", "protected", "public",
    "register", "reinterpret_cast", "return", "short", "signed", "sizeof", "static", "static_assert",
    "static_cast", "struct", "switch", "template", "this", "thread_local", "throw", "true", "try", "typedef",
    "typeid", "typename", "union", "unsigned", "using", "virtual", "void", "volatile", "wchar_t", "while",
    "xor", "xor_eq"};

bool IsIdentifierChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

} // namespace

std::string ToIdentifier(std::string const& schemaName)
{
    std::string result;
    bool capital = true;
    for (char c : schemaName) {
        if (!IsIdentifierChar(c)) {
            capital = true;
            continue;
        }
        result += capital ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
        capital = false;
    }
    if (result.empty() || std::isdigit(static_cast<unsigned char>(result[0])))
        result.insert(0, "_");
    for (char const* keyword : kKeywords)
        if (result == keyword)
            return result + "_";
    return result;
}

std::string CNameScope::Unique(std::string const& wanted)
{
    std::string name = wanted;
    for (int n = 2; m_used.count(name); ++n)
        name = wanted + std::to_string(n);
    m_used.insert(name);
    return name;
}

std::string Quote(std::string const& text)
{
    std::string result = "\"";
    for (char c : text) {
        unsigned char const u = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (c == '\n') {
            result += "\\n";
        } else if (c == '\t') {
            result += "\\t";
        } else if (u < 0x20 || u >= 0x7f) {
            // Octal, three digits: a hex escape would swallow following hex digits.
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\%03o", u);
            result += buffer;
        } else {
            result += c;
        }
    }
    return result + "\"";
}

} // namespace KdXsd
