#include "purchase_order.h"

using namespace KdBindData;
using KdBind::CPrimitiveRestrictions;
using KdBind::CWhitespaceUtils;
using KdBind::CXmlElement;
using KdBind::CXmlObjectBase;
using KdBind::CXmlSerializationContext;
using KdBind::CXmlWriter;
using KdBind::KdVariant;

namespace PurchaseOrderSchema {

// ---------------------------------------------------------------------------
// CLineItem
// ---------------------------------------------------------------------------

CClassTables CLineItem::m_tables;

CLineItem::CLineItem()
{
    SetElementName("lineItem");
    Init();
}

void CLineItem::Init()
{
    m_partNum.clear();
    m_productName.clear();
    m_quantity = 0;
    m_usPrice = 0;
    m_details = nullptr;
    m_comment.reset();
}

void CLineItem::SetDetails(CProductDetails* value)
{
    if (value)
        value->SetElementName("details");
    m_details = value;
}

void CLineItem::AccessProperty(int propertyId, bool readAccess, KdVariant& value)
{
    switch (propertyId) {
    case Property_PartNum:
        if (readAccess)
            value.SetString(m_partNum);
        else
            m_partNum = value.GetString();
        break;
    case Property_ProductName:
        if (readAccess)
            value.SetString(m_productName);
        else
            m_productName = value.GetString();
        break;
    case Property_Quantity:
        if (readAccess)
            value.SetUI2(m_quantity);
        else
            m_quantity = value.GetUI2();
        break;
    case Property_USPrice:
        if (readAccess)
            value.SetDecimal(m_usPrice);
        else
            m_usPrice = value.GetDecimal();
        break;
    case Property_Details:
        if (!readAccess)
            m_details = dynamic_cast<CProductDetails*>(value.GetXmlObject().get());
        else if (m_details)
            value.SetXmlObject(m_details);
        break;
    case Property_Comment:
        if (!readAccess)
            m_comment = value.GetString();
        else if (m_comment)
            value.SetString(*m_comment);
        break;
    }
}

CParentElementInfo* CLineItem::GetClassInfo() const
{
    return m_tables.classInfo.Get([] {
        return new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "LineItem",
                                      NAMESPACE, -1, true, false);
    });
}

CElementInfo** CLineItem::GetClassElementInfo() const
{
    return m_tables.elementInfo.Get([] {
        CPrimitiveRestrictions const none;
        CPrimitiveRestrictions const belowHundred("", -1, -1, "", "", "", "100", -1);
        auto const collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
        auto const preserve = CWhitespaceUtils::WhitespaceRule_Preserve;
        return new CElementInfo*[6]{
            new CElementInfoSeqPrimMnd("productName", NAMESPACE, Property_ProductName, KdBind::ItemType_string, nullptr,
                                       preserve, none),
            new CElementInfoSeqPrimMnd("quantity", NAMESPACE, Property_Quantity, KdBind::ItemType_ui2, nullptr,
                                       collapse, belowHundred),
            new CElementInfoSeqPrimMnd("USPrice", NAMESPACE, Property_USPrice, KdBind::ItemType_decimal, nullptr,
                                       collapse, none),
            new CElementInfoSeqAbsClsOpt("details", NAMESPACE, Property_Details, XmlElementType_Element,
                                         &CProductDetailsFactory::CreateObject),
            new CElementInfoSeqPrimOpt("comment", NAMESPACE, Property_Comment, KdBind::ItemType_string, nullptr,
                                       preserve, none),
            nullptr};
    });
}

CAttributeInfo** CLineItem::GetClassAttributeInfo() const
{
    return m_tables.attributeInfo.Get([] {
        return new CAttributeInfo*[2]{
            new CAttributeInfoPrimitive("partNum", "", Property_PartNum, false, KdBind::ItemType_string, nullptr,
                                        CWhitespaceUtils::WhitespaceRule_Collapse,
                                        CPrimitiveRestrictions("\\d{3}-[A-Z]{2}", -1, -1, "", "", "", "", -1), nullptr),
            nullptr};
    });
}

// ---------------------------------------------------------------------------
// CLineItemCol
// ---------------------------------------------------------------------------

CLineItemCol::CLineItemCol() : CXmlCollection("lineItem", NAMESPACE, 1, -1) {}

CLineItem* CLineItemCol::GetAt(int index) const { return static_cast<CLineItem*>(GetNodeAtIndex(index)->item); }

void CLineItemCol::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& context,
                             bool) const
{
    for (CNode* node = GetHeadNode(); node; node = node->next)
        CXmlObjectBase::ToXml_Int(node->item, writer, false, ns, context, false);
}

CXmlElement* CLineItemCol::FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& context,
                                       bool)
{
    std::string const& name = GetElementName();
    std::string const ns = GetNamespace();
    while (cursor && DoesElementNameMatch(context, cursor, name.c_str(), ns.c_str())) {
        CSmartPtr<CLineItem> item = new CLineItem();
        CXmlObjectBase::FromXml_Int(item, cursor, cursor->GetFirstElement(), context);
        AppendItem(item);
        cursor = cursor->GetNextSiblingElement();
    }
    return cursor;
}

} // namespace PurchaseOrderSchema
