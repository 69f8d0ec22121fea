// The members of CXmlObjectBase that generated property setters rely on:
// guards for mandatory and named object properties, and the book-keeping
// that keeps one alternative of an xs:choice selected.
#include <cstring>

#include "kdbind/binding.h"

namespace KdBind {

namespace {

char const* TextOrEmpty(char const* text) { return text ? text : ""; }

// Two wordings are in use, with and without brackets around the name, and
// both stay as they stand.
char const* const AlreadySetBare =
    "The Property %s is already set. Only one element within this class bay be set at a time";
char const* const AlreadySetBracketed =
    "The Property [%s] is already set. Only one element within this class bay be set at a time";

[[noreturn]] void ThrowAlreadySet(char const* format, std::string const& selected)
{
    throw CKdInvalidStateException(FormatString(format, selected.c_str()));
}

} // namespace

void CXmlObjectBase::Throw_IfPropertyIsNull(CXmlObjectBase* value, char const* propertyName)
{
    if (!value)
        throw CKdInvalidParamException(
            FormatString("The Property [%s] is mandatory, it may node be NULL", TextOrEmpty(propertyName)));
}

void CXmlObjectBase::Throw_IfElementNameDiffers(CXmlObjectBase* value, char const* expectedName)
{
    if (!value)
        return;
    std::string const& actualName = value->GetBase()->GetElementName();
    if (std::strcmp(actualName.c_str(), TextOrEmpty(expectedName)) != 0)
        throw CKdInvalidParamException(FormatString(
            "This property requrires an element with the name %s the element being set has the element name %s",
            TextOrEmpty(expectedName), actualName.c_str()));
}

// With valid set this only confirms what is selected: an empty selector
// fails too.
void CXmlObjectBase::Choice_SetElementValid(bool valid, char const* propertyName, std::string& selected)
{
    if (!valid) {
        selected.clear();
        return;
    }
    if (selected != TextOrEmpty(propertyName))
        ThrowAlreadySet(AlreadySetBare, selected);
}

// Clearing an alternative that is not selected while none is selects it.
void CXmlObjectBase::Choice_SelectElement(char const* propertyName, CXmlObjectBase* value, std::string& selected)
{
    propertyName = TextOrEmpty(propertyName);
    if (selected == propertyName) {
        if (!value)
            selected.clear();
    } else if (selected.empty()) {
        selected = propertyName;
    } else if (value) {
        ThrowAlreadySet(AlreadySetBracketed, selected);
    }
}

void CXmlObjectBase::Choice_CollectionChanged(char const* propertyName, long count, std::string& selected)
{
    propertyName = TextOrEmpty(propertyName);
    if (selected == propertyName) {
        if (count == 0)
            selected.clear();
    } else if (selected.empty()) {
        if (count > 0)
            selected = propertyName;
    } else if (count != 0) {
        ThrowAlreadySet(AlreadySetBracketed, selected);
    }
}

void CXmlObjectBase::Choice_Read_Collection(CXmlCollectionBase* collection, CXmlElement* parent,
                                            CXmlElement*& cursor, long& count,
                                            CXmlSerializationContext const& context)
{
    if (count > 0)
        return;  // an earlier alternative took elements
    CXmlElement* const next = FromXml_Int(collection, parent, cursor, context);
    if (next == cursor)
        return;  // nothing was taken
    cursor = next;
    collection->ValidateCount(context);
    ++count;
}

} // namespace KdBind
