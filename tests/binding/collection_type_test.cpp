// The base of primitive value collections: its read takes every consecutive
// element of its name and leaves the count to the check.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kdbind/binding.h"

using namespace KdBind;

namespace {

class CTextList : public CXmlTypeCollection {
public:
    explicit CTextList(int maxOccurs)
        : CXmlTypeCollection(ItemType_string, "tag", "urn:t", 0, maxOccurs, "", -1, -1, "", "", "", "", -1,
                             CWhitespaceUtils::WhitespaceRule_Collapse, nullptr)
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

TEST(CollectionTypeTest, TakesEveryConsecutiveMatchAndLeavesTheCountToTheCheck)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns='urn:t'><tag>a</tag><tag> b </tag><tag>c</tag><other/><tag>d</tag></r>");
    CXmlElement* root = document.GetDocumentElement();
    CXmlSerializationContext context;
    CTextList bounded(2), unbounded(-1);
    CXmlElement* cursor = CXmlObjectBase::FromXml_Int(&bounded, root, root->GetFirstElement(), context);
    EXPECT_EQ(bounded.texts, (std::vector<std::string>{"a", " b ", "c"}));
    EXPECT_EQ(cursor->GetLocalName(), "other");
    EXPECT_THROW(bounded.ValidateCount(context), CKdValidationException);
    CXmlObjectBase::FromXml_Int(&unbounded, root, root->GetFirstElement(), context);
    EXPECT_NO_THROW(unbounded.ValidateCount(context));

    // Running out of children ends the read; a null cursor reads nothing.
    CTextList tail(-1);
    EXPECT_EQ(CXmlObjectBase::FromXml_Int(&tail, root, cursor->GetNextSiblingElement(), context), nullptr);
    EXPECT_EQ(CXmlObjectBase::FromXml_Int(&tail, root, nullptr, context), nullptr);
    EXPECT_EQ(tail.texts, std::vector<std::string>{"d"});
}
