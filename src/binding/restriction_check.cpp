// The facet test of primitive values.
#include "kdbind/binding.h"

namespace KdBind {

// Facets are not enforced yet: every value is accepted until the facet checks join the library.
void CXmlObjectHelper::CheckRestriction(char const*, KdVariant const&, ItemType, CPrimitiveRestrictions const&) {}

} // namespace KdBind
