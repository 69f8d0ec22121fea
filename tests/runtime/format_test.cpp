#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include <kdbind/runtime.h>

using namespace KdBind;

TEST(FormatTest, ConversionsPrintAsPrintfDoes)
{
    EXPECT_EQ(FormatString("Failed to find a required element [%s]", "name"),
              "Failed to find a required element [name]");
    EXPECT_EQ(FormatString("%d|%5d|%-4d|%05d|%+d", -7, 42, 3, 9, 1), "-7|   42|3   |00009|+1");
    EXPECT_EQ(FormatString("%ld %lld %u %x %X %o", 123456789012L, -5LL, 4000000000u, 255u, 255u, 8u),
              "123456789012 -5 4000000000 ff FF 10");
    EXPECT_EQ(FormatString("%.3f %e %g", 3.14159, 1.5, 0.25), "3.142 1.500000e+00 0.25");
    EXPECT_EQ(FormatString("%*d|%.*s|%5s", 4, 1, 2, "abcdef", "ab"), "   1|ab|   ab");
    EXPECT_EQ(FormatString("100%% %ls", L"wide"), "100% wide");
    EXPECT_EQ(FormatString("%#x", 255u), "0xff");
}

TEST(FormatTest, CharacterConversionIsAFailureNotATrap)
{
    EXPECT_EQ(FormatString("Invalid char in hex string [%c]", 'G'), "Invalid char in hex string [G]");
    EXPECT_EQ(FormatString("[%3c]", 'x'), "[  x]");
}

namespace {
// Hidden from the compiler's printf checks, which would flag a literal null.
char const* NullText()
{
    static char const* volatile nothing = nullptr;
    return nothing;
}
} // namespace

TEST(FormatTest, NullStringIsWhatPrintfPrints)
{
    char buffer[32];
    char const* nothing = NullText();
    snprintf(buffer, sizeof buffer, "%s", nothing);
    EXPECT_EQ(FormatString("%s", nothing), buffer);
}

TEST(FormatTest, LongArgumentsAreNotCut)
{
    std::string const longText(10000, 'q');
    EXPECT_EQ(FormatString("<%s>", longText.c_str()), "<" + longText + ">");
    char huge[400];
    snprintf(huge, sizeof huge, "%f", 1e300);
    EXPECT_EQ(FormatString("%f", 1e300), huge);
    EXPECT_EQ(FormatString("%.400f", 1.0).size(), 402u);
    EXPECT_EQ(FormatString("%s", ""), "");
}

TEST(StringHelpersTest, FindReplaceSearchesAgainFromTheStart)
{
    std::string text = "aaa";
    FindReplace(text, "a", "b");
    EXPECT_EQ(text, "bbb");
    text = "aab";
    FindReplace(text, "ab", "b");
    EXPECT_EQ(text, "b");
    std::wstring wide = L"x&y&z";
    FindReplace(wide, L"&", L" and ");
    EXPECT_EQ(wide, L"x and y and z");
}

TEST(StringHelpersTest, StruprUpperCasesInPlace)
{
    char text[] = "abc-Xyz 09";
    EXPECT_EQ(strupr(text), text);
    EXPECT_STREQ(text, "ABC-XYZ 09");
}

TEST(StringHelpersTest, FileLengthKeepsThePosition)
{
    FILE* file = tmpfile();
    ASSERT_NE(file, nullptr);
    fputs("hello world", file);
    fseek(file, 3, SEEK_SET);
    EXPECT_EQ(_filelength(file), 11);
    EXPECT_EQ(ftell(file), 3);
    fclose(file);

    FILE* pipe = popen("true", "r");
    ASSERT_NE(pipe, nullptr);
    EXPECT_EQ(_filelength(pipe), -1);
    pclose(pipe);
}
