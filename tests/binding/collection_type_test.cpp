// The base of primitive value collections: the record it keeps, and the read
// that takes every consecutive element of its name.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kdbind/binding.h"

using namespace KdBind;

namespace {

class CTextList : public CXmlTypeCollection {
public:
    CTextList(int maxOccurs = 2)
        : CXmlTypeCollection(ItemType_string, "tag", "urn:t", 0, maxOccurs, "[a-z]+", 1, 8, "", "", "", "", -1,
                             CWhitespaceUtils::WhitespaceRule_Collapse, "fmt")
    {
    }
    std::vector<std::string> texts;

    int GetCount() const override { return static_cast<int>(texts.size()); }
    void Clear() override { texts.clear(); }
    void Remove(int index) override { texts.erase(texts.begin() + index); }
    void AddFromString(std::string text) override { texts.push_back(std::move(text)); }
    void ToXml_Int(CXmlWriter*, bool, char const*, CXmlSerializationContext const&, bool) const override {}
};

} // namespace

TEST(CollectionTypeTest, KeepsTheFacetsRuleAndFormatItWasGiven)
{
    CTextList list;
    EXPECT_EQ(list.GetItemType(), ItemType_string);
    EXPECT_EQ(list.GetRestrictions().pattern, "[a-z]+");
    EXPECT_EQ(list.GetRestrictions().maxLength, 8);
    EXPECT_EQ(list.GetRestrictions().length, -1);
    EXPECT_EQ(list.GetWhitespaceRule(), CWhitespaceUtils::WhitespaceRule_Collapse);
    EXPECT_STREQ(list.GetFormat(), "fmt");
    EXPECT_EQ(list.GetElementName(), "tag");
    EXPECT_EQ(list.GetMaxOccurs(), 2);
}

TEST(CollectionTypeTest, TakesEveryConsecutiveMatchAndLeavesTheCountToTheCheck)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns='urn:t'><tag>a</tag><tag> b </tag><tag>c</tag><other/><tag>d</tag></r>");
    CXmlElement* root = document.GetDocumentElement();
    CXmlSerializationContext context;
    CTextList list;
    CXmlElement* cursor = CXmlObjectBase::FromXml_Int(&list, root, root->GetFirstElement(), context);
    EXPECT_EQ(list.texts, (std::vector<std::string>{"a", " b ", "c"}));
    EXPECT_EQ(cursor->GetLocalName(), "other");
    EXPECT_THROW(list.ValidateCount(context), CKdValidationException);

    // Running out of children ends the read too; a null cursor reads nothing.
    CTextList tail;
    EXPECT_EQ(CXmlObjectBase::FromXml_Int(&tail, root, cursor->GetNextSiblingElement(), context), nullptr);
    EXPECT_EQ(tail.texts, std::vector<std::string>{"d"});
    EXPECT_EQ(CXmlObjectBase::FromXml_Int(&tail, root, nullptr, context), nullptr);
    EXPECT_EQ(tail.GetCount(), 1);
}
