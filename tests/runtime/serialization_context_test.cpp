#include <gtest/gtest.h>

#include <kdbind/binding.h>

using namespace KdBind;

namespace {
char const kIgnoreBoth[] =
    "The parser can only ignore additional elements, or ignore the fact that some required ones are missing, "
    "you can not ignore both\n";
}

TEST(SerializationContextTest, Defaults)
{
    CXmlSerializationContext context;
    EXPECT_TRUE(context.GetStripCDATA());
    EXPECT_FALSE(context.GetIgnoreUnknownElements());
    EXPECT_FALSE(context.GetIgnoreMissingMandatoryElements());
    EXPECT_FALSE(context.GetIgnoreNamespaces());
    EXPECT_EQ(context.GetSchemaType(), SchemaType_Default);
    EXPECT_EQ(context.GetDefaultNamespaceURI(), "");
    EXPECT_EQ(context.GetNamespaceAliases().GetNamespaceCount(), 0);
    EXPECT_TRUE(context.GetProcessingInstructions().empty());
}

TEST(SerializationContextTest, UnknownAndMissingElementsCannotBothBeIgnored)
{
    CXmlSerializationContext context;
    context.SetIgnoreUnknownElements(true);
    try {
        context.SetIgnoreMissingMandatoryElements(true);
        FAIL() << "no exception";
    } catch (CKdInvalidStateException const& e) {
        EXPECT_EQ(e.GetMessage(), std::string(kIgnoreBoth) +
                                      "Set IgnoreUnknownElements to false before setting "
                                      "IgnoreMissingMandatoryElements to true");
    }
    EXPECT_FALSE(context.GetIgnoreMissingMandatoryElements());
    context.SetIgnoreMissingMandatoryElements(false);

    context.SetIgnoreUnknownElements(false);
    context.SetIgnoreMissingMandatoryElements(true);
    try {
        context.SetIgnoreUnknownElements(true);
        FAIL() << "no exception";
    } catch (CKdInvalidStateException const& e) {
        EXPECT_EQ(e.GetMessage(), std::string(kIgnoreBoth) +
                                      "Set IgnoreMissingMandatoryElements to false before setting "
                                      "IgnoreUnknownElements to true");
    }
    EXPECT_FALSE(context.GetIgnoreUnknownElements());
}

TEST(SerializationContextTest, SchemaTypeTwoImpliesIgnoreNamespaces)
{
    CXmlSerializationContext context;
    context.SetSchemaType(SchemaType_IgnoreNamespaces);
    context.SetIgnoreNamespaces(false);
    EXPECT_TRUE(context.GetIgnoreNamespaces());
    context.SetSchemaType(SchemaType_Default);
    EXPECT_FALSE(context.GetIgnoreNamespaces());
}

TEST(SerializationContextTest, CopyTakesOptionsAliasesAndInstructions)
{
    CXmlSerializationContext context;
    context.SetDefaultNamespaceURI("urn:d");
    context.SetInLineSchema("<xs:schema/>");
    context.SetStripCDATA(false);
    context.GetNamespaceAliases().Add("p", "urn:p");
    context.GetProcessingInstructions().push_back("<?pi?>");
    CXmlSerializationContext copy(context);
    context.GetNamespaceAliases().Add("q", "urn:q");
    EXPECT_EQ(copy.GetDefaultNamespaceURI(), "urn:d");
    EXPECT_EQ(copy.GetInLineSchema(), "<xs:schema/>");
    EXPECT_FALSE(copy.GetStripCDATA());
    EXPECT_EQ(copy.GetNamespaceAliases().GetNamespaceCount(), 1);
    ASSERT_EQ(copy.GetProcessingInstructions().size(), 1u);
}
