#include <gtest/gtest.h>

#include <string>

#include <kdbind/xmloutput.h>

using namespace KdBind;

TEST(StringBufferTest, NeverWrittenBufferGivesEmptyText)
{
    CStringBuffer buffer;
    EXPECT_STREQ(buffer.GetText(), "");
    EXPECT_EQ(buffer.GetLength(), 0u);
    buffer.Append("");
    EXPECT_STREQ(buffer.GetText(), "");
}

TEST(StringBufferTest, TextSpanningBlocksIsJoinedOnceAndAppendingGoesOn)
{
    CStringBuffer buffer(8);  // 7 text bytes per block
    std::string expected;
    for (int i = 0; i < 20; ++i) {
        std::string piece = std::to_string(i) + ",";
        buffer.Append(piece);
        expected += piece;
    }
    buffer.Append('!');
    expected += '!';
    EXPECT_EQ(buffer.GetLength(), expected.size());
    EXPECT_EQ(std::string(buffer.GetText()), expected);
    EXPECT_EQ(std::string(buffer.GetText()), expected);  // already joined
    buffer.Append("tail");
    buffer.Append('.');
    EXPECT_EQ(std::string(buffer.GetText()), expected + "tail.");
}

TEST(StringBufferTest, ExactlyOneBlockOfText)
{
    CStringBuffer buffer;
    std::string const full(4095, 'x');
    buffer.Append(full);
    char* single = buffer.GetText();
    EXPECT_EQ(std::string(single), full);
    EXPECT_EQ(buffer.GetText(), single);  // one block: no join, same pointer
}

TEST(StringBufferTest, EmptyClearAndSetText)
{
    CStringBuffer buffer;
    buffer.Append("abc");
    buffer.Empty();
    EXPECT_EQ(buffer.GetLength(), 0u);
    EXPECT_STREQ(buffer.GetText(), "");
    buffer.Append("de");
    EXPECT_STREQ(buffer.GetText(), "de");
    buffer.SetText("xyz");
    EXPECT_STREQ(buffer.GetText(), "xyz");
    buffer.Clear();
    EXPECT_STREQ(buffer.GetText(), "");
    EXPECT_EQ(buffer.GetLength(), 0u);
}

TEST(StringBufferTest, StringAppendStopsAtTheFirstZeroByte)
{
    CStringBuffer buffer;
    buffer.Append(std::string("ab\0cd", 5));
    EXPECT_STREQ(buffer.GetText(), "ab");
}
