#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <kdbind/binding.h>

using namespace KdBind;

namespace {

std::string LoadFailure(CXmlDocument& document, char const* path)
{
    try {
        document.Load(path);
    } catch (CKdException const& e) {
        return e.GetMessage();
    }
    return "(no failure)";
}

} // namespace

TEST(InputFormTest, FilesAreReadWholeAndFailuresNameThePath)
{
    char path[] = "/tmp/kdbind_input_XXXXXX";
    int const fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    FILE* file = fdopen(fd, "w");
    CXmlDocument document;
    EXPECT_EQ(LoadFailure(document, path), std::string("Failed to read the contents of the file [") + path + "] Error [0]");

    fputs("<r><c>text</c></r>", file);
    fclose(file);
    document.Load(path);
    EXPECT_EQ(document.GetDocumentElement()->GetFirstElement()->GetText(), "text");

    remove(path);
    EXPECT_EQ(LoadFailure(document, path), std::string("Failed to open the file [") + path + "]");
}

TEST(InputFormTest, StreamsAreCopiedAndMustNotBeEmpty)
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
