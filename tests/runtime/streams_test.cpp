#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

#include <kdbind/xmloutput.h>

using namespace KdBind;

namespace {

// A private directory for the test's files, removed with them afterwards.
class StreamFilesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/kdbind-streams-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_directory = pattern;
    }

    void TearDown() override
    {
        for (char const* name : {"out.bin", "out.xml"})
            remove(Path(name).c_str());
        rmdir(m_directory.c_str());
    }

    std::string Path(std::string const& name) const { return m_directory + "/" + name; }

    static std::string Contents(std::string const& path)
    {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

    static bool Exists(std::string const& path) { return access(path.c_str(), F_OK) == 0; }

    static std::string FailureOf(void (*action)(std::string const&), std::string const& path)
    {
        try {
            action(path);
        } catch (CKdException const& e) {
            return e.GetMessage();
        }
        return "(no failure)";
    }

    std::string m_directory;
};

std::string Bytes(CBinaryData const& data)
{
    return data.GetData() ? std::string(reinterpret_cast<char const*>(data.GetData()), data.GetLength())
                          : std::string();
}

} // namespace

TEST(BinaryStreamTest, AppendsLeaveTheStartingBlockAlone)
{
    CBinaryData start("ab");
    CBinaryStream stream(start);
    stream.Append(static_cast<unsigned char>('c'));
    stream.Append(CBinaryData("de"));
    stream.Append(reinterpret_cast<unsigned char*>(const_cast<char*>("fgh")), 2);
    EXPECT_EQ(Bytes(stream.GetBinaryStream()), "abcdefg");
    EXPECT_EQ(Bytes(start), "ab");

    CBinaryStream empty;
    EXPECT_EQ(empty.GetBinaryStream().GetData(), nullptr);
}

TEST_F(StreamFilesTest, ToFileWritesAByteOrderMarkForUtf16Only)
{
    CBinaryData data("<a/>");
    std::string const path = Path("out.bin");

    CFileBinaryStream(path.c_str(), XmlEncoding_UTF8, data).ToFile();
    EXPECT_EQ(Contents(path), "<a/>");
    CFileBinaryStream(path.c_str(), XmlEncoding_UTF16, data).ToFile();
    EXPECT_EQ(Contents(path), "\xFF\xFE<a/>");
    CFileBinaryStream(path.c_str(), XmlEncoding_UTF16_NoDecl, data).ToFile();
    EXPECT_EQ(Contents(path), "\xFF\xFE<a/>");
    CFileBinaryStream stream(path.c_str(), XmlEncoding_None);
    stream.Append(CBinaryData("xy"));
    stream.ToFile();
    EXPECT_EQ(Contents(path), "xy");  // truncated, not appended
}

TEST_F(StreamFilesTest, ToFileFailuresNameThePath)
{
    std::string const path = Path("out.bin");
    // An empty block is a failed write, after the file was created.
    EXPECT_EQ(FailureOf([](std::string const& p) { CFileBinaryStream(p.c_str(), XmlEncoding_UTF8).ToFile(); }, path),
              "Failed to write data to the file [" + path + "]");
    EXPECT_TRUE(Exists(path));
    EXPECT_EQ(Contents(path), "");

    std::string const missing = Path("no/such/dir.bin");
    EXPECT_EQ(FailureOf(
                  [](std::string const& p) {
                      CBinaryData data("x");
                      CFileBinaryStream(p.c_str(), XmlEncoding_UTF8, data).ToFile();
                  },
                  missing),
              "Failed to write data to the file [" + missing + "]");
}

TEST_F(StreamFilesTest, FileTextStreamCreatesTheFileOnOpen)
{
    std::string const path = Path("out.xml");
    {
        CFileTextStream stream(path.c_str(), XmlEncoding_UTF16);
        EXPECT_FALSE(Exists(path));
        stream.Open();
        stream.Flush();  // nothing pending: nothing to do
        stream.Close();
        stream.Close();  // closing twice is harmless
    }
    EXPECT_EQ(Contents(path), "\xFF\xFE");

    {
        CFileTextStream stream(path.c_str(), XmlEncoding_UTF8);
        stream.Open();
    }  // the destructor closes the file
    EXPECT_EQ(Contents(path), "");

    std::string const missing = Path("no/such/dir.xml");
    EXPECT_EQ(FailureOf([](std::string const& p) { CFileTextStream(p.c_str(), XmlEncoding_UTF8).Open(); }, missing),
              "Failed to write data to the file [" + missing + "]");
}

TEST_F(StreamFilesTest, FlushWithPendingTextFailsAndClosesTheFile)
{
    // The byte buffer is never filled from the text, so pending text means a
    // write of nothing, which is reported as the failure.
    std::string const path = Path("out.xml");
    CFileTextStream stream(path.c_str(), XmlEncoding_UTF8);
    stream.Open();
    stream.Append("<a/>");
    try {
        stream.Flush();
        FAIL() << "no failure";
    } catch (CKdException const& e) {
        EXPECT_EQ(e.GetMessage(), "Failed to write data to the file");
    }
    EXPECT_THROW(stream.Close(), CKdException);  // the text is still pending
}

TEST(EncodedTextTest, EncodingDecidesTheBytes)
{
    std::string const previous = setlocale(LC_ALL, nullptr);
    setlocale(LC_ALL, "C.UTF-8");

    CTextStream utf8(XmlEncoding_UTF8);
    utf8.Append("<a>\xE2\x82\xAC</a>");
    EXPECT_EQ(Bytes(utf8.GetEncodedStream()), "<a>\xE2\x82\xAC</a>");

    CTextStream utf16(XmlEncoding_UTF16);
    utf16.Append("<a>\xE2\x82\xAC</a>");
    EXPECT_EQ(utf16.GetEncodedStream().GetLength(), 8 * sizeof(wchar_t));  // wide units, as they stand

    setlocale(LC_ALL, previous.c_str());

    CTextStream none;
    none.Append("x");
    try {
        none.GetEncodedStream();
        FAIL() << "no failure";
    } catch (CKdException const& e) {
        EXPECT_EQ(e.GetMessage().rfind("Unknown Encoding, select UTF-8 (contact ", 0), 0u);
        EXPECT_EQ(e.GetMessage().substr(e.GetMessage().size() - 13), " for support)");
    }
}
