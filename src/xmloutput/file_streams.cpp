// Byte and text streams that end in a file.
#include <cstdio>

#include "kdbind/xmloutput.h"

namespace KdBind {

namespace {

CKdException WriteFailure(std::string const& path)
{
    return CKdException(FormatString("Failed to write data to the file [%s]", path.c_str()));
}

bool IsUtf16(XmlEncoding encoding)
{
    return encoding == XmlEncoding_UTF16 || encoding == XmlEncoding_UTF16_NoDecl;
}

// Creates (or truncates) the file and writes the byte order mark the
// encoding asks for. Throws, with no file left open, when either fails.
FILE* CreateFile(std::string const& path, XmlEncoding encoding)
{
    FILE* file = fopen(path.c_str(), "wt");
    if (!file)
        throw WriteFailure(path);
    static unsigned char const kByteOrderMark[2] = {0xFF, 0xFE};
    if (IsUtf16(encoding) && fwrite(kByteOrderMark, 1, sizeof kByteOrderMark, file) != sizeof kByteOrderMark) {
        fclose(file);
        throw WriteFailure(path);
    }
    return file;
}

} // namespace

CFileBinaryStream::CFileBinaryStream(char const* path, XmlEncoding encoding)
    : CBinaryStream("CFileBinaryStream"), m_path(path ? path : ""), m_encoding(encoding)
{
}

CFileBinaryStream::CFileBinaryStream(char const* path, XmlEncoding encoding, CBinaryData& data)
    : CBinaryStream("CFileBinaryStream", data), m_path(path ? path : ""), m_encoding(encoding)
{
}

void CFileBinaryStream::ToFile()
{
    FILE* file = CreateFile(m_path, m_encoding);
    CBinaryData const data = GetBinaryStream();
    unsigned long const length = data.GetLength();
    // Nothing written is a failure, so an empty block fails too (the file
    // stays behind, empty). A short write, or a close that cannot flush what
    // was buffered, loses data just the same and is reported with it.
    size_t const written = length ? fwrite(data.GetData(), 1, length, file) : 0;
    bool const closed = fclose(file) == 0;
    if (written == 0 || written != length || !closed)
        throw WriteFailure(m_path);
}

CFileTextStream::CFileTextStream(char const* path, XmlEncoding encoding)
    : CTextStream("CFileTextStream", encoding), m_path(path ? path : "")
{
}

CFileTextStream::~CFileTextStream()
{
    if (m_file)
        fclose(m_file);
}

void CFileTextStream::Open()
{
    CTextStream::Open();
    if (m_file) {  // opened twice: start the file again
        fclose(m_file);
        m_file = nullptr;
    }
    m_file = CreateFile(m_path, m_encoding);
}

// Writes the byte buffer, which nothing fills from the text: with text
// pending, the write of nothing is taken as the failure it reports.
void CFileTextStream::Flush()
{
    if (GetLength() == 0)
        return;
    unsigned long const length = m_data.GetLength();
    size_t const written = m_file && length ? fwrite(m_data.GetData(), 1, length, m_file) : 0;
    if (written == 0) {
        if (m_file)
            fclose(m_file);
        m_file = nullptr;
        throw CKdException("Failed to write data to the file");
    }
    m_data.Clear();
    m_buffer.Empty();
}

void CFileTextStream::Close()
{
    Flush();
    if (m_file)
        fclose(m_file);
    m_file = nullptr;
    CTextStream::Close();
}

} // namespace KdBind
