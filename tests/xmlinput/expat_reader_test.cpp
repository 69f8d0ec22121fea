#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include <kdbind/binding.h>

using namespace KdBind;

namespace {

std::string ParseFailure(char const* xml)
{
    CXmlDocument document;
    try {
        document.LoadXml(xml);
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "(no failure)";
}

// Non-ASCII text needs a local code page that can hold it.
class Utf8LocaleTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_previous = setlocale(LC_ALL, nullptr);
        if (!setlocale(LC_ALL, "C.UTF-8"))
            GTEST_SKIP() << "no UTF-8 locale";
    }
    void TearDown() override { setlocale(LC_ALL, m_previous.c_str()); }

private:
    std::string m_previous;
};

} // namespace

TEST(ExpatReaderTest, DefaultNamespaceReachesElementsButNotAttributes)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns='urn:d' xmlns:p='urn:p' a='1' p:b='2'><c/><p:d/><e xmlns=''/></r>");
    CXmlElement* root = document.GetDocumentElement();
    EXPECT_EQ(root->GetNamespaceURI(), "urn:d");
    // The declarations themselves are not attributes in namespace mode.
    ASSERT_EQ(root->GetAttributes().size(), 2u);
    EXPECT_EQ(root->GetAttributes()[0]->GetNamespaceURI(), "");
    EXPECT_EQ(root->GetAttributes()[1]->GetNamespaceURI(), "urn:p");
    EXPECT_EQ(root->GetAttributes()[1]->GetLocalName(), "b");
    CXmlElement* c = root->GetFirstElement();
    EXPECT_EQ(c->GetNamespaceURI(), "urn:d");
    EXPECT_EQ(c->GetNextSiblingElement()->GetNamespaceURI(), "urn:p");
    EXPECT_EQ(c->GetNextSiblingElement()->GetLocalName(), "d");
    EXPECT_EQ(c->GetNextSiblingElement()->GetNextSiblingElement()->GetNamespaceURI(), "");
    EXPECT_EQ(document.LookupNamespaceFromAlias(""), "");
}

TEST(ExpatReaderTest, CDataMarkersFollowTheStripSetting)
{
    char const* xml = "<r>before<![CDATA[<in> & \r\nout]]>after</r>";
    CXmlDocument stripped;
    stripped.LoadXml(xml);
    EXPECT_EQ(stripped.GetDocumentElement()->GetText(), "before<in> & \nout" "after");

    CXmlSerializationContext context;
    context.SetStripCDATA(false);
    CXmlDocument kept(context);
    kept.LoadXml(xml);
    EXPECT_EQ(kept.GetDocumentElement()->GetText(), "before<![CDATA[<in> & \nout]]>after");
}

TEST(ExpatReaderTest, SchemaTypeTwoKeepsPrefixedNamesAndXmlnsAttributes)
{
    CXmlSerializationContext context;
    context.SetSchemaType(SchemaType_IgnoreNamespaces);
    CXmlDocument document(context);
    document.LoadXml("<p:r xmlns:p='urn:p' p:a='1'><p:c/></p:r>");
    CXmlElement* root = document.GetDocumentElement();
    EXPECT_EQ(root->GetLocalName(), "p:r");
    EXPECT_EQ(root->GetNamespaceURI(), "");
    ASSERT_EQ(root->GetAttributes().size(), 2u);
    EXPECT_EQ(root->GetAttributes()[0]->GetLocalName(), "xmlns:p");
    EXPECT_EQ(root->GetAttributes()[0]->GetNamespaceURI(), "");
    EXPECT_EQ(root->GetAttribute("p:a", ""), "1");
    EXPECT_EQ(root->GetFirstElement()->GetLocalName(), "p:c");
    EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "");
}

TEST(ExpatReaderTest, ParseFailuresNameTheLine)
{
    EXPECT_EQ(ParseFailure("<r>\n<a>\n</r>"), "mismatched tag at line 3");
    EXPECT_EQ(ParseFailure("<r>\n<a>text</a>\n"), "no element found at line 3");
    EXPECT_EQ(ParseFailure("<r/>\n<s/>"), "junk after document element at line 2");
    EXPECT_EQ(ParseFailure("<r a='1' a='2'/>"), "duplicate attribute at line 1");
    // Binary input is not recognised here: it is malformed text. Fast
    // Infoset ends at its first zero byte as a narrow text.
    EXPECT_EQ(ParseFailure("\xE0\x00\x00\x01"), "partial character at line 1");
    EXPECT_EQ(ParseFailure("\x1F\x8B\x08\x00"), "not well-formed (invalid token) at line 1");
}

TEST(ExpatReaderTest, PartialTreeOfAFailedParseIsDroppedOnReload)
{
    CXmlDocument document;
    EXPECT_THROW(document.LoadXml("<r><a>"), CKdException);
    ASSERT_NE(document.GetDocumentElement(), nullptr);
    document.LoadXml("<s/>");
    EXPECT_EQ(document.GetDocumentElement()->GetLocalName(), "s");
    EXPECT_TRUE(document.GetElementStack().empty());
}

TEST_F(Utf8LocaleTest, WideAndNarrowTextLoadAlike)
{
    CXmlDocument narrow;
    narrow.LoadXml("<caf\xC3\xA9 \xC3\xA0='\xE2\x82\xAC'>na\xC3\xAFve \xF0\x9F\x98\x80</caf\xC3\xA9>");
    CXmlElement* root = narrow.GetDocumentElement();
    EXPECT_EQ(root->GetLocalName(), "caf\xC3\xA9");
    EXPECT_EQ(root->GetAttribute("\xC3\xA0", ""), "\xE2\x82\xAC");
    EXPECT_EQ(root->GetText(), "na\xC3\xAFve \xF0\x9F\x98\x80");

    // Through UTF-16, characters beyond 16 bits keep their 16 low bits.
    CXmlDocument wide;
    wide.LoadXml(L"<?xml version='1.0' encoding='UTF-16'?><caf\u00E9 \u00E0='\u20AC'>na\u00EFve \U0001F600</caf\u00E9>");
    root = wide.GetDocumentElement();
    EXPECT_EQ(root->GetLocalName(), "caf\xC3\xA9");
    EXPECT_EQ(root->GetAttribute("\xC3\xA0", ""), "\xE2\x82\xAC");
    EXPECT_EQ(root->GetText(), "na\xC3\xAFve \xEF\x98\x80");
}

TEST_F(Utf8LocaleTest, LongNonAsciiTextOutgrowsTheScratchBuffer)
{
    std::string text;
    for (int i = 0; i < 3000; ++i)
        text += "\xC3\xA9";
    std::string const name = "n" + text.substr(0, 600);
    CXmlDocument document;
    document.LoadXml(("<" + name + ">" + text + "</" + name + ">").c_str());
    EXPECT_EQ(document.GetDocumentElement()->GetLocalName(), name);
    EXPECT_EQ(document.GetDocumentElement()->GetText(), text);
}
