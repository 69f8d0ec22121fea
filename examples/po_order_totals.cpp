#include "purchase_order.h"

using namespace KdBindData;
using KdBind::CPrimitiveRestrictions;
using KdBind::CWhitespaceUtils;
using KdBind::KdVariant;

namespace PurchaseOrderSchema {

CClassTables COrderTotals::m_tables;

COrderTotals::COrderTotals()
{
    SetElementName("OrderTotals");
    Init();
}

void COrderTotals::Init()
{
    m_subtotal = 0;
    m_shipping.reset();
    m_itemCount = 0;
}

void COrderTotals::AccessProperty(int propertyId, bool readAccess, KdVariant& value)
{
    switch (propertyId) {
    case Property_Subtotal:
        if (readAccess)
            value.SetDecimal(m_subtotal);
        else
            m_subtotal = value.GetDecimal();
        break;
    case Property_Shipping:
        if (!readAccess)
            m_shipping = value.GetDecimal();
        else if (m_shipping)
            value.SetDecimal(*m_shipping);
        break;
    case Property_ItemCount:
        if (readAccess)
            value.SetUI2(m_itemCount);
        else
            m_itemCount = value.GetUI2();
        break;
    }
}

CParentElementInfo* COrderTotals::GetClassInfo() const
{
    return m_tables.classInfo.Get([] {
        return new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_PseudoChild,
                                      "OrderTotals", NAMESPACE, -1, false, false);
    });
}

CElementInfo** COrderTotals::GetClassElementInfo() const
{
    return m_tables.elementInfo.Get([] {
        CPrimitiveRestrictions const none;
        auto const collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
        return new CElementInfo*[4]{
            new CElementInfoSeqPrimMnd("subtotal", NAMESPACE, Property_Subtotal, KdBind::ItemType_decimal, nullptr,
                                       collapse, none),
            new CElementInfoSeqPrimOpt("shipping", NAMESPACE, Property_Shipping, KdBind::ItemType_decimal, nullptr,
                                       collapse, none),
            new CElementInfoSeqPrimMnd("itemCount", NAMESPACE, Property_ItemCount, KdBind::ItemType_ui2, nullptr,
                                       collapse, none),
            nullptr};
    });
}

CAttributeInfo** COrderTotals::GetClassAttributeInfo() const
{
    return m_tables.attributeInfo.Get([] {
        return new CAttributeInfo*[1]{nullptr};
    });
}

} // namespace PurchaseOrderSchema
