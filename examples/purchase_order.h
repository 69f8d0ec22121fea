// Binding of the purchase-order schema, written as the schema compiler writes
// its classes: properties, accessors, and static metadata tables.
//
//   <xs:schema targetNamespace="urn:kdbind:example:po" xmlns="urn:kdbind:example:po"
//              elementFormDefault="qualified">
//     <xs:element name="purchaseOrder" type="PurchaseOrderType"/>
//     <xs:complexType name="PurchaseOrderType">
//       <xs:sequence>
//         <xs:element name="shipTo" type="USAddress"/>
//         <xs:element name="billTo" type="USAddress" minOccurs="0"/>
//         <xs:element name="comment" type="xs:string" minOccurs="0"/>
//         <xs:element name="priority" type="Priority" minOccurs="0"/>
//         <xs:element name="timestamp" type="xs:dateTime" minOccurs="0"/>
//         <xs:element name="tag" type="xs:string" minOccurs="0" maxOccurs="unbounded"/>
//         <xs:element name="parcelWeight" type="Grams" minOccurs="0" maxOccurs="unbounded"/>
//         <xs:element name="lineItem" type="LineItem" maxOccurs="unbounded"/>
//         <xs:group ref="OrderTotals"/>
//       </xs:sequence>
//       <xs:attribute name="orderDate" type="xs:date" use="required"/>
//       <xs:attribute name="status" type="OrderStatus" default="open"/>
//     </xs:complexType>
//     <xs:complexType name="USAddress">
//       <xs:sequence>
//         <xs:element name="name" type="xs:string"/>
//         <xs:element name="street" type="xs:string"/>
//         <xs:element name="city" type="xs:string"/>
//         <xs:element name="state" type="xs:string"/>
//         <xs:element name="zip" type="xs:unsignedInt"/>
//       </xs:sequence>
//       <xs:attribute name="country" type="xs:NMTOKEN" default="US"/>
//     </xs:complexType>
//     <xs:complexType name="LineItem">
//       <xs:sequence>
//         <xs:element name="productName" type="xs:string"/>
//         <xs:element name="quantity">
//           <xs:simpleType><xs:restriction base="xs:unsignedShort">
//             <xs:maxExclusive value="100"/></xs:restriction></xs:simpleType>
//         </xs:element>
//         <xs:element name="USPrice" type="xs:decimal"/>
//         <xs:element name="details" type="ProductDetails" minOccurs="0"/>
//         <xs:element name="comment" type="xs:string" minOccurs="0"/>
//       </xs:sequence>
//       <xs:attribute name="partNum" type="SKU" use="required"/>
//     </xs:complexType>
//     <xs:complexType name="ProductDetails" abstract="true"/>
//     <xs:complexType name="BookDetails">         (extends ProductDetails)
//       <xs:sequence>
//         <xs:element name="author" type="xs:string"/>
//         <xs:element name="isbn" type="xs:string"/>
//       </xs:sequence>
//     </xs:complexType>
//     <xs:complexType name="GadgetDetails">       (extends ProductDetails)
//       <xs:sequence>
//         <xs:element name="voltage" type="xs:unsignedShort"/>
//       </xs:sequence>
//     </xs:complexType>
//     <xs:group name="OrderTotals">
//       <xs:sequence>
//         <xs:element name="subtotal" type="xs:decimal"/>
//         <xs:element name="shipping" type="xs:decimal" minOccurs="0"/>
//         <xs:element name="itemCount" type="xs:unsignedShort"/>
//       </xs:sequence>
//     </xs:group>
//     <xs:simpleType name="SKU">   xs:string, pattern "\d{3}-[A-Z]{2}"
//     <xs:simpleType name="Grams">   xs:int, from 1 to 30000 inclusive
//     <xs:simpleType name="Priority">   low | normal | urgent
//     <xs:simpleType name="OrderStatus">   open | shipped | cancelled
//   </xs:schema>
#ifndef KDBIND_EXAMPLE_PURCHASE_ORDER_H
#define KDBIND_EXAMPLE_PURCHASE_ORDER_H

#include <optional>
#include <string>

#include <kdbind/kdbind.h>

namespace PurchaseOrderSchema {

extern char const* const NAMESPACE;

// ---------------------------------------------------------------------------
// Enumerations
// ---------------------------------------------------------------------------

enum Priority { Priority_low, Priority_normal, Priority_urgent };
char const* PriorityToString(int value);
int PriorityFromString(char const* text);

enum OrderStatus { OrderStatus_open, OrderStatus_shipped, OrderStatus_cancelled };
char const* OrderStatusToString(int value);
int OrderStatusFromString(char const* text);

// ---------------------------------------------------------------------------
// Class factory: makes the object of a class id under an element name.
// ---------------------------------------------------------------------------

enum ClassId { ClassId_USAddress, ClassId_OrderTotals, ClassId_PurchaseOrder, ClassId_LineItem };
CSmartPtr<KdBind::CXmlObjectBase> CreateObject(int classId, char const* elementName);

// Makes the ProductDetails class that an element's xsi:type names; null for
// an unknown type.
class CProductDetailsFactory : public KdBind::CClassfactoryBase {
public:
    static CSmartPtr<KdBind::CXmlObjectBase> CreateObject(KdBind::CXmlElement* element);
};

// Frees the metadata tables of every class of the schema (once, at exit).
void CleanMetaData();

// The three metadata tables of each class, built once on first use from any
// thread; the library's holder.
using KdBindData::CClassTables;

// ---------------------------------------------------------------------------
// What every class of the schema shares: its target namespace.
// ---------------------------------------------------------------------------

class CSchemaClass : public KdBind::CXmlGeneratedClass {
public:
    KdBind::CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return NAMESPACE; }
    std::string GetNamespace() const override { return NAMESPACE; }
};

// ---------------------------------------------------------------------------
// USAddress
// ---------------------------------------------------------------------------

class CUSAddress : public CSchemaClass {
public:
    CUSAddress();

    std::string const& GetName() const { return m_name; }
    void SetName(std::string const& value) { m_name = value; }
    std::string const& GetStreet() const { return m_street; }
    void SetStreet(std::string const& value) { m_street = value; }
    std::string const& GetCity() const { return m_city; }
    void SetCity(std::string const& value) { m_city = value; }
    std::string const& GetState() const { return m_state; }
    void SetState(std::string const& value) { m_state = value; }
    unsigned long GetZip() const { return m_zip; }
    void SetZip(unsigned long value) { m_zip = value; }
    std::string const& GetCountry() const { return m_country; }
    void SetCountry(std::string const& value) { m_country = value; }

    void AccessProperty(int propertyId, bool readAccess, KdBind::KdVariant& value) override;
    KdBindData::CParentElementInfo* GetClassInfo() const override;
    KdBindData::CElementInfo** GetClassElementInfo() const override;
    KdBindData::CAttributeInfo** GetClassAttributeInfo() const override;
    void Init() override;

    static CClassTables m_tables;

private:
    enum Property { Property_Name, Property_Street, Property_City, Property_State, Property_Zip, Property_Country };

    std::string m_name;
    std::string m_street;
    std::string m_city;
    std::string m_state;
    unsigned long m_zip;
    std::string m_country;
};

// ---------------------------------------------------------------------------
// OrderTotals: a model group, without a tag of its own.
// ---------------------------------------------------------------------------

class COrderTotals : public CSchemaClass {
public:
    COrderTotals();

    KdBind::CDecimal const& GetSubtotal() const { return m_subtotal; }
    void SetSubtotal(KdBind::CDecimal const& value) { m_subtotal = value; }
    std::optional<KdBind::CDecimal> const& GetShipping() const { return m_shipping; }
    void SetShipping(std::optional<KdBind::CDecimal> value) { m_shipping = std::move(value); }
    unsigned short GetItemCount() const { return m_itemCount; }
    void SetItemCount(unsigned short value) { m_itemCount = value; }

    void AccessProperty(int propertyId, bool readAccess, KdBind::KdVariant& value) override;
    KdBindData::CParentElementInfo* GetClassInfo() const override;
    KdBindData::CElementInfo** GetClassElementInfo() const override;
    KdBindData::CAttributeInfo** GetClassAttributeInfo() const override;
    void Init() override;

    static CClassTables m_tables;

private:
    enum Property { Property_Subtotal, Property_Shipping, Property_ItemCount };

    KdBind::CDecimal m_subtotal;
    std::optional<KdBind::CDecimal> m_shipping;
    unsigned short m_itemCount;
};

// ---------------------------------------------------------------------------
// ProductDetails (abstract) and its extensions BookDetails, GadgetDetails.
// An extension written under the element name "details" carries xsi:type.
// ---------------------------------------------------------------------------

class CProductDetails : public CSchemaClass {
protected:
    CProductDetails() = default;
};

class CBookDetails : public CProductDetails {
public:
    CBookDetails();

    std::string const& GetAuthor() const { return m_author; }
    void SetAuthor(std::string const& value) { m_author = value; }
    std::string const& GetIsbn() const { return m_isbn; }
    void SetIsbn(std::string const& value) { m_isbn = value; }

    void AccessProperty(int propertyId, bool readAccess, KdBind::KdVariant& value) override;
    KdBindData::CParentElementInfo* GetClassInfo() const override;
    KdBindData::CElementInfo** GetClassElementInfo() const override;
    KdBindData::CAttributeInfo** GetClassAttributeInfo() const override;
    void Init() override;

    static CClassTables m_tables;

private:
    enum Property { Property_Author, Property_Isbn };

    std::string m_author;
    std::string m_isbn;
};

class CGadgetDetails : public CProductDetails {
public:
    CGadgetDetails();

    unsigned short GetVoltage() const { return m_voltage; }
    void SetVoltage(unsigned short value) { m_voltage = value; }

    void AccessProperty(int propertyId, bool readAccess, KdBind::KdVariant& value) override;
    KdBindData::CParentElementInfo* GetClassInfo() const override;
    KdBindData::CElementInfo** GetClassElementInfo() const override;
    KdBindData::CAttributeInfo** GetClassAttributeInfo() const override;
    void Init() override;

    static CClassTables m_tables;

private:
    enum Property { Property_Voltage };

    unsigned short m_voltage;
};

// ---------------------------------------------------------------------------
// LineItem, and the collection of the repeating lineItem element.
// ---------------------------------------------------------------------------

class CLineItem : public CSchemaClass {
public:
    CLineItem();

    std::string const& GetPartNum() const { return m_partNum; }
    void SetPartNum(std::string const& value) { m_partNum = value; }
    std::string const& GetProductName() const { return m_productName; }
    void SetProductName(std::string const& value) { m_productName = value; }
    unsigned short GetQuantity() const { return m_quantity; }
    void SetQuantity(unsigned short value) { m_quantity = value; }
    KdBind::CDecimal const& GetUSPrice() const { return m_usPrice; }
    void SetUSPrice(KdBind::CDecimal const& value) { m_usPrice = value; }
    CProductDetails* GetDetails() const { return m_details; }
    void SetDetails(CProductDetails* value);
    std::optional<std::string> const& GetComment() const { return m_comment; }
    void SetComment(std::optional<std::string> value) { m_comment = std::move(value); }

    void AccessProperty(int propertyId, bool readAccess, KdBind::KdVariant& value) override;
    KdBindData::CParentElementInfo* GetClassInfo() const override;
    KdBindData::CElementInfo** GetClassElementInfo() const override;
    KdBindData::CAttributeInfo** GetClassAttributeInfo() const override;
    void Init() override;

    static CClassTables m_tables;

private:
    enum Property {
        Property_PartNum,
        Property_ProductName,
        Property_Quantity,
        Property_USPrice,
        Property_Details,
        Property_Comment
    };

    std::string m_partNum;
    std::string m_productName;
    unsigned short m_quantity;
    KdBind::CDecimal m_usPrice;
    CSmartPtr<CProductDetails> m_details;
    std::optional<std::string> m_comment;
};

// <xs:element name="lineItem" type="LineItem" maxOccurs="unbounded"/>
class CLineItemCol : public KdBind::CXmlCollection {
public:
    CLineItemCol();

    CLineItem* GetAt(int index) const;
    void Add(CLineItem* item) { AppendItem(item); }

protected:
    void ToXml_Int(KdBind::CXmlWriter* writer, bool root, char const* ns,
                   KdBind::CXmlSerializationContext const& context, bool isOptional) const override;
    KdBind::CXmlElement* FromXml_Int(KdBind::CXmlElement* parent, KdBind::CXmlElement* cursor,
                                     KdBind::CXmlSerializationContext const& context, bool isOptional) override;
};

// ---------------------------------------------------------------------------
// PurchaseOrderType, the document element purchaseOrder.
// ---------------------------------------------------------------------------

class CPurchaseOrder : public CSchemaClass {
public:
    CPurchaseOrder();

    CUSAddress& GetShipTo() const { return *m_shipTo; }
    void SetShipTo(CUSAddress* value);
    CUSAddress* GetBillTo() const { return m_billTo; }
    void SetBillTo(CUSAddress* value);
    std::optional<std::string> const& GetComment() const { return m_comment; }
    void SetComment(std::optional<std::string> value) { m_comment = std::move(value); }
    std::optional<Priority> const& GetPriority() const { return m_priority; }
    void SetPriority(std::optional<Priority> value) { m_priority = value; }
    std::optional<KdBind::CDateTime> const& GetTimestamp() const { return m_timestamp; }
    void SetTimestamp(std::optional<KdBind::CDateTime> value) { m_timestamp = std::move(value); }
    KdBind::CstringCol& GetTags() const { return *m_tags; }
    KdBind::Ci4Col& GetParcelWeights() const { return *m_parcelWeights; }
    CLineItemCol& GetLineItems() const { return *m_lineItems; }
    COrderTotals& GetTotals() const { return *m_totals; }
    KdBind::CDateTime const& GetOrderDate() const { return m_orderDate; }
    void SetOrderDate(KdBind::CDateTime const& value) { m_orderDate = value; }
    std::optional<OrderStatus> const& GetStatus() const { return m_status; }
    void SetStatus(std::optional<OrderStatus> value) { m_status = value; }
    // The extension point: one element of another namespace after the
    // totals, and attributes of other namespaces.
    KdBind::CElement* GetExtension() const { return m_extension; }
    void SetExtension(KdBind::CElement* value) { m_extension = value; }
    KdBind::CAttributeCol& GetExtensionAttributes() const { return *m_extensionAttributes; }

    void AccessProperty(int propertyId, bool readAccess, KdBind::KdVariant& value) override;
    KdBindData::CParentElementInfo* GetClassInfo() const override;
    KdBindData::CElementInfo** GetClassElementInfo() const override;
    KdBindData::CAttributeInfo** GetClassAttributeInfo() const override;
    void Init() override;

    static CClassTables m_tables;

private:
    enum Property {
        Property_ShipTo,
        Property_BillTo,
        Property_Comment,
        Property_Priority,
        Property_Timestamp,
        Property_Tags,
        Property_ParcelWeights,
        Property_LineItems,
        Property_Totals,
        Property_OrderDate,
        Property_Status,
        Property_Extension,
        Property_ExtensionAttributes
    };

    CSmartPtr<CUSAddress> m_shipTo;
    CSmartPtr<CUSAddress> m_billTo;
    std::optional<std::string> m_comment;
    std::optional<Priority> m_priority;
    std::optional<KdBind::CDateTime> m_timestamp;  // a dateTime
    CSmartPtr<KdBind::CstringCol> m_tags;
    CSmartPtr<KdBind::Ci4Col> m_parcelWeights;
    CSmartPtr<CLineItemCol> m_lineItems;
    CSmartPtr<COrderTotals> m_totals;
    KdBind::CDateTime m_orderDate;  // a date
    std::optional<OrderStatus> m_status;
    CSmartPtr<KdBind::CElement> m_extension;
    CSmartPtr<KdBind::CAttributeCol> m_extensionAttributes;
};

} // namespace PurchaseOrderSchema

#endif
