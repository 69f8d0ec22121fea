#include "purchase_order.h"

using namespace KdBindData;
using KdBind::CPrimitiveRestrictions;
using KdBind::CWhitespaceUtils;
using KdBind::KdVariant;

namespace PurchaseOrderSchema {

// ---------------------------------------------------------------------------
// CBookDetails
// ---------------------------------------------------------------------------

CClassTables CBookDetails::m_tables;

CBookDetails::CBookDetails()
{
    SetElementName("BookDetails");
    Init();
}

void CBookDetails::Init()
{
    m_author.clear();
    m_isbn.clear();
}

void CBookDetails::AccessProperty(int propertyId, bool readAccess, KdVariant& value)
{
    switch (propertyId) {
    case Property_Author:
        if (readAccess)
            value.SetString(m_author);
        else
            m_author = value.GetString();
        break;
    case Property_Isbn:
        if (readAccess)
            value.SetString(m_isbn);
        else
            m_isbn = value.GetString();
        break;
    }
}

// Written with xsi:type whenever it stands under another element name.
CParentElementInfo* CBookDetails::GetClassInfo() const
{
    return m_tables.classInfo.Get([] {
        return new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element,
                                      "BookDetails", NAMESPACE, -1, true, true);
    });
}

CElementInfo** CBookDetails::GetClassElementInfo() const
{
    return m_tables.elementInfo.Get([] {
        CPrimitiveRestrictions const none;
        auto const preserve = CWhitespaceUtils::WhitespaceRule_Preserve;
        return new CElementInfo*[3]{
            new CElementInfoSeqPrimMnd("author", NAMESPACE, Property_Author, KdBind::ItemType_string, nullptr,
                                       preserve, none),
            new CElementInfoSeqPrimMnd("isbn", NAMESPACE, Property_Isbn, KdBind::ItemType_string, nullptr,
                                       CWhitespaceUtils::WhitespaceRule_Collapse, none),
            nullptr};
    });
}

CAttributeInfo** CBookDetails::GetClassAttributeInfo() const
{
    return m_tables.attributeInfo.Get([] {
        return new CAttributeInfo*[1]{nullptr};
    });
}

// ---------------------------------------------------------------------------
// CGadgetDetails
// ---------------------------------------------------------------------------

CClassTables CGadgetDetails::m_tables;

CGadgetDetails::CGadgetDetails()
{
    SetElementName("GadgetDetails");
    Init();
}

void CGadgetDetails::Init() { m_voltage = 0; }

void CGadgetDetails::AccessProperty(int propertyId, bool readAccess, KdVariant& value)
{
    if (propertyId != Property_Voltage)
        return;
    if (readAccess)
        value.SetUI2(m_voltage);
    else
        m_voltage = value.GetUI2();
}

CParentElementInfo* CGadgetDetails::GetClassInfo() const
{
    return m_tables.classInfo.Get([] {
        return new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element,
                                      "GadgetDetails", NAMESPACE, -1, true, true);
    });
}

CElementInfo** CGadgetDetails::GetClassElementInfo() const
{
    return m_tables.elementInfo.Get([] {
        return new CElementInfo*[2]{
            new CElementInfoSeqPrimMnd("voltage", NAMESPACE, Property_Voltage, KdBind::ItemType_ui2, nullptr,
                                       CWhitespaceUtils::WhitespaceRule_Collapse, CPrimitiveRestrictions()),
            nullptr};
    });
}

CAttributeInfo** CGadgetDetails::GetClassAttributeInfo() const
{
    return m_tables.attributeInfo.Get([] {
        return new CAttributeInfo*[1]{nullptr};
    });
}

} // namespace PurchaseOrderSchema
