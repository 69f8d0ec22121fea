#include "conversions_cases.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

struct RuleCase {
    Rule rule;
    std::string text;
    std::string expected;
};

} // namespace

// Every rule drops a carriage return rather than turning it into a blank.
TEST(WhitespaceTest, RulesAsAppliedBeforeEveryConversion)
{
    std::vector<RuleCase> const cases = {
        {kNone, "a\r\nb ", "a\r\nb "},
        {kPreserve, "a\r\nb", "a\nb"},
        {kPreserve, " \t a \n", " \t a \n"},
        {kPreserve, std::string("a\0b", 3), std::string("a\0b", 3)},  // no CR: handed back whole
        {kPreserve, std::string("a\r\0b", 4), "a"},                    // copied up to a NUL
        {kReplace, "a\rb", "ab"},
        {kReplace, "a\tb", "a b"},
        {kReplace, " a\r\n", " a "},
        {kReplace, "a  b", "a  b"},
        {kCollapse, "  a \t b\r\n", "a b"},
        {kCollapse, "   ", ""},
        {kCollapse, "", ""},
        {kCollapse, "a\rb", "ab"},
        {kCollapse, "a \r b", "a b"},  // the CR leaves the blank flag alone
        {kCollapse, "\r a", "a"},
        {kCollapse, "a\n\n\tb c ", "a b c"},
    };
    for (RuleCase const& c : cases) {
        SCOPED_TRACE("rule " + std::to_string(static_cast<int>(c.rule)) + ", text [" + c.text + "]");
        EXPECT_EQ(CWhitespaceUtils::ApplyRule(c.rule, c.text), c.expected);
    }
}

TEST(WhitespaceTest, PreserveOfABufferStopsAtItsLengthOrANul)
{
    EXPECT_EQ(CWhitespaceUtils::Preserve("a\rbc", 3), "ab");
    EXPECT_EQ(CWhitespaceUtils::Preserve("a\r\0b", 4), "a");
    EXPECT_EQ(CWhitespaceUtils::Preserve(nullptr, 3), "");
    EXPECT_EQ(CWhitespaceUtils::Preserve("abc", -1), "");
}

TEST(WhitespaceTest, OnlyBlankTabCarriageReturnAndLineFeedAreWhiteSpace)
{
    for (char c : {' ', '\t', '\r', '\n'})
        EXPECT_TRUE(CWhitespaceUtils::IsWhiteSpace(c)) << static_cast<int>(c);
    for (char c : {'\v', '\f', '\0', 'a', static_cast<char>(0xA0)})
        EXPECT_FALSE(CWhitespaceUtils::IsWhiteSpace(c)) << static_cast<int>(c);
}

TEST(WhitespaceTest, UnknownRuleFails)
{
    for (int rule : {4, -1}) {
        EXPECT_EQ(FailureOf<CKdException>([rule] { CWhitespaceUtils::ApplyRule(static_cast<Rule>(rule), "a"); }),
                  "Unknown WhitespaceRule")
            << rule;
    }
}
