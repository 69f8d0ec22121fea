#include "conversions_cases.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

struct VariantCase {
    ItemType type;
    std::string text;  // read under the collapse rule
    std::string printed;
};

} // namespace

// Each scalar kind reads through its FromString, stores under its tag and
// prints back through its ToString.
TEST(VariantConversionsTest, EveryScalarKindRoundTrips)
{
    std::vector<VariantCase> const cases = {
        {ItemType_i1, " -128 ", "-128"},
        {ItemType_i2, "+300", "300"},
        {ItemType_i4, "4294967297", "1"},  // a long, printed by its low 32 bits
        {ItemType_i8, "-9223372036854775808", "-9223372036854775808"},
        {ItemType_ui1, "255", "255"},
        {ItemType_ui2, "65535", "65535"},
        {ItemType_ui4, "-1", "4294967295"},
        {ItemType_ui8, "18446744073709551615", "18446744073709551615"},
        {ItemType_r4, "0.1", "0.1"},
        {ItemType_r8, "", "NaN"},
        {ItemType_year, "2004-05-06", "2004"},
        {ItemType_month, "--05-06", "--05"},
        {ItemType_day, "---06", "---06"},
        {ItemType_char, " x ", "x"},
        {ItemType_string, "  a \r\n b ", "a b"},
        {ItemType_boolean, "TRUE", "true"},
    };
    for (VariantCase const& c : cases) {
        SCOPED_TRACE(ItemTypeName(c.type));
        KdVariant value;
        value.FromString(c.text, c.type, kCollapse);
        EXPECT_EQ(value.GetItemType(), c.type);
        EXPECT_EQ(value.ToString(), c.printed);
    }
}

TEST(VariantConversionsTest, FormatReachesOnlyTheRealKinds)
{
    KdVariant value;
    value.SetR8(2.5);
    EXPECT_EQ(value.ToString("%.2f"), "2.50");
    value.SetR4(2.5f);
    EXPECT_EQ(value.ToString("%.2f"), "2.50");
    value.SetI4(10);
    EXPECT_EQ(value.ToString("%x"), "10");
}

TEST(VariantConversionsTest, FailedReadLeavesTheVariantAsItWas)
{
    KdVariant value;
    value.SetString("kept");
    EXPECT_EQ(FailureOf<CKdInvalidValueException>([&] { value.FromString("abc", ItemType_i2); }),
              "The value [abc] can not be converted to a i4");
    EXPECT_EQ(value.GetItemType(), ItemType_string);
    EXPECT_EQ(value.GetString(), "kept");
}

TEST(VariantConversionsTest, InvalidTagsFail)
{
    KdVariant value;
    EXPECT_EQ(FailureOf<CKdException>([&] { value.ToString(); }), "Invalid Type 0 to convert to string");
    value.SetXmlObject(nullptr);
    EXPECT_EQ(FailureOf<CKdException>([&] { value.ToString(); }), "Invalid Type 27 to convert to string");
    value.SetXmlCollection(nullptr);
    EXPECT_EQ(FailureOf<CKdException>([&] { value.ToString(); }), "Invalid Type 28 to convert to string");

    // FromString names the variant's own tag, not the type it was asked for.
    value.SetI4(7);
    for (ItemType type : {ItemType_invalid, ItemType_xmlObject, ItemType_xmlCollection}) {
        EXPECT_EQ(FailureOf<CKdException>([&] { value.FromString("1", type); }), "Invalid Type 5 to convert to string")
            << type;
    }
    EXPECT_EQ(value.GetI4(), 7);
}

// These rows are filled as their value classes join the library.
TEST(VariantConversionsTest, KindsWithoutTheirValueClassFailClearly)
{
    KdVariant value;
    value.SetI4(7);
    for (ItemType type : {ItemType_duration, ItemType_yearMonth, ItemType_monthDay, ItemType_date,
                          ItemType_datetime, ItemType_time, ItemType_decimal, ItemType_integer}) {
        EXPECT_EQ(FailureOf<CKdException>([&] { value.FromString("1", type); }),
                  std::string("Lexical conversion of type [") + ItemTypeName(type) + "] is not supported yet");
    }
    EXPECT_EQ(value.GetItemType(), ItemType_i4);
}
