#include <cassert>
#include <cstring>

#include "kdbind/xmloutput.h"
#include "runtime/checked_size.h"

namespace KdBind {

CStringBuffer::CStringBuffer() : CInstanceMonitor("CStringBuffer"), m_blockSize(4095) {}

CStringBuffer::CStringBuffer(unsigned long blockAllocation)
    : CInstanceMonitor("CStringBuffer"), m_blockSize(blockAllocation > 1 ? blockAllocation - 1 : 1)
{
}

CStringBuffer::~CStringBuffer() { Clear(); }

void CStringBuffer::Clear()
{
    for (char* block : m_blocks)
        delete[] block;
    m_blocks.clear();
    m_blockSizes.clear();
    m_used = 0;
    m_capacity = 0;
    m_current = nullptr;
    m_total = 0;
}

void CStringBuffer::Empty()
{
    if (m_blocks.size() != 1) {
        Clear();
        return;
    }
    memset(m_current, 0, m_capacity + 1);
    m_used = 0;
    m_total = 0;
}

void CStringBuffer::AddNewBlock()
{
    // Room in both lists first, so that once the block exists nothing can
    // fail and lose it.
    if (m_blocks.size() == m_blocks.capacity())
        m_blocks.reserve(CheckedSum(m_blocks.size(), m_blocks.size() + 4));
    if (m_blockSizes.size() == m_blockSizes.capacity())
        m_blockSizes.reserve(m_blocks.capacity());
    char* block = new char[CheckedSum(m_blockSize, 1UL)]();
    m_blocks.push_back(block);
    m_blockSizes.push_back(m_blockSize);
    m_current = block;
    m_used = 0;
    m_capacity = m_blockSize;
}

void CStringBuffer::AppendAcrossBlocks(char const* text, unsigned long length)
{
    m_total = CheckedSum(m_total, length);
    while (length > 0) {
        assert(m_used <= m_capacity);
        if (m_used == m_capacity) {
            AddNewBlock();
            continue;
        }
        unsigned long const room = m_capacity - m_used;
        unsigned long const count = length < room ? length : room;
        memcpy(m_current + m_used, text, count);
        m_used += count;
        text += count;
        length -= count;
    }
}

void CStringBuffer::SetText(char const* text)
{
    Clear();
    Append(text);
}

char* CStringBuffer::GetText()
{
    static char empty[1] = {0};
    if (m_blocks.empty())
        return empty;
    if (m_blocks.size() == 1)
        return m_blocks.front();
    unsigned long const total = m_total;
    char* joined = new char[CheckedSum(total, 1UL)];
    char* out = joined;
    for (size_t i = 0; i + 1 < m_blocks.size(); ++i) {
        memcpy(out, m_blocks[i], m_blockSizes[i]);
        out += m_blockSizes[i];
    }
    memcpy(out, m_current, m_used);
    joined[total] = '\0';
    Clear();
    // The joined text becomes the single, full block: the next append starts a new one.
    m_blocks.push_back(joined);
    m_blockSizes.push_back(total);
    m_current = joined;
    m_used = total;
    m_capacity = total;
    m_total = total;
    return joined;
}

std::string CStringBuffer::GetString() const
{
    std::string text;
    if (m_blocks.empty())
        return text;
    text.reserve(m_total);
    for (size_t i = 0; i + 1 < m_blocks.size(); ++i)
        text.append(m_blocks[i], m_blockSizes[i]);
    text.append(m_current, m_used);
    return text;
}

} // namespace KdBind
