// The built-in simple types of XML Schema and the value kinds they map to.
#include <cassert>
#include <cstring>

#include "schema_model.h"

namespace KdXsd {

namespace {

char const* const kPreserve = "WhitespaceRule_Preserve";
char const* const kReplace = "WhitespaceRule_Replace";
char const* const kCollapse = "WhitespaceRule_Collapse";

// The built-in lists (NMTOKENS, IDREFS, ENTITIES) are lists of tokens, held
// like every xs:list in a value list of strings. The integer
// types with a sign constraint but no size are held as arbitrary integers;
// their sign is not checked.
BuiltinType const kBuiltins[] = {
    {"string", "ItemType_string", kPreserve},
    {"normalizedString", "ItemType_string", kReplace},
    {"token", "ItemType_string", kCollapse},
    {"language", "ItemType_string", kCollapse},
    {"Name", "ItemType_string", kCollapse},
    {"NCName", "ItemType_string", kCollapse},
    {"NMTOKEN", "ItemType_string", kCollapse},
    {"NMTOKENS", "ItemType_string", kCollapse, true},
    {"ID", "ItemType_string", kCollapse},
    {"IDREF", "ItemType_string", kCollapse},
    {"IDREFS", "ItemType_string", kCollapse, true},
    {"ENTITY", "ItemType_string", kCollapse},
    {"ENTITIES", "ItemType_string", kCollapse, true},
    {"anyURI", "ItemType_string", kCollapse},
    {"QName", "ItemType_string", kCollapse},
    {"NOTATION", "ItemType_string", kCollapse},
    {"anySimpleType", "ItemType_string", kPreserve},
    {"boolean", "ItemType_boolean", kCollapse},
    {"float", "ItemType_r4", kCollapse},
    {"double", "ItemType_r8", kCollapse},
    {"decimal", "ItemType_decimal", kCollapse},
    {"integer", "ItemType_integer", kCollapse},
    {"nonPositiveInteger", "ItemType_integer", kCollapse},
    {"negativeInteger", "ItemType_integer", kCollapse},
    {"nonNegativeInteger", "ItemType_integer", kCollapse},
    {"positiveInteger", "ItemType_integer", kCollapse},
    {"long", "ItemType_i8", kCollapse},
    {"int", "ItemType_i4", kCollapse},
    {"short", "ItemType_i2", kCollapse},
    {"byte", "ItemType_i1", kCollapse},
    {"unsignedLong", "ItemType_ui8", kCollapse},
    {"unsignedInt", "ItemType_ui4", kCollapse},
    {"unsignedShort", "ItemType_ui2", kCollapse},
    {"unsignedByte", "ItemType_ui1", kCollapse},
    {"duration", "ItemType_duration", kCollapse},
    {"dateTime", "ItemType_datetime", kCollapse},
    {"time", "ItemType_time", kCollapse},
    {"date", "ItemType_date", kCollapse},
    {"gYearMonth", "ItemType_yearMonth", kCollapse},
    {"gYear", "ItemType_year", kCollapse},
    {"gMonthDay", "ItemType_monthDay", kCollapse},
    {"gDay", "ItemType_day", kCollapse},
    {"gMonth", "ItemType_month", kCollapse},
    {"hexBinary", "ItemType_hexBinary", kCollapse},
    {"base64Binary", "ItemType_base64Binary", kCollapse},
};

ValueKind const kValueKinds[] = {
    {"ItemType_string", "std::string", "String", true, "std::string()"},
    {"ItemType_boolean", "bool", "Boolean", false, "false"},
    {"ItemType_r4", "float", "R4", false, "0"},
    {"ItemType_r8", "double", "R8", false, "0"},
    {"ItemType_decimal", "KdBind::CDecimal", "Decimal", true, "KdBind::CDecimal()"},
    {"ItemType_integer", "KdBind::CBigInteger", "Integer", true, "KdBind::CBigInteger()"},
    {"ItemType_i8", "long long", "I8", false, "0"},
    {"ItemType_i4", "long", "I4", false, "0"},
    {"ItemType_i2", "short", "I2", false, "0"},
    {"ItemType_i1", "char", "I1", false, "0"},
    {"ItemType_ui8", "unsigned long long", "UI8", false, "0"},
    {"ItemType_ui4", "unsigned long", "UI4", false, "0"},
    {"ItemType_ui2", "unsigned short", "UI2", false, "0"},
    {"ItemType_ui1", "unsigned char", "UI1", false, "0"},
    {"ItemType_duration", "KdBind::CDateTimeSpan", "Duration", true, "KdBind::CDateTimeSpan()"},
    {"ItemType_datetime", "KdBind::CDateTime", "DateTime", true, "KdBind::CDateTime()"},
    {"ItemType_time", "KdBind::CDateTime", "Time", true, "KdBind::CDateTime()"},
    {"ItemType_date", "KdBind::CDateTime", "Date", true, "KdBind::CDateTime()"},
    {"ItemType_yearMonth", "KdBind::CDateTime", "YearMonth", true, "KdBind::CDateTime()"},
    {"ItemType_year", "unsigned short", "Year", false, "0"},
    {"ItemType_monthDay", "KdBind::CDateTime", "MonthDay", true, "KdBind::CDateTime()"},
    {"ItemType_day", "unsigned char", "Day", false, "0"},
    {"ItemType_month", "unsigned char", "Month", false, "0"},
    {"ItemType_hexBinary", "KdBind::CBinaryData", "HexBinary", true, "KdBind::CBinaryData()"},
    {"ItemType_base64Binary", "KdBind::CBinaryData", "Base64Binary", true, "KdBind::CBinaryData()"},
};

} // namespace

BuiltinType const* FindBuiltinType(std::string const& localName)
{
    for (BuiltinType const& type : kBuiltins)
        if (localName == type.xsdName)
            return &type;
    return nullptr;
}

ValueKind const& GetValueKind(std::string const& itemType)
{
    for (ValueKind const& kind : kValueKinds)
        if (itemType == kind.itemType)
            return kind;
    // Every item type of the built-in table has a value kind.
    assert(!"item type without a value kind");
    return kValueKinds[0];
}

int ItemTypeValue(std::string const& itemType)
{
    for (int type = KdBind::ItemType_hexBinary; type <= KdBind::ItemType_integer; ++type)
        if (itemType == std::string("ItemType_") + KdBind::ItemTypeName(type))
            return type;
    assert(!"unknown item type");
    return KdBind::ItemType_invalid;
}

KdBind::CWhitespaceUtils::WhitespaceRule WhitespaceRuleValue(std::string const& rule)
{
    using KdBind::CWhitespaceUtils;
    if (rule == "WhitespaceRule_Preserve")
        return CWhitespaceUtils::WhitespaceRule_Preserve;
    if (rule == "WhitespaceRule_Replace")
        return CWhitespaceUtils::WhitespaceRule_Replace;
    if (rule == "WhitespaceRule_Collapse")
        return CWhitespaceUtils::WhitespaceRule_Collapse;
    return CWhitespaceUtils::WhitespaceRule_None;
}

} // namespace KdXsd
