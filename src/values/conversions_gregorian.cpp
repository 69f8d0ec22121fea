// year, month and day: the date kinds that a variant holds as plain numbers.
//
// They print as numbers in their XML forms ("2004", "--05", "---05"), but
// they read any date form that holds their field: "2004-05-06" is year 2004,
// month 5 and day 6. Until CDateTime joins the library, the date-only forms
// are read here in the order of CDateTime::ParseXSDDate: the shape of the
// text gives its form, a zone is checked and dropped, the fields are
// validated for the form, and the field is taken as CDateTime's accessor
// takes it, failures included. Once CDateTime stands, each parser becomes a
// local CDateTime of its type, ParseXSDDate and the accessor, and
// ReadDateOnlyForm goes.
#include <cstdio>
#include <cstring>

#include "kdbind/values.h"

namespace KdBind {

namespace {

enum DateForm { Date, GYearMonth, GYear, GDay, GMonth, GMonthDay };

struct DateShape {
    // Y, M, D: a digit of the year, month or day; "-": itself; "?": anything.
    // The letters in a shape are also the fields its form holds.
    char const* pattern;
    DateForm form;
    char const* typeName;  // as CDateTime names the form
};

DateShape const kDateShapes[] = {
    {"--MM", GMonth, "gMonth"},
    {"---DD", GDay, "gDay"},
    {"--MM??", GMonth, "gMonth"},  // the old form; its tail is not inspected
    {"--MM-DD", GMonthDay, "gMonthDay"},
    {"YYYY", GYear, "gYear"},  // no year has more than four digits
    {"YYYY-MM", GYearMonth, "gYearMonth"},
    {"YYYY-MM-DD", Date, "date"},
};

struct DateFields {
    DateShape const* shape;
    int year;
    int month;
    int day;
};

bool Holds(DateShape const& shape, char field) { return strchr(shape.pattern, field) != nullptr; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Matches a body of exactly the pattern's length against the pattern.
bool MatchShape(DateShape const& shape, char const* body, DateFields& fields)
{
    fields = DateFields{&shape, 0, 0, 0};
    for (char const* p = shape.pattern; *p; ++p, ++body) {
        int* const field = *p == 'Y' ? &fields.year : *p == 'M' ? &fields.month : *p == 'D' ? &fields.day : nullptr;
        if (field) {
            if (!IsDigit(*body))
                return false;
            *field = *field * 10 + (*body - '0');
        } else if (*p == '-' && *body != '-') {
            return false;
        }
    }
    return true;
}

// The text begins with its body; what follows it is the zone.
bool ReadBody(char const* text, long bodyLength, DateFields& fields)
{
    bool const monthOrDay = text[0] == '-' && text[1] == '-';
    bool const negativeYear = !monthOrDay && text[0] == '-';
    char const* const body = negativeYear ? text + 1 : text;
    long const length = negativeYear ? bodyLength - 1 : bodyLength;
    for (DateShape const& shape : kDateShapes) {
        if ((shape.pattern[0] == '-') == monthOrDay && static_cast<long>(strlen(shape.pattern)) == length) {
            if (!MatchShape(shape, body, fields))
                return false;
            if (negativeYear)
                fields.year = -fields.year;
            return true;
        }
    }
    return false;
}

// None of the three fields depends on the zone, but a malformed one fails.
void CheckZone(char const* zone)
{
    // "Z" is UTC; text that is not a zone at all is ignored, a leniency kept.
    if (zone[0] != '+' && zone[0] != '-')
        return;
    if (strlen(zone) != 6 || !IsDigit(zone[1]) || !IsDigit(zone[2]) || zone[3] != ':' || !IsDigit(zone[4]) ||
        !IsDigit(zone[5]))
        throw CKdInvalidValueException(FormatString("Invalid XSD Time Zone [%s]", zone));
    int hour = (zone[1] - '0') * 10 + (zone[2] - '0');
    int const minute = (zone[4] - '0') * 10 + (zone[5] - '0');
    if (hour == 24)
        hour = 0;
    if (zone[0] == '-')
        hour = -hour;
    if (hour < -23 || hour > 23 || minute > 59)
        throw CKdInvalidValueException(FormatString("Invalid TimeZone [%d:%d]", hour, minute));
}

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int const kMonthMax[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// CDateTime's validation of a date-only form, in its order. The fields a
// form does not hold stay zero when it is read, so their tests cannot fail
// and are left out.
void Validate(DateFields const& fields)
{
    DateShape const& shape = *fields.shape;
    if (Holds(shape, 'M') && (fields.month < 1 || fields.month > 12))
        throw CKdInvalidValueException(FormatString("Invalid Month [%d] (1 <= month <= 12)", fields.month));
    // The bounds stand as maximum, then minimum: the text reads "9999 <= year <= -9999".
    if (Holds(shape, 'Y') && (fields.year == 0 || fields.year < -9999 || fields.year > 9999))
        throw CKdInvalidValueException(
            FormatString("Invalid Year [%d] (%d <= year <= %d && year != 0)", fields.year, 9999, -9999));
    switch (shape.form) {
    case Date:
        if (fields.day < 1 || fields.day > kMonthMax[fields.month - 1] ||
            (fields.month == 2 && fields.day == 29 && !IsLeapYear(fields.year)))
            throw CKdInvalidValueException(
                FormatString("Invalid Day [%d] (1 <= day <= days in month", fields.day));  // no closing bracket
        break;
    case GMonthDay:  // 29 February is always accepted
        if (fields.day < 1 || fields.day > kMonthMax[fields.month - 1])
            throw CKdInvalidValueException(FormatString("Invalid Day [%d] (1 <= day <= days in month)", fields.day));
        break;
    case GDay:  // only zero is refused: 32 to 99 pass
        if (fields.day == 0)
            throw CKdInvalidValueException(FormatString("Invalid Day [%d] (1 <= day <= 31)", fields.day));
        break;
    default:
        break;
    }
}

DateFields ReadDateOnlyForm(char const* text)
{
    size_t const length = strlen(text);
    if (length == 0)
        throw CKdInvalidValueException("Invalid Date (Empty String)");
    if (strchr(text, 'T'))
        throw CKdInvalidValueException("Invalid Date ('T' not allowed)");
    bool const hasColon = strchr(text, ':') != nullptr;
    bool const endsInZ = text[length - 1] == 'Z';
    if (endsInZ && hasColon)
        throw CKdInvalidValueException("Invalid Date (Bad Zone value)");
    // A numeric zone takes the last six characters.
    long const bodyLength = static_cast<long>(length) - (endsInZ ? 1 : hasColon ? 6 : 0);
    DateFields fields{};
    if (!ReadBody(text, bodyLength, fields))
        throw CKdInvalidValueException(
            FormatString("Invalid XSD Date [%s] expected CCYY-MM-DD[Z|[+|-]hh:mm]", text));
    if (endsInZ || hasColon)
        CheckZone(text + bodyLength);
    Validate(fields);
    return fields;
}

// A form without the field is a state failure, as from CDateTime's accessor.
int ReadDateField(std::string const& text, CWhitespaceUtils::WhitespaceRule rule, char field,
                  char const* accessorFailure)
{
    std::string const ruled = CWhitespaceUtils::ApplyRule(rule, text);
    DateFields const fields = ReadDateOnlyForm(ruled.c_str());
    if (!Holds(*fields.shape, field))
        throw CKdInvalidStateException(FormatString(accessorFailure, fields.shape->typeName));
    return field == 'Y' ? fields.year : field == 'M' ? fields.month : fields.day;
}

} // namespace

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

// A negative year comes back as its 16-bit pattern: "-0005" gives 65531.
unsigned short CConversions::yearFromString(std::string const& text, WhitespaceRule rule)
{
    return static_cast<unsigned short>(ReadDateField(text, rule, 'Y', "Failed to GetYear. Invalid Date Type: %s."));
}

unsigned char CConversions::monthFromString(std::string const& text, WhitespaceRule rule)
{
    return static_cast<unsigned char>(ReadDateField(text, rule, 'M', "Failed to GetMonth. Invalid Date Type: %s."));
}

unsigned char CConversions::dayFromString(std::string const& text, WhitespaceRule rule)
{
    return static_cast<unsigned char>(ReadDateField(text, rule, 'D', "Failed to GetDay. Invalid Date Type: %s."));
}

} // namespace KdBind
