// CBinaryData: sharing and copy-on-write, its bounds, and its hex and base64
// forms.
#include <random>
#include <thread>
#include <vector>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

CBinaryData FromBytes(std::string const& bytes)
{
    return CBinaryData(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), bytes.size(), false);
}

std::string RandomBytes(size_t length, unsigned seed)
{
    std::mt19937 generator(seed);
    std::string bytes(length, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(generator());
    return bytes;
}

CBinaryData FromBase64(std::string const& text)
{
    CBinaryData data;
    data.SetAsBase64(text.c_str());
    return data;
}

} // namespace

TEST(BinaryDataTest, CopiesShareUntilOneIsChanged)
{
    CBinaryData first("abc"), copy(first), appended;
    EXPECT_EQ(copy.GetData(), first.GetData());
    copy[0] = 'X';
    appended = first;
    appended.Append("def");
    CBinaryData& alias = first;
    first = alias;  // assigning a value to itself keeps it
    EXPECT_EQ(Bytes(first), "abc");
    EXPECT_EQ(Bytes(copy), "Xbc");
    EXPECT_EQ(Bytes(appended), "abcdef");

    // ReleaseData hands over a private buffer: a copy when shared, else its own.
    CBinaryData second(first);
    unsigned char* taken = second.ReleaseData();
    EXPECT_EQ(second.GetData(), nullptr);
    EXPECT_NE(taken, first.GetData());
    EXPECT_EQ(std::string(reinterpret_cast<char*>(taken), 3), "abc");
    delete[] taken;
    unsigned char const* own = first.GetData();
    taken = first.ReleaseData();
    EXPECT_EQ(taken, own);
    delete[] taken;
    EXPECT_EQ(first.ReleaseData(), nullptr);
}

TEST(BinaryDataTest, NoHolderDiffersFromAnEmptyOne)
{
    CBinaryData a, b;
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(a != FromBytes("") && FromBytes("") != a);
    EXPECT_TRUE(CBinaryData("ab") == CBinaryData("ab") && CBinaryData("ab") != CBinaryData("ac"));
    EXPECT_TRUE(CBinaryData("ab") != CBinaryData("abc"));
}

TEST(BinaryDataTest, IndexMayReachTheLengthButNotBeyond)
{
    CBinaryData data("xy");
    EXPECT_NO_THROW(data[2]);
    EXPECT_EQ(FailureOf([&] { data[3]; }), "Index Out of range [3]");
    EXPECT_EQ(FailureOf([] { CBinaryData const none; none[0]; }), "Index Out of range [0]");
    // An adopted buffer has no room behind its data; the index equal to the
    // length must still stay in memory (the sanitizer build watches this).
    CBinaryData const adopted(new unsigned char[2]{'p', 'q'}, 2, true);
    (void)adopted[2];
    EXPECT_EQ(adopted[1], 'q');
}

TEST(BinaryDataTest, AppendGrowsAndCopesWithItself)
{
    CBinaryData data;
    for (int i = 0; i < 20000; ++i)
        data.Append(static_cast<unsigned char>(i));
    ASSERT_EQ(data.GetLength(), 20000u);
    EXPECT_EQ(data[19999], static_cast<unsigned char>(19999));

    CBinaryData text("ab");
    text.Append(text);  // within capacity
    EXPECT_EQ(Bytes(text), "abab");
    CBinaryData adopted(new unsigned char[3]{'1', '2', '3'}, 3, true);
    adopted.Append(adopted);  // growth: the source is the old buffer
    EXPECT_EQ(Bytes(adopted), "123123");

    CBinaryData mixed;
    mixed.Append('a');
    mixed.Append(std::string("b\0c", 3));  // stops at the NUL
    mixed.Append(static_cast<char const*>(nullptr));
    EXPECT_EQ(Bytes(mixed), "ab");
}

TEST(BinaryDataTest, SharedHoldersSurviveCopiesOnManyThreads)
{
    CBinaryData original("payload");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&original] {
            for (int i = 0; i < 2000; ++i) {
                CBinaryData copy(original);
                if (i % 100 == 0)
                    copy.Append('!');
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(Bytes(original), "payload");
}

TEST(HexFormTest, ReadsEitherCaseWritesUpperCaseAndNamesTheBadCharacter)
{
    CBinaryData data;
    data.SetAsHexString("0aFF");
    EXPECT_EQ(Bytes(data), "\x0A\xFF");
    EXPECT_EQ(data.GetAsHexString(), "0AFF");
    data.SetAsHexString("");
    EXPECT_NE(data.GetData(), nullptr);  // a holder of length 0
    EXPECT_EQ(data.GetAsHexString(), "");
    std::string const all = RandomBytes(4096, 7);
    data.SetAsHexString(FromBytes(all).GetAsHexString().c_str());
    EXPECT_EQ(Bytes(data), all);

    auto hexFailure = [](char const* text) -> std::string {
        try {
            CBinaryData().SetAsHexString(text);
        } catch (CKdInvalidValueException const&) {
            return "<not the base type>";
        } catch (CKdException const& e) {
            return e.GetMessage();
        }
        return "<no failure>";
    };
    EXPECT_EQ(hexFailure("G0"), "Invalid char in hex string [G]");
    EXPECT_EQ(hexFailure("0g"), "Invalid char in hex string [g]");
    EXPECT_EQ(hexFailure("00 11"), "Invalid char in hex string [ ]");
    EXPECT_EQ(hexFailure("\xC3\xA9"), "Invalid char in hex string [\xC3]");
    // An odd length pairs the last digit with the terminating NUL.
    EXPECT_EQ(hexFailure("ABC"), "Invalid char in hex string [");
    EXPECT_THROW(data.SetAsHexString("1"), CKdException);
    EXPECT_EQ(data.GetData(), nullptr);  // cleared before the text was read
}

TEST(Base64FormTest, EncodesTheStandardFormWithTheOneByteQuirk)
{
    EXPECT_EQ(CBinaryData().GetAsBase64(), "");
    EXPECT_EQ(CBinaryData("AB").GetAsBase64(), "QUI=");
    EXPECT_EQ(CBinaryData("ABC").GetAsBase64(), "QUJD");
    EXPECT_EQ(CBinaryData("ABCD").GetAsBase64(), "QUJDRA==");
    EXPECT_EQ(FromBytes("\xFB\xFF\xBF").GetAsBase64(), "+/+/");
    EXPECT_EQ(CBinaryData("A").GetAsBase64(), std::string("QQ=\0", 4));  // a NUL in fourth place
    std::string const long_ = FromBytes(std::string(1000, 'x')).GetAsBase64();
    EXPECT_EQ(long_.size(), 1336u);
    EXPECT_EQ(long_.find('\n'), std::string::npos);  // no line breaks at any length
}

TEST(Base64FormTest, DecodingSkipsPaddingAndBlanksAndGivesNothingForABadCharacter)
{
    for (char const* text : {"QUJD", "QU JD\n", "Q=U\tJ\r\nD", "\xD1UJD"})  // only the low 7 bits count
        EXPECT_EQ(Bytes(FromBase64(text)), "ABC") << text;
    EXPECT_EQ(Bytes(FromBase64("QUI=")), "AB");
    EXPECT_EQ(Bytes(FromBase64("QUI")), "AB");  // leftover bits dropped
    EXPECT_EQ(FromBase64("Q").GetLength(), 0u);
    for (char const* bad : {"QU!D", "QUJDQUJD-"}) {
        CBinaryData const data = FromBase64(bad);
        EXPECT_NE(data.GetData(), nullptr);
        EXPECT_EQ(data.GetLength(), 0u);
    }
    unsigned char out[4];
    EXPECT_EQ(CBase64().Decode(nullptr, out), 0);
    EXPECT_EQ(CBase64().Decode("QUJD", nullptr), 0);
}

// The bulk loops take whole groups; the bit reader and writer take the rest.
TEST(Base64FormTest, RoundTripsEveryLengthAroundTheGroupSize)
{
    for (size_t length = 2; length < 200; ++length) {
        std::string const bytes = RandomBytes(length, static_cast<unsigned>(length));
        std::string const encoded = FromBytes(bytes).GetAsBase64();
        ASSERT_EQ(Bytes(FromBase64(encoded)), bytes) << length;
        std::string broken;  // lines of an odd width, so that groups straddle the breaks
        for (size_t at = 0; at < encoded.size(); at += 7)
            broken += encoded.substr(at, 7) + "\r\n";
        ASSERT_EQ(Bytes(FromBase64(broken)), bytes) << length << " with line breaks";
    }
    int got = -1, position = 0;
    EXPECT_EQ(CBase64().Read(9, &got, position), 0u);  // beyond the mask table
    EXPECT_EQ(got, 0);
}

TEST(BinaryDataTest, GrowthPastTheAddressableSizeFailsAsAnAllocation)
{
    CBinaryData data("abc");
    unsigned char byte = 'x';
    // The sizes wrap before any allocation is tried: the block stays intact.
    EXPECT_THROW(data.Append(&byte, ~0UL), std::bad_alloc);
    EXPECT_THROW(data.Append(&byte, ~0UL / 2), std::bad_alloc);
    EXPECT_EQ(Bytes(data), "abc");
}
