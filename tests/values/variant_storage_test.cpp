#include <gtest/gtest.h>

#include <kdbind/values.h>

using namespace KdBind;

TEST(VariantStorageTest, DefaultVariantIsInvalid)
{
    KdVariant value;
    EXPECT_FALSE(value.IsValid());
    value.Clear();
    try {
        value.GetType();
        FAIL() << "no exception";
    } catch (CKdException const& e) {
        EXPECT_EQ(e.GetMessage(), "Invalid Type 0");
    }
}

TEST(VariantStorageTest, InlineKindsRoundTripWithTheirTags)
{
    KdVariant value;
    value.SetI8(-1234567890123LL);
    EXPECT_EQ(value.GetI8(), -1234567890123LL);
    EXPECT_EQ(value.GetType(), "i8");
    value.SetUI2(65535);
    EXPECT_EQ(value.GetUI2(), 65535);
    EXPECT_EQ(value.GetType(), "ui2");
    value.SetR8(2.5);
    EXPECT_EQ(value.GetR8(), 2.5);
    value.SetBoolean(true);
    EXPECT_TRUE(value.GetBoolean());
    EXPECT_EQ(value.GetType(), "boolean");
    value.SetYear(2026);
    EXPECT_EQ(value.GetType(), "year");
    EXPECT_EQ(value.GetYear(), 2026);
}

TEST(VariantStorageTest, StringsAreCopiedDeeply)
{
    KdVariant a;
    a.SetString("hello");
    KdVariant b(a);
    a.SetString("changed");
    EXPECT_EQ(b.GetString(), "hello");
    EXPECT_EQ(b.GetType(), "string");
    b = a;
    EXPECT_EQ(b.GetString(), "changed");
}

TEST(VariantStorageTest, SelfAssignmentEmptiesTheVariant)
{
    KdVariant value;
    value.SetI4(5);
    KdVariant& alias = value;
    value = alias;
    EXPECT_FALSE(value.IsValid());
}
