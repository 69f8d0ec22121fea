// What every element entry shares: matching, the wildcard's default
// namespace, and writing objects, primitives, enumerations and collections.
#include <gtest/gtest.h>

#include "binding/element_info_test_types.h"

using namespace ElementInfoTest;

namespace {

CXmlSerializationContext& DefaultNamespaceContext()
{
    static CXmlSerializationContext context;
    context.SetDefaultNamespaceURI(NAMESPACE);
    return context;
}

std::string Written(CXmlObjectBase const& object,
                    CXmlSerializationContext const& context = DefaultNamespaceContext())
{
    return object.ToXml(false, false, EOLType_LF, context);
}

std::string WriteFailure(CXmlObjectBase const& object,
                         CXmlSerializationContext const& context = DefaultNamespaceContext())
{
    try {
        Written(object, context);
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

// An order with every mandatory child set.
CSmartPtr<COrder> MinimalOrder()
{
    CSmartPtr<COrder> order = new COrder();
    order->id = 7;
    order->colour = Colour_Green;
    order->shipTo->street = "Main";
    order->totals->count = 2;
    order->items->Add(new CLineItem("pen"));
    return order;
}

// A primitive entry built without primitive information, so that any
// check of its facets fails.
class CUncheckedPrim : public CElementInfoSeq {
public:
    CUncheckedPrim() : CElementInfoSeq("id", NAMESPACE, COrder::Property_Id) {}
    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override
    {
        return ElementToXmlPrim(context, object, writer);
    }
    bool ElementFromXml(CXmlSerializationContext const&, CXmlGeneratedClass*, CXmlElement*, CXmlElement**,
                        char const*, XmlElementType) override
    {
        return false;
    }
};

} // namespace

TEST(ElementInfoTest, IsThisElementComparesNameExactlyAndNamespaceUnlessIgnored)
{
    CXmlDocument document;
    document.LoadXml("<r xmlns:o='urn:other'><id xmlns='urn:po'/><Id xmlns='urn:po'/><o:id/><id/></r>");
    CXmlElement* same = document.GetDocumentElement()->GetFirstElement();
    CXmlElement* otherCase = same->GetNextSiblingElement();
    CXmlElement* otherNamespace = otherCase->GetNextSiblingElement();
    CXmlElement* noNamespace = otherNamespace->GetNextSiblingElement();
    CElementInfoSeqPrimOpt entry("id", NAMESPACE, 0, ItemType_i4, nullptr, CWhitespaceUtils::WhitespaceRule_None,
                                 NoFacets());
    CElementInfoSeqPrimOpt local("id", "", 0, ItemType_i4, nullptr, CWhitespaceUtils::WhitespaceRule_None,
                                 NoFacets());

    CXmlSerializationContext context;
    EXPECT_TRUE(entry.IsThisElement(context, same));
    EXPECT_FALSE(entry.IsThisElement(context, nullptr));
    EXPECT_FALSE(entry.IsThisElement(context, otherCase));
    EXPECT_FALSE(entry.IsThisElement(context, otherNamespace));
    EXPECT_FALSE(entry.IsThisElement(context, noNamespace));
    EXPECT_TRUE(local.IsThisElement(context, noNamespace));
    EXPECT_FALSE(local.IsThisElement(context, same));

    CXmlSerializationContext ignoring;
    ignoring.SetIgnoreNamespaces(true);
    EXPECT_TRUE(entry.IsThisElement(ignoring, otherNamespace));
    EXPECT_TRUE(entry.IsThisElement(ignoring, noNamespace));
    EXPECT_FALSE(entry.IsThisElement(ignoring, otherCase));
    EXPECT_FALSE(entry.IsThisElement(ignoring, nullptr));

    CXmlSerializationContext schemaType2;
    schemaType2.SetSchemaType(SchemaType_IgnoreNamespaces);
    EXPECT_TRUE(entry.IsThisElement(schemaType2, otherNamespace));
}

TEST(ElementInfoTest, AnyDefaultNamespaceFollowsTheLeadingKeyword)
{
    struct Case {
        char const* spec;
        char const* owner;
        char const* expected;
    };
    Case const cases[] = {
        {"##any", "urn:owner", "urn:owner"},
        {"##other", "urn:owner", ""},
        {"##other", "", "DefaultNamespace"},
        {"##local", "urn:owner", ""},
        {"##targetNamespace", "urn:owner", "urn:target"},
        {"##targetNamespace ##local", "urn:owner", "urn:target"},
        {"##local ##any", "urn:owner", ""},
        {"urn:a urn:b", "urn:owner", ""},
        {"urn:a", "urn:owner", ""},
        {"#any ##any", "urn:owner", ""},
        {"##unknown ##any", "urn:owner", ""},
        {"", "urn:owner", ""},
    };
    for (Case const& c : cases)
        EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace(c.spec, c.owner, "urn:target"), c.expected) << c.spec;
}

TEST(ElementInfoTest, WritesEveryKindAndForwardsPseudoChildAttributes)
{
    CSmartPtr<COrder> order = MinimalOrder();
    EXPECT_EQ(Written(*order), "<order xmlns=\"urn:po\"><id>7</id><colour>green</colour><shipTo><street>Main</street>"
                               "</shipTo><count>2</count><item>pen</item></order>");

    order->totals->currency = "EUR";
    order->note = "";
    order->hasNote = true;
    order->shade = Colour_Blue;
    order->billTo = CreateObject(Class_Address, "billTo");
    order->shape = new CCircle();
    order->shape->SetElementName("shape");
    order->items->Add(new CLineItem("ink"));
    EXPECT_EQ(Written(*order), "<order xmlns=\"urn:po\" currency=\"EUR\"><id>7</id><colour>green</colour><note/>"
                               "<shade>blue</shade><shipTo><street>Main</street></shipTo><billTo/><count>2</count>"
                               "<shape kind=\"circle\"><radius>0</radius></shape><item>pen</item><item>ink</item>"
                               "</order>");
}

TEST(ElementInfoTest, MissingMandatoryChildrenWriteNothing)
{
    CSmartPtr<COrder> order = MinimalOrder();
    order->id = -1;
    order->colour = -1;
    order->shipTo = nullptr;
    order->totals = nullptr;
    EXPECT_EQ(Written(*order), "<order xmlns=\"urn:po\"><item>pen</item></order>");
}

TEST(ElementInfoTest, PrimitiveChecksOnlyASetValue)
{
    CSmartPtr<COrder> order = MinimalOrder();
    CUncheckedPrim entry;
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    order->id = -1;
    EXPECT_FALSE(entry.ElementToXml(DefaultNamespaceContext(), order, &writer));
    EXPECT_EQ(std::string(stream.GetText()), "");

    order->id = 3;
    try {
        entry.ElementToXml(DefaultNamespaceContext(), order, &writer);
        FAIL() << "no exception";
    } catch (CKdException const& e) {
        EXPECT_EQ(e.GetFullMessage(), "Cannot CheckRestriction for type: i4");
    }
}

TEST(ElementInfoTest, CollectionCountIsCheckedBeforeWritingUnlessIgnored)
{
    CSmartPtr<COrder> order = MinimalOrder();
    order->items->Clear();
    EXPECT_EQ(WriteFailure(*order), "Failed to convert the element [order] to XML\n"
                                    "The Minimum number of [item] elements allowed in this collection is 1");

    CXmlSerializationContext lenient(DefaultNamespaceContext());
    lenient.SetIgnoreInvalidCollectionCounts(true);
    EXPECT_EQ(Written(*order, lenient), "<order xmlns=\"urn:po\"><id>7</id><colour>green</colour><shipTo><street>"
                                        "Main</street></shipTo><count>2</count></order>");
}

TEST(ElementInfoTest, PseudoGroupKeepsItsAttributes)
{
    CSmartPtr<COrder> order = MinimalOrder();
    order->extra = CreateObject(Class_OrderTotals, "OrderTotals");
    static_cast<COrderTotals*>(order->extra.get())->currency = "USD";
    CElementInfoSeqClsOpt group("OrderTotals", NAMESPACE, COrder::Property_Extra, XmlElementType_PseudoGroup,
                                &CreateObject, Class_OrderTotals);
    CElementInfoSeqClsOpt child("OrderTotals", NAMESPACE, COrder::Property_Extra, XmlElementType_PseudoChild,
                                &CreateObject, Class_OrderTotals);
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    writer.WriteStartElement("order", "");
    group.PseudoChildAttributeToXml(DefaultNamespaceContext(), order, &writer);
    child.PseudoChildAttributeToXml(DefaultNamespaceContext(), order, &writer);
    writer.WriteEndElement();
    EXPECT_EQ(std::string(stream.GetText()), "<order currency=\"USD\"/>");
}

TEST(ElementInfoTest, SequenceAndChoiceEntriesRefuseValidate)
{
    COrder order;
    CElementInfoChoiceEnumOpt choice("shade", NAMESPACE, COrder::Property_Shade, &ColourToString, &ColourFromString);
    for (CElementInfo const* entry : {order.GetClassElementInfo()[0], static_cast<CElementInfo*>(&choice)}) {
        try {
            entry->Validate(CXmlSerializationContext::m_defaultContext, &order, true, true);
            ADD_FAILURE() << "no exception";
        } catch (CKdException const& e) {
            EXPECT_EQ(e.GetFullMessage(), "Not implemented, should never be called");
        }
    }
}
