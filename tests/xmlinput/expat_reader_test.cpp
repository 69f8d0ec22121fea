// The text reader: names and namespaces, CDATA, encodings, failures with
// their lines, hostile input, and loading from files and byte blocks.
#include <cstdio>
#include <cstdlib>

#include <kdbind/binding.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

std::string LoadFailure(std::string const& xml)
{
    return FailureOf([&] { CXmlDocument().LoadXml(xml.c_str()); });
}

std::string Repeat(std::string const& text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

} // namespace

// Schema type 2 processes no namespaces: prefixed names and xmlns attributes
// stay as written. Unless StripCDATA is set, a CDATA section keeps its markers.
TEST(ExpatReaderTest, ContextDecidesNamespacesAndCDataMarkers)
{
    std::string const xml = "<p:r xmlns:p='urn:p' p:a='1'>before<![CDATA[<in> & \r\nout]]>after<p:c/></p:r>";
    CXmlDocument stripped;
    stripped.LoadXml(xml.c_str());
    EXPECT_EQ(stripped.GetDocumentElement()->GetText(), "before<in> & \nout" "after");

    CXmlSerializationContext context;
    context.SetSchemaType(SchemaType_IgnoreNamespaces);
    context.SetStripCDATA(false);
    CXmlDocument document(context);
    document.LoadXml(xml.c_str());
    CXmlElement* root = document.GetDocumentElement();
    EXPECT_EQ(root->GetNamespaceURI() + "|" + root->GetLocalName(), "|p:r");
    EXPECT_EQ(root->GetAttribute("xmlns:p", ""), "urn:p");
    EXPECT_EQ(root->GetAttribute("p:a", ""), "1");
    EXPECT_EQ(root->GetFirstElement()->GetLocalName(), "p:c");
    EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "");
    EXPECT_EQ(root->GetText(), "before<![CDATA[<in> & \nout]]>after");
}

// Names, values and text longer than the scratch buffer take the heap.
TEST(ExpatReaderTest, NarrowWideAndLongNonAsciiTextLoadAlike)
{
    LocaleScope scope("C.UTF-8");
    if (!scope.Available())
        GTEST_SKIP() << "no UTF-8 locale";
    CXmlDocument narrow;
    narrow.LoadXml("<caf\xC3\xA9 \xC3\xA0='\xE2\x82\xAC'>na\xC3\xAFve \xF0\x9F\x98\x80</caf\xC3\xA9>");
    EXPECT_EQ(narrow.GetDocumentElement()->GetLocalName(), "caf\xC3\xA9");
    EXPECT_EQ(narrow.GetDocumentElement()->GetAttribute("\xC3\xA0", ""), "\xE2\x82\xAC");
    EXPECT_EQ(narrow.GetDocumentElement()->GetText(), "na\xC3\xAFve \xF0\x9F\x98\x80");

    // Through UTF-16, characters beyond 16 bits keep their 16 low bits.
    CXmlDocument wide;
    wide.LoadXml(L"<?xml version='1.0' encoding='UTF-16'?><caf\u00E9 \u00E0='\u20AC'>na\u00EFve \U0001F600</caf\u00E9>");
    EXPECT_EQ(wide.GetDocumentElement()->GetLocalName(), "caf\xC3\xA9");
    EXPECT_EQ(wide.GetDocumentElement()->GetAttribute("\xC3\xA0", ""), "\xE2\x82\xAC");
    EXPECT_EQ(wide.GetDocumentElement()->GetText(), "na\xC3\xAFve \xEF\x98\x80");

    std::string const text = Repeat("\xC3\xA9", 3000);
    std::string const name = "n" + text.substr(0, 600);
    CXmlDocument big;
    big.LoadXml(("<" + name + " a='" + text + "'>" + text + "</" + name + ">").c_str());
    EXPECT_EQ(big.GetDocumentElement()->GetLocalName(), name);
    EXPECT_EQ(big.GetDocumentElement()->GetAttribute("a", ""), text);
    EXPECT_EQ(big.GetDocumentElement()->GetText(), text);
}

TEST(ExpatReaderTest, FailuresNameTheLineAndTheNextLoadDropsThePartialTree)
{
    EXPECT_EQ(LoadFailure("<r>\n<a>\n</r>"), "mismatched tag at line 3");
    EXPECT_EQ(LoadFailure("<r>\n<a>text</a>\n"), "no element found at line 3");
    EXPECT_EQ(LoadFailure("<r/>\n<s/>"), "junk after document element at line 2");
    EXPECT_EQ(LoadFailure("<r a='1' a='2'/>"), "duplicate attribute at line 1");
    // LoadXml does not recognise binary input: gzip is malformed text, and
    // Fast Infoset ends at its first zero byte.
    EXPECT_EQ(LoadFailure("\x1F\x8B\x08\x00"), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(LoadFailure("\xE0\x00\x00\x01"), "partial character at line 1");

    CXmlDocument document;
    // The partial tree has the text read before the failure, up to its end.
    EXPECT_THROW(document.LoadXml("<r>one<a>two</a>three<b>four&#13;<c"), CKdException);
    ASSERT_NE(document.GetDocumentElement(), nullptr);
    EXPECT_EQ(document.GetDocumentElement()->GetText(), "onethree");
    EXPECT_EQ(document.GetDocumentElement()->GetFirstElement()->GetNextSiblingElement()->GetText(), "four");
    document.LoadXml("<s/>");
    EXPECT_EQ(document.GetDocumentElement()->GetLocalName(), "s");
    EXPECT_TRUE(document.GetElementStack().empty());
}

TEST(HostileInputTest, FailsWithoutCrashOrHang)
{
    std::string laughs = "<!DOCTYPE lolz [\n<!ENTITY lol0 'lollollollollollollollollollol'>\n";
    for (int level = 1; level <= 9; ++level)
        laughs += "<!ENTITY lol" + std::to_string(level) + " '" + Repeat("&lol" + std::to_string(level - 1) + ";", 10) +
                  "'>\n";
    EXPECT_EQ(LoadFailure(laughs + "]>\n<lolz>&lol9;</lolz>"),
              "limit on input amplification factor (from DTD and entities) breached at line 13");
    EXPECT_EQ(LoadFailure("<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r>&a;</r>"),
              "recursive entity reference at line 1");
    EXPECT_EQ(LoadFailure("<r>\xC3\x28</r>"), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(LoadFailure("<r>\xED\xA0\x80</r>"), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(LoadFailure("<?xml version='1.0' encoding='EBCDIC-US'?>\n<r/>"), "unknown encoding at line 1");
    EXPECT_EQ(LoadFailure("<r>&#0;</r>"), "reference to invalid character number at line 1");
    EXPECT_EQ(LoadFailure(Repeat("<d a='1'>x", 20000)), "no element found at line 1");

    CXmlDocument nested;
    nested.LoadXml((Repeat("<d>", 100000) + Repeat("</d>", 100000)).c_str());
    EXPECT_TRUE(nested.GetElementStack().empty());
    std::string attributes = "<r";
    for (int i = 0; i < 50000; ++i)
        attributes += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
    CXmlDocument attributed;
    attributed.LoadXml((attributes + "/>").c_str());
    ASSERT_EQ(attributed.GetDocumentElement()->GetAttributes().size(), 50000u);
    EXPECT_EQ(attributed.GetDocumentElement()->GetAttributes().back()->GetValue(), "49999");
}

TEST(InputFormTest, FilesAndBlocksAreCopiedAndMustNotBeEmpty)
{
    char path[] = "/tmp/kdbind_input_XXXXXX";
    int const fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    FILE* file = fdopen(fd, "w");
    CXmlDocument document;
    EXPECT_EQ(FailureOf([&] { document.Load(path); }),
              std::string("Failed to read the contents of the file [") + path + "] Error [0]");
    fputs("<r><c>text</c></r>", file);
    fclose(file);
    document.Load(path);
    EXPECT_EQ(document.GetDocumentElement()->GetFirstElement()->GetText(), "text");
    remove(path);
    EXPECT_EQ(FailureOf([&] { document.Load(path); }), std::string("Failed to open the file [") + path + "]");

    unsigned char bytes[] = "<r>x</r>";
    EXPECT_EQ(FailureOf([&] { document.LoadXmlStream(bytes, 0); }), "XML Stream is empty!");
    document.LoadXmlStream(bytes, sizeof bytes - 1);
    bytes[3] = 'y';
    EXPECT_EQ(document.GetDocumentElement()->GetText(), "x");
}
