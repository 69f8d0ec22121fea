#include "kdbind/runtime.h"

namespace KdBind {

char const* ItemTypeName(int type)
{
    static char const* const names[] = {
        nullptr,    "hexBinary", "base64Binary", "i1",   "i2",      "i4",     "i8",
        "ui1",      "ui2",       "ui4",          "ui8",  "r4",      "r8",     "duration",
        "yearMonth", "monthDay", "year",         "month", "day",    "date",   "datetime",
        "time",     "char",      "string",       "boolean", "decimal", "integer"};
    if (type <= 0 || type >= static_cast<int>(sizeof(names) / sizeof(names[0])))
        return nullptr;
    return names[type];
}

} // namespace KdBind
