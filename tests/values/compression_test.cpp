// Compression of blocks and the recognition of compressed input by trying.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include <kdbind/values.h>

#include "runtime/test_support.h"

using namespace KdBind;
using KdBindTest::FailureOf;

namespace {

std::string Repetitive(unsigned long size)
{
    std::string text;
    while (text.size() < size)
        text += "<item>the same words again and again</item>";
    text.resize(size);
    return text;
}

// A new[] block holding text, as the operations expect.
unsigned char* Block(std::string const& text)
{
    unsigned char* block = new unsigned char[text.size()];
    memcpy(block, text.data(), text.size());
    return block;
}

struct BlockOwner {
    unsigned char* data;
    unsigned long size;
    explicit BlockOwner(std::string const& text) : data(Block(text)), size(text.size()) {}
    ~BlockOwner() { delete[] data; }
    std::string Text() const { return std::string(reinterpret_cast<char const*>(data), size); }
};

// Restores the process-wide limit.
struct LimitScope {
    unsigned long previous = CKdZip::GetMaxExpandedSize();
    explicit LimitScope(unsigned long limit) { CKdZip::SetMaxExpandedSize(limit); }
    ~LimitScope() { CKdZip::SetMaxExpandedSize(previous); }
};

} // namespace

TEST(CompressionTest, GzipAndZlibBlocksShrinkAndExpandBack)
{
    std::string const text = Repetitive(200000);
    for (CompressionType type : {CompressionType_GZip, CompressionType_ZLib}) {
        BlockOwner block(text);
        CKdZip::Compress(&block.data, &block.size, type);
        ASSERT_LT(block.size, text.size() / 10);
        if (type == CompressionType_GZip) {
            EXPECT_EQ(block.data[0], 0x1F);
            EXPECT_EQ(block.data[1], 0x8B);
        } else {
            EXPECT_EQ(block.data[0], 0x78);
        }
        CKdZip::Decompress(&block.data, &block.size);
        EXPECT_EQ(block.Text(), text) << "type " << type;
    }
}

TEST(CompressionTest, CompressDataLeavesEmptyAndUncompressedBlocksAlone)
{
    CBinaryData empty;
    CKdZip::CompressData(empty, CompressionType_GZip);
    EXPECT_EQ(empty.GetLength(), 0u);

    CBinaryData plain("<a>plain</a>");
    CKdZip::CompressData(plain, CompressionType_None);
    EXPECT_EQ(KdBindTest::Bytes(plain), "<a>plain</a>");

    std::string const text = Repetitive(5000);
    CBinaryData data(text.c_str());
    CKdZip::CompressData(data, CompressionType_ZLib);
    unsigned long size = data.GetLength();
    ASSERT_LT(size, text.size());
    unsigned char* block = data.ReleaseData();
    CKdZip::Decompress(&block, &size);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(block), size), text);
    delete[] block;
}

TEST(CompressionTest, ABlockThatDoesNotShrinkIsRefusedAndLeftEmpty)
{
    CBinaryData data("<a/>");
    std::string const message = FailureOf([&] { CKdZip::CompressData(data, CompressionType_GZip); });
    EXPECT_EQ(message.rfind("Failed to compress data. [Error Code: ", 0), 0u) << message;
    EXPECT_EQ(data.GetLength(), 0u);

    BlockOwner block("<a/>");
    unsigned char* const before = block.data;
    EXPECT_THROW(CKdZip::Compress(&block.data, &block.size, CompressionType_ZLib), CKdException);
    EXPECT_EQ(block.data, before);
    EXPECT_EQ(block.Text(), "<a/>");
}

TEST(CompressionTest, WhatIsNotACompleteStreamPassesThroughUnchanged)
{
    std::string const text = Repetitive(100000);
    BlockOwner compressed(text);
    CKdZip::Compress(&compressed.data, &compressed.size, CompressionType_GZip);
    std::string const full = compressed.Text();

    std::string truncatedGzip = full.substr(0, full.size() / 2);
    std::string corrupt = full;
    corrupt[full.size() / 2] ^= 0x55;
    corrupt[full.size() / 2 + 1] ^= 0x55;
    std::string const fastInfoset("\xE0\x00\x00\x01\x00\x38", 6);
    for (std::string const& input : {std::string("<a>text</a>"), fastInfoset, truncatedGzip,
                                      std::string("\x1F\x8B", 2), corrupt}) {
        BlockOwner block(input);
        unsigned char* const before = block.data;
        CKdZip::Decompress(&block.data, &block.size);
        EXPECT_EQ(block.data, before);
        EXPECT_EQ(block.Text(), input);
    }
}

TEST(CompressionTest, AnExpansionPastTheLimitIsRefusedWithBoundedMemory)
{
    // 8 MB of zeros shrink to a few kilobytes: a small block that claims much.
    std::string const zeros(8u << 20, '\0');
    BlockOwner bomb(zeros);
    CKdZip::Compress(&bomb.data, &bomb.size, CompressionType_GZip);
    ASSERT_LT(bomb.size, 65536u);
    {
        LimitScope limit(1u << 20);
        unsigned char* const before = bomb.data;
        std::string const message = FailureOf([&] { CKdZip::Decompress(&bomb.data, &bomb.size); });
        EXPECT_NE(message.find("limit of 1048576 bytes"), std::string::npos) << message;
        EXPECT_EQ(bomb.data, before);
    }
    CKdZip::Decompress(&bomb.data, &bomb.size);  // under the default limit it expands
    EXPECT_EQ(bomb.size, zeros.size());
}
