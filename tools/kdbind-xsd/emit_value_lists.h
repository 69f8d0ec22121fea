// Pieces of generated code for value lists: repeating elements of a simple
// type, and xs:list values, both held in the library's C<kind>Col classes.
#ifndef KDBIND_XSD_EMIT_VALUE_LISTS_H
#define KDBIND_XSD_EMIT_VALUE_LISTS_H

#include <string>

#include "schema_model.h"

namespace KdXsd {

// Whether a class of the namespace holds an xs:list value, and so needs the
// list helpers in its header.
bool UsesListValue(NamespaceModel const& ns);

// ListFromString, ListToString and CheckListLength, declared in the
// namespace of a generated header.
char const* ListSupportCode();

// The value list class of the item type: "KdBind::Ci4Col".
std::string ValueListClass(SimpleType const& item);

// "new KdBind::Ci4Col(...)": a value list of the item type under the element
// or attribute name, with the item's facets and whitespace rule.
std::string NewValueList(SimpleType const& item, std::string const& name, std::string const& nsExpr, int minOccurs,
                         int maxOccurs);

// A generic lambda that turns one item of the value list into its text.
std::string ItemToStringLambda(SimpleType const& item);

} // namespace KdXsd

#endif
