// The text stream that ends in a file.
#include <cstdio>

#include "kdbind/xmloutput.h"
#include "values/output_file.h"

namespace KdBind {

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
    m_file = CreateOutputFile(m_path, m_encoding);
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
