// Memory for the elements and attributes of one document's tree.
#ifndef KDBIND_SRC_XMLINPUT_NODE_POOL_H
#define KDBIND_SRC_XMLINPUT_NODE_POOL_H

#include <cstddef>
#include <string>
#include <unordered_set>

namespace KdBind {

// The URI of the nodes in no namespace, shared by all of them.
std::string const& NoNamespaceURI();

// A document allocates hundreds of thousands of small nodes and frees them
// all at once; the general heap spends more time on that than the parser
// spends on the text. Nodes are carved here from large blocks instead, and a
// freed node's slot is kept on a list for its size, so that the streaming
// mode reuses slots rather than growing.
//
// Each node carries one word in front of it naming its pool, or null for a
// node built outside any document, which lives on the general heap. So any
// node can be freed without knowing where it came from, also one that a
// caller took out of the tree and keeps beyond the document: the pool lives
// on until its document has let go and its last node is freed.
//
// A pool belongs to one thread, like its document.
class CNodePool {
public:
    // Nodes are aligned to pointers, which is all that the tree's classes need.
    static constexpr std::size_t kAlignment = alignof(void*);

    CNodePool() = default;
    CNodePool(CNodePool const&) = delete;
    CNodePool& operator=(CNodePool const&) = delete;

    // Room for an object of this size, from the pool, or from the general
    // heap when pool is null or the object is too large for a slot.
    static void* Allocate(CNodePool* pool, std::size_t size);
    static void Free(void* object, std::size_t size);

    // The document lets go; the pool goes as soon as no node is left.
    void Release();

    // One copy of each namespace URI of the document's elements, kept as
    // long as the nodes that point at it.
    std::string const* Intern(std::string&& uri) { return &*m_uris.insert(std::move(uri)).first; }

private:
    struct Block;
    struct Slot;

    ~CNodePool();
    void* Take(std::size_t size);
    void Give(void* memory, std::size_t size);

    static constexpr std::size_t kSizeClasses = 64;  // slots of up to 504 bytes, in steps of 8
    Slot* m_free[kSizeClasses] = {};
    Block* m_blocks = nullptr;
    char* m_cursor = nullptr;
    char* m_end = nullptr;
    std::size_t m_nextBlockSize = 64 * 1024;
    unsigned long m_live = 0;
    bool m_released = false;
    std::unordered_set<std::string> m_uris;
};

} // namespace KdBind

#endif
