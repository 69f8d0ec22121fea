// CPrimitiveRestrictions: the facets of a primitive and the one-time slot
// for their parsed forms.
#include "kdbind/runtime.h"

namespace KdBind {

// Assigning changes the facets, so the parsed forms go. Like any write to the
// record, it must not race with checks on other threads.
CPrimitiveRestrictions& CPrimitiveRestrictions::operator=(CPrimitiveRestrictions const& other)
{
    if (this != &other) {
        pattern = other.pattern;
        minLength = other.minLength;
        maxLength = other.maxLength;
        minInclusive = other.minInclusive;
        maxInclusive = other.maxInclusive;
        minExclusive = other.minExclusive;
        maxExclusive = other.maxExclusive;
        length = other.length;
        delete m_parsed.exchange(nullptr, std::memory_order_acq_rel);
    }
    return *this;
}

CPrimitiveRestrictions::~CPrimitiveRestrictions() { delete m_parsed.load(std::memory_order_acquire); }

CParsedRestrictions const* CPrimitiveRestrictions::InstallParsed(CParsedRestrictions* parsed) const
{
    CParsedRestrictions* expected = nullptr;
    if (m_parsed.compare_exchange_strong(expected, parsed, std::memory_order_acq_rel, std::memory_order_acquire))
        return parsed;
    delete parsed;
    return expected;
}

} // namespace KdBind
