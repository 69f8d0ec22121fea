#include <thread>
#include <vector>

#include "runtime/test_support.h"

using namespace KdBind;

namespace {

TEST(TestRegEx, MatchMustCoverTheWholeValue)
{
    EXPECT_TRUE(TestRegEx("\\d{3}", "123"));
    EXPECT_FALSE(TestRegEx("\\d{3}", "1234"));
    EXPECT_FALSE(TestRegEx("\\d{3}", "12"));
    EXPECT_TRUE(TestRegEx("", ""));
    EXPECT_FALSE(TestRegEx("", "a"));
    // The first alternative found decides; it stops short of the end.
    EXPECT_FALSE(TestRegEx("a|ab", "ab"));
    EXPECT_TRUE(TestRegEx("ab|a", "ab"));
    // The value ends at its first NUL, as a C string.
    EXPECT_TRUE(TestRegEx("ab", std::string("ab\0cd", 5)));
    EXPECT_TRUE(TestRegEx("\\d{3}-[A-Z]{2}", "872-AA"));
}

TEST(TestRegEx, SchemaEscapesAreRewritten)
{
    EXPECT_TRUE(TestRegEx("\\i\\c*", "a-b.c"));
    EXPECT_TRUE(TestRegEx("\\i\\c*", ":x1"));
    EXPECT_FALSE(TestRegEx("\\i\\c*", "1a"));
    EXPECT_TRUE(TestRegEx("\\I", "1"));
    EXPECT_FALSE(TestRegEx("\\I", "a"));
    EXPECT_TRUE(TestRegEx("\\C+", "!?"));
    EXPECT_FALSE(TestRegEx("\\C", "-"));
    // An escaped backslash followed by i stays a backslash and a letter.
    EXPECT_TRUE(TestRegEx("\\\\i", "\\i"));
    EXPECT_FALSE(TestRegEx("\\\\i", "\\a"));
    EXPECT_TRUE(TestRegEx("\\p{IsBasicLatin}+", "abc~"));
}

TEST(TestRegEx, NonAsciiValuesMatchAsUtf8Characters)
{
    KdBindTest::LocaleScope utf8("C.UTF-8");
    ASSERT_TRUE(utf8.Available());
    EXPECT_TRUE(TestRegEx(".", "\xC3\xA9"));  // one character, two bytes
    EXPECT_FALSE(TestRegEx("..", "\xC3\xA9"));
    // \w and \d know ASCII only.
    EXPECT_FALSE(TestRegEx("\\w", "\xC3\xA9"));
    EXPECT_TRUE(TestRegEx("\\p{L}", "\xC3\xA9"));
    EXPECT_TRUE(TestRegEx("\\p{IsLatin-1Supplement}", "\xC3\xA9"));
    EXPECT_TRUE(TestRegEx("\\p{IsLatinExtended-A}", "\xC5\x93"));  // U+0153
}

TEST(TestRegEx, RunawayMatchesEndAsNonMatches)
{
    // Exponential backtracking runs into the step budget.
    EXPECT_FALSE(TestRegEx("(a+)+$", std::string(40, 'a') + "!"));
    // A megabyte value: a simple class runs through it, a nested repeat that
    // needs a frame per character runs out of its memory budget.
    std::string const big(1 << 20, 'a');
    EXPECT_TRUE(TestRegEx("[a-z]*", big));
    EXPECT_FALSE(TestRegEx("(a|b)*$", big + "!"));
}

TEST(TestRegEx, SharedPatternsServeManyThreads)
{
    std::vector<std::thread> threads;
    std::vector<int> matched(4, 0);
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t, &matched] {
            for (int i = 0; i < 500; ++i)
                matched[t] += TestRegEx("[0-9]{3}-[A-Z]{" + std::to_string(i % 5 + 1) + "}", "123-" +
                                        std::string(static_cast<std::size_t>(i % 5 + 1), 'Q'));
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int count : matched)
        EXPECT_EQ(count, 500);
}

TEST(TestRegExDeathTest, RefusedPatternsTrap)
{
    EXPECT_DEATH(TestRegEx("(", "x"), "");
    EXPECT_DEATH(TestRegEx("[a-", "x"), "");
    // The rewritten block is a descending range.
    EXPECT_DEATH(TestRegEx("\\p{IsLatinExtended-B}", "x"), "");
}

// The probe refuses exactly what would trap, after the same rewriting: the
// schema escapes that PCRE2 alone refuses pass, the broken block does not.
TEST(TestRegEx, DiagnoseNamesWhatWouldTrap)
{
    for (char const* accepted : {"\\d{3}", "\\i\\c*", "\\p{IsBasicLatin}+", "", "a\\\\i"})
        EXPECT_EQ(CCompiledPattern::Diagnose(accepted), "") << accepted;
    for (char const* refused : {"(", "[a-", "\\p{IsLatinExtended-B}", "\\p{IsGreek}"})
        EXPECT_NE(CCompiledPattern::Diagnose(refused), "") << refused;
    EXPECT_NE(CCompiledPattern::Diagnose("(").find("offset 1"), std::string::npos);
}

} // namespace
