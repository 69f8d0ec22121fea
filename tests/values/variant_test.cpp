// KdVariant: its tags, what it owns, and its text forms.
#include <kdbind/binding.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

TEST(VariantTest, OwnedKindsAreCopiedDeeplyAndSelfAssignmentEmpties)
{
    KdVariant value;
    EXPECT_FALSE(value.IsValid());
    EXPECT_EQ(FailureOf([&] { value.GetType(); }), "Invalid Type 0");

    CBinaryData data("abc");
    value.SetHexBinary(data);
    data.Append('d');
    KdVariant copy(value);
    value.SetBase64Binary(CBinaryData("xyz"));
    EXPECT_EQ(Bytes(copy.GetHexBinary()), "abc");
    EXPECT_EQ(Bytes(value.GetBase64Binary()), "xyz");

    value.SetString("hello");
    copy = value;
    value.SetString("changed");
    EXPECT_EQ(copy.GetString(), "hello");

    KdVariant& alias = copy;
    copy = alias;
    EXPECT_FALSE(copy.IsValid());

    // Dates and durations are held by copy too, and read as nothing under another tag.
    CDateTime stamp("2004-01-02T03:04:05.5+01:00");
    value.SetDateTime(stamp);
    stamp.Clear();
    copy = value;
    value.SetDuration(CDateTimeSpan(1, 2, 3));
    EXPECT_EQ(copy.ToString(), "2004-01-02T03:04:05.5+01:00");
    EXPECT_EQ(value.ToString(), "PT1H2M3S");
    EXPECT_EQ(value.GetDateTime().GetType(), CDateTime::dt_yearZero);
    EXPECT_EQ(copy.GetDuration().ToString(), "P");

    // Pointer kinds read under another tag give nothing instead of a stray word.
    value.SetI8(0x1234);
    EXPECT_EQ(value.GetString(), "");
    EXPECT_EQ(value.GetHexBinary().GetLength(), 0u);
    EXPECT_EQ(value.GetXmlObject().get(), nullptr);
    EXPECT_EQ(value.GetXmlCollection().get(), nullptr);
}

// Each scalar kind reads through its FromString, stores under its tag and
// prints back through its ToString.
TEST(VariantTest, EveryScalarKindReadsAndPrintsThroughItsConversions)
{
    struct Case {
        ItemType type;
        char const* name;
        std::string text;  // read under the collapse rule
        std::string printed;
    };
    std::vector<Case> const cases = {
        {ItemType_hexBinary, "hexBinary", " 0aff ", "0AFF"},
        {ItemType_base64Binary, "base64Binary", " QUJD ", "QUJD"},
        {ItemType_i1, "i1", " -128 ", "-128"},
        {ItemType_i2, "i2", "+300", "300"},
        {ItemType_i4, "i4", "4294967297", "1"},  // a long, printed by its low 32 bits
        {ItemType_i8, "i8", "-9223372036854775808", "-9223372036854775808"},
        {ItemType_ui1, "ui1", "255", "255"},
        {ItemType_ui2, "ui2", "65535", "65535"},
        {ItemType_ui4, "ui4", "-1", "4294967295"},
        {ItemType_ui8, "ui8", "18446744073709551615", "18446744073709551615"},
        {ItemType_r4, "r4", "0.1", "0.1"},
        {ItemType_r8, "r8", "", "NaN"},
        {ItemType_year, "year", "2004-05-06", "2004"},
        {ItemType_month, "month", "--05-06", "--05"},
        {ItemType_day, "day", "---06", "---06"},
        {ItemType_duration, "duration", " P1Y2M3DT4H5M6.7S ", "P1Y2M3DT4H5M6.7S"},
        {ItemType_yearMonth, "yearMonth", "-0044-03Z", "-0044-03Z"},
        {ItemType_monthDay, "monthDay", "--02-29", "--02-29"},
        {ItemType_date, "date", "2004-05-06-05:00", "2004-05-06-05:00"},
        {ItemType_datetime, "datetime", "2004-05-06T07:08:09.123456789+14:00", "2004-05-06T07:08:09.123456789+14:00"},
        {ItemType_time, "time", " 23:59:59.0001Z ", "23:59:59.0001Z"},
        {ItemType_char, "char", " x ", "x"},
        {ItemType_string, "string", "  a \r\n b ", "a b"},
        {ItemType_boolean, "boolean", "TRUE", "true"},
    };
    for (Case const& c : cases) {
        SCOPED_TRACE(c.name);
        KdVariant value;
        value.FromString(c.text, c.type, CWhitespaceUtils::WhitespaceRule_Collapse);
        EXPECT_EQ(value.GetItemType(), c.type);
        EXPECT_EQ(value.GetType(), c.name);
        EXPECT_EQ(value.ToString(), c.printed);
    }

    // Only the real kinds take the format.
    KdVariant value;
    value.SetR4(2.5f);
    EXPECT_EQ(value.ToString("%.2f"), "2.50");
    value.SetI4(10);
    EXPECT_EQ(value.ToString("%x"), "10");
}

TEST(VariantTest, FailedReadsLeaveTheVariantAsItWasAndObjectTagsHaveNoText)
{
    KdVariant value;
    value.SetString("kept");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.FromString("abc", ItemType_i2); }),
              "The value [abc] can not be converted to a i4");
    EXPECT_THROW(value.FromString(" 0A ", ItemType_hexBinary), CKdException);  // hex refuses blanks
    EXPECT_EQ(value.GetString(), "kept");

    // FromString names the variant's own tag, not the type it was asked for.
    value.SetI4(7);
    for (ItemType type : {ItemType_invalid, ItemType_xmlObject, ItemType_xmlCollection})
        EXPECT_EQ(FailureOf([&] { value.FromString("1", type); }), "Invalid Type 5 to convert to string") << type;
    EXPECT_EQ(value.GetI4(), 7);

    value.Clear();
    EXPECT_EQ(FailureOf([&] { value.ToString(); }), "Invalid Type 0 to convert to string");
    value.SetXmlObject(nullptr);  // valid, with nothing to release
    EXPECT_TRUE(value.IsValid());
    EXPECT_EQ(FailureOf([&] { value.ToString(); }), "Invalid Type 27 to convert to string");
    EXPECT_EQ(FailureOf([&] { value.GetType(); }), "Invalid Type 27");
    value.SetXmlCollection(nullptr);
    EXPECT_EQ(FailureOf([&] { value.ToString(); }), "Invalid Type 28 to convert to string");
}

TEST(VariantTest, ACallersRealFormatMustPrintExactlyOneReal)
{
    KdVariant value;
    value.SetR8(2.5);
    EXPECT_EQ(value.ToString("%.3f"), "2.500");
    EXPECT_EQ(value.ToString("[%+08.2lf%%]"), "[+0002.50%]");
    EXPECT_EQ(value.ToString("%e"), "2.500000e+00");
    value.SetR4(1.5f);
    EXPECT_EQ(value.ToString("%g"), "1.5");
    // Each of these would read an argument that is not there, or of another type.
    for (char const* format : {"%s", "%d", "%n", "%f %f", "%*f", "%.*f", "%Lf", "%", "text", "%c", "%p"})
        EXPECT_EQ(FailureOf<CKdInvalidParamException>([&] { value.ToString(format); }),
                  std::string("Invalid format [") + format + "] for a real value")
            << format;
}
