#include "purchase_order.h"

using namespace KdBindData;
using KdBind::CPrimitiveRestrictions;
using KdBind::CWhitespaceUtils;
using KdBind::CXmlObjectBase;
using KdBind::KdVariant;

namespace PurchaseOrderSchema {

CClassTables CPurchaseOrder::m_tables;

CPurchaseOrder::CPurchaseOrder()
{
    SetElementName("purchaseOrder");
    Init();
}

void CPurchaseOrder::Init()
{
    m_shipTo = new CUSAddress();
    m_shipTo->SetElementName("shipTo");
    m_billTo = nullptr;
    m_comment.reset();
    m_priority.reset();
    m_timestamp.reset();
    auto const collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
    m_tags = new KdBind::CstringCol("tag", NAMESPACE, 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1,
                                    CWhitespaceUtils::WhitespaceRule_Preserve, nullptr);
    m_parcelWeights = new KdBind::Ci4Col("parcelWeight", NAMESPACE, 0, -1, nullptr, -1, -1, "1", "30000", nullptr,
                                         nullptr, -1, collapse, nullptr);
    m_lineItems = new CLineItemCol();
    m_totals = new COrderTotals();
    m_orderDate.Clear();
    m_status = OrderStatus_open;
    m_extension = nullptr;
    m_extensionAttributes = new KdBind::CAttributeCol("", "##other", NAMESPACE);
}

void CPurchaseOrder::SetShipTo(CUSAddress* value)
{
    Throw_IfPropertyIsNull(value, "shipTo");
    value->SetElementName("shipTo");
    m_shipTo = value;
}

void CPurchaseOrder::SetBillTo(CUSAddress* value)
{
    if (value)
        value->SetElementName("billTo");
    m_billTo = value;
}

void CPurchaseOrder::AccessProperty(int propertyId, bool readAccess, KdVariant& value)
{
    switch (propertyId) {
    case Property_ShipTo:
        if (readAccess)
            value.SetXmlObject(m_shipTo);
        else
            SetShipTo(dynamic_cast<CUSAddress*>(value.GetXmlObject().get()));
        break;
    case Property_BillTo:
        if (!readAccess)
            SetBillTo(dynamic_cast<CUSAddress*>(value.GetXmlObject().get()));
        else if (m_billTo)
            value.SetXmlObject(m_billTo);
        break;
    case Property_Comment:
        if (!readAccess)
            m_comment = value.GetString();
        else if (m_comment)
            value.SetString(*m_comment);
        break;
    case Property_Priority:
        if (!readAccess)
            m_priority = static_cast<Priority>(value.GetI4());
        else if (m_priority)
            value.SetI4(*m_priority);
        break;
    case Property_Timestamp:
        if (!readAccess)
            m_timestamp = value.GetDateTime();
        else if (m_timestamp)
            value.SetDateTime(*m_timestamp);
        break;
    case Property_Tags:
        if (readAccess)
            value.SetXmlCollection(m_tags);
        break;
    case Property_ParcelWeights:
        if (readAccess)
            value.SetXmlCollection(m_parcelWeights);
        break;
    case Property_LineItems:
        if (readAccess)
            value.SetXmlCollection(m_lineItems);
        break;
    case Property_Totals:
        if (readAccess)
            value.SetXmlObject(m_totals);
        else
            m_totals = dynamic_cast<COrderTotals*>(value.GetXmlObject().get());
        break;
    case Property_OrderDate:
        if (readAccess)
            value.SetDate(m_orderDate);
        else
            m_orderDate = value.GetDate();
        break;
    case Property_Status:
        if (!readAccess)
            m_status = static_cast<OrderStatus>(value.GetI4());
        else if (m_status)
            value.SetI4(*m_status);
        break;
    case Property_Extension:
        if (!readAccess)
            m_extension = dynamic_cast<KdBind::CElement*>(value.GetXmlObject().get());
        else if (m_extension)
            value.SetXmlObject(m_extension);
        break;
    case Property_ExtensionAttributes:
        if (readAccess)
            value.SetXmlCollection(m_extensionAttributes);
        break;
    }
}

CParentElementInfo* CPurchaseOrder::GetClassInfo() const
{
    return m_tables.classInfo.Get([] {
        return new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element,
                                      "purchaseOrder", NAMESPACE, -1, true, false);
    });
}

CElementInfo** CPurchaseOrder::GetClassElementInfo() const
{
    return m_tables.elementInfo.Get([] {
        CPrimitiveRestrictions const none;
        return new CElementInfo*[11]{
            new CElementInfoSeqClsMnd("shipTo", NAMESPACE, Property_ShipTo, XmlElementType_Element, &CreateObject,
                                      ClassId_USAddress, false),
            new CElementInfoSeqClsOpt("billTo", NAMESPACE, Property_BillTo, XmlElementType_Element, &CreateObject,
                                      ClassId_USAddress),
            new CElementInfoSeqPrimOpt("comment", NAMESPACE, Property_Comment, KdBind::ItemType_string, nullptr,
                                       CWhitespaceUtils::WhitespaceRule_Preserve, none),
            new CElementInfoSeqEnumOpt("priority", NAMESPACE, Property_Priority, &PriorityToString,
                                       &PriorityFromString),
            new CElementInfoSeqPrimOpt("timestamp", NAMESPACE, Property_Timestamp, KdBind::ItemType_datetime,
                                       nullptr, CWhitespaceUtils::WhitespaceRule_Collapse, none),
            new CElementInfoSeqPrimCol("tag", NAMESPACE, Property_Tags),
            new CElementInfoSeqPrimCol("parcelWeight", NAMESPACE, Property_ParcelWeights),
            new CElementInfoSeqClsCol("lineItem", NAMESPACE, Property_LineItems, XmlElementType_Element),
            new CElementInfoSeqClsMnd("OrderTotals", NAMESPACE, Property_Totals, XmlElementType_PseudoChild,
                                      &CreateObject, ClassId_OrderTotals, true),
            new CElementInfoSeqUntpdOpt("AnyElement", "", Property_Extension, "##other", NAMESPACE),
            nullptr};
    });
}

CAttributeInfo** CPurchaseOrder::GetClassAttributeInfo() const
{
    return m_tables.attributeInfo.Get([] {
        return new CAttributeInfo*[4]{
            new CAttributeInfoPrimitive("orderDate", "", Property_OrderDate, false, KdBind::ItemType_date, nullptr,
                                        CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions(), nullptr),
            new CAttributeInfoEnum("status", "", Property_Status, true, &OrderStatusToString, &OrderStatusFromString,
                                   "open"),
            // A wildcard refuses by failing, so it stands last.
            new CAttributeInfoAny("", "", Property_ExtensionAttributes, true, "##other", NAMESPACE, nullptr),
            nullptr};
    });
}

} // namespace PurchaseOrderSchema
