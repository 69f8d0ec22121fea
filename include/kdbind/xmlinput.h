// KdBind XML input: the parsed element tree, the text reader, input form
// recognition, and the alias map of output prefixes.
#ifndef KDBIND_XMLINPUT_H
#define KDBIND_XMLINPUT_H

#include <map>
#include <string>

#include "kdbind/xmloutput.h"

namespace KdBind {

class CXmlSerializationContext;
class CXmlAttribute;

// ---------------------------------------------------------------------------
// The prefixes an application wants on its output, keyed by namespace URI.
// ---------------------------------------------------------------------------

class CNamespaceAliasMap {
public:
    CNamespaceAliasMap() = default;
    CNamespaceAliasMap(CNamespaceAliasMap const&) = default;
    CNamespaceAliasMap& operator=(CNamespaceAliasMap const&) = default;
    virtual ~CNamespaceAliasMap() = default;

    void Add(char const* alias, char const* uri);
    void RemoveNamespace(char const* uri);
    bool DoesNamespaceExist(char const* uri) const;
    bool DoesAliasExist(char const* alias) const;
    std::string GetNamespaceFromAlias(char const* alias) const;
    // Asking for an unknown URI inserts it with an empty alias, by design:
    // it then counts, and is listed by GetNamespaceAt.
    std::string GetAliasFromNamespace(char const* uri) const;
    int GetNamespaceCount() const { return static_cast<int>(m_aliases.size()); }
    std::string GetNamespaceAt(int index) const;

private:
    mutable std::map<std::string, std::string> m_aliases;  // URI -> alias
};

} // namespace KdBind

#endif
