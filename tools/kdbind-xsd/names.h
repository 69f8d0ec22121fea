// C++ names made from schema names: deterministic, valid identifiers, and
// unique within the scope that hands them out.
#ifndef KDBIND_XSD_NAMES_H
#define KDBIND_XSD_NAMES_H

#include <set>
#include <string>

namespace KdXsd {

// "purchase-order" and "purchaseOrder" both give "PurchaseOrder": every run
// of characters that cannot stand in an identifier starts a new capital. A
// name that would start with a digit gets a leading underscore; an empty one
// becomes "_". C++ keywords get a trailing underscore.
std::string ToIdentifier(std::string const& schemaName);

// Hands out names unique in one scope: the second "Item" is "Item2", the
// third "Item3", in the order they are asked for.
class CNameScope {
public:
    void Reserve(std::string const& name) { m_used.insert(name); }
    std::string Unique(std::string const& wanted);

private:
    std::set<std::string> m_used;
};

// A C string literal of text, escaped.
std::string Quote(std::string const& text);

} // namespace KdXsd

#endif
