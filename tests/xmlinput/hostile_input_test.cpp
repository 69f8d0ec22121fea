// Input meant to break the parser gets a failure, never a crash or a hang.
#include <gtest/gtest.h>

#include <cstdio>
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

} // namespace

TEST(HostileInputTest, EntityExpansionIsStopped)
{
    std::string laughs = "<?xml version='1.0'?>\n<!DOCTYPE lolz [\n<!ENTITY lol0 'lollollollollollollollollollol'>\n";
    for (int level = 1; level <= 9; ++level) {
        std::string previous = "&lol" + std::to_string(level - 1) + ";";
        std::string value;
        for (int i = 0; i < 10; ++i)
            value += previous;
        laughs += "<!ENTITY lol" + std::to_string(level) + " '" + value + "'>\n";
    }
    laughs += "]>\n<lolz>&lol9;</lolz>";
    EXPECT_EQ(LoadFailure(laughs), "limit on input amplification factor (from DTD and entities) breached at line 14");
}

TEST(HostileInputTest, RecursiveEntityIsRefused)
{
    EXPECT_EQ(LoadFailure("<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r>&a;</r>"),
              "recursive entity reference at line 1");
}

TEST(HostileInputTest, BadBytesAndUnknownEncodingsFail)
{
    EXPECT_EQ(LoadFailure("<r>\xC3\x28</r>"), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(LoadFailure("<r>\xED\xA0\x80</r>"), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(LoadFailure("<r>\xF8\x88\x80\x80\x80</r>"), "not well-formed (invalid token) at line 1");
    EXPECT_EQ(LoadFailure("<?xml version='1.0' encoding='EBCDIC-US'?>\n<r/>"), "unknown encoding at line 1");
    EXPECT_EQ(LoadFailure("<r>&#0;</r>"), "reference to invalid character number at line 1");
}

TEST(HostileInputTest, DeepNestingAndManyAttributesLoad)
{
    int const depth = 100000;
    std::string deep;
    for (int i = 0; i < depth; ++i)
        deep += "<d>";
    for (int i = 0; i < depth; ++i)
        deep += "</d>";
    CXmlDocument nested;
    nested.LoadXml(deep.c_str());
    EXPECT_TRUE(nested.GetElementStack().empty());

    int const count = 50000;
    std::string wide = "<r";
    for (int i = 0; i < count; ++i)
        wide += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
    wide += "/>";
    CXmlDocument attributed;
    attributed.LoadXml(wide.c_str());
    auto const& attributes = attributed.GetDocumentElement()->GetAttributes();
    ASSERT_EQ(attributes.size(), static_cast<size_t>(count));
    EXPECT_EQ(attributes.back()->GetLocalName(), "a49999");
    EXPECT_EQ(attributes.back()->GetValue(), "49999");
}

TEST(HostileInputTest, UnclosedDeepNestingFailsWithoutLeaking)
{
    std::string deep;
    for (int i = 0; i < 20000; ++i)
        deep += "<d a='1'>x";
    EXPECT_EQ(LoadFailure(deep), "no element found at line 1");
}
