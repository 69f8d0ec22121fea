// Text between the local code page (as mbrtowc and wcrtomb see it), wide
// strings and UTF-8. A character that does not convert becomes a question
// mark; conversions never fail.
//
// Plain ASCII is the common case and skips the C library: every code page a
// locale can use here keeps the ASCII bytes as they are.
#include <climits>
#include <cstring>
#include <cwchar>
#include <memory>
#include <stdexcept>
#include <string>

#include "kdbind/values.h"

namespace KdBind {

bool ASCII_ONLY = false;

void ASCIIOnly(bool asciiOnly) { ASCII_ONLY = asciiOnly; }

namespace {

constexpr wchar_t kQuestionMark = L'?';
constexpr size_t kConversionFailed = static_cast<size_t>(-1);
constexpr size_t kIncompleteSequence = static_cast<size_t>(-2);

bool IsAscii(char const* text, size_t length)
{
    return !DoesUTF8StrContainAnyCharsLargerThanOneByte(
        reinterpret_cast<unsigned char*>(const_cast<char*>(text)), length);
}

// An exactly sized block that the CBinaryData adopts. The byte after the data
// is zeroed, so that callers can treat text as a C string.
CBinaryData AdoptCopy(void const* data, size_t length)
{
    auto* block = new unsigned char[length + 1];
    memcpy(block, data, length);
    block[length] = 0;
    return CBinaryData(block, length, true);
}

// Decodes the local code page. A byte that does not decode becomes a
// question mark and one byte is stepped over.
std::wstring DecodeLocalCodePage(char const* text)
{
    size_t const length = strlen(text);
    std::wstring wide;
    wide.reserve(length);
    mbstate_t state{};
    bool initialState = true;
    char const* const end = text + length;
    for (char const* p = text; p < end;) {
        unsigned char const byte = static_cast<unsigned char>(*p);
        if (byte < 0x80 && initialState) {
            wide.push_back(static_cast<wchar_t>(byte));
            ++p;
            continue;
        }
        wchar_t c = 0;
        size_t const used = mbrtowc(&c, p, static_cast<size_t>(end - p), &state);
        if (used == kConversionFailed || used == kIncompleteSequence) {
            wide.push_back(kQuestionMark);
            ++p;
            state = mbstate_t();
        } else {
            wide.push_back(c);
            p += used == 0 ? 1 : used;  // a decoded null still takes one byte
        }
        initialState = mbsinit(&state) != 0;
    }
    return wide;
}

// Encodes wide text in the local code page, up to its first null. The narrow
// buffer is used when the result fits in it.
std::string EncodeLocalCodePage(wchar_t const* wide, size_t count, char* narrowBuffer, unsigned long narrowCapacity)
{
    // Sized by a measuring pass: a failing character takes one byte, for its
    // question mark. wcrtomb measures nothing on a null target, hence the scratch.
    char scratch[MB_LEN_MAX];
    mbstate_t state{};
    size_t size = 1;
    size_t end = 0;
    for (; end < count && wide[end] != 0; ++end) {
        size_t const used = wcrtomb(scratch, wide[end], &state);
        if (used == kConversionFailed) {
            state = mbstate_t();
            size += 1;
        } else {
            size += used;
        }
    }

    std::unique_ptr<char[]> allocated;
    char* narrow = narrowBuffer;
    if (!narrow || size > narrowCapacity) {
        allocated.reset(new char[size]);
        narrow = allocated.get();
    }
    state = mbstate_t();
    char* out = narrow;
    for (size_t i = 0; i < end; ++i) {
        size_t const used = wcrtomb(out, wide[i], &state);
        if (used == kConversionFailed) {
            state = mbstate_t();
            *out++ = '?';
        } else {
            out += used;
        }
    }
    return std::string(narrow, strnlen(narrow, static_cast<size_t>(out - narrow)));
}

} // namespace

CBinaryData CEncoder::UnicodeToUtf8Binary(wchar_t const* text)
{
    if (!text || !*text)
        return CBinaryData();
    size_t const length = wcslen(text);
    unsigned long const size = DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(text, static_cast<int>(length))
                                   ? UnicodeToUTF8(text, length, nullptr, 0)
                                   : length;
    auto* block = new unsigned char[size + 1];
    unsigned long const written = UnicodeToUTF8(text, length, block, size);
    block[written] = 0;
    return CBinaryData(block, written, true);
}

CBinaryData CEncoder::LocalCodePageToUtf8Binary(char const* text)
{
    if (!text || !*text)
        return CBinaryData();
    size_t const length = strlen(text);
    // ASCII is already UTF-8; with ASCII_ONLY every text is taken as it is.
    if (ASCII_ONLY || IsAscii(text, length))
        return AdoptCopy(text, length);
    return UnicodeToUtf8Binary(DecodeLocalCodePage(text).c_str());
}

CBinaryData CEncoder::LocalCodePageToUnicodeBinary(char const* text)
{
    if (!text || !*text)
        return CBinaryData();
    // The wide characters as they stand: four bytes each, in machine order.
    std::wstring const wide = DecodeLocalCodePage(text);
    return AdoptCopy(wide.data(), wide.size() * sizeof(wchar_t));
}

std::string CEncoder::Utf16ToLocalCodePage(unsigned char*, int)
{
    // There is no UTF-16 decoding on this platform: the result is built from a
    // null text, which the string class refuses. Raised here explicitly, with
    // the string class's own failure, so that no null pointer is handed on.
    throw std::logic_error("basic_string: construction from null is not valid");
}

std::string CEncoder::Utf8ToLocalCodePage(unsigned char* text, int length, wchar_t* wideBuffer,
                                          unsigned long wideCapacity, char* narrowBuffer,
                                          unsigned long narrowCapacity)
{
    if (!text || length <= 0)
        return std::string();
    char const* const narrowText = reinterpret_cast<char const*>(text);
    if (ASCII_ONLY)
        return std::string(narrowText, static_cast<size_t>(length));
    unsigned long const byteCount = static_cast<unsigned long>(length);
    if (!DoesUTF8StrContainAnyCharsLargerThanOneByte(text, byteCount))
        return std::string(narrowText, strnlen(narrowText, byteCount));  // ASCII: the same bytes, up to a null

    std::unique_ptr<wchar_t[]> allocated;
    wchar_t* wide = wideBuffer;
    if (!wide || byteCount + 1 > wideCapacity) {
        allocated.reset(new wchar_t[byteCount + 1]);
        wide = allocated.get();
    }
    // An illegal or truncated sequence ends the text there.
    unsigned long const count = UTF8ToUnicode(text, byteCount, wide, byteCount);
    wide[count] = 0;
    return EncodeLocalCodePage(wide, count, narrowBuffer, narrowCapacity);
}

std::string CEncoder::Utf8ToLocalCodePage(unsigned char* text, int length)
{
    return Utf8ToLocalCodePage(text, length, nullptr, 0, nullptr, 0);
}

std::string CEncoder::Utf8ToLocalCodePage(char const* text)
{
    return Utf8ToLocalCodePage(text, nullptr, 0, nullptr, 0);
}

std::string CEncoder::Utf8ToLocalCodePage(char const* text, wchar_t* wideBuffer, unsigned long wideCapacity,
                                          char* narrowBuffer, unsigned long narrowCapacity)
{
    if (!text)
        return std::string();
    return Utf8ToLocalCodePage(reinterpret_cast<unsigned char*>(const_cast<char*>(text)),
                               static_cast<int>(strlen(text)), wideBuffer, wideCapacity, narrowBuffer,
                               narrowCapacity);
}

std::string UnicodeToMultiByte(wchar_t const* text)
{
    if (!text || !*text)
        return std::string();
    size_t const length = wcslen(text);
    if (!DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(text, static_cast<int>(length))) {
        std::string narrow(length, '\0');
        for (size_t i = 0; i < length; ++i)
            narrow[i] = static_cast<char>(text[i]);
        return narrow;
    }
    return EncodeLocalCodePage(text, length, nullptr, 0);
}

} // namespace KdBind
