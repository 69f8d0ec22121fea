// Loading from files and byte blocks, whose form is not known beforehand.
#include <cerrno>
#include <cstring>

#include "kdbind/binding.h"
#include "kdbind/xmlinput.h"

namespace KdBind {

namespace {
// Closes the file on every way out of Load.
struct FileCloser {
    FILE* file;
    ~FileCloser() { fclose(file); }
};
} // namespace

// The error number in the two file messages is errno, taken before the
// file is closed.
void CXmlDocument::Load(char const* path)
{
    Cleanup();
    if (!path)
        throw CKdInvalidParamException("No file to load");
    FILE* const file = fopen(path, "rt");
    if (!file)
        throw CKdException(FormatString("Failed to open the file [%s]", path));
    FileCloser closer{file};
    long const length = _filelength(file);
    if (length == -1)
        throw CKdException(FormatString("Failed to get the size of the file [%s] Error [%d]", path, errno));
    m_inputBuffer = new unsigned char[length > 0 ? length : 1];
    errno = 0;
    size_t const read = fread(m_inputBuffer, 1, static_cast<size_t>(length), file);
    if (read == 0 || read < static_cast<size_t>(length))
        throw CKdException(
            FormatString("Failed to read the contents of the file [%s] Error [%d]", path, ferror(file) ? errno : 0));
    m_inputLength = static_cast<unsigned long>(length);
    Parse();
}

void CXmlDocument::LoadXmlStream(unsigned char* data, unsigned long length)
{
    Cleanup();
    if (length == 0)
        throw CKdException("XML Stream is empty!");
    if (!data)
        throw CKdInvalidParamException("No data to load");
    m_inputBuffer = new unsigned char[length];
    memcpy(m_inputBuffer, data, length);
    m_inputLength = length;
    Parse();
}

void CXmlDocument::Parse()
{
    // Recognition of compressed and Fast Infoset input joins here, ahead of
    // the text parser, once their readers exist.
    ParseText();
}

} // namespace KdBind
