// The UTF converters and CEncoder's ways between the local code page, wide
// text and UTF-8.
#include <cstring>
#include <stdexcept>
#include <vector>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

// "a", e-acute, euro sign, G clef: one to four bytes in UTF-8.
wchar_t const kMixed[] = {L'a', 0xE9, 0x20AC, 0x1D11E, 0};
std::vector<unsigned char> const kMixedUtf8 = {'a', 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF0, 0x9D, 0x84, 0x9E};

// UTF-8 to UTF-32 into a target of `capacity` units; null target: counting.
unsigned long ToUtf32(std::vector<unsigned char> const& in, unsigned int* out, unsigned long capacity)
{
    return ConvertUTF8toUTF32(in.data(), in.data() + in.size(), out, out ? out + capacity : nullptr);
}

unsigned char* Utf8(char const* text) { return reinterpret_cast<unsigned char*>(const_cast<char*>(text)); }

} // namespace

TEST(UtfConversionsTest, RoundTripsAndStopsWhereTheTargetIsFull)
{
    std::vector<unsigned char> bytes(UnicodeToUTF8(kMixed, 4, nullptr, 0));
    ASSERT_EQ(UnicodeToUTF8(kMixed, 4, bytes.data(), bytes.size()), 10u);
    EXPECT_EQ(bytes, kMixedUtf8);
    std::vector<wchar_t> wide(4);
    EXPECT_EQ(UTF8ToUnicode(bytes.data(), bytes.size(), nullptr, 0), 4u);
    ASSERT_EQ(UTF8ToUnicode(bytes.data(), bytes.size(), wide.data(), 4), 4u);
    EXPECT_EQ(wide, std::vector<wchar_t>(kMixed, kMixed + 4));
    // A character that does not fit ends the writing.
    EXPECT_EQ(UnicodeToUTF8(kMixed, 4, bytes.data(), 4), 3u);
    unsigned short units[2];
    unsigned int const clef[] = {0x41, 0x1D11E};
    EXPECT_EQ(ConvertUTF32toUTF16(clef, clef + 2, units, units + 2), 1u);
}

TEST(UtfConversionsTest, SurrogatesAndValuesAboveTheLastCodePoint)
{
    // A surrogate in UTF-32 ends the work: 0 when counting, what stands when writing.
    unsigned int const withSurrogate[] = {0x41, 0x42, 0xD800, 0x43};
    unsigned char target[8];
    EXPECT_EQ(ConvertUTF32toUTF8(withSurrogate, withSurrogate + 4, nullptr, nullptr), 0u);
    EXPECT_EQ(ConvertUTF32toUTF8(withSurrogate, withSurrogate + 4, target, target + 8), 2u);
    EXPECT_EQ(ConvertUTF32toUTF16(withSurrogate, withSurrogate + 4, nullptr, nullptr), 0u);
    wchar_t const lone[] = {L'a', 0xD800, 0};
    EXPECT_EQ(CEncoder::UnicodeToUtf8Binary(lone).GetLength(), 0u);

    // Above U+10FFFF: U+FFFD in UTF-8, the end of the work in UTF-16.
    unsigned int const tooLarge[] = {0x110000, 0x10FFFF};
    ASSERT_EQ(ConvertUTF32toUTF8(tooLarge, tooLarge + 2, target, target + 8), 7u);
    EXPECT_EQ(std::vector<unsigned char>(target, target + 3), (std::vector<unsigned char>{0xEF, 0xBF, 0xBD}));
    unsigned int back[2];
    EXPECT_EQ(ConvertUTF8toUTF32(target + 3, target + 7, back, back + 2), 1u);
    EXPECT_EQ(back[0], 0x10FFFFu);
    EXPECT_EQ(ConvertUTF32toUTF16(tooLarge, tooLarge + 1, nullptr, nullptr), 0u);
}

TEST(UtfConversionsTest, IllegalOrTruncatedUtf8EndsTheTextWithoutReadingPastIt)
{
    unsigned int out[8];
    std::vector<unsigned char> const truncated = {'a', 'b', 0xE2, 0x82};  // a euro sign cut short
    EXPECT_EQ(ToUtf32(truncated, nullptr, 0), 0u);
    EXPECT_EQ(ToUtf32(truncated, out, 8), 2u);
    for (std::vector<unsigned char> const& illegal : std::vector<std::vector<unsigned char>>{
             {'x', 0x80, 'y'},                     // a lone continuation byte
             {'x', 0xC0, 0x80},                    // overlong
             {'x', 0xED, 0xA0, 0x80},              // an encoded surrogate
             {'x', 0xF8, 0x88, 0x80, 0x80, 0x80},  // a five-byte form
             {'x', 0xF4, 0x90, 0x80, 0x80},        // above the last code point
             {'x', 0xC3, 0x28}}) {                 // a lead byte without its continuation
        EXPECT_EQ(ToUtf32(illegal, nullptr, 0), 0u);
        EXPECT_EQ(ToUtf32(illegal, out, 8), 1u);
    }
    unsigned char const euro[] = {0xE2, 0x82, 0xAC};
    EXPECT_TRUE(IsLegalUTF8Sequence(euro, euro + 3));
    EXPECT_FALSE(IsLegalUTF8Sequence(euro, euro + 2));
    EXPECT_FALSE(IsLegalUTF8(euro, 5));
}

TEST(UtfConversionsTest, Utf16PairsAtAnyAlignmentAndLoneSurrogates)
{
    wchar_t const wide[] = {L'A', 0x1D11E};
    alignas(4) unsigned char bytes[9];
    EXPECT_EQ(UnicodeToUTF16(wide, 2, nullptr, 0), 3u);
    ASSERT_EQ(UnicodeToUTF16(wide, 2, bytes + 1, 3), 3u);  // an odd address
    unsigned short units[3];
    memcpy(units, bytes + 1, sizeof units);
    EXPECT_EQ(units[1], 0xD834);
    EXPECT_EQ(units[2], 0xDD1E);
    wchar_t back[2] = {};
    EXPECT_EQ(UTF16ToUnicode(bytes + 1, 3, nullptr, 0), 2u);
    EXPECT_EQ(UTF16ToUnicode(bytes + 1, 3, back, 2), 0u);  // writing reports 0, even on success
    EXPECT_EQ(back[1], static_cast<wchar_t>(0x1D11E));

    unsigned short const loneHigh[] = {0x41, 0xD834};
    unsigned short const loneLow[] = {0xDD1E, 0x41};
    EXPECT_EQ(ConvertUTF16toUTF32(loneHigh, loneHigh + 2, nullptr, nullptr), 0u);
    EXPECT_EQ(ConvertUTF16toUTF32(loneLow, loneLow + 2, nullptr, nullptr), 0u);
}

TEST(UtfConversionsTest, ScansForCharactersAboveAscii)
{
    // Around the edges of the eight-byte words, and never past the length.
    std::vector<unsigned char> const text(37, 'a');
    EXPECT_FALSE(DoesUTF8StrContainAnyCharsLargerThanOneByte(const_cast<unsigned char*>(text.data()), text.size()));
    for (size_t at : {0, 7, 8, 36}) {
        std::vector<unsigned char> marked = text;
        marked[at] = 0x80;
        EXPECT_TRUE(DoesUTF8StrContainAnyCharsLargerThanOneByte(marked.data(), marked.size())) << at;
        EXPECT_FALSE(DoesUTF8StrContainAnyCharsLargerThanOneByte(marked.data(), at)) << at;
    }
}

TEST(EncoderTest, Utf8LocaleKeepsTheBytesAndLendsScratchOnlyWhenItFits)
{
    LocaleScope scope("C.UTF-8");
    if (!scope.Available())
        GTEST_SKIP() << "no UTF-8 locale";
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_EQ(Bytes(CEncoder::LocalCodePageToUtf8Binary("\xE2\x82\xAC")), "\xE2\x82\xAC");
    EXPECT_EQ(Bytes(CEncoder::UnicodeToUtf8Binary(L"\u20AC!")), "\xE2\x82\xAC!");
    EXPECT_EQ(UnicodeToMultiByte(L"caf\u00E9"), "caf\xC3\xA9");
    // Wide units as they stand, four bytes each: the last is U+00E9.
    EXPECT_EQ(Bytes(CEncoder::LocalCodePageToUnicodeBinary("caf\xC3\xA9")).substr(12), std::string("\xE9\0\0\0", 4));

    wchar_t smallWide[4];
    char smallNarrow[4];
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("caf\xC3\xA9!", smallWide, 4, smallNarrow, 4), "caf\xC3\xA9!");
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(Utf8("ab\0cd"), 5), "ab");  // up to the first zero byte
    // Illegal or truncated UTF-8 cuts the text there, with no failure.
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("ok\xC3\xA9\xFFrest"), "ok\xC3\xA9");
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("ab\xE2\x82"), "ab");
}

TEST(EncoderTest, PosixLocaleTurnsNonAsciiIntoQuestionMarks)
{
    LocaleScope scope("C");
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("caf\xC3\xA9"), "caf?");
    EXPECT_EQ(UnicodeToMultiByte(L"\u20AC1"), "?1");
    EXPECT_EQ(Bytes(CEncoder::LocalCodePageToUtf8Binary("a\xE9z")), "a?z");
    EXPECT_EQ(CEncoder::LocalCodePageToUnicodeBinary("abc").GetLength(), 12u);
    // There is no UTF-16 decoding on this platform.
    unsigned char units[] = {'a', 0};
    EXPECT_THROW(CEncoder::Utf16ToLocalCodePage(units, 1), std::logic_error);
}

TEST(EncoderTest, AsciiOnlyKeepsEveryByte)
{
    LocaleScope scope("C");
    ASCIIOnly(true);
    char const raw[] = "x\xFF\xC3(y";
    std::string const results[] = {CEncoder::Utf8ToLocalCodePage(raw), CEncoder::Utf8ToLocalCodePage(Utf8("a\0b"), 3),
                                   Bytes(CEncoder::LocalCodePageToUtf8Binary(raw))};
    unsigned long const wideLength = CEncoder::LocalCodePageToUnicodeBinary(raw).GetLength();
    ASCIIOnly(false);
    EXPECT_EQ(results[0], raw);
    EXPECT_EQ(results[1], std::string("a\0b", 3));
    EXPECT_EQ(results[2], raw);
    EXPECT_EQ(wideLength, 5 * sizeof(wchar_t));  // the wide form does not look at the switch
}
