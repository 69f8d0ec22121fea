#include "conversions_cases.h"

using namespace KdBind;
using namespace KdBindTest;

TEST(ConversionsGregorianTest, PrintAsTheirXmlForms)
{
    ExpectPrints({
        {CConversions::yearToString(99), "99"},  // no padding to four digits
        {CConversions::yearToString(2004), "2004"},
        {CConversions::monthToString(5), "--05"},
        {CConversions::monthToString(255), "--255"},
        {CConversions::dayToString(5), "---05"},
        {CConversions::dayToString(31), "---31"},
    });
}

// Any date form that holds the year is read; the zone is checked, then dropped.
TEST(ConversionsGregorianTest, YearReadsEveryFormWithAYear)
{
    ExpectParses<CKdInvalidValueException, unsigned short>(&CConversions::yearFromString, {
        {"2004", kNone, 2004, nullptr},
        {"2004-05", kNone, 2004, nullptr},
        {"2004-02-29", kNone, 2004, nullptr},
        {" 2004Z ", kCollapse, 2004, nullptr},
        {"2004+05:00", kNone, 2004, nullptr},
        {"2004-24:00", kNone, 2004, nullptr},  // hour 24 counts as 0
        {"2004x05:00", kNone, 2004, nullptr},  // not a zone: ignored
        {"-0005", kNone, 65531, nullptr},      // the 16-bit pattern of -5
        {"", kNone, 0, "Invalid Date (Empty String)"},
        {"2004-05-06T10:00:00", kNone, 0, "Invalid Date ('T' not allowed)"},
        {"2004-05:00Z", kNone, 0, "Invalid Date (Bad Zone value)"},
        {"20045", kNone, 0, "Invalid XSD Date [20045] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
        {"20a4", kNone, 0, "Invalid XSD Date [20a4] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
        {"2004+0500", kNone, 0, "Invalid XSD Date [2004+0500] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
        {"2004-Z", kNone, 0, "Invalid XSD Date [2004-Z] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
        {"2004+a5:00", kNone, 0, "Invalid XSD Time Zone [+a5:00]"},
        {"2004-25:00", kNone, 0, "Invalid TimeZone [-25:0]"},
        {"2004+05:60", kNone, 0, "Invalid TimeZone [5:60]"},
        {"0000", kNone, 0, "Invalid Year [0] (9999 <= year <= -9999 && year != 0)"},
        {"2004-13", kNone, 0, "Invalid Month [13] (1 <= month <= 12)"},
        {"2003-02-29", kNone, 0, "Invalid Day [29] (1 <= day <= days in month"},
    });
    ExpectParses<CKdInvalidStateException, unsigned short>(&CConversions::yearFromString, {
        {"--05", kNone, 0, "Failed to GetYear. Invalid Date Type: gMonth."},
        {"---05", kNone, 0, "Failed to GetYear. Invalid Date Type: gDay."},
    });
}

TEST(ConversionsGregorianTest, MonthReadsEveryFormWithAMonth)
{
    ExpectParses<CKdInvalidValueException, unsigned char>(&CConversions::monthFromString, {
        {"--05", kNone, 5, nullptr},
        {"--12--", kNone, 12, nullptr},  // the old form, its tail not inspected
        {"--12xx", kNone, 12, nullptr},
        {"--02-29", kNone, 2, nullptr},  // 29 February always stands without a year
        {"2004-07Z", kNone, 7, nullptr},
        {"--02-30", kNone, 0, "Invalid Day [30] (1 <= day <= days in month)"},
        {"--13", kNone, 0, "Invalid Month [13] (1 <= month <= 12)"},
        {"--5", kNone, 0, "Invalid XSD Date [--5] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
    });
    ExpectParses<CKdInvalidStateException, unsigned char>(&CConversions::monthFromString, {
        {"2004", kNone, 0, "Failed to GetMonth. Invalid Date Type: gYear."},
        {"---05", kNone, 0, "Failed to GetMonth. Invalid Date Type: gDay."},
    });
}

TEST(ConversionsGregorianTest, DayReadsEveryFormWithADay)
{
    ExpectParses<CKdInvalidValueException, unsigned char>(&CConversions::dayFromString, {
        {"---05", kNone, 5, nullptr},
        {"---45", kNone, 45, nullptr},  // a lone day has no upper bound
        {"--04-30", kNone, 30, nullptr},
        {"2004-04-30-05:00", kNone, 30, nullptr},
        {"---00", kNone, 0, "Invalid Day [0] (1 <= day <= 31)"},
        {"--04-31", kNone, 0, "Invalid Day [31] (1 <= day <= days in month)"},
        {"--x-05", kNone, 0, "Invalid XSD Date [--x-05] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
    });
    ExpectParses<CKdInvalidStateException, unsigned char>(&CConversions::dayFromString, {
        {"--05", kNone, 0, "Failed to GetDay. Invalid Date Type: gMonth."},
        {"2004-05", kNone, 0, "Failed to GetDay. Invalid Date Type: gYearMonth."},
    });
}
