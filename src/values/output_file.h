// The file behind the file streams of both layers.
#ifndef KDBIND_SRC_VALUES_OUTPUT_FILE_H
#define KDBIND_SRC_VALUES_OUTPUT_FILE_H

#include <cstdio>
#include <string>

#include "kdbind/runtime.h"

namespace KdBind {

CKdException FileWriteFailure(std::string const& path);

// Creates (or truncates) the file and writes the byte order mark the
// encoding asks for. Throws, with no file left open, when either fails.
FILE* CreateOutputFile(std::string const& path, XmlEncoding encoding);

} // namespace KdBind

#endif
