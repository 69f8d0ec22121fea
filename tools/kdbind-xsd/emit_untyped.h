// Pieces of generated code for untyped content: wildcards and elements of
// any content.
#ifndef KDBIND_XSD_EMIT_UNTYPED_H
#define KDBIND_XSD_EMIT_UNTYPED_H

#include <string>

#include "schema_model.h"

namespace KdXsd {

// Whether a class of the namespace holds a repeating untyped element, and so
// needs the CAnyCol collection in its header.
bool UsesUntypedCollection(NamespaceModel const& ns);

// CAnyCol, declared in the namespace of a generated header.
char const* UntypedCollectionCode();

// The C++ expression of a wildcard's target namespace in the code of ns.
std::string WildcardTarget(NamespaceModel const& ns, Wildcard const& wildcard);

// A namespace that the wildcard allows, for the elements and attributes an
// application makes without naming one.
std::string WildcardNamespace(Wildcard const& wildcard);

// The wildcard in words, for the message of a missing element: the
// namespace it requires, or its keyword.
std::string WildcardDescription(Wildcard const& wildcard);

} // namespace KdXsd

#endif
