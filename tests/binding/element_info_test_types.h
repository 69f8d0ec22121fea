// Generated-style classes for the element metadata tests: static tables built
// once, an accessor that switches on property ids, and the factory and
// enumeration functions that a schema compiler writes beside them.
//
//   <order>            sequence: id, colour, note?, shade?, shipTo, billTo?,
//                      the pseudo child OrderTotals, shape?, item{1,3}
//   <address>          sequence: street, city?
//   OrderTotals        pseudo child; sequence: count; attribute currency
//   <shape kind="..."> substitutable: kind="circle" makes a CCircle
//
// CEntryCall offers single entries the children of a parsed document.
#ifndef KDBIND_TESTS_ELEMENT_INFO_TEST_TYPES_H
#define KDBIND_TESTS_ELEMENT_INFO_TEST_TYPES_H

#include <string>

#include "binding/collection_test_types.h"

namespace ElementInfoTest {

using namespace KdBind;
using namespace KdBindData;
using CollectionTest::CLineItem;
using CollectionTest::CLineItemCol;

char const NAMESPACE[] = "urn:po";

enum Colour { Colour_Red = 0, Colour_Green = 1, Colour_Blue = 2 };

inline char const* ColourToString(int value)
{
    switch (value) {
    case Colour_Red: return "red";
    case Colour_Green: return "green";
    case Colour_Blue: return "blue";
    default: return nullptr;
    }
}

inline int ColourFromString(char const* text)
{
    std::string const value = text;
    if (value == "red")
        return Colour_Red;
    if (value == "green")
        return Colour_Green;
    if (value == "blue")
        return Colour_Blue;
    throw CKdInvalidValueException(FormatString("[%s] is no Colour", text));
}

// The part common to the generated classes below: tables are per class,
// made on first use and kept for the life of the process.
template <class Derived>
class CGenerated : public CXmlGeneratedClass {
public:
    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return NAMESPACE; }
    std::string GetNamespace() const override { return NAMESPACE; }
    CParentElementInfo* GetClassInfo() const override { return Tables().info; }
    CElementInfo** GetClassElementInfo() const override { return Tables().elements; }
    CAttributeInfo** GetClassAttributeInfo() const override { return Tables().attributes; }

protected:
    struct CTables {
        CParentElementInfo* info;
        CElementInfo** elements;
        CAttributeInfo** attributes;
        ~CTables() { CXmlGeneratedClass::CleanMetaData(info, elements, attributes); }
    };
    static CTables& Tables()
    {
        static CTables tables = Derived::MakeTables();
        return tables;
    }
};

inline CPrimitiveRestrictions const& NoFacets()
{
    static CPrimitiveRestrictions const none;
    return none;
}

// <xs:complexType name="Address"><xs:sequence>street, city?</xs:sequence>
class CAddress : public CGenerated<CAddress> {
public:
    enum { Property_Street, Property_City };

    CAddress() { SetElementName("address"); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        std::string* field = propertyId == Property_Street ? &street : propertyId == Property_City ? &city : nullptr;
        if (!field)
            return;
        if (!readAccess)
            *field = value.GetString();
        else if (!field->empty())
            value.SetString(*field);
    }
    void Init() override { street.clear(), city.clear(); }

    static CTables MakeTables()
    {
        auto const preserve = CWhitespaceUtils::WhitespaceRule_Preserve;
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "address", NAMESPACE, -1,
                                       true, false),
                new CElementInfo*[3]{
                    new CElementInfoSeqPrimMnd("street", NAMESPACE, Property_Street, ItemType_string, nullptr,
                                               preserve, NoFacets()),
                    new CElementInfoSeqPrimOpt("city", NAMESPACE, Property_City, ItemType_string, nullptr, preserve,
                                               NoFacets()),
                    nullptr},
                new CAttributeInfo*[1]{nullptr}};
    }

    std::string street;
    std::string city;
};

// A group without a tag: its count lies among the owner's children and its
// currency attribute goes on the owner's tag.
class COrderTotals : public CGenerated<COrderTotals> {
public:
    enum { Property_Count, Property_Currency };

    COrderTotals() { SetElementName("OrderTotals"); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Count:
            if (!readAccess)
                count = value.GetI4();
            else if (count >= 0)
                value.SetI4(count);
            break;
        case Property_Currency:
            if (!readAccess)
                currency = value.GetString();
            else if (!currency.empty())
                value.SetString(currency);
            break;
        }
    }
    void Init() override { count = -1, currency.clear(); }

    static CTables MakeTables()
    {
        auto const collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_PseudoChild, "OrderTotals",
                                       NAMESPACE, -1, true, false),
                new CElementInfo*[2]{new CElementInfoSeqPrimMnd("count", NAMESPACE, Property_Count, ItemType_i4,
                                                                nullptr, collapse, NoFacets()),
                                     nullptr},
                new CAttributeInfo*[2]{new CAttributeInfoPrimitive("currency", "", Property_Currency, true,
                                                                   ItemType_string, nullptr, collapse, NoFacets(),
                                                                   nullptr),
                                       nullptr}};
    }

    long count = -1;
    std::string currency;
};

// One concrete class of the substitutable <shape>.
class CCircle : public CGenerated<CCircle> {
public:
    enum { Property_Radius, Property_Kind };

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        // The kind tells the factory the class; it is fixed for a class.
        if (propertyId == Property_Kind && readAccess)
            value.SetString("circle");
        else if (propertyId == Property_Radius && !readAccess)
            radius = value.GetI4();
        else if (propertyId == Property_Radius)
            value.SetI4(radius);
    }
    void Init() override { radius = 0; }

    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "circle", NAMESPACE, -1,
                                       false, false),
                new CElementInfo*[2]{new CElementInfoSeqPrimMnd("radius", NAMESPACE, Property_Radius, ItemType_i4,
                                                                nullptr, CWhitespaceUtils::WhitespaceRule_Collapse,
                                                                NoFacets()),
                                     nullptr},
                new CAttributeInfo*[2]{new CAttributeInfoPrimitive("kind", "", Property_Kind, false, ItemType_string,
                                                                   nullptr, CWhitespaceUtils::WhitespaceRule_Collapse,
                                                                   NoFacets(), nullptr),
                                       nullptr}};
    }

    long radius = 0;
};

enum { Class_Address = 1, Class_OrderTotals = 2 };

inline CSmartPtr<CXmlObjectBase> CreateObject(int classId, char const* elementName)
{
    CSmartPtr<CXmlObjectBase> object;
    if (classId == Class_Address)
        object = new CAddress();
    else if (classId == Class_OrderTotals)
        object = new COrderTotals();
    if (object)
        object->SetElementName(elementName);
    return object;
}

// Tells the class from the kind attribute; null for a kind it does not know.
inline CSmartPtr<CXmlObjectBase> CreateShape(CXmlElement* element)
{
    if (element->GetAttribute("kind", "") == "circle")
        return new CCircle();
    return nullptr;
}

class COrder : public CGenerated<COrder> {
public:
    enum {
        Property_Id,
        Property_Colour,
        Property_Note,
        Property_Shade,
        Property_ShipTo,
        Property_BillTo,
        Property_Totals,
        Property_Shape,
        Property_Items,
        // Not in the table: for entries that tests build on their own.
        Property_Extra
    };

    COrder() : shipTo(new CAddress()), totals(new COrderTotals()), items(new CLineItemCol())
    {
        SetElementName("order");
        shipTo->SetElementName("shipTo");
    }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Id: Int(id, readAccess, value); break;
        case Property_Colour: Int(colour, readAccess, value); break;
        case Property_Shade: Int(shade, readAccess, value); break;
        case Property_Note:
            if (!readAccess)
                note = value.GetString(), hasNote = true;
            else if (hasNote)
                value.SetString(note);
            break;
        case Property_ShipTo: Object(shipTo, readAccess, value); break;
        case Property_BillTo: Object(billTo, readAccess, value); break;
        case Property_Totals: Object(totals, readAccess, value); break;
        case Property_Shape: Object(shape, readAccess, value); break;
        case Property_Extra: Object(extra, readAccess, value); break;
        case Property_Items:
            if (readAccess)
                value.SetXmlCollection(items);
            break;
        }
    }
    void Init() override
    {
        id = colour = shade = -1;
        note.clear();
        hasNote = false;
        billTo = shape = extra = nullptr;
        items->Clear();
    }

    static CTables MakeTables()
    {
        auto const collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
        // The pseudo child's attributes stand on this tag: unknown ones pass.
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "order", NAMESPACE, -1,
                                       false, false),
                new CElementInfo*[10]{
                    new CElementInfoSeqPrimMnd("id", NAMESPACE, Property_Id, ItemType_i4, nullptr, collapse,
                                               NoFacets()),
                    new CElementInfoSeqEnumMnd("colour", NAMESPACE, Property_Colour, &ColourToString,
                                               &ColourFromString),
                    new CElementInfoSeqPrimOpt("note", NAMESPACE, Property_Note, ItemType_string, nullptr,
                                               CWhitespaceUtils::WhitespaceRule_Preserve, NoFacets()),
                    new CElementInfoSeqEnumOpt("shade", NAMESPACE, Property_Shade, &ColourToString,
                                               &ColourFromString),
                    new CElementInfoSeqClsMnd("shipTo", NAMESPACE, Property_ShipTo, XmlElementType_Element,
                                              &CreateObject, Class_Address, false),
                    new CElementInfoSeqClsOpt("billTo", NAMESPACE, Property_BillTo, XmlElementType_Element,
                                              &CreateObject, Class_Address),
                    new CElementInfoSeqClsMnd("OrderTotals", NAMESPACE, Property_Totals, XmlElementType_PseudoChild,
                                              &CreateObject, Class_OrderTotals, true),
                    new CElementInfoSeqAbsClsOpt("shape", NAMESPACE, Property_Shape, XmlElementType_Element,
                                                 &CreateShape),
                    new CElementInfoSeqClsCol("item", NAMESPACE, Property_Items, XmlElementType_Element), nullptr},
                new CAttributeInfo*[1]{nullptr}};
    }

    long id = -1;
    long colour = -1;
    long shade = -1;
    std::string note;
    bool hasNote = false;
    CSmartPtr<CAddress> shipTo;
    CSmartPtr<CXmlObjectBase> billTo;
    CSmartPtr<COrderTotals> totals;
    CSmartPtr<CXmlObjectBase> shape;
    CSmartPtr<CXmlObjectBase> extra;
    CSmartPtr<CLineItemCol> items;

private:
    static void Int(long& field, bool readAccess, KdVariant& value)
    {
        if (!readAccess)
            field = value.GetI4();
        else if (field >= 0)
            value.SetI4(field);
    }
    template <class T>
    static void Object(CSmartPtr<T>& field, bool readAccess, KdVariant& value)
    {
        if (!readAccess)
            field = static_cast<T*>(value.GetXmlObject().get());
        else if (field)
            value.SetXmlObject(field);
    }
};

// One entry offered the children of a parsed root.
struct CEntryCall {
    explicit CEntryCall(char const* xml)
    {
        document.LoadXml(xml);
        cursor = Root()->GetFirstElement();
    }

    CXmlElement* Root() const { return document.GetDocumentElement(); }
    CXmlElement* Child(int index) const
    {
        CXmlElement* element = Root()->GetFirstElement();
        while (element && index-- > 0)
            element = element->GetNextSiblingElement();
        return element;
    }
    bool Offer(CElementInfo* entry, XmlElementType ownerType,
               CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext)
    {
        return entry->ElementFromXml(context, order, Root(), &cursor, NAMESPACE, ownerType);
    }
    std::string Failure(CElementInfo* entry, XmlElementType ownerType,
                        CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext)
    {
        try {
            Offer(entry, ownerType, context);
        } catch (CKdException const& e) {
            return e.GetFullMessage();
        }
        return "<no exception>";
    }
    CElementInfo* Entry(int index) const { return order->GetClassElementInfo()[index]; }

    CXmlDocument document;
    CSmartPtr<COrder> order = new COrder();
    CXmlElement* cursor = nullptr;
};

} // namespace ElementInfoTest

#endif
