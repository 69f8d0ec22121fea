#include "kdbind/xmlinput.h"

namespace KdBind {

void CNamespaceAliasMap::Add(char const* alias, char const* uri) { m_aliases[uri] = alias; }

void CNamespaceAliasMap::RemoveNamespace(char const* uri) { m_aliases.erase(uri); }

bool CNamespaceAliasMap::DoesNamespaceExist(char const* uri) const { return m_aliases.count(uri) != 0; }

bool CNamespaceAliasMap::DoesAliasExist(char const* alias) const
{
    for (auto const& entry : m_aliases)
        if (entry.second == alias)
            return true;
    return false;
}

std::string CNamespaceAliasMap::GetNamespaceFromAlias(char const* alias) const
{
    for (auto const& entry : m_aliases)
        if (entry.second == alias)
            return entry.first;
    throw CKdException(FormatString("Namespace alias [%s] not found", alias));
}

std::string CNamespaceAliasMap::GetAliasFromNamespace(char const* uri) const { return m_aliases[uri]; }

std::string CNamespaceAliasMap::GetNamespaceAt(int index) const
{
    auto entry = m_aliases.begin();
    for (int i = 0; i < index; ++i)
        ++entry;
    return entry->first;
}

} // namespace KdBind
