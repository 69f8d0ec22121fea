#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <kdbind/values.h>

using namespace KdBind;

namespace {

std::string Bytes(CBinaryData const& data)
{
    return data.GetData() ? std::string(reinterpret_cast<char const*>(data.GetData()), data.GetLength())
                          : std::string();
}

std::string MessageOf(void (*action)())
{
    try {
        action();
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "(no failure)";
}

} // namespace

TEST(BinaryDataTest, CopiesShareUntilOneIsWritten)
{
    CBinaryData first("abc");
    CBinaryData copy(first);
    EXPECT_EQ(copy.GetData(), first.GetData());

    copy[0] = 'X';
    EXPECT_EQ(Bytes(first), "abc");
    EXPECT_EQ(Bytes(copy), "Xbc");

    CBinaryData assigned;
    assigned = first;
    assigned.Append("def");
    EXPECT_EQ(Bytes(first), "abc");
    EXPECT_EQ(Bytes(assigned), "abcdef");

    // Assigning a value to itself keeps it.
    CBinaryData& alias = first;
    first = alias;
    EXPECT_EQ(Bytes(first), "abc");

    unsigned char source[] = {1, 2, 3};
    first.SetBuffer(source, 3);
    source[0] = 9;
    EXPECT_EQ(first[0], 1);
}

TEST(BinaryDataTest, EqualityTellsMissingFromEmpty)
{
    CBinaryData a, b;
    EXPECT_TRUE(a == b);
    CBinaryData empty(reinterpret_cast<unsigned char*>(const_cast<char*>("")), 0, false);
    EXPECT_TRUE(a != empty);
    EXPECT_TRUE(empty != a);
    EXPECT_TRUE(CBinaryData("ab") == CBinaryData("ab"));
    EXPECT_TRUE(CBinaryData("ab") != CBinaryData("ac"));
    EXPECT_TRUE(CBinaryData("ab") != CBinaryData("abc"));
}

TEST(BinaryDataTest, IndexMayReachTheLengthButNotBeyond)
{
    CBinaryData data("xy");
    EXPECT_NO_THROW(data[data.GetLength()]);
    EXPECT_EQ(MessageOf([] {
                  CBinaryData d("xy");
                  d[3];
              }),
              "Index Out of range [3]");
    EXPECT_EQ(MessageOf([] {
                  CBinaryData const none;
                  none[0];
              }),
              "Index Out of range [0]");

    // An adopted buffer has no room behind its data; the index equal to the
    // length must still stay in memory (the sanitizer build watches this).
    auto* exact = new unsigned char[2]{'p', 'q'};
    CBinaryData adopted(exact, 2, true);
    CBinaryData const& view = adopted;
    (void)view[2];
    EXPECT_EQ(view[1], 'q');
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
    auto* exact = new unsigned char[3]{'1', '2', '3'};
    CBinaryData adopted(exact, 3, true);
    adopted.Append(adopted);  // forces growth: the source is the old buffer
    EXPECT_EQ(Bytes(adopted), "123123");

    CBinaryData mixed;
    mixed.Append('a');
    mixed.Append(std::string("b\0c", 3));  // stops at the NUL
    mixed.Append(static_cast<unsigned char>('d'));
    mixed.Append(static_cast<char const*>(nullptr));
    EXPECT_EQ(Bytes(mixed), "abd");
}

TEST(BinaryDataTest, ReleaseDataHandsOverAPrivateBuffer)
{
    CBinaryData none;
    EXPECT_EQ(none.ReleaseData(), nullptr);

    CBinaryData first("shared");
    CBinaryData second(first);
    unsigned char* taken = second.ReleaseData();
    EXPECT_EQ(second.GetData(), nullptr);
    ASSERT_NE(taken, first.GetData());
    EXPECT_EQ(std::string(reinterpret_cast<char*>(taken), 6), "shared");
    EXPECT_EQ(Bytes(first), "shared");
    delete[] taken;

    CBinaryData alone("own");
    unsigned char const* before = alone.GetData();
    unsigned char* own = alone.ReleaseData();
    EXPECT_EQ(own, before);  // not shared: the buffer itself
    delete[] own;
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

TEST(BinaryDataTest, VariantOwnsACopyOfItsBinaryValue)
{
    CBinaryData data("abc");
    KdVariant variant;
    variant.SetHexBinary(data);
    data.Append('d');
    EXPECT_EQ(variant.GetType(), "hexBinary");
    EXPECT_EQ(Bytes(variant.GetHexBinary()), "abc");

    KdVariant copy(variant);
    variant.SetBase64Binary(CBinaryData("xyz"));
    EXPECT_EQ(variant.GetItemType(), ItemType_base64Binary);
    EXPECT_EQ(Bytes(variant.GetBase64Binary()), "xyz");
    EXPECT_EQ(Bytes(copy.GetHexBinary()), "abc");
}
