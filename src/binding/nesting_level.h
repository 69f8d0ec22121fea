// How deep the walks of this thread stand, one object inside the other.
#ifndef KDBIND_SRC_BINDING_NESTING_LEVEL_H
#define KDBIND_SRC_BINDING_NESTING_LEVEL_H

#include "kdbind/binding.h"

namespace KdBind {

// One level of the input or output walk, held for as long as the level runs.
// Entering a level beyond the context's MaxDepth throws, so that neither a
// deep document nor a deep or cyclic object tree can exhaust the stack.
class CNestingLevel {
public:
    enum Direction { Reading, Writing };
    CNestingLevel(CXmlSerializationContext const& context, Direction direction);
    CNestingLevel(CNestingLevel const&) = delete;
    CNestingLevel& operator=(CNestingLevel const&) = delete;
    ~CNestingLevel();
};

} // namespace KdBind

#endif
