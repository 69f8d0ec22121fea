// Classes for the binding tests, written as the schema compiler writes them,
// beside the example purchase-order binding whose namespace and classes they
// use:
//
//   <note lang="...">text</note>   simple content; "note" {1,3} in CNoteCol
//   Terms                          model group: days; its currency attribute
//                                  goes on the owner's tag
//   <payment>                      choice: note{1,3} | lineItem{1,}
//   <delivery>                     choice: pickup? | priority? | address? |
//                                  OrderTotals? | details? | payment? | note{1,3}
//   <contact>                      all: name, age?, priority, address, OrderTotals?
//   <invoice>                      sequence: Terms, payment?; attributes of
//                                  every kind, the wildcard last
//
// Properties are kept as variants, so that tests see set and unset alike.
#ifndef KDBIND_TESTS_BINDING_TEST_TYPES_H
#define KDBIND_TESTS_BINDING_TEST_TYPES_H

#include <functional>
#include <string>

#include "purchase_order.h"

namespace BindingTest {

using namespace KdBind;
using namespace KdBindData;
using namespace PurchaseOrderSchema;
using Context = CXmlSerializationContext;

// The full message of what the action throws, or "<no exception>".
inline std::string Failure(std::function<void()> const& action)
{
    try {
        action();
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

// Through the wide entry point, which walks under the given context.
inline std::string LoadFailure(CXmlObjectBase& object, std::string const& xml,
                               Context const& context = Context::m_defaultContext)
{
    std::wstring const wide(xml.begin(), xml.end());
    return Failure([&] { object.FromXml(wide.c_str(), context); });
}

inline std::string Written(CXmlObjectBase const& object, Context const& context = Context::m_defaultContext)
{
    return object.ToXml(false, false, EOLType_LF, context);
}

// What entries write into a tag of their own, <e>.
inline std::string WrittenBy(std::function<void(CXmlWriter*)> const& write)
{
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    writer.WriteStartElement("e", "");
    write(&writer);
    writer.WriteEndElement();
    writer.Close();
    return stream.GetText();
}

// A context with the given options set.
template <class... Options>
Context With(Options... options)
{
    Context context;
    ((context.*options)(true), ...);
    return context;
}

// A purchase-order document, and pieces of its content.
inline std::string AddressXml(std::string const& tag)
{
    return "<" + tag + "><name>A</name><street>S</street><city>C</city><state>ST</state><zip>1</zip></" + tag + ">";
}
inline std::string const kShipTo = AddressXml("shipTo");
inline std::string const kLineItem =
    "<lineItem partNum='100-AA'><productName>P</productName><quantity>1</quantity><USPrice>1</USPrice></lineItem>";
inline std::string const kTotals = "<subtotal>1</subtotal><itemCount>1</itemCount>";
inline std::string OrderXml(std::string const& children = kShipTo + kLineItem + kTotals,
                            std::string const& attributes = "orderDate='2004-01-02'")
{
    return "<purchaseOrder xmlns='urn:kdbind:example:po' " + attributes + ">" + children + "</purchaseOrder>";
}

// How many holders keep the object alive.
inline long Holders(CXmlObjectBase* object)
{
    long const count = object->AddRef();
    object->Release();
    return count - 1;
}

// The entry of a class's tables by name.
inline CElementInfo* EntryOf(CXmlGeneratedClass const& object, char const* name)
{
    for (CElementInfo** entry = object.GetClassElementInfo(); *entry; ++entry)
        if ((*entry)->GetElementName() == name)
            return *entry;
    return nullptr;
}
inline CAttributeInfo* AttributeOf(CXmlGeneratedClass const& object, char const* name)
{
    for (CAttributeInfo** entry = object.GetClassAttributeInfo(); *entry; ++entry)
        if ((*entry)->GetName() == name)
            return *entry;
    return nullptr;
}

// The children of a parsed root, offered to single entries as a walk would.
struct CCursor {
    explicit CCursor(char const* xml)
    {
        document.LoadXml(xml);
        at = Child(0);
    }
    CXmlElement* Child(int index) const
    {
        CXmlElement* element = document.GetDocumentElement()->GetFirstElement();
        while (element && index-- > 0)
            element = element->GetNextSiblingElement();
        return element;
    }
    bool Offer(CElementInfo* entry, CXmlGeneratedClass& object, XmlElementType ownerType,
               Context const& context = Context::m_defaultContext)
    {
        return entry->ElementFromXml(context, &object, document.GetDocumentElement(), &at, NAMESPACE, ownerType);
    }

    CXmlDocument document;
    CXmlElement* at = nullptr;
};

// The three tables of one test class, built together.
struct CTables {
    CParentElementInfo* classInfo;
    CElementInfo** elementInfo;
    CAttributeInfo** attributeInfo;
};

// What the schema compiler writes for every class: the tables belong to the
// class, are built on first use (a function-local static, so the first
// threads to use a class at once wait for one complete build) and freed at
// exit.
template <class Derived>
class CGenerated : public CXmlGeneratedClass {
public:
    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return NAMESPACE; }
    std::string GetNamespace() const override { return NAMESPACE; }
    CParentElementInfo* GetClassInfo() const override { return Tables().classInfo; }
    CElementInfo** GetClassElementInfo() const override { return Tables().elementInfo; }
    CAttributeInfo** GetClassAttributeInfo() const override { return Tables().attributeInfo; }

protected:
    static CTables& Tables()
    {
        static struct CHolder {
            CTables tables = Derived::MakeTables();
            ~CHolder() { CleanMetaData(tables.classInfo, tables.elementInfo, tables.attributeInfo); }
        } holder;
        return holder.tables;
    }
    static void Exchange(KdVariant& property, bool readAccess, KdVariant& value)
    {
        if (readAccess)
            value = property;
        else
            property = value;
    }
};

inline CPrimitiveRestrictions const kNoFacets{};
constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

enum TestClassId { ClassId_Payment = 100, ClassId_Terms };
inline CSmartPtr<CXmlObjectBase> CreateTestObject(int classId, char const* elementName);

// Note: simple content with an attribute.
class CNote : public CGenerated<CNote> {
public:
    enum Property { Property_Text, Property_Lang };

    explicit CNote(std::string content = "") : text(std::move(content)) { SetElementName("note"); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Text:
            if (readAccess)
                value.SetString(text);
            else
                text = value.GetString();
            break;
        case Property_Lang: Exchange(lang, readAccess, value); break;
        }
    }
    void Init() override { text.clear(), lang.Clear(); }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "note", NAMESPACE,
                                       Property_Text, true, false),
                new CElementInfo*[1]{nullptr},
                new CAttributeInfo*[2]{new CAttributeInfoPrimitive("lang", "", Property_Lang, true, ItemType_string,
                                                                   nullptr, kCollapse, kNoFacets, nullptr),
                                       nullptr}};
    }

    std::string text;
    KdVariant lang;
};

// <xs:element name="note" type="Note" maxOccurs="3"/>
class CNoteCol : public CXmlCollection {
public:
    CNoteCol() : CXmlCollection("note", NAMESPACE, 1, 3) {}

    CNote* GetAt(int index) const { return static_cast<CNote*>(GetNodeAtIndex(index)->item); }
    void Add(CNote* item) { AppendItem(item); }

protected:
    void ToXml_Int(CXmlWriter* writer, bool, char const* ns, Context const& context, bool) const override
    {
        for (CNode* node = GetHeadNode(); node; node = node->next)
            CXmlObjectBase::ToXml_Int(node->item, writer, false, ns, context, false);
    }
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* cursor, Context const& context, bool) override
    {
        std::string const ns = GetNamespace();
        while (cursor && DoesElementNameMatch(context, cursor, GetElementName().c_str(), ns.c_str())) {
            CSmartPtr<CNote> item = new CNote();
            CXmlObjectBase::FromXml_Int(item, cursor, cursor->GetFirstElement(), context);
            AppendItem(item);
            cursor = cursor->GetNextSiblingElement();
        }
        return cursor;
    }
};

// Terms: a model group without a tag; its attribute stands on the owner's.
class CTerms : public CGenerated<CTerms> {
public:
    enum Property { Property_Days, Property_Currency };

    CTerms() { SetElementName("Terms"); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Days: Exchange(days, readAccess, value); break;
        case Property_Currency: Exchange(currency, readAccess, value); break;
        }
    }
    void Init() override { days.Clear(), currency.Clear(); }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_PseudoChild, "Terms", NAMESPACE,
                                       -1, false, false),
                new CElementInfo*[2]{new CElementInfoSeqPrimMnd("days", NAMESPACE, Property_Days, ItemType_i4,
                                                                nullptr, kCollapse, kNoFacets),
                                     nullptr},
                new CAttributeInfo*[2]{new CAttributeInfoPrimitive("currency", "", Property_Currency, true,
                                                                   ItemType_string, nullptr, kCollapse, kNoFacets,
                                                                   nullptr),
                                       nullptr}};
    }

    KdVariant days, currency;
};

// Payment: a choice of two collections, neither of which may be empty.
class CPayment : public CGenerated<CPayment> {
public:
    enum Property { Property_Notes, Property_LineItems };

    CPayment() { SetElementName("payment"), Init(); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        if (!readAccess)
            return;
        switch (propertyId) {
        case Property_Notes: value.SetXmlCollection(notes); break;
        case Property_LineItems: value.SetXmlCollection(lineItems); break;
        }
    }
    void Init() override { notes = new CNoteCol(), lineItems = new CLineItemCol(); }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_Element, "payment", NAMESPACE, -1,
                                       true, false),
                new CElementInfo*[3]{
                    new CElementInfoChoiceClsCol("note", NAMESPACE, Property_Notes, XmlElementType_Element),
                    new CElementInfoChoiceClsCol("lineItem", NAMESPACE, Property_LineItems, XmlElementType_Element),
                    nullptr},
                new CAttributeInfo*[1]{nullptr}};
    }

    CSmartPtr<CNoteCol> notes;
    CSmartPtr<CLineItemCol> lineItems;
};

// Delivery: a choice of optional alternatives. Its setters keep one
// alternative selected; the notes tell it when they change.
class CDelivery : public CGenerated<CDelivery> {
public:
    enum Property {
        Property_Pickup, Property_Priority, Property_Address, Property_Totals,
        Property_Details, Property_Payment, Property_Notes
    };

    CDelivery() : notes(new CNoteCol()) { SetElementName("delivery"), notes->AddEventListener(this); }
    ~CDelivery() override { notes->RemoveEventListener(this); }

    void SetAddress(CUSAddress* value)
    {
        Throw_IfElementNameDiffers(value, "address");
        Choice_SelectElement("Address", value, selected);
        address.SetXmlObject(value);
    }
    // Refusing the add event stops the add.
    void OnEvent(CXmlObjectBase* source, MsgType type, void*) override
    {
        if (source == notes.get() && type == MsgType_ItemAdding)
            Choice_CollectionChanged("Notes", notes->GetCount() + 1, selected);
        else if (source == notes.get() && type == MsgType_CollectionChanged)
            Choice_CollectionChanged("Notes", notes->GetCount(), selected);
    }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Pickup: Exchange(pickup, readAccess, value); break;
        case Property_Priority: Exchange(priority, readAccess, value); break;
        case Property_Address: Exchange(address, readAccess, value); break;
        case Property_Totals: Exchange(totals, readAccess, value); break;
        case Property_Details: Exchange(details, readAccess, value); break;
        case Property_Payment: Exchange(payment, readAccess, value); break;
        case Property_Notes:
            if (readAccess)
                value.SetXmlCollection(notes);
            break;
        }
    }
    void Init() override
    {
        for (KdVariant* property : {&pickup, &priority, &address, &totals, &details, &payment})
            property->Clear();
        selected.clear();
        notes->Clear();
    }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_Element, "delivery", NAMESPACE,
                                       -1, true, false),
                new CElementInfo*[8]{
                    new CElementInfoChoicePrimOpt("pickup", NAMESPACE, Property_Pickup, ItemType_string, nullptr,
                                                  kPreserve, kNoFacets),
                    new CElementInfoChoiceEnumOpt("priority", NAMESPACE, Property_Priority, &PriorityToString,
                                                  &PriorityFromString),
                    new CElementInfoChoiceClsOpt("address", NAMESPACE, Property_Address, XmlElementType_Element,
                                                 &CreateObject, ClassId_USAddress),
                    new CElementInfoChoiceClsOpt("OrderTotals", NAMESPACE, Property_Totals,
                                                 XmlElementType_PseudoChild, &CreateObject, ClassId_OrderTotals),
                    new CElementInfoChoiceAbsClsOpt("details", NAMESPACE, Property_Details, XmlElementType_Element,
                                                    &CProductDetailsFactory::CreateObject),
                    new CElementInfoChoiceClsOpt("payment", NAMESPACE, Property_Payment, XmlElementType_Element,
                                                 &CreateTestObject, ClassId_Payment),
                    new CElementInfoChoiceClsCol("note", NAMESPACE, Property_Notes, XmlElementType_Element),
                    nullptr},
                new CAttributeInfo*[1]{nullptr}};
    }

    KdVariant pickup, priority, address, totals, details, payment;
    CSmartPtr<CNoteCol> notes;
    std::string selected;  // the alternative chosen by the setters
};

// Contact: an all-group.
class CContact : public CGenerated<CContact> {
public:
    enum Property { Property_Name, Property_Age, Property_Priority, Property_Address, Property_Totals };

    CContact() { SetElementName("contact"), Init(); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Name: Exchange(name, readAccess, value); break;
        case Property_Age: Exchange(age, readAccess, value); break;
        case Property_Priority: Exchange(priority, readAccess, value); break;
        case Property_Address: Exchange(address, readAccess, value); break;
        case Property_Totals: Exchange(totals, readAccess, value); break;
        }
    }
    void Init() override
    {
        for (KdVariant* property : {&name, &age, &priority, &totals})
            property->Clear();
        address.SetXmlObject(CreateObject(ClassId_USAddress, "address"));
    }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_All, XmlElementType_Element, "contact", NAMESPACE, -1,
                                       true, false),
                new CElementInfo*[6]{
                    new CElementInfoAllPrimMnd("name", NAMESPACE, Property_Name, ItemType_string, nullptr, kPreserve,
                                               kNoFacets),
                    new CElementInfoAllPrimOpt("age", NAMESPACE, Property_Age, ItemType_i4, nullptr, kCollapse,
                                               kNoFacets),
                    new CElementInfoAllEnumMnd("priority", NAMESPACE, Property_Priority, &PriorityToString,
                                               &PriorityFromString),
                    new CElementInfoAllClsMnd("address", NAMESPACE, Property_Address, XmlElementType_Element,
                                              &CreateObject, ClassId_USAddress, true),
                    new CElementInfoAllClsOpt("OrderTotals", NAMESPACE, Property_Totals, XmlElementType_PseudoChild,
                                              &CreateObject, ClassId_OrderTotals),
                    nullptr},
                new CAttributeInfo*[1]{nullptr}};
    }

    KdVariant name, age, priority, address, totals;
};

// Invoice: attributes of every kind, the wildcard last; a model group and an
// optional choice.
class CInvoice : public CGenerated<CInvoice> {
public:
    enum Property {
        Property_Terms, Property_Payment, Property_Id, Property_Rate,
        Property_Lang, Property_Status, Property_Priority, Property_Extra
    };

    CInvoice() { SetElementName("invoice"), Init(); }

    void AccessProperty(int propertyId, bool readAccess, KdVariant& value) override
    {
        switch (propertyId) {
        case Property_Terms: Exchange(terms, readAccess, value); break;
        case Property_Payment: Exchange(payment, readAccess, value); break;
        case Property_Id: Exchange(id, readAccess, value); break;
        case Property_Rate: Exchange(rate, readAccess, value); break;
        case Property_Lang: Exchange(lang, readAccess, value); break;
        case Property_Status: Exchange(status, readAccess, value); break;
        case Property_Priority: Exchange(priority, readAccess, value); break;
        case Property_Extra: Exchange(extra, readAccess, value); break;
        }
    }
    void Init() override
    {
        for (KdVariant* property : {&payment, &id, &rate, &lang, &status, &priority, &extra})
            property->Clear();
        terms.SetXmlObject(CreateTestObject(ClassId_Terms, "Terms"));
    }
    CTerms& Terms() const { return static_cast<CTerms&>(*terms.GetXmlObject()); }
    static CTables MakeTables()
    {
        return {new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, "invoice", NAMESPACE,
                                       -1, true, false),
                new CElementInfo*[3]{
                    new CElementInfoSeqClsMnd("Terms", NAMESPACE, Property_Terms, XmlElementType_PseudoChild,
                                              &CreateTestObject, ClassId_Terms, false),
                    new CElementInfoSeqClsOpt("payment", NAMESPACE, Property_Payment, XmlElementType_Element,
                                              &CreateTestObject, ClassId_Payment),
                    nullptr},
                new CAttributeInfo*[7]{
                    new CAttributeInfoPrimitive("id", "", Property_Id, false, ItemType_ui4, nullptr, kCollapse,
                                                kNoFacets, nullptr),
                    new CAttributeInfoPrimitive("rate", "", Property_Rate, true, ItemType_r8, nullptr, kCollapse,
                                                kNoFacets, "1.0"),
                    new CAttributeInfoPrimitive("lang", "urn:ext", Property_Lang, true, ItemType_string, nullptr,
                                                kPreserve, kNoFacets, nullptr),
                    new CAttributeInfoEnum("status", "", Property_Status, true, &PriorityToString,
                                           &PriorityFromString, "normal"),
                    // Required, with a default that only an optional attribute may drop.
                    new CAttributeInfoEnum("priority", "", Property_Priority, false, &PriorityToString,
                                           &PriorityFromString, "normal"),
                    new CAttributeInfoAny("", "", Property_Extra, false, "##other", NAMESPACE, nullptr),
                    nullptr}};
    }

    KdVariant terms, payment, id, rate, lang, status, priority, extra;
};

inline CSmartPtr<CXmlObjectBase> CreateTestObject(int classId, char const* elementName)
{
    CSmartPtr<CXmlObjectBase> object;
    if (classId == ClassId_Payment)
        object = new CPayment();
    else if (classId == ClassId_Terms)
        object = new CTerms();
    else
        return CreateObject(classId, elementName);
    object->SetElementName(elementName);
    return object;
}

} // namespace BindingTest

#endif
