#include <cctype>

#include "kdbind/runtime.h"

namespace KdBind {

namespace {
// Every search restarts at the front, so a replacement that contains the
// searched text never ends; callers never pass such pairs.
template <class String>
void FindReplaceFromStart(String& text, String const& find, String const& replacement)
{
    for (typename String::size_type at = text.find(find); at != String::npos; at = text.find(find))
        text.replace(at, find.size(), replacement);
}
} // namespace

void FindReplace(std::string& text, std::string const& find, std::string const& replacement)
{
    FindReplaceFromStart(text, find, replacement);
}

void FindReplace(std::wstring& text, std::wstring const& find, std::wstring const& replacement)
{
    FindReplaceFromStart(text, find, replacement);
}

char* strupr(char* text)
{
    for (char* p = text; *p; ++p)
        *p = static_cast<char>(toupper(static_cast<unsigned char>(*p)));
    return text;
}

long _filelength(FILE* stream)
{
    long const position = ftell(stream);
    if (position < 0 || fseek(stream, 0, SEEK_END) != 0)
        return -1;
    long const length = ftell(stream);
    if (length < 0 || fseek(stream, position, SEEK_SET) != 0)
        return -1;
    return length;
}

} // namespace KdBind
