// Which fields each CDateTime type holds: the one table behind the
// accessors, the validation and the comparison.
#ifndef KDBIND_SRC_VALUES_DATE_TIME_FIELDS_H
#define KDBIND_SRC_VALUES_DATE_TIME_FIELDS_H

#include "kdbind/values.h"

namespace KdBind {
namespace DateTimeFields {

// Time stands for hour, minute, second and the fraction; Ordinal for the
// day of the year and of the week, which need a whole date.
enum Field { Year = 1, Month = 2, Day = 4, Time = 8, Ordinal = 16 };

// Indexed by DTType.
inline constexpr unsigned char kFields[9] = {
    0,                                    // yearZero
    Year | Month | Day | Time | Ordinal,  // dateTime
    Year | Month | Day | Ordinal,         // date
    Year | Month,                         // gYearMonth
    Year,                                 // gYear
    Time,                                 // time
    Day,                                  // gDay
    Month,                                // gMonth
    Month | Day,                          // gMonthDay
};

inline bool Holds(CDateTime::DTType type, Field field)
{
    return static_cast<unsigned>(type) < 9 && (kFields[type] & field) != 0;
}

} // namespace DateTimeFields
} // namespace KdBind

#endif
