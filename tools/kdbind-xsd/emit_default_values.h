// Pieces of generated code for fixed values, which the library's metadata
// does not check.
#ifndef KDBIND_XSD_EMIT_DEFAULT_VALUES_H
#define KDBIND_XSD_EMIT_DEFAULT_VALUES_H

#include "schema_model.h"

namespace KdXsd {

// Whether a class of the namespace has an element or attribute with a fixed
// value, and so needs CheckFixed in its header.
bool UsesFixedValue(NamespaceModel const& ns);

// CheckFixed, declared in the namespace of a generated header.
char const* FixedValueCode();

} // namespace KdXsd

#endif
