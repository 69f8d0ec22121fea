// printf-style message building. The length is budgeted by one walk over the
// format before vsnprintf writes into a buffer of that size.
#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "kdbind/runtime.h"

namespace KdBind {

namespace {

enum class SizePrefix { None, Short, Long, LongLong, LongDouble };

int ReadNumber(char const*& p)
{
    int value = 0;
    while (*p >= '0' && *p <= '9')
        value = value * 10 + (*p++ - '0');
    return value;
}

// Consumes one integer argument of the size the prefix names.
void SkipInteger(va_list& args, SizePrefix size)
{
    switch (size) {
    case SizePrefix::Long: (void)va_arg(args, long); break;
    case SizePrefix::LongLong: (void)va_arg(args, long long); break;
    default: (void)va_arg(args, int); break;
    }
}

long double NextFloating(va_list& args, SizePrefix size)
{
    if (size == SizePrefix::LongDouble)
        return va_arg(args, long double);
    return va_arg(args, double);
}

size_t StringBudget(size_t length, bool isNull, int width, int precision)
{
    size_t budget = isNull ? 6 : (length == 0 ? 1 : length);
    if (!isNull && precision > 0 && static_cast<size_t>(precision) < budget)
        budget = static_cast<size_t>(precision);
    if (width > 0 && budget < static_cast<size_t>(width))
        budget = static_cast<size_t>(width);
    return budget;
}

size_t AtLeast(size_t value, size_t floor) { return value > floor ? value : floor; }

// Upper bound of the formatted length, walking a copy of the arguments.
size_t BudgetFormat(char const* format, va_list& args)
{
    size_t budget = 0;
    for (char const* p = format; *p; ++p) {
        if (*p != '%' || *++p == '%') {
            ++budget;
            continue;
        }
        // Flags.
        int width = 0;
        for (;; ++p) {
            if (*p == '#')
                budget += 2;
            else if (*p == '*')
                width = va_arg(args, int);
            else if (*p != '-' && *p != '+' && *p != '0' && *p != ' ')
                break;
        }
        if (width == 0)
            width = ReadNumber(p);
        if (width < 0)
            width = -width;
        // Precision.
        int precision = 0;
        if (*p == '.') {
            ++p;
            if (*p == '*') {
                precision = va_arg(args, int);
                ++p;
            } else {
                precision = ReadNumber(p);
            }
            if (precision < 0)
                precision = 0;
        }
        // Size prefix.
        SizePrefix size = SizePrefix::None;
        if (p[0] == 'I' && p[1] == '6' && p[2] == '4') {
            size = SizePrefix::LongLong;
            p += 3;
        } else if (*p == 'h') {
            size = SizePrefix::Short;
            ++p;
        } else if (*p == 'l') {
            size = (p[1] == 'l') ? SizePrefix::LongLong : SizePrefix::Long;
            p += (p[1] == 'l') ? 2 : 1;
        } else if (*p == 'z' || *p == 'j' || *p == 't') {
            size = SizePrefix::LongLong;
            ++p;
        } else if (*p == 'L') {
            size = SizePrefix::LongDouble;
            ++p;
        } else if (*p == 'F' || *p == 'N') {
            ++p;
        }
        size_t const widthPlusPrecision = static_cast<size_t>(width) + static_cast<size_t>(precision);
        switch (*p) {
        case 's':
        case 'S': {
            bool const wide = (*p == 'S' && size != SizePrefix::Short) ||
                              (*p == 's' && size == SizePrefix::Long);
            if (wide) {
                wchar_t const* text = va_arg(args, wchar_t const*);
                // A wide character may take several bytes in the local code page.
                size_t const length = text ? wcslen(text) * MB_CUR_MAX : 0;
                budget += StringBudget(length, text == nullptr, width, 0);
            } else {
                char const* text = va_arg(args, char const*);
                budget += StringBudget(text ? strlen(text) : 0, text == nullptr, width, precision);
            }
            break;
        }
        case 'c':
        case 'C':
            // One character (a wide one may take several bytes), raised to the width.
            if (*p == 'C' || size == SizePrefix::Long)
                (void)va_arg(args, wint_t);
            else
                (void)va_arg(args, int);
            budget += AtLeast(static_cast<size_t>(width), MB_LEN_MAX);
            break;
        case 'd':
        case 'i':
        case 'u':
        case 'x':
        case 'X':
        case 'o':
            SkipInteger(args, size);
            budget += AtLeast(widthPlusPrecision, 32);
            break;
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            (void)NextFloating(args, size);
            budget += AtLeast(widthPlusPrecision, 128);
            break;
        case 'f':
        case 'F': {
            long double const value = NextFloating(args, size);
            size_t const scratchSize = AtLeast(static_cast<size_t>(width), static_cast<size_t>(precision)) + 318;
            char stackScratch[512];
            char* scratch = scratchSize <= sizeof stackScratch ? stackScratch : static_cast<char*>(malloc(scratchSize));
            int const written = scratch ? snprintf(scratch, scratchSize, "%*.*Lf", width, precision + 6, value) : -1;
            // Very large values print more digits than the scratch holds.
            budget += written > 0 ? static_cast<size_t>(written) : scratchSize;
            if (scratch != stackScratch)
                free(scratch);
            break;
        }
        case 'p':
            (void)va_arg(args, void*);
            budget += AtLeast(widthPlusPrecision, 32);
            break;
        case 'n':
            (void)va_arg(args, void*);
            break;
        case '\0':
            return budget;
        default:
            break;
        }
    }
    return budget;
}

} // namespace

std::string FormatV(char const* format, va_list args)
{
    va_list walk;
    va_copy(walk, args);
    size_t const budget = BudgetFormat(format, walk);
    va_end(walk);

    std::string text(budget + 1, 'X');
    va_list print;
    va_copy(print, args);
    int const written = vsnprintf(&text[0], text.size(), format, print);
    va_end(print);
    if (written < 0)
        return std::string();
    if (static_cast<size_t>(written) > budget) {
        // The walk is an upper bound for every conversion it knows; anything
        // it misjudges is printed again at the exact size rather than cut.
        text.assign(static_cast<size_t>(written) + 1, 'X');
        va_copy(print, args);
        vsnprintf(&text[0], text.size(), format, print);
        va_end(print);
    }
    text.resize(strlen(text.c_str()));
    return text;
}

std::string FormatString(char const* format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    return text;
}

} // namespace KdBind
