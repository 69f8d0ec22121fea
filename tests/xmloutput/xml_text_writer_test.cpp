#include <gtest/gtest.h>

#include <functional>
#include <string>

#include <kdbind/xmloutput.h>

using namespace KdBind;

namespace {

// A writer on an in-memory stream, opened, with the formatting asked for.
struct WriterFixture : ::testing::Test {
    CTextStream stream;
    CXmlTextWriter writer{stream};

    void Start(bool formatted, EOLType eol = EOLType_LF)
    {
        writer.Open();
        writer.SetFormat(formatted);
        writer.SetEOLType(eol);
    }
    std::string Text() { return stream.GetText(); }
};

std::string MessageOf(std::function<void()> const& action)
{
    try {
        action();
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "<no exception>";
}

char const kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

} // namespace

using XmlTextWriterTest = WriterFixture;

TEST_F(XmlTextWriterTest, DeclarationNamesTheStreamEncoding)
{
    CTextStream utf8(XmlEncoding_UTF8), utf16(XmlEncoding_UTF16), none;
    CXmlTextWriter a(utf8), b(utf16), c(none);
    a.SetEOLType(EOLType_CRLF);
    a.WriteStartDocument();
    b.SetFormat(false);
    b.WriteStartDocument();
    c.WriteStartDocument();
    EXPECT_STREQ(utf8.GetText(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n");
    EXPECT_STREQ(utf16.GetText(), "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n");
    EXPECT_STREQ(none.GetText(), "<?xml version=\"1.0\"?>\n");
}

TEST_F(XmlTextWriterTest, FormattedTreeIndentsStartTagsAndEndTagsWithChildren)
{
    Start(true);
    writer.WriteStartElement("root", "");
    writer.WriteStartElement("a", "");
    writer.WriteString("text", ItemType_string);
    writer.WriteEndElement();
    writer.WriteStartElement("b", "");
    writer.WriteStartElement("c", "");
    writer.WriteEndElement();
    writer.WriteEndElement();
    writer.WriteStartElement("empty", "");
    writer.WriteString("", ItemType_string);
    writer.WriteEndElement();
    writer.WriteEndElement();
    writer.Close();
    EXPECT_EQ(Text(),
              "<root>\n"
              "\t<a>text</a>\n"
              "\t<b>\n"
              "\t\t<c/>\n"
              "\t</b>\n"
              "\t<empty/>\n"
              "</root>\n");
}

TEST_F(XmlTextWriterTest, MixedContentRunsTextAndIndentationTogether)
{
    Start(true);
    writer.WriteStartElement("p", "");
    writer.WriteString("lead", ItemType_string);
    writer.WriteStartElement("b", "");
    writer.WriteEndElement();
    writer.WriteEndElement();
    EXPECT_EQ(Text(), "<p>lead\t<b/>\n</p>\n");
}

TEST_F(XmlTextWriterTest, DefaultNamespaceAndAddedPrefixOnTheDocumentElement)
{
    Start(false);
    writer.SetDefaultNamespace("urn:default");
    writer.AddNamespace("x", "urn:x");
    writer.WriteStartElement("root", "urn:default");
    writer.WriteEndElement();
    writer.Close();
    EXPECT_EQ(Text(), "<root xmlns=\"urn:default\" xmlns:x=\"urn:x\"/>");
}

TEST_F(XmlTextWriterTest, GeneratedPrefixesFollowScopes)
{
    Start(false);
    writer.WriteStartElement("root", "");
    writer.WriteStartElement("a", "urn:one");
    writer.WriteEndElement();
    writer.WriteStartElement("b", "urn:one");
    writer.WriteStartElement("c", "urn:two");
    writer.WriteStartElement("d", "urn:one");
    writer.WriteEndElement();
    writer.WriteEndElement();
    writer.WriteEndElement();
    writer.WriteEndElement();
    EXPECT_EQ(Text(), "<root><AA:a xmlns:AA=\"urn:one\"/>"
                      "<AA:b xmlns:AA=\"urn:one\"><AB:c xmlns:AB=\"urn:two\"><AA:d/></AB:c></AA:b></root>");
}

TEST_F(XmlTextWriterTest, ElementWithoutNamespaceUnderADefaultGetsNoUndeclaration)
{
    Start(false);
    writer.SetDefaultNamespace("urn:d");
    writer.WriteStartElement("root", "urn:d");
    writer.WriteStartElement("plain", "");
    writer.WriteEndElement();
    writer.WriteEndElement();
    EXPECT_EQ(Text(), "<root xmlns=\"urn:d\"><plain/></root>");
}

TEST_F(XmlTextWriterTest, PrefixGivenByAddNamespaceIsUsedAndDeclaredOnTheRoot)
{
    Start(false);
    writer.AddNamespace("po", "urn:po");
    writer.WriteStartElement("order", "urn:po");
    writer.WriteStartElement("item", "urn:po");
    writer.WriteEndElement();
    writer.WriteEndElement();
    EXPECT_EQ(Text(), "<po:order xmlns:po=\"urn:po\"><po:item/></po:order>");
}

TEST_F(XmlTextWriterTest, EscapingOfTextAttributesAndLineEnds)
{
    Start(false, EOLType_CRLF);
    writer.WriteStartElement("e", "");
    writer.WriteAttributeString("a", "", "it's \"<&>\"", ItemType_string);
    writer.WriteString("x<y & \"z\" 'q'\r\nnext\n\xc3\xa9", ItemType_string);
    writer.WriteEndElement();
    EXPECT_EQ(Text(), "<e a=\"it's &quot;&lt;&amp;&gt;&quot;\">x&lt;y &amp; &quot;z&quot; 'q'\r\nnext\r\n\xc3\xa9</e>");
}

TEST_F(XmlTextWriterTest, CDataPassesThroughOnlyAtTheStart)
{
    Start(false);
    writer.WriteStartElement("e", "");
    writer.WriteString("<![CDATA[a<b]]>", ItemType_string);
    writer.WriteString(" <![CDATA[c]]>", ItemType_string);
    writer.WriteEndElement();
    EXPECT_EQ(Text(), "<e><![CDATA[a<b]]> &lt;![CDATA[c]]&gt;</e>");
}

TEST_F(XmlTextWriterTest, NamespacedAttributesAlwaysHavePrefixes)
{
    Start(false);
    writer.SetDefaultNamespace("urn:d");
    writer.WriteStartElement("e", "urn:d");
    writer.WriteAttributeString("a", "urn:d", "1", ItemType_string);
    writer.WriteAttributeString("b", "urn:d", "2", ItemType_string);
    writer.WriteEndElement();
    EXPECT_EQ(Text(), "<e xmlns=\"urn:d\" xmlns:AA=\"urn:d\" AA:a=\"1\" AA:b=\"2\"/>");
}

TEST_F(XmlTextWriterTest, TypeAttributeForms)
{
    Start(false);
    writer.WriteStartElement("e", "");
    writer.WriteAttributeType("", "Local", ItemType_string);
    writer.WriteEndElement();
    writer.Close();
    EXPECT_EQ(Text(), std::string("<e xmlns:AA=\"") + kXsi + "\" AA:type=\"Local\"/>");

    CTextStream other;
    CXmlTextWriter second(other);
    second.SetFormat(false);
    second.WriteStartElement("e", "");
    second.WriteAttributeType("urn:types", "Derived", ItemType_string);
    second.WriteEndElement();
    EXPECT_EQ(std::string(other.GetText()),
              std::string("<e xmlns:AA=\"urn:types\"  xmlns:AB=\"") + kXsi + "\" AB:type=\"AA:Derived\"/>");
}

TEST_F(XmlTextWriterTest, AttributeAfterContentFails)
{
    Start(false);
    writer.WriteStartElement("e", "");
    writer.WriteString("text", ItemType_string);
    EXPECT_EQ(MessageOf([&] { writer.WriteAttributeString("a", "", "1", ItemType_string); }),
              "Attributes must be added before elements");
    writer.WriteStartElement("child", "");
    writer.WriteEndElement();
    EXPECT_EQ(MessageOf([&] { writer.WriteAttributeType("", "T", ItemType_string); }),
              "Attributes must be added before elements");
}

TEST_F(XmlTextWriterTest, FailureMessages)
{
    Start(false);
    EXPECT_EQ(MessageOf([&] { writer.SetEOLType(static_cast<EOLType>(7)); }), "Invalid EOL type.");
    EXPECT_EQ(writer.GetEOLType(), EOLType_LF);
    writer.WriteHeaderDirective("<!DOCTYPE e>");
    writer.WriteStartElement("e", "");
    EXPECT_EQ(MessageOf([&] { writer.WriteHeaderDirective("<!-- late -->"); }),
              "Headed directives must appear before an Element has been added.");
    EXPECT_EQ(MessageOf([&] { writer.Close(); }), "An Element has not been closed.");
    writer.WriteEndElement();
    writer.Close();
    EXPECT_EQ(Text(), "<!DOCTYPE e>\n<e/>");
}

TEST_F(XmlTextWriterTest, PrologueItemsDoNotCloseTheStartTag)
{
    Start(true);
    writer.WriteComment("a -> b");
    writer.WritePI("<?pi x?>");
    writer.WriteStartElement("e", "");
    writer.WriteInlineSchema("<xs:schema/>");
    writer.WriteRawElement("<raw/>");
    writer.WriteEndElement();
    EXPECT_EQ(Text(), "<!--a -&gt; b-->\n<?pi x?>\n\n<e \n<xs:schema/>\n<raw/>\n/>\n");
}

TEST(XmlWriterTest, PrefixCodes)
{
    EXPECT_EQ(CXmlWriter::NsIntToString(0), "AA");
    EXPECT_EQ(CXmlWriter::NsIntToString(25), "AZ");
    EXPECT_EQ(CXmlWriter::NsIntToString(26), "BA");
    EXPECT_EQ(CXmlWriter::NsIntToString(676), "[A");  // past the alphabet, unchecked
    CXmlWriter::NamespaceMap used{{"urn:a", "AA"}, {"urn:b", "AC"}};
    EXPECT_EQ(CXmlWriter::GetUniquePrefix(used), "AB");
}

TEST_F(XmlTextWriterTest, ManyNamespacesInOneScopeRunPastTheAlphabet)
{
    Start(false);
    writer.WriteStartElement("root", "");
    for (int i = 0; i < 677; ++i)
        writer.WriteAttributeString("a", "urn:" + std::to_string(i), "v", ItemType_string);
    writer.WriteEndElement();
    EXPECT_NE(Text().find("xmlns:[A=\"urn:676\" [A:a=\"v\""), std::string::npos);
}

TEST_F(XmlTextWriterTest, DestroyingAWriterWithOpenElementsWritesNothingMore)
{
    Start(false);
    {
        CXmlTextWriter scoped(stream);
        scoped.SetFormat(false);
        scoped.WriteStartElement("a", "");
        scoped.WriteStartElement("b", "urn:b");
    }
    EXPECT_EQ(Text(), "<a><AA:b xmlns:AA=\"urn:b\"");
}
