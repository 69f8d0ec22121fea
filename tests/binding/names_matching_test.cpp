// Wildcard namespace restrictions and element identity under the options of
// a context.
#include <gtest/gtest.h>

#include "binding/collection_test_types.h"

using namespace KdBind;

namespace {

bool Valid(char const* ns, char const* restriction, char const* target = "urn:t")
{
    return CXmlObjectHelper::IsNamespaceValid(ns, restriction, target);
}

} // namespace

TEST(NamesMatchingTest, SingleTokens)
{
    struct Row {
        char const* ns;
        char const* restriction;
        char const* target;
        bool valid;
    };
    for (Row const& row : {Row{"", "##any", "urn:t", true}, Row{"urn:x", "##other", "urn:t", true},
                           Row{"urn:t", "##other", "urn:t", false}, Row{"", "##other", "", true},
                           Row{"", "##local", "urn:t", true}, Row{"urn:t", "##local", "urn:t", false},
                           Row{"urn:x", "##targetNamespace", "urn:t", false},
                           Row{"", "##targetNamespace", "", true},
                           // A literal always lets the empty namespace through.
                           Row{"urn:u", "urn:u", "urn:t", true}, Row{"", "urn:u", "urn:t", true},
                           Row{"URN:U", "urn:u", "urn:t", false}, Row{"urn:t", "", "urn:t", false}}) {
        EXPECT_EQ(Valid(row.ns, row.restriction, row.target), row.valid) << row.ns << " in " << row.restriction;
    }
}

// Only the first token of a list is judged as a token; behind it the empty
// namespace and the whole list text are all that pass.
TEST(NamesMatchingTest, ListsAreJudgedByTheirFirstTokenOnly)
{
    EXPECT_TRUE(Valid("", "##local ##targetNamespace"));
    EXPECT_FALSE(Valid("urn:t", "##local ##targetNamespace"));  // the second token never counts
    EXPECT_TRUE(Valid("urn:t", "##targetNamespace ##local"));
    EXPECT_FALSE(Valid("urn:a", "urn:a urn:b"));  // a literal is compared with the whole list
    EXPECT_TRUE(Valid("##local urn:b", "##local urn:b"));
}

TEST(NamesMatchingTest, TestNamespaceNamesNamespaceRestrictionAndTarget)
{
    EXPECT_NO_THROW(CXmlObjectHelper::TestNamespace("urn:x", "##other", "urn:t"));
    try {
        CXmlObjectHelper::TestNamespace("urn:t", "##other", "urn:t");
        FAIL() << "no exception";
    } catch (CKdInvalidNamespaceException const& e) {
        EXPECT_EQ(e.GetMessage(), "Invalid namespace [urn:t]. The namespace must be one of [##other] where the "
                                  "target namespace is [urn:t]");
    }
}

TEST(NamesMatchingTest, ElementsMatchByLocalNameAndNamespaceUnlessTheContextIgnoresNamespaces)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns:a='urn:a'><a:item/></r>");
    CXmlElement const* item = document.GetDocumentElement()->GetFirstElement();
    CXmlSerializationContext context;
    EXPECT_TRUE(CXmlObjectHelper::DoesElementNameMatch(context, item, "item", "urn:a"));
    EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(context, item, "item", "urn:b"));
    EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(context, item, "Item", "urn:a"));
    EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(context, nullptr, "item", "urn:a"));

    CXmlSerializationContext ignoring;
    ignoring.SetIgnoreNamespaces(true);
    CXmlSerializationContext schemaType2;
    schemaType2.SetSchemaType(SchemaType_IgnoreNamespaces);
    for (CXmlSerializationContext const* loose : {&ignoring, &schemaType2}) {
        EXPECT_TRUE(CXmlObjectHelper::DoesElementNameMatch(*loose, item, "item", "urn:b"));
        EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(*loose, item, "Item", "urn:a"));
    }

    // The object's form takes plain texts, a null one as empty.
    EXPECT_TRUE(CollectionTest::CLineItem().IsNamespaceValid(nullptr, "##local", nullptr));
}
