// Writes the classes of a schema model as C++ source, in the form the
// library's generated classes take: properties, accessors, AccessProperty
// and lazily built, thread-safe static metadata tables.
#ifndef KDBIND_XSD_EMITTER_H
#define KDBIND_XSD_EMITTER_H

#include <string>

#include "schema_model.h"

namespace KdXsd {

std::string EmitHeader(NamespaceModel const& ns);
std::string EmitSource(NamespaceModel const& ns);

// A program that reads a document of any global element of the set and
// writes it back to standard output.
std::string EmitRoundtripMain(SchemaSet const& set);

} // namespace KdXsd

#endif
