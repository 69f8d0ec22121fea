// Attributes of an enumeration type: the generated class maps between the
// text and the value; the property holds the value as i4.
#include "kdbind/metadata.h"

using namespace KdBind;

namespace KdBindData {

CAttributeInfoEnum::CAttributeInfoEnum(char const* name, char const* ns, int propertyId, bool optional,
                                       ToStringFunction toString, FromStringFunction fromString,
                                       char const* defaultValue)
    : CAttributeInfo(name, ns, propertyId, optional, defaultValue), m_fromString(fromString), m_toString(toString)
{
}

void CAttributeInfoEnum::AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                        CXmlWriter* writer) const
{
    KdVariant value;
    ReadProperty(object, value);
    if (m_optional && !value.IsValid())
        return;
    int const number = static_cast<int>(value.GetI4());
    char const* name = m_toString(number);
    // A generated function may answer null for a value outside the
    // enumeration; that must fail, not be read as text.
    if (!name)
        throw CKdInvalidValueException(FormatString("Invalid Value for %s [%d]", m_name.c_str(), number));
    std::string const text = name;
    if (IsOmittedDefault(context, text))
        return;
    writer->WriteAttributeString(m_name, m_namespace, text, ItemType_string);
}

bool CAttributeInfoEnum::AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                          CXmlAttribute* attribute)
{
    if (!IsThisAttribute(context, attribute))
        return false;
    KdVariant value;
    value.SetI4(m_fromString(attribute->GetValue().c_str()));
    AccessProperty(object, false, value);
    return true;
}

void CAttributeInfoEnum::Validate(CXmlSerializationContext const&, bool found) const
{
    ValidatePresence(found);
}

} // namespace KdBindData
