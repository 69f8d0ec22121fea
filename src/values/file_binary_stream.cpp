// The byte stream that ends in a file.
#include "kdbind/values.h"
#include "values/output_file.h"

namespace KdBind {

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
    FILE* file = CreateOutputFile(m_path, m_encoding);
    CBinaryData const data = GetBinaryStream();
    unsigned long const length = data.GetLength();
    // Nothing written is a failure, so an empty block fails too (the file
    // stays behind, empty). A short write, or a close that cannot flush what
    // was buffered, loses data just the same and is reported with it.
    size_t const written = length ? fwrite(data.GetData(), 1, length, file) : 0;
    bool const closed = fclose(file) == 0;
    if (written == 0 || written != length || !closed)
        throw FileWriteFailure(m_path);
}

} // namespace KdBind
