// The in-memory byte sink.
#include "kdbind/values.h"

namespace KdBind {

CBinaryStream::CBinaryStream() : CBinaryStream("CBinaryStream") {}

CBinaryStream::CBinaryStream(CBinaryData& data) : CBinaryStream("CBinaryStream", data) {}

CBinaryStream::CBinaryStream(char const* monitorName) : CInstanceMonitor(monitorName) {}

CBinaryStream::CBinaryStream(char const* monitorName, CBinaryData& data) : CInstanceMonitor(monitorName)
{
    m_data = data;
}

CBinaryStream::~CBinaryStream() = default;

} // namespace KdBind
