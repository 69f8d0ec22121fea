// The text writer: pretty printing, namespace scopes and prefixes, escaping,
// and its failures; and the block buffer beneath it.
#include <vector>

#include <kdbind/xmloutput.h>

#include "runtime/test_support.h"

using namespace KdBind;
using KdBindTest::FailureOf;

namespace {

char const kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

// A writer on an in-memory stream, opened, with the formatting asked for.
class XmlTextWriterTest : public ::testing::Test {
protected:
    void Open(bool formatted, EOLType eol = EOLType_LF)
    {
        writer.Open();
        writer.SetFormat(formatted);
        writer.SetEOLType(eol);
    }
    void Start(std::string const& name, std::string const& uri = "") { writer.WriteStartElement(name, uri); }
    void Text(std::string const& text) { writer.WriteString(text, ItemType_string); }
    void Attribute(std::string const& name, std::string const& uri, std::string const& value)
    {
        writer.WriteAttributeString(name, uri, value, ItemType_string);
    }
    void End() { writer.WriteEndElement(); }
    // A script of calls: "<name" or "<name uri" starts an element, "/" ends
    // the current one, and anything else is written as its text.
    void Write(std::vector<std::string> const& script)
    {
        for (std::string const& step : script) {
            size_t const blank = step.find(' ');
            if (step == "/")
                End();
            else if (!step.empty() && step[0] == '<')
                Start(step.substr(1, blank - 1), blank == std::string::npos ? "" : step.substr(blank + 1));
            else
                Text(step);
        }
    }
    std::string Output() { return stream.GetText(); }

    CTextStream stream;
    CXmlTextWriter writer{stream};
};

} // namespace

TEST(XmlTextWriterDeclarationTest, NamesTheStreamEncodingAndEndsTheLineAlways)
{
    CTextStream utf8(XmlEncoding_UTF8), utf16(XmlEncoding_UTF16), none(XmlEncoding_UTF16_NoDecl);
    CXmlTextWriter a(utf8), b(utf16), c(none);
    a.SetEOLType(EOLType_CRLF);
    b.SetFormat(false);
    for (CXmlTextWriter* writer : {&a, &b, &c})
        writer->WriteStartDocument();
    EXPECT_STREQ(utf8.GetText(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n");
    EXPECT_STREQ(utf16.GetText(), "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n");
    EXPECT_STREQ(none.GetText(), "<?xml version=\"1.0\"?>\n");
}

// Start tags are indented by depth, end tags only after child elements, and
// text adds no white space: mixed content runs into the child's indentation.
TEST_F(XmlTextWriterTest, PrettyPrintingFollowsTheShapeOfTheCalls)
{
    Open(true);
    // The empty text leaves the start tag open: the element still closes with "/>".
    Write({"<root", "<a", "text", "/", "<b", "<c", "/", "/", "<empty", "", "/", "<p", "lead", "<i", "/", "/", "/"});
    writer.Close();
    EXPECT_EQ(Output(), "<root>\n\t<a>text</a>\n\t<b>\n\t\t<c/>\n\t</b>\n\t<empty/>\n\t<p>lead\t\t<i/>\n\t</p>\n</root>\n");
}

TEST_F(XmlTextWriterTest, DocumentElementDeclaresWhatWasGivenBeforeIt)
{
    Open(false);
    writer.SetDefaultNamespace("urn:default");
    writer.AddNamespace("x", "urn:x");
    writer.AddNamespace("po", "urn:po");
    Write({"<root urn:default", "<item urn:po", "<plain", "/", "/", "/"});  // no undeclaration of the default
    EXPECT_EQ(Output(), "<root xmlns=\"urn:default\" xmlns:po=\"urn:po\" xmlns:x=\"urn:x\">"
                        "<po:item><plain/></po:item></root>");
}

// A generated prefix lives in the scope of the element that declared it, so
// the lowest free code is used again after that element has ended.
TEST_F(XmlTextWriterTest, GeneratedPrefixesFollowScopes)
{
    Open(false);
    Write({"<root", "<a urn:one", "/", "<b urn:one", "<c urn:two", "<d urn:one", "/", "/", "/", "/"});
    EXPECT_EQ(Output(), "<root><AA:a xmlns:AA=\"urn:one\"/>"
                        "<AA:b xmlns:AA=\"urn:one\"><AB:c xmlns:AB=\"urn:two\"><AA:d/></AB:c></AA:b></root>");

    EXPECT_EQ(CXmlWriter::NsIntToString(26), "BA");
    EXPECT_EQ(CXmlWriter::GetUniquePrefix({{"urn:a", "AA"}, {"urn:b", "AC"}}), "AB");
    CXmlWriter::NamespaceMap full;  // the 677th code runs past the alphabet, unchecked
    for (int i = 0; i < 676; ++i)
        full["urn:" + std::to_string(i)] = CXmlWriter::NsIntToString(i);
    EXPECT_EQ(CXmlWriter::GetUniquePrefix(full), "[A");
}

// The same escaping serves text, attribute values and comments; apostrophes
// stay, CR is dropped and LF becomes the line end of the EOL type.
TEST_F(XmlTextWriterTest, EscapingLineEndsAndCDataAtTheStartOnly)
{
    Open(false, EOLType_CRLF);
    Start("e");
    Attribute("a", "", "it's \"<&>\"");
    Write({"x<y & 'q'\r\nnext\n\xc3\xa9", "/", "<f"});
    Text("<![CDATA[c]]>");
    Text(" <![CDATA[d]]>");
    End();
    EXPECT_EQ(Output(), "<e a=\"it's &quot;&lt;&amp;&gt;&quot;\">x&lt;y &amp; 'q'\r\nnext\r\n\xc3\xa9</e>"
                        "<f><![CDATA[c]]> &lt;![CDATA[d]]&gt;</f>");
}

// An attribute in a namespace always has a prefix, even in the default one.
// A type in a new namespace leaves two blanks before the attribute.
TEST_F(XmlTextWriterTest, NamespacedAttributesAndTypeAttributes)
{
    Open(false);
    writer.SetDefaultNamespace("urn:d");
    Start("e", "urn:d");
    Attribute("a", "urn:d", "1");
    Attribute("b", "urn:d", "2");
    writer.WriteAttributeType("urn:d", "Local", ItemType_string);
    Start("f");
    writer.WriteAttributeType("urn:types", "Derived", ItemType_string);
    End();
    End();
    EXPECT_EQ(Output(), std::string("<e xmlns=\"urn:d\" xmlns:AA=\"urn:d\" AA:a=\"1\" AA:b=\"2\" xmlns:AB=\"") + kXsi +
                            "\" AB:type=\"Local\"><f xmlns:AC=\"urn:types\"  AB:type=\"AC:Derived\"/></e>");
}

TEST_F(XmlTextWriterTest, FailureMessages)
{
    Open(false);
    EXPECT_EQ(FailureOf([&] { writer.SetEOLType(static_cast<EOLType>(7)); }), "Invalid EOL type.");
    EXPECT_EQ(writer.GetEOLType(), EOLType_LF);
    writer.WriteHeaderDirective("<!DOCTYPE e>");
    Start("e");
    EXPECT_EQ(FailureOf([&] { writer.WriteHeaderDirective("<!-- late -->"); }),
              "Headed directives must appear before an Element has been added.");
    Text("text");
    std::string const late = "Attributes must be added before elements";
    EXPECT_EQ(FailureOf([&] { Attribute("a", "", "1"); }), late);
    Write({"<child", "/"});
    EXPECT_EQ(FailureOf([&] { writer.WriteAttributeType("", "T", ItemType_string); }), late);
    EXPECT_EQ(FailureOf([&] { writer.Close(); }), "An Element has not been closed.");
    End();
    writer.Close();
    EXPECT_EQ(Output(), "<!DOCTYPE e>\n<e>text<child/></e>");
}

// Contexts of ended elements serve later ones: nothing of an ended
// element's scope reaches its siblings or their children.
TEST_F(XmlTextWriterTest, AnEndedScopeDoesNotReachLaterElements)
{
    Open(false);
    Write({"<root", "<a urn:one"});
    writer.AddNamespace("p", "urn:two");
    Start("b");
    writer.SetDefaultNamespace("urn:one");
    Write({"<c urn:one", "/", "<d urn:two", "/", "/", "/"});
    Write({"<a urn:one", "<b", "<c urn:one", "/", "<d urn:two", "/", "/", "/", "/"});
    EXPECT_EQ(Output(), "<root><AA:a xmlns:AA=\"urn:one\"><b><c/><p:d/></b></AA:a>"
                        "<AA:a xmlns:AA=\"urn:one\"><b><AA:c/><AB:d xmlns:AB=\"urn:two\"/></b></AA:a></root>");
}

// A prefix given after a start tag, in the element's own map or in a copy,
// serves its children and its end tag.
TEST_F(XmlTextWriterTest, APrefixGivenLateServesChildrenAndTheEndTag)
{
    Open(false);
    Write({"<root", "<a urn:one", "<b urn:one"});
    writer.AddNamespace("r", "urn:one");
    Write({"<c urn:one", "/", "b", "/", "a"});
    writer.AddNamespace("q", "urn:one");
    Write({"<d urn:one", "/", "/", "/"});
    EXPECT_EQ(Output(), "<root><AA:a xmlns:AA=\"urn:one\"><AA:b><r:c/>b</r:b>a<q:d/></q:a></root>");
}

TEST_F(XmlTextWriterTest, PrologueItemsDoNotCloseTheStartTag)
{
    Open(true);
    writer.WriteComment("a -> b");
    writer.WritePI("<?pi x?>");
    Start("e");
    writer.WriteInlineSchema("<xs:schema/>");
    writer.WriteRawElement("<raw/>");
    End();
    EXPECT_EQ(Output(), "<!--a -&gt; b-->\n<?pi x?>\n\n<e \n<xs:schema/>\n<raw/>\n/>\n");

    // A writer destroyed with elements open frees its scopes and writes nothing more.
    std::string const before = Output();
    {
        CXmlTextWriter scoped(stream);
        scoped.WriteStartElement("a", "urn:b");
    }
    EXPECT_EQ(Output(), before + "<AA:a xmlns:AA=\"urn:b\"");
}

TEST(StringBufferTest, BlocksAreJoinedOnceAndAppendingGoesOn)
{
    CStringBuffer buffer(8);  // 7 text bytes per block
    EXPECT_STREQ(buffer.GetText(), "");  // never written: no block at all
    std::string expected;
    for (int i = 0; i < 20; ++i) {
        std::string const piece = std::to_string(i) + ",";
        buffer.Append(piece);
        expected += piece;
    }
    buffer.Append('!');
    expected += '!';
    EXPECT_EQ(buffer.GetLength(), expected.size());
    EXPECT_EQ(buffer.GetString(), expected);  // read across the blocks
    EXPECT_EQ(buffer.GetText(), expected);
    EXPECT_EQ(buffer.GetText(), expected);  // already joined
    buffer.Append("tail");
    buffer.Append('.');
    EXPECT_EQ(buffer.GetString(), expected + "tail.");  // the joined block and a new one
    EXPECT_EQ(buffer.GetText(), expected + "tail.");
    buffer.Append(std::string("ab\0cd", 5));  // a string stops at its first zero byte
    EXPECT_EQ(buffer.GetText(), expected + "tail.ab");
}

TEST(StringBufferTest, ExactlyOneBlockNeedsNoJoinAndEmptyKeepsIt)
{
    CStringBuffer buffer;
    std::string const full(4095, 'x');
    buffer.Append(full);
    char* single = buffer.GetText();
    EXPECT_EQ(single, full);
    EXPECT_EQ(buffer.GetText(), single);  // the same block, not a joined copy
    buffer.Empty();
    buffer.Append("de");
    EXPECT_EQ(buffer.GetText(), single);  // emptied in place
    EXPECT_STREQ(single, "de");
}
