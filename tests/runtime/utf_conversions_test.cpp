#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include <kdbind/runtime.h>

namespace {

// "a", e-acute, euro sign, G clef: one to four bytes in UTF-8.
wchar_t const kMixed[] = {L'a', 0xE9, 0x20AC, 0x1D11E, 0};
unsigned char const kMixedUtf8[] = {'a', 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF0, 0x9D, 0x84, 0x9E};

std::vector<unsigned char> Utf8Of(std::vector<wchar_t> const& wide)
{
    unsigned long const size = UnicodeToUTF8(wide.data(), wide.size(), nullptr, 0);
    std::vector<unsigned char> out(size);
    out.resize(UnicodeToUTF8(wide.data(), wide.size(), out.data(), size));
    return out;
}

std::vector<wchar_t> WideOf(std::vector<unsigned char> bytes, unsigned long capacity)
{
    std::vector<wchar_t> out(capacity);
    out.resize(UTF8ToUnicode(bytes.data(), bytes.size(), out.data(), capacity));
    return out;
}

} // namespace

TEST(UtfConversionsTest, WideAndUtf8RoundTrip)
{
    std::vector<wchar_t> const wide(kMixed, kMixed + 4);
    std::vector<unsigned char> const utf8 = Utf8Of(wide);
    EXPECT_EQ(utf8, std::vector<unsigned char>(kMixedUtf8, kMixedUtf8 + sizeof kMixedUtf8));

    std::vector<unsigned char> bytes(kMixedUtf8, kMixedUtf8 + sizeof kMixedUtf8);
    EXPECT_EQ(UTF8ToUnicode(bytes.data(), bytes.size(), nullptr, 0), 4u);
    EXPECT_EQ(WideOf(bytes, 4), wide);

    unsigned int const utf32[] = {0x41, 0x10FFFF};
    unsigned char target[8];
    EXPECT_EQ(ConvertUTF32toUTF8(utf32, utf32 + 2, target, target + 8), 5u);
    unsigned int back[2];
    EXPECT_EQ(ConvertUTF8toUTF32(target, target + 5, back, back + 2), 2u);
    EXPECT_EQ(back[1], 0x10FFFFu);
}

TEST(UtfConversionsTest, WritingStopsWhereTheNextCharacterDoesNotFit)
{
    unsigned char target[4];
    // "a" and e-acute fit in three bytes; the euro sign needs three more.
    EXPECT_EQ(UnicodeToUTF8(kMixed, 4, target, 4), 3u);
    std::vector<unsigned char> bytes(kMixedUtf8, kMixedUtf8 + sizeof kMixedUtf8);
    EXPECT_EQ(WideOf(bytes, 2).size(), 2u);

    unsigned short units[2];
    unsigned int const clef[] = {0x41, 0x1D11E};
    EXPECT_EQ(ConvertUTF32toUTF16(clef, clef + 2, units, units + 2), 1u);
}

TEST(UtfConversionsTest, SurrogatesAndOutOfRangeValues)
{
    // A surrogate in UTF-32 ends the work: 0 when counting, what stands when writing.
    unsigned int const withSurrogate[] = {0x41, 0x42, 0xD800, 0x43};
    unsigned char target[8];
    EXPECT_EQ(ConvertUTF32toUTF8(withSurrogate, withSurrogate + 4, nullptr, nullptr), 0u);
    EXPECT_EQ(ConvertUTF32toUTF8(withSurrogate, withSurrogate + 4, target, target + 8), 2u);
    EXPECT_EQ(ConvertUTF32toUTF8(withSurrogate + 2, withSurrogate + 4, target, target + 8), 0u);

    // Above the last code point: U+FFFD in UTF-8, the end of the work in UTF-16.
    unsigned int const tooLarge[] = {0x110000};
    EXPECT_EQ(ConvertUTF32toUTF8(tooLarge, tooLarge + 1, nullptr, nullptr), 3u);
    ASSERT_EQ(ConvertUTF32toUTF8(tooLarge, tooLarge + 1, target, target + 8), 3u);
    EXPECT_EQ(std::vector<unsigned char>(target, target + 3), (std::vector<unsigned char>{0xEF, 0xBF, 0xBD}));
    EXPECT_EQ(ConvertUTF32toUTF16(tooLarge, tooLarge + 1, nullptr, nullptr), 0u);
    EXPECT_EQ(ConvertUTF32toUTF16(withSurrogate, withSurrogate + 4, nullptr, nullptr), 0u);

    // An encoded surrogate (ED A0 80) is not legal UTF-8.
    unsigned char const encodedSurrogate[] = {0x41, 0xED, 0xA0, 0x80};
    unsigned int utf32[4];
    EXPECT_EQ(ConvertUTF8toUTF32(encodedSurrogate, encodedSurrogate + 4, nullptr, nullptr), 0u);
    EXPECT_EQ(ConvertUTF8toUTF32(encodedSurrogate, encodedSurrogate + 4, utf32, utf32 + 4), 1u);
}

TEST(UtfConversionsTest, TruncatedAndIllegalUtf8EndsTheText)
{
    unsigned int out[8];
    // The euro sign cut after two of its three bytes: nothing is read past the end.
    std::vector<unsigned char> truncated = {'a', 'b', 0xE2, 0x82};
    EXPECT_EQ(ConvertUTF8toUTF32(truncated.data(), truncated.data() + truncated.size(), nullptr, nullptr), 0u);
    EXPECT_EQ(ConvertUTF8toUTF32(truncated.data(), truncated.data() + truncated.size(), out, out + 8), 2u);

    for (std::vector<unsigned char> illegal : std::vector<std::vector<unsigned char>>{
             {'x', 0x80, 'y'},              // a lone continuation byte
             {'x', 0xC0, 0x80},             // overlong
             {'x', 0xF8, 0x88, 0x80, 0x80, 0x80},  // five-byte form
             {'x', 0xF4, 0x90, 0x80, 0x80},  // above the last code point
             {'x', 0xC3, 0x28}}) {           // a lead byte without its continuation
        EXPECT_EQ(ConvertUTF8toUTF32(illegal.data(), illegal.data() + illegal.size(), out, out + 8), 1u);
    }

    unsigned char const legal[] = {0xE2, 0x82, 0xAC};
    unsigned char const badContinuation[] = {0xE2, 0x28, 0xAC};
    EXPECT_TRUE(IsLegalUTF8(legal, 3));
    EXPECT_FALSE(IsLegalUTF8(badContinuation, 3));
    EXPECT_FALSE(IsLegalUTF8(legal, 5));
    EXPECT_TRUE(IsLegalUTF8Sequence(legal, legal + 3));
    EXPECT_FALSE(IsLegalUTF8Sequence(legal, legal + 2));
}

TEST(UtfConversionsTest, Utf16PairsAndLoneSurrogates)
{
    wchar_t const wide[] = {L'A', 0x1D11E};
    alignas(4) unsigned char bytes[9];
    EXPECT_EQ(UnicodeToUTF16(wide, 2, nullptr, 0), 3u);
    // An odd address: the units are stored byte-wise, in native order.
    ASSERT_EQ(UnicodeToUTF16(wide, 2, bytes + 1, 3), 3u);
    unsigned short units[3];
    memcpy(units, bytes + 1, sizeof units);
    EXPECT_EQ(units[0], 0x41);
    EXPECT_EQ(units[1], 0xD834);
    EXPECT_EQ(units[2], 0xDD1E);

    wchar_t back[2] = {};
    EXPECT_EQ(UTF16ToUnicode(bytes + 1, 3, nullptr, 0), 2u);
    // The writing form reports 0 even when it succeeds.
    EXPECT_EQ(UTF16ToUnicode(bytes + 1, 3, back, 2), 0u);
    EXPECT_EQ(back[1], static_cast<wchar_t>(0x1D11E));

    unsigned short const loneHigh[] = {0x41, 0xD834};
    unsigned short const loneLow[] = {0xDD1E, 0x41};
    EXPECT_EQ(ConvertUTF16toUTF32(loneHigh, loneHigh + 2, nullptr, nullptr), 0u);
    EXPECT_EQ(ConvertUTF16toUTF32(loneLow, loneLow + 2, nullptr, nullptr), 0u);

    unsigned char utf8[8];
    unsigned short const pair[] = {0xD834, 0xDD1E};
    ASSERT_EQ(ConvertUTF16toUTF8(pair, pair + 2, utf8, utf8 + 8), 4u);
    unsigned short again[2];
    EXPECT_EQ(ConvertUTF8toUTF16(utf8, utf8 + 4, again, again + 2), 2u);
    EXPECT_EQ(again[1], 0xDD1E);
}

TEST(UtfConversionsTest, WideCharacterScans)
{
    EXPECT_FALSE(DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(L"plain", 5));
    EXPECT_TRUE(DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(kMixed, 4));
    EXPECT_FALSE(DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(kMixed, 1));

    std::vector<unsigned char> text(37, 'a');
    EXPECT_FALSE(DoesUTF8StrContainAnyCharsLargerThanOneByte(text.data(), text.size()));
    for (size_t at : {size_t(0), size_t(7), size_t(8), size_t(36)}) {
        std::vector<unsigned char> marked = text;
        marked[at] = 0x80;
        EXPECT_TRUE(DoesUTF8StrContainAnyCharsLargerThanOneByte(marked.data(), marked.size())) << at;
        EXPECT_FALSE(DoesUTF8StrContainAnyCharsLargerThanOneByte(marked.data(), at));
    }
}
