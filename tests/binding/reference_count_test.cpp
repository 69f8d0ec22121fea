#include <gtest/gtest.h>

#include <kdbind/kdbind.h>

using namespace KdBind;

namespace {
// Counts live instances so that tests see exactly when an object dies.
class CCounted : public CXmlObjectBase {
public:
    static int alive;
    CCounted() { ++alive; }
    ~CCounted() override { --alive; }
    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return ""; }
    std::string GetNamespace() const override { return ""; }

protected:
    void ToXml_Int(CXmlWriter*, bool, char const*, CXmlSerializationContext const&, bool) const override {}
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const&, bool) override
    {
        return cursor;
    }
};
int CCounted::alive = 0;
} // namespace

TEST(ReferenceCountTest, NeverCountedObjectsAreNeverDeletedByRelease)
{
    CCounted object;
    EXPECT_EQ(object.Release(), -1);
    EXPECT_EQ(CCounted::alive, 1);
}

TEST(ReferenceCountTest, LastHolderDestroys)
{
    CCounted::alive = 0;
    {
        CSmartPtr<CCounted> first = new CCounted();
        CSmartPtr<CCounted> second = first;
        EXPECT_EQ(first->AddRef(), 3);
        EXPECT_EQ(first->Release(), 2);
        first = nullptr;
        EXPECT_EQ(CCounted::alive, 1);
        CSmartPtr<CCounted>& same = second;
        second = same;  // self-assignment keeps the object
        EXPECT_EQ(CCounted::alive, 1);
    }
    EXPECT_EQ(CCounted::alive, 0);
}

TEST(ReferenceCountTest, VariantHoldsTheObjectUntilCleared)
{
    CCounted::alive = 0;
    KdVariant value;
    {
        CSmartPtr<CCounted> object = new CCounted();
        value.SetXmlObject(object);
    }
    EXPECT_EQ(CCounted::alive, 1);
    KdVariant copy(value);
    value.Clear();
    EXPECT_EQ(CCounted::alive, 1);
    EXPECT_NE(copy.GetXmlObject().get(), nullptr);
    copy.SetI4(3);
    EXPECT_EQ(CCounted::alive, 0);
}

TEST(ReferenceCountTest, NullObjectIsAValidVariant)
{
    KdVariant value;
    value.SetXmlObject(nullptr);
    EXPECT_TRUE(value.IsValid());
    EXPECT_EQ(value.GetItemType(), ItemType_xmlObject);
    EXPECT_EQ(value.GetXmlObject().get(), nullptr);
    value.Clear();
    EXPECT_FALSE(value.IsValid());
}
