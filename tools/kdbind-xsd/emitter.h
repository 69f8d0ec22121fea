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

// One file that includes the header (extension ".h") or the source (".cpp")
// of every namespace: a build that cannot know the file names before the
// compiler runs compiles and includes these.
std::string EmitUmbrella(SchemaSet const& set, std::string const& extension);

} // namespace KdXsd

#endif
