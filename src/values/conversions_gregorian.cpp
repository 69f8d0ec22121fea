// year, month and day: the date kinds that a variant holds as plain numbers.
// They print as numbers in their XML forms ("2004", "--05", "---05"); they
// are read through CDateTime (conversions_dates.cpp).
#include <cstdio>

#include "kdbind/values.h"

namespace KdBind {

// No padding: year 99 prints "99".
std::string CConversions::yearToString(unsigned short value)
{
    char buffer[10];
    snprintf(buffer, sizeof buffer, "%u", static_cast<unsigned>(value));
    return buffer;
}

std::string CConversions::monthToString(unsigned char value)
{
    char buffer[10];
    snprintf(buffer, sizeof buffer, "--%02u", static_cast<unsigned>(value));
    return buffer;
}

std::string CConversions::dayToString(unsigned char value)
{
    char buffer[10];
    snprintf(buffer, sizeof buffer, "---%02u", static_cast<unsigned>(value));
    return buffer;
}

} // namespace KdBind
