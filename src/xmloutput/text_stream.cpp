#include "kdbind/xmloutput.h"

namespace KdBind {

CTextStream::CTextStream() : CTextStream("CTextStream", XmlEncoding_None) {}

CTextStream::CTextStream(XmlEncoding encoding) : CTextStream("CTextStream", encoding) {}

CTextStream::CTextStream(char const* monitorName, XmlEncoding encoding)
    : CInstanceMonitor(monitorName), m_encoding(encoding)
{
}

CTextStream::~CTextStream() = default;

void CTextStream::Open() { m_buffer.Empty(); }

void CTextStream::Close() {}

void CTextStream::Flush() {}

} // namespace KdBind
