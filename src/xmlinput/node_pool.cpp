#include "xmlinput/node_pool.h"

#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define KDBIND_NODE_POOL_POISON 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KDBIND_NODE_POOL_POISON 1
#endif
#endif

#ifdef KDBIND_NODE_POOL_POISON
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#endif

namespace KdBind {

// Under the address sanitizer, memory of the pool that holds no live node
// is poisoned, so that a node used after its deletion is still caught.

std::string const& NoNamespaceURI()
{
    static std::string const empty;
    return empty;
}

struct CNodePool::Block {
    Block* next;
    std::size_t size;
};

struct CNodePool::Slot {
    Slot* next;
};

namespace {

// The word in front of each node.
struct NodeHeader {
    CNodePool* pool;
};

constexpr std::size_t kGranule = CNodePool::kAlignment;
static_assert(sizeof(NodeHeader) % kGranule == 0, "the header keeps nodes aligned");
constexpr std::size_t kMaxBlockSize = 4 * 1024 * 1024;

std::size_t SlotSize(std::size_t size) { return sizeof(NodeHeader) + (size + kGranule - 1) / kGranule * kGranule; }

} // namespace

void* CNodePool::Allocate(CNodePool* pool, std::size_t size)
{
    std::size_t const slotSize = SlotSize(size);
    if (slotSize / kGranule >= kSizeClasses)
        pool = nullptr;
    void* const memory = pool ? pool->Take(slotSize) : ::operator new(slotSize);
    NodeHeader* const header = new (memory) NodeHeader{pool};
    return header + 1;
}

void CNodePool::Free(void* object, std::size_t size)
{
    if (!object)
        return;
    NodeHeader* const header = static_cast<NodeHeader*>(object) - 1;
    CNodePool* const pool = header->pool;
    if (pool)
        pool->Give(header, SlotSize(size));
    else
        ::operator delete(header);
}

void CNodePool::Release()
{
    m_released = true;
    if (m_live == 0)
        delete this;
}

CNodePool::~CNodePool()
{
    while (m_blocks) {
        Block* const block = m_blocks;
        ASAN_UNPOISON_MEMORY_REGION(block, block->size);
        m_blocks = block->next;
        ::operator delete(block);
    }
}

void* CNodePool::Take(std::size_t size)
{
    std::size_t const sizeClass = size / kGranule;
    if (Slot* const slot = m_free[sizeClass]) {
        ASAN_UNPOISON_MEMORY_REGION(slot, size);
        m_free[sizeClass] = slot->next;
        ++m_live;
        return slot;
    }
    if (static_cast<std::size_t>(m_end - m_cursor) < size) {
        // Blocks grow with the document, so that a large one needs few.
        std::size_t const blockSize = m_nextBlockSize;
        if (m_nextBlockSize < kMaxBlockSize)
            m_nextBlockSize *= 2;
        char* const memory = static_cast<char*>(::operator new(blockSize));
        m_blocks = new (memory) Block{m_blocks, blockSize};
        m_cursor = memory + (sizeof(Block) + kGranule - 1) / kGranule * kGranule;
        m_end = memory + blockSize;
        ASAN_POISON_MEMORY_REGION(m_cursor, static_cast<std::size_t>(m_end - m_cursor));
    }
    void* const slot = m_cursor;
    ASAN_UNPOISON_MEMORY_REGION(slot, size);
    m_cursor += size;
    ++m_live;
    return slot;
}

void CNodePool::Give(void* memory, std::size_t size)
{
    m_free[size / kGranule] = new (memory) Slot{m_free[size / kGranule]};
    ASAN_POISON_MEMORY_REGION(memory, size);
    if (--m_live == 0 && m_released)
        delete this;
}

} // namespace KdBind
