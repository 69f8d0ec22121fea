#include "purchase_order.h"

using namespace KdBindData;
using KdBind::CPrimitiveRestrictions;
using KdBind::CWhitespaceUtils;
using KdBind::KdVariant;

namespace PurchaseOrderSchema {

CClassTables CUSAddress::m_tables;

CUSAddress::CUSAddress()
{
    SetElementName("USAddress");
    Init();
}

void CUSAddress::Init()
{
    m_name.clear();
    m_street.clear();
    m_city.clear();
    m_state.clear();
    m_zip = 0;
    m_country = "US";
}

void CUSAddress::AccessProperty(int propertyId, bool readAccess, KdVariant& value)
{
    switch (propertyId) {
    case Property_Name:
        if (readAccess)
            value.SetString(m_name);
        else
            m_name = value.GetString();
        break;
    case Property_Street:
        if (readAccess)
            value.SetString(m_street);
        else
            m_street = value.GetString();
        break;
    case Property_City:
        if (readAccess)
            value.SetString(m_city);
        else
            m_city = value.GetString();
        break;
    case Property_State:
        if (readAccess)
            value.SetString(m_state);
        else
            m_state = value.GetString();
        break;
    case Property_Zip:
        if (readAccess)
            value.SetUI4(m_zip);
        else
            m_zip = value.GetUI4();
        break;
    case Property_Country:
        if (readAccess)
            value.SetString(m_country);
        else
            m_country = value.GetString();
        break;
    }
}

CParentElementInfo* CUSAddress::GetClassInfo() const
{
    return m_tables.classInfo.Get([] {
        return new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element,
                                      "USAddress", NAMESPACE, -1, true, false);
    });
}

CElementInfo** CUSAddress::GetClassElementInfo() const
{
    return m_tables.elementInfo.Get([] {
        CPrimitiveRestrictions const none;
        auto const collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
        auto const preserve = CWhitespaceUtils::WhitespaceRule_Preserve;
        return new CElementInfo*[6]{
            new CElementInfoSeqPrimMnd("name", NAMESPACE, Property_Name, KdBind::ItemType_string, nullptr, preserve, none),
            new CElementInfoSeqPrimMnd("street", NAMESPACE, Property_Street, KdBind::ItemType_string, nullptr, preserve,
                                       none),
            new CElementInfoSeqPrimMnd("city", NAMESPACE, Property_City, KdBind::ItemType_string, nullptr, preserve, none),
            new CElementInfoSeqPrimMnd("state", NAMESPACE, Property_State, KdBind::ItemType_string, nullptr, preserve,
                                       none),
            new CElementInfoSeqPrimMnd("zip", NAMESPACE, Property_Zip, KdBind::ItemType_ui4, nullptr, collapse, none),
            nullptr};
    });
}

CAttributeInfo** CUSAddress::GetClassAttributeInfo() const
{
    return m_tables.attributeInfo.Get([] {
        return new CAttributeInfo*[2]{
            new CAttributeInfoPrimitive("country", "", Property_Country, true, KdBind::ItemType_string, nullptr,
                                        CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions(), "US"),
            nullptr};
    });
}

} // namespace PurchaseOrderSchema
