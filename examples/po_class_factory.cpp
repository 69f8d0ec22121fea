// Object creation by class id, for the optional and grouping children, and
// the release of every class's tables.
#include "purchase_order.h"

using KdBind::CXmlObjectBase;

namespace PurchaseOrderSchema {

char const* const NAMESPACE = "urn:kdbind:example:po";

CSmartPtr<CXmlObjectBase> CreateObject(int classId, char const* elementName)
{
    CSmartPtr<CXmlObjectBase> object;
    switch (classId) {
    case ClassId_USAddress: object = new CUSAddress(); break;
    case ClassId_OrderTotals: object = new COrderTotals(); break;
    case ClassId_PurchaseOrder: object = new CPurchaseOrder(); break;
    case ClassId_LineItem: object = new CLineItem(); break;
    default:
        throw KdBind::CKdInvalidParamException(KdBind::FormatString("Unknown class id [%d]", classId));
    }
    object->SetElementName(elementName);
    return object;
}

CSmartPtr<CXmlObjectBase> CProductDetailsFactory::CreateObject(KdBind::CXmlElement* element)
{
    if (GetElementTypeNamespaceUri(element) != NAMESPACE)
        return nullptr;
    std::string const type = GetElementType(element);
    CSmartPtr<CXmlObjectBase> object;
    if (type == "BookDetails")
        object = new CBookDetails();
    else if (type == "GadgetDetails")
        object = new CGadgetDetails();
    else
        return nullptr;
    object->SetElementName(element->GetLocalName().c_str());
    return object;
}

void CleanMetaData()
{
    CUSAddress::m_tables.Clean();
    COrderTotals::m_tables.Clean();
    CPurchaseOrder::m_tables.Clean();
    CLineItem::m_tables.Clean();
    CBookDetails::m_tables.Clean();
    CGadgetDetails::m_tables.Clean();
}

} // namespace PurchaseOrderSchema
