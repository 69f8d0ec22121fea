#include "emit_value_lists.h"

#include <sstream>

#include "names.h"

namespace KdXsd {

namespace {

// "i4" of "ItemType_i4": the value lists and the conversions are named by it.
std::string KindName(SimpleType const& item) { return item.itemType.substr(std::string("ItemType_").size()); }

std::string TextOrNull(std::string const& text) { return text.empty() ? "nullptr" : Quote(text); }

} // namespace

bool UsesListValue(NamespaceModel const& ns)
{
    for (auto const& type : ns.types) {
        for (Particle const& particle : type->particles)
            if (!particle.complex && !particle.untyped && particle.simple.list)
                return true;
        for (Attribute const& attribute : type->attributes)
            if (!attribute.wildcard && attribute.simple.list)
                return true;
    }
    return false;
}

char const* ListSupportCode()
{
    return R"(// An xs:list value crosses the engine as its text; the class holds its items
// in a value list, which converts each one and tests it against the item
// type's facets as it is added.
template <class Items>
void ListFromString(Items& items, std::string const& text)
{
    char const* const blanks = " \t\r\n";
    items.Clear();
    std::string::size_type start = text.find_first_not_of(blanks);
    while (start != std::string::npos) {
        std::string::size_type const end = text.find_first_of(blanks, start);
        items.AddFromString(text.substr(start, end == std::string::npos ? end : end - start));
        start = end == std::string::npos ? end : text.find_first_not_of(blanks, end);
    }
}

template <class Items, class Convert>
std::string ListToString(Items const& items, Convert convert)
{
    std::string text;
    for (int i = 0; i < items.GetCount(); ++i) {
        if (i)
            text += ' ';
        text += convert(items.Item(i));
    }
    return text;
}

// The length facets of a list type count its items; -1: no such facet.
inline void CheckListLength(KdBind::CXmlCollectionBase const& items, char const* name, int minLength, int maxLength,
                            int length)
{
    int const count = items.GetCount();
    if ((length >= 0 && count != length) || (minLength >= 0 && count < minLength) ||
        (maxLength >= 0 && count > maxLength))
        throw KdBind::CKdInvalidValueException(
            KdBind::FormatString("Invalid Value for %s [a list of %d items]", name, count));
}
)";
}

std::string ValueListClass(SimpleType const& item) { return "KdBind::C" + KindName(item) + "Col"; }

std::string NewValueList(SimpleType const& item, std::string const& name, std::string const& nsExpr, int minOccurs,
                         int maxOccurs)
{
    std::ostringstream out;
    out << "new " << ValueListClass(item) << "(" << Quote(name) << ", " << nsExpr << ", " << minOccurs << ", "
        << maxOccurs << ", " << TextOrNull(item.pattern) << ", " << item.minLength << ", " << item.maxLength << ", "
        << TextOrNull(item.minInclusive) << ", " << TextOrNull(item.maxInclusive) << ", "
        << TextOrNull(item.minExclusive) << ", " << TextOrNull(item.maxExclusive) << ", " << item.length
        << ", CWhitespaceUtils::" << item.whitespace << ", nullptr)";
    return out.str();
}

std::string ItemToStringLambda(SimpleType const& item)
{
    return "[](auto const& item) { return KdBind::CConversions::" + KindName(item) + "ToString(item); }";
}

} // namespace KdXsd
