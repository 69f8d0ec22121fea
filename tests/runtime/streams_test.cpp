// The byte and text sinks, in memory and in files.
#include <cstdio>
#include <fstream>
#include <iterator>

#include <unistd.h>

#include <kdbind/xmloutput.h>

#include "runtime/test_support.h"

using namespace KdBind;
using namespace KdBindTest;

namespace {

// A private directory for the test's files, removed with them afterwards.
class StreamFilesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/kdbind-streams-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_directory = pattern;
        m_path = m_directory + "/out";
        m_missing = m_directory + "/no/such/file";
    }
    void TearDown() override
    {
        remove(m_path.c_str());
        rmdir(m_directory.c_str());
    }
    std::string Contents() const
    {
        std::ifstream file(m_path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

    std::string m_directory, m_path, m_missing;
};

} // namespace

TEST_F(StreamFilesTest, ToFileTruncatesAndMarksUtf16Only)
{
    CBinaryData data("<a/>");
    for (XmlEncoding encoding : {XmlEncoding_UTF16, XmlEncoding_UTF16_NoDecl}) {
        CFileBinaryStream(m_path.c_str(), encoding, data).ToFile();
        EXPECT_EQ(Contents(), "\xFF\xFE<a/>") << encoding;
    }
    CFileBinaryStream(m_path.c_str(), XmlEncoding_UTF8, data).ToFile();
    EXPECT_EQ(Contents(), "<a/>");

    // An empty block is a failed write, after the file was created.
    std::string const failure = "Failed to write data to the file [" + m_path + "]";
    EXPECT_EQ(FailureOf([&] { CFileBinaryStream(m_path.c_str(), XmlEncoding_UTF8).ToFile(); }), failure);
    EXPECT_EQ(access(m_path.c_str(), F_OK), 0);
    EXPECT_EQ(Contents(), "");
    EXPECT_EQ(FailureOf([&] { CFileBinaryStream(m_missing.c_str(), XmlEncoding_UTF8, data).ToFile(); }),
              "Failed to write data to the file [" + m_missing + "]");
}

TEST_F(StreamFilesTest, FileTextStreamCreatesOnOpenAndFailsToFlushPendingText)
{
    {
        CFileTextStream stream(m_path.c_str(), XmlEncoding_UTF16);
        EXPECT_NE(access(m_path.c_str(), F_OK), 0);
        stream.Open();
        stream.Close();
        stream.Close();  // closing twice is harmless
    }
    EXPECT_EQ(Contents(), "\xFF\xFE");
    EXPECT_EQ(FailureOf([&] { CFileTextStream(m_missing.c_str(), XmlEncoding_UTF8).Open(); }),
              "Failed to write data to the file [" + m_missing + "]");

    // Nothing fills the byte buffer from the text, so pending text means a
    // write of nothing, which is the failure it reports.
    CFileTextStream stream(m_path.c_str(), XmlEncoding_UTF8);
    stream.Open();
    EXPECT_EQ(Contents(), "");
    stream.Append("<a/>");
    EXPECT_EQ(FailureOf([&] { stream.Flush(); }), "Failed to write data to the file");
    EXPECT_THROW(stream.Close(), CKdException);
}

TEST(EncodedTextTest, EncodingDecidesTheBytes)
{
    {
        LocaleScope scope("C.UTF-8");
        CTextStream utf8(XmlEncoding_UTF8), utf16(XmlEncoding_UTF16);
        utf8.Append("<a>\xE2\x82\xAC</a>");
        utf16.Append("<a>\xE2\x82\xAC</a>");
        EXPECT_EQ(Bytes(utf8.GetEncodedStream()), "<a>\xE2\x82\xAC</a>");
        EXPECT_EQ(utf16.GetEncodedStream().GetLength(), 8 * sizeof(wchar_t));  // wide units, as they stand
    }
    CTextStream none;
    none.Append("x");
    std::string const message = FailureOf([&] { none.GetEncodedStream(); });
    EXPECT_EQ(message.rfind("Unknown Encoding, select UTF-8 (contact ", 0), 0u) << message;
    EXPECT_EQ(message.substr(message.size() - 13), " for support)");
}
