// Input meant to break the parser gets a failure, never a crash or a hang.
#include <gtest/gtest.h>

#include <string>

#include <kdbind/binding.h>

using namespace KdBind;

namespace {

std::string LoadFailure(std::string const& xml)
{
    CXmlDocument document;
    try {
        document.LoadXml(xml.c_str());
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "(no failure)";
}

std::string Repeat(std::string const& text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

} // namespace

TEST(HostileInputTest, EntityExpansionIsStopped)
{
    std::string laughs = "<!DOCTYPE lolz [\n<!ENTITY lol0 'lollollollollollollollollollol'>\n";
    for (int level = 1; level <= 9; ++level)
        laughs += "<!ENTITY lol" + std::to_string(level) + " '" + Repeat("&lol" + std::to_string(level - 1) + ";", 10) +
                  "'>\n";
    laughs += "]>\n<lolz>&lol9;</lolz>";
    EXPECT_EQ(LoadFailure(laughs), "limit on input amplification factor (from DTD and entities) breached at line 13");
    EXPECT_EQ(LoadFailure("<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r>&a;</r>"),
              "recursive entity reference at line 1");
}

TEST(HostileInputTest, BadBytesAndUnknownEncodingsFail)
{
    EXPECT_EQ(LoadFailure("<r>\xC3\x28</r>"), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(LoadFailure("<r>\xED\xA0\x80</r>"), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(LoadFailure("<?xml version='1.0' encoding='EBCDIC-US'?>\n<r/>"), "unknown encoding at line 1");
    EXPECT_EQ(LoadFailure("<r>&#0;</r>"), "reference to invalid character number at line 1");
}

TEST(HostileInputTest, DeepNestingAndManyAttributesLoad)
{
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

    EXPECT_EQ(LoadFailure(Repeat("<d a='1'>x", 20000)), "no element found at line 1");
}
