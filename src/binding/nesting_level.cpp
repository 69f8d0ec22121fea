#include <cassert>

#include "binding/nesting_level.h"

namespace KdBind {

namespace {
// Levels entered and not yet left on this thread.
thread_local int t_depth = 0;
}

CNestingLevel::CNestingLevel(CXmlSerializationContext const& context, Direction direction)
{
    int const limit = context.GetMaxDepth();
    if (limit > 0 && t_depth >= limit) {
        if (direction == Reading)
            throw CKdValidationException(
                FormatString("The document nests deeper than the limit of %d levels (MaxDepth)", limit));
        throw CKdValidationException(
            FormatString("The object tree nests deeper than the limit of %d levels (MaxDepth)", limit));
    }
    ++t_depth;
}

CNestingLevel::~CNestingLevel()
{
    assert(t_depth > 0);
    --t_depth;
}

} // namespace KdBind
