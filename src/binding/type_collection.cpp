// CXmlTypeCollection: the base of collections of primitive values.
#include "kdbind/binding.h"

namespace KdBind {

namespace {
std::string TextOrEmpty(char const* text) { return text ? text : ""; }
} // namespace

CXmlTypeCollection::CXmlTypeCollection(ItemType itemType, char const* elementName, char const* ns, int minOccurs,
                                       int maxOccurs, char const* pattern, int minLength, int maxLength,
                                       char const* minInclusive, char const* maxInclusive, char const* minExclusive,
                                       char const* maxExclusive, int length,
                                       CWhitespaceUtils::WhitespaceRule whitespaceRule, char const* format)
    : CXmlCollectionBase(elementName, ns, minOccurs, maxOccurs),
      m_restrictions(TextOrEmpty(pattern), minLength, maxLength, TextOrEmpty(minInclusive),
                     TextOrEmpty(maxInclusive), TextOrEmpty(minExclusive), TextOrEmpty(maxExclusive), length),
      m_itemType(itemType), m_format(format), m_whitespaceRule(whitespaceRule)
{
}

// The parent and the optional flag have no use here: the collection simply
// takes what matches at the cursor.
CXmlElement* CXmlTypeCollection::FromXml_Int(CXmlElement*, CXmlElement* cursor,
                                             CXmlSerializationContext const& context, bool)
{
    std::string const name = GetElementName();
    std::string const ns = GetNamespace();
    while (cursor && CXmlObjectHelper::DoesElementNameMatch(context, cursor, name, ns)) {
        AddFromString(cursor->GetText());
        cursor = cursor->GetNextSiblingElement();
    }
    return cursor;
}

} // namespace KdBind
