// A binding of the purchase-order schema, written as the schema compiler
// writes its classes.
//
//   <xs:schema targetNamespace="urn:kdbind:example:po" elementFormDefault="qualified">
//     <xs:element name="purchaseOrder" type="PurchaseOrderType"/>
//     <xs:complexType name="PurchaseOrderType"> <xs:sequence/> </xs:complexType>
//   </xs:schema>
#ifndef KDBIND_EXAMPLE_PURCHASE_ORDER_H
#define KDBIND_EXAMPLE_PURCHASE_ORDER_H

#include <kdbind/kdbind.h>

namespace PurchaseOrderSchema {

extern char const* const NAMESPACE;

class CPurchaseOrder : public KdBind::CXmlGeneratedClass {
public:
    CPurchaseOrder();
    ~CPurchaseOrder() override;

    // Frees the class's metadata tables (once, at program end).
    static void CleanMetaData();

    KdBind::CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return NAMESPACE; }
    std::string GetNamespace() const override { return NAMESPACE; }

protected:
    void AccessProperty(int propertyId, bool readAccess, KdBind::KdVariant& value) override;
    KdBindData::CParentElementInfo* GetClassInfo() const override;
    KdBindData::CElementInfo** GetClassElementInfo() const override;
    KdBindData::CAttributeInfo** GetClassAttributeInfo() const override;
    void Init() override;

private:
    static KdBindData::CParentElementInfo* m_classInfo;
    static KdBindData::CElementInfo** m_elementInfo;
    static KdBindData::CAttributeInfo** m_attributeInfo;
};

} // namespace PurchaseOrderSchema

#endif
