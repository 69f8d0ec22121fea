#include "purchase_order.h"

using namespace KdBindData;

namespace PurchaseOrderSchema {

char const* const NAMESPACE = "urn:kdbind:example:po";

// ---------------------------------------------------------------------------
// CPurchaseOrder
// ---------------------------------------------------------------------------

CParentElementInfo* CPurchaseOrder::m_classInfo = nullptr;
CElementInfo** CPurchaseOrder::m_elementInfo = nullptr;
CAttributeInfo** CPurchaseOrder::m_attributeInfo = nullptr;

CPurchaseOrder::CPurchaseOrder()
{
    SetElementName("purchaseOrder");
    Init();
}

CPurchaseOrder::~CPurchaseOrder() = default;

void CPurchaseOrder::CleanMetaData()
{
    CXmlGeneratedClass::CleanMetaData(m_classInfo, m_elementInfo, m_attributeInfo);
}

void CPurchaseOrder::Init() {}

void CPurchaseOrder::AccessProperty(int, bool, KdBind::KdVariant&) {}

CParentElementInfo* CPurchaseOrder::GetClassInfo() const
{
    if (!m_classInfo)
        m_classInfo = new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "purchaseOrder",
                                             NAMESPACE, -1, true, false);
    return m_classInfo;
}

CElementInfo** CPurchaseOrder::GetClassElementInfo() const
{
    if (!m_elementInfo)
        m_elementInfo = new CElementInfo*[1]{nullptr};
    return m_elementInfo;
}

CAttributeInfo** CPurchaseOrder::GetClassAttributeInfo() const
{
    if (!m_attributeInfo)
        m_attributeInfo = new CAttributeInfo*[1]{nullptr};
    return m_attributeInfo;
}

} // namespace PurchaseOrderSchema
