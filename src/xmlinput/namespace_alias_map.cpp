#include "kdbind/xmlinput.h"

namespace KdBind {

namespace {
// Names and URIs are keys of the map: a null one has no meaning.
char const* Required(char const* text)
{
    if (!text)
        throw CKdInvalidParamException("A namespace alias or URI is null");
    return text;
}
} // namespace

void CNamespaceAliasMap::Add(char const* alias, char const* uri) { m_aliases[Required(uri)] = Required(alias); }

void CNamespaceAliasMap::RemoveNamespace(char const* uri) { m_aliases.erase(Required(uri)); }

bool CNamespaceAliasMap::DoesNamespaceExist(char const* uri) const { return m_aliases.count(Required(uri)) != 0; }

bool CNamespaceAliasMap::DoesAliasExist(char const* alias) const
{
    Required(alias);
    for (auto const& entry : m_aliases)
        if (entry.second == alias)
            return true;
    return false;
}

std::string CNamespaceAliasMap::GetNamespaceFromAlias(char const* alias) const
{
    Required(alias);
    for (auto const& entry : m_aliases)
        if (entry.second == alias)
            return entry.first;
    throw CKdException(FormatString("Namespace alias [%s] not found", alias));
}

std::string CNamespaceAliasMap::GetAliasFromNamespace(char const* uri) const { return m_aliases[Required(uri)]; }

// A negative index reads the first entry; one at or past the count, or any
// index of an empty map, has none.
std::string CNamespaceAliasMap::GetNamespaceAt(int index) const
{
    if (m_aliases.empty() || index >= GetNamespaceCount())
        throw CKdInvalidParamException(
            FormatString("Namespace index [%d] out of range [0-%d]", index, GetNamespaceCount() - 1));
    auto entry = m_aliases.begin();
    for (int i = 0; i < index; ++i)
        ++entry;
    return entry->first;
}

} // namespace KdBind
