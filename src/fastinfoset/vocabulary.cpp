// CFIVocabulary: the indexed tables of a document, with the library's
// constants that both sides start from.
#include "kdbind/fastinfoset.h"

namespace KdBind {

char const RESTRICTED_ALPHABET_VALUES_NUMERIC[] = "0123456789-+.e ";
char const RESTRICTED_ALPHABET_VALUES_DATE_TIME[] = "0123456789-:TZ ";
char const FI_DEFAULT_PREFIX[] = "xml";
char const FI_DEFAULT_NAMESPACE[] = "http:////www.w3.org//XML//1998//namespace";
char const* const FI_DECLARATION_LIST[9] = {
    "<?xml encoding='finf'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>",
};
// Any absolute URL that names the application's vocabulary serves.
char const BRACKEN_URI[] = "urn:kdbind:fastinfoset:generated-vocabulary";
unsigned long const MASKS[8] = {0, 1, 3, 7, 15, 31, 63, 127};

CFIVocabulary::CFIVocabulary()
{
    m_restrictedAlphabets.emplace_back(RESTRICTED_ALPHABET_VALUES_NUMERIC);
    m_restrictedAlphabets.emplace_back(RESTRICTED_ALPHABET_VALUES_DATE_TIME);
    AddPrefixName(FI_DEFAULT_PREFIX);
    AddNamespaceName(FI_DEFAULT_NAMESPACE);
}

CFIVocabulary::~CFIVocabulary() = default;

void CFIVocabulary::MakeQNameKey(std::string const& prefix, std::string const& uri, std::string const& local,
                                 std::string& key)
{
    key.clear();
    key.reserve(local.size() + uri.size() + prefix.size() + 2);
    key.append(local).append(1, '\x01').append(uri).append(1, '\x01').append(prefix);
}

std::string CFIVocabulary::MakeQNameKey(std::string const& prefix, std::string const& uri, std::string const& local)
{
    std::string key;
    MakeQNameKey(prefix, uri, local, key);
    return key;
}

bool CFIVocabulary::FindIndex(IndexMap const& map, std::string const& value, unsigned long& index)
{
    auto const found = map.find(value);
    if (found == map.end())
        return false;
    index = found->second;
    return true;
}

bool CFIVocabulary::FindLocalNameIndex(std::string const& value, unsigned long& index) const
{
    return FindIndex(m_localNamesMap, value, index);
}

bool CFIVocabulary::FindNamespaceNameIndex(std::string const& value, unsigned long& index) const
{
    return FindIndex(m_namespaceNamesMap, value, index);
}

bool CFIVocabulary::FindPrefixNameIndex(std::string const& value, unsigned long& index) const
{
    return FindIndex(m_prefixNamesMap, value, index);
}

void CFIVocabulary::AddValueToMap(std::string const& value, IndexMap& map)
{
    if (map.size() > FI_TABLE_LIMIT - 1)
        return;
    map.emplace(value, static_cast<unsigned long>(map.size() + 1));
}

void CFIVocabulary::AddValueToVector(std::string const& value, std::vector<std::string>& vector)
{
    if (vector.size() < FI_TABLE_LIMIT)
        vector.push_back(value);
}

void CFIVocabulary::AddQNameToVector(unsigned long prefix, unsigned long uri, unsigned long local,
                                     std::vector<CQNameParts>& vector)
{
    if (vector.size() <= FI_TABLE_LIMIT - 1)
        vector.emplace_back(prefix, uri, local);
}

void CFIVocabulary::AddLocalName(std::string const& value)
{
    AddValueToMap(value, m_localNamesMap);
    AddValueToVector(value, m_localNamesTable.m_values);
}

void CFIVocabulary::AddNamespaceName(std::string const& value)
{
    AddValueToMap(value, m_namespaceNamesMap);
    AddValueToVector(value, m_namespaceNamesTable.m_values);
}

void CFIVocabulary::AddPrefixName(std::string const& value)
{
    AddValueToMap(value, m_prefixNamesMap);
    AddValueToVector(value, m_prefixNamesTable.m_values);
}

void CFIVocabulary::AddElementValue(std::string const& value)
{
    AddValueToMap(value, m_characterChunksMap);
    AddValueToVector(value, m_characterChunksTable.m_values);
}

void CFIVocabulary::AddAttributeValue(std::string const& value)
{
    AddValueToMap(value, m_attributeValuesMap);
    AddValueToVector(value, m_attributeValuesTable.m_values);
}

unsigned long CFIVocabulary::FindOrAdd(std::string const& value, IndexMap& map, CFIStringTable& table)
{
    unsigned long index = 0;
    if (FindIndex(map, value, index))
        return index;
    AddValueToMap(value, map);
    AddValueToVector(value, table.m_values);
    // The index of a new part is the size of its table, even at the limit,
    // where the map and the table have stopped growing.
    return static_cast<unsigned long>(table.m_values.size());
}

void CFIVocabulary::AddQName(std::string const& prefix, std::string const& uri, std::string const& local,
                             IndexMap& map, std::vector<CQNameParts>& vector)
{
    std::string const key = MakeQNameKey(prefix, uri, local);
    if (map.find(key) != map.end())
        return;
    unsigned long const prefixIndex = prefix.empty() ? 0 : FindOrAdd(prefix, m_prefixNamesMap, m_prefixNamesTable);
    unsigned long const uriIndex = uri.empty() ? 0 : FindOrAdd(uri, m_namespaceNamesMap, m_namespaceNamesTable);
    unsigned long const localIndex = FindOrAdd(local, m_localNamesMap, m_localNamesTable);
    AddValueToMap(key, map);
    AddQNameToVector(prefixIndex, uriIndex, localIndex, vector);
}

void CFIVocabulary::AddElement(std::string const& prefix, std::string const& uri, std::string const& local)
{
    AddQName(prefix, uri, local, m_elementNamesMap, m_elementNamesTable.m_names);
}

void CFIVocabulary::AddAttribute(std::string const& prefix, std::string const& uri, std::string const& local)
{
    AddQName(prefix, uri, local, m_attributeNamesMap, m_attributeNamesTable.m_names);
}

} // namespace KdBind
