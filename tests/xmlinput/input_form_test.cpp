#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <kdbind/binding.h>

using namespace KdBind;

TEST(FileInputTest, FilesAreReadWholeAndFailuresNameThePath)
{
    char path[] = "/tmp/kdbind_input_XXXXXX";
    int const fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    FILE* file = fdopen(fd, "w");
    CXmlDocument document;

    EXPECT_THROW(
        {
            try {
                document.Load(path);
            } catch (CKdException const& e) {
                EXPECT_EQ(e.GetMessage(), std::string("Failed to read the contents of the file [") + path + "] Error [0]");
                throw;
            }
        },
        CKdException);

    fputs("<r><c>text</c></r>", file);
    fclose(file);
    document.Load(path);
    EXPECT_EQ(document.GetDocumentElement()->GetFirstElement()->GetText(), "text");
    remove(path);

    try {
        document.Load(path);
        FAIL() << "no failure";
    } catch (CKdException const& e) {
        EXPECT_EQ(e.GetMessage(), std::string("Failed to open the file [") + path + "]");
    }
}

TEST(FileInputTest, StreamsAreCopiedAndMustNotBeEmpty)
{
    unsigned char bytes[] = "<r>x</r>";
    CXmlDocument document;
    try {
        document.LoadXmlStream(bytes, 0);
        FAIL() << "no failure";
    } catch (CKdException const& e) {
        EXPECT_EQ(e.GetMessage(), "XML Stream is empty!");
    }
    document.LoadXmlStream(bytes, sizeof bytes - 1);
    bytes[3] = 'y';
    EXPECT_EQ(document.GetDocumentElement()->GetText(), "x");
}
