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
    EXPECT_TRUE(Valid("", "##any"));
    EXPECT_TRUE(Valid("urn:x", "##any"));

    EXPECT_FALSE(Valid("urn:t", "##other"));
    EXPECT_TRUE(Valid("urn:x", "##other"));
    EXPECT_TRUE(Valid("", "##other"));
    EXPECT_TRUE(Valid("", "##other", ""));

    EXPECT_TRUE(Valid("", "##local"));
    EXPECT_FALSE(Valid("urn:t", "##local"));

    EXPECT_TRUE(Valid("urn:t", "##targetNamespace"));
    EXPECT_FALSE(Valid("urn:x", "##targetNamespace"));
    EXPECT_TRUE(Valid("", "##targetNamespace", ""));

    // A literal always lets the empty namespace through.
    EXPECT_TRUE(Valid("urn:u", "urn:u"));
    EXPECT_FALSE(Valid("urn:x", "urn:u"));
    EXPECT_TRUE(Valid("", "urn:u"));
    EXPECT_FALSE(Valid("URN:U", "urn:u"));

    EXPECT_TRUE(Valid("", ""));
    EXPECT_FALSE(Valid("urn:t", ""));
}

// Only the first token of a list is judged as a token; behind it the empty
// namespace and the whole list text are all that pass.
TEST(NamesMatchingTest, ListsAreJudgedByTheirFirstTokenOnly)
{
    EXPECT_TRUE(Valid("", "##local ##targetNamespace"));
    EXPECT_FALSE(Valid("urn:t", "##local ##targetNamespace"));  // the second token never counts
    EXPECT_TRUE(Valid("urn:t", "##targetNamespace ##local"));
    EXPECT_TRUE(Valid("urn:x", "##other ##local"));
    EXPECT_FALSE(Valid("urn:a", "urn:a urn:b"));  // a literal is compared with the whole list
    EXPECT_TRUE(Valid("urn:a urn:b", "urn:a urn:b"));
    EXPECT_TRUE(Valid("##local urn:b", "##local urn:b"));  // the empty token takes the whole list too
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

    // The object's forms take plain texts, a null one as empty.
    CollectionTest::CLineItem object;
    EXPECT_TRUE(object.DoesElementNameMatch(context, item, "item", "urn:a"));
    EXPECT_TRUE(object.IsNamespaceValid(nullptr, "##local", nullptr));
    EXPECT_THROW(object.TestNamespace("urn:a", "##local", "urn:t"), CKdInvalidNamespaceException);
}
