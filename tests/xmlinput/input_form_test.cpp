// Loading files and byte blocks whose form (compressed or not) is not told.
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include <kdbind/binding.h>

#include "runtime/test_support.h"
#include "xmlinput/tree_dump.h"

using namespace KdBind;
using KdBindTest::DumpTree;
using KdBindTest::FailureOf;

namespace {

char const kDocument[] =
    "<?xml version='1.0'?>\r\n<p:order xmlns:p='urn:o' id='7'>\r\n <p:line n='1'>first\r\nline</p:line>"
    "<p:line n='2'>second</p:line><note xmlns='urn:n'>x &amp; y</note></p:order>";

std::string Compressed(std::string const& text, CompressionType type)
{
    // Long enough to shrink: a comment of repeated words behind the document.
    std::string padded = text + "<!--";
    for (int i = 0; i < 20; ++i)
        padded += " padding padding padding";
    padded += "-->";
    CBinaryData data(padded.c_str());
    CKdZip::CompressData(data, type);
    return KdBindTest::Bytes(data);
}

struct TempFile {
    std::string path = ::testing::TempDir() + "kdbind_input_form_" +
                       ::testing::UnitTest::GetInstance()->current_test_info()->name();
    ~TempFile() { remove(path.c_str()); }
    void Write(std::string const& bytes) const
    {
        FILE* file = fopen(path.c_str(), "wb");
        ASSERT_NE(file, nullptr);
        fwrite(bytes.data(), 1, bytes.size(), file);
        fclose(file);
    }
};

std::string TreeFromStream(std::string const& bytes)
{
    CXmlDocument document;
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), bytes.size());
    return DumpTree(document.GetDocumentElement());
}

} // namespace

TEST(InputFormRecognitionTest, PlainGzipAndZlibFormsGiveTheSameTreeFromBlocksAndFiles)
{
    CXmlDocument reference;
    reference.LoadXml(kDocument);
    std::string const expected = DumpTree(reference.GetDocumentElement());
    ASSERT_NE(expected.find("first\nline"), std::string::npos);

    TempFile file;
    for (std::string const& bytes : {std::string(kDocument), Compressed(kDocument, CompressionType_GZip),
                                     Compressed(kDocument, CompressionType_ZLib)}) {
        EXPECT_EQ(TreeFromStream(bytes), expected);
        file.Write(bytes);
        CXmlDocument document;
        document.Load(file.path.c_str());
        EXPECT_EQ(DumpTree(document.GetDocumentElement()), expected);
        EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "urn:o");
    }
}

TEST(InputFormRecognitionTest, CorruptCompressedDataIsTakenForTextAndFailsThere)
{
    std::string bytes = Compressed(kDocument, CompressionType_GZip);
    bytes.resize(bytes.size() - 12);  // a gzip stream cut before its end
    std::string const message = FailureOf([&] { TreeFromStream(bytes); });
    EXPECT_NE(message, "<no failure>");
    EXPECT_EQ(message.find("compress"), std::string::npos) << message;

    // A complete stream of nothing expands to no input at all.
    std::string const emptyGzip("\x1F\x8B\x08\x00\x00\x00\x00\x00\x00\x03\x03\x00\x00\x00\x00\x00\x00\x00\x00\x00",
                                20);
    EXPECT_NE(FailureOf([&] { TreeFromStream(emptyGzip); }), "<no failure>");
}
