// Reading the children of a sequence: the search of mandatory leaves, the
// options that relax it, optional and pseudo children, substitution and
// collections. Through whole documents and through single entries.
#include <gtest/gtest.h>

#include "binding/element_info_test_types.h"

using namespace ElementInfoTest;

namespace {

// Order entries by table position.
enum { Id, ColourEntry, Note, Shade, ShipTo, BillTo, Totals, Shape, Items };

std::wstring Wide(std::string const& text) { return std::wstring(text.begin(), text.end()); }

// The wide form hands the context to the walk.
std::string LoadFailure(COrder& order, std::string const& xml,
                        CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext)
{
    try {
        order.FromXml(Wide(xml).c_str(), context);
    } catch (CKdException const& e) {
        return e.GetFullMessage();
    }
    return "<no exception>";
}

CXmlSerializationContext const& IgnoreUnknown()
{
    static CXmlSerializationContext context;
    context.SetIgnoreUnknownElements(true);
    return context;
}

CXmlSerializationContext const& IgnoreMissing()
{
    static CXmlSerializationContext context;
    context.SetIgnoreMissingMandatoryElements(true);
    return context;
}

char const kFull[] = "<order xmlns='urn:po' currency='EUR'><id> 7 </id><colour>blue</colour><note> a </note>"
                     "<shade>red</shade><shipTo><street>Main</street><city>Bath</city></shipTo>"
                     "<billTo><street>Side</street></billTo><count>3</count><shape kind='circle'><radius>4</radius>"
                     "</shape><item>pen</item><item>ink</item></order>";

} // namespace

TEST(ElementInfoSeqTest, ReadsEveryKindOfLeaf)
{
    CSmartPtr<COrder> order = new COrder();
    CAddress* shipTo = order->shipTo;
    order->FromXml(kFull);
    EXPECT_EQ(order->id, 7);
    EXPECT_EQ(order->colour, Colour_Blue);
    EXPECT_EQ(order->note, " a ");
    EXPECT_EQ(order->shade, Colour_Red);
    // The mandatory child is read into the object the owner holds.
    EXPECT_EQ(order->shipTo.get(), shipTo);
    EXPECT_EQ(shipTo->street, "Main");
    EXPECT_EQ(shipTo->city, "Bath");
    ASSERT_TRUE(order->billTo);
    EXPECT_EQ(order->billTo->GetElementName(), "billTo");
    EXPECT_EQ(static_cast<CAddress*>(order->billTo.get())->street, "Side");
    EXPECT_EQ(order->totals->count, 3);
    EXPECT_EQ(order->totals->currency, "EUR");
    ASSERT_TRUE(order->shape);
    EXPECT_EQ(static_cast<CCircle*>(order->shape.get())->radius, 4);
    ASSERT_EQ(order->items->GetCount(), 2);
    EXPECT_EQ(order->items->GetAt(1)->GetText(), "ink");
}

TEST(ElementInfoSeqTest, MandatoryLeafFailsOnAWrongOrMissingElement)
{
    COrder order;
    EXPECT_EQ(LoadFailure(order, "<order xmlns='urn:po'><junk/><id>1</id></order>"),
              "Failed to process the element [order]\nFailed to find a required element [id]");
    // The namespace counts, unless the context ignores namespaces.
    EXPECT_EQ(LoadFailure(order, "<order xmlns='urn:po'><id xmlns=''>1</id></order>"),
              "Failed to process the element [order]\nFailed to find a required element [id]");
    EXPECT_EQ(LoadFailure(order, "<order xmlns='urn:po'><id>1</id></order>"),
              "Failed to process the element [order]\nFailed to find a required element [colour]");
    EXPECT_EQ(LoadFailure(order, "<order xmlns='urn:po'><id>1</id><colour>red</colour><shipTo><city>c</city>"
                                 "</shipTo></order>"),
              "Failed to process the element [order]\nFailed to process the element [shipTo]\n"
              "Failed to find a required element [street]");
}

TEST(ElementInfoSeqTest, IgnoreUnknownElementsLetsAMandatoryLeafSearch)
{
    COrder order;
    EXPECT_EQ(LoadFailure(order,
                          "<order xmlns='urn:po'><junk/><id>1</id><more/><x/><colour>red</colour><shipTo><street>s"
                          "</street></shipTo><count>2</count><item/></order>",
                          IgnoreUnknown()),
              "<no exception>");
    EXPECT_EQ(order.id, 1);
    EXPECT_EQ(order.colour, Colour_Red);
    EXPECT_EQ(order.totals->count, 2);

    // The search runs to the end of the children and then fails.
    CEntryCall call("<order xmlns='urn:po'><a/><b/></order>");
    EXPECT_EQ(call.Failure(call.Entry(Id), XmlElementType_Element, IgnoreUnknown()),
              "Failed to find a required element [id]");
    EXPECT_EQ(call.cursor, nullptr);
}

TEST(ElementInfoSeqTest, IgnoreMissingMandatoryElementsLeavesTheCursorWhereItIs)
{
    CEntryCall call("<order xmlns='urn:po'><junk/><id>1</id><colour>red</colour></order>");
    for (int entry : {Id, ColourEntry, ShipTo}) {
        EXPECT_TRUE(call.Offer(call.Entry(entry), XmlElementType_Element, IgnoreMissing()));
        EXPECT_EQ(call.cursor, call.Child(0));
    }
    EXPECT_EQ(call.order->id, -1);

    // A pseudo child is not covered by the option, not even at a used-up cursor.
    COrder order;
    EXPECT_EQ(LoadFailure(order, "<order xmlns='urn:po'/>", IgnoreMissing()),
              "Failed to process the element [order]\nFailed to find a required element [OrderTotals]");
}

TEST(ElementInfoSeqTest, MandatoryLeavesInAPseudoOwnerDecline)
{
    // A primitive skips unknown elements when allowed, and what it skipped
    // stays skipped even when it declines in the end.
    CEntryCall call("<r xmlns='urn:po'><a/><id>5</id><colour>red</colour></r>");
    EXPECT_FALSE(call.Offer(call.Entry(Id), XmlElementType_PseudoChild));
    EXPECT_EQ(call.cursor, call.Child(0));
    EXPECT_TRUE(call.Offer(call.Entry(Id), XmlElementType_PseudoChild, IgnoreUnknown()));
    EXPECT_EQ(call.order->id, 5);
    EXPECT_EQ(call.cursor, call.Child(2));
    EXPECT_FALSE(call.Offer(call.Entry(Id), XmlElementType_PseudoChild, IgnoreUnknown()));
    EXPECT_EQ(call.cursor, nullptr);

    // An enumeration and a tagged class do not search.
    for (int entry : {ColourEntry, ShipTo}) {
        call.cursor = call.Child(0);
        EXPECT_FALSE(call.Offer(call.Entry(entry), XmlElementType_PseudoGroup, IgnoreUnknown()));
        EXPECT_EQ(call.cursor, call.Child(0));
    }
}

TEST(ElementInfoSeqTest, PseudoChildThatMustConsumeSomething)
{
    // contentRequired: consuming nothing fails in a tagged owner, declines in a pseudo one.
    CEntryCall call("<order xmlns='urn:po'><note/></order>");
    EXPECT_EQ(call.Failure(call.Entry(Totals), XmlElementType_Element),
              "Failed to find a required element [OrderTotals]");
    EXPECT_FALSE(call.Offer(call.Entry(Totals), XmlElementType_PseudoChild));
    call.cursor = nullptr;
    EXPECT_FALSE(call.Offer(call.Entry(Totals), XmlElementType_PseudoChild));

    // Without it, consuming nothing is done, or a refusal under IgnoreUnknownElements so
    // that the walk can skip the element and try again.
    CElementInfoSeqClsMnd lax("OrderTotals", NAMESPACE, COrder::Property_Totals, XmlElementType_PseudoChild,
                              &CreateObject, Class_OrderTotals, false);
    call.cursor = call.Child(0);
    EXPECT_TRUE(call.Offer(&lax, XmlElementType_Element));
    EXPECT_FALSE(call.Offer(&lax, XmlElementType_Element, IgnoreUnknown()));
    EXPECT_TRUE(call.Offer(&lax, XmlElementType_PseudoChild, IgnoreUnknown()));
    EXPECT_EQ(call.cursor, call.Child(0));

    COrder order;
    EXPECT_EQ(LoadFailure(order, "<order xmlns='urn:po'><id>1</id><colour>red</colour><shipTo><street>s</street>"
                                 "</shipTo><item/></order>"),
              "Failed to process the element [order]\nFailed to find a required element [OrderTotals]");
}

TEST(ElementInfoSeqTest, OptionalPseudoChildThatConsumesNothingLeavesNoObject)
{
    CElementInfoSeqClsOpt entry("OrderTotals", NAMESPACE, COrder::Property_Extra, XmlElementType_PseudoChild,
                                &CreateObject, Class_OrderTotals);
    CEntryCall call("<order xmlns='urn:po'><note/><count>4</count></order>");
    EXPECT_TRUE(call.Offer(&entry, XmlElementType_Element));
    EXPECT_FALSE(call.order->extra);
    EXPECT_EQ(call.cursor, call.Child(0));

    call.cursor = call.Child(1);
    EXPECT_TRUE(call.Offer(&entry, XmlElementType_Element));
    ASSERT_TRUE(call.order->extra);
    EXPECT_EQ(static_cast<COrderTotals*>(call.order->extra.get())->count, 4);
    EXPECT_EQ(call.cursor, nullptr);
}

TEST(ElementInfoSeqTest, OptionalObjectIsStoredOnlyAfterItsContentWasRead)
{
    CEntryCall call("<order xmlns='urn:po'><billTo><city>c</city></billTo></order>");
    EXPECT_EQ(call.Failure(call.Entry(BillTo), XmlElementType_Element),
              "Failed to process the element [billTo]\nFailed to find a required element [street]");
    EXPECT_FALSE(call.order->billTo);
}

TEST(ElementInfoSeqTest, Substitution)
{
    CElementInfoSeqAbsClsMnd mandatory("shape", NAMESPACE, COrder::Property_Shape, XmlElementType_Element,
                                       &CreateShape);
    // Absent, or no class for the element: a tagged owner fails whatever
    // the options, a pseudo owner declines.
    CEntryCall call("<order xmlns='urn:po'><junk/><shape kind='square'/><shape kind='circle'><radius>2</radius>"
                    "</shape></order>");
    for (CXmlSerializationContext const* context : {&IgnoreUnknown(), &IgnoreMissing()}) {
        for (int child : {0, 1, 3}) {
            call.cursor = call.Child(child);
            EXPECT_EQ(call.Failure(&mandatory, XmlElementType_Element, *context),
                      "Failed to find a suitable substitution element for [shape]");
            EXPECT_FALSE(call.Offer(&mandatory, XmlElementType_PseudoChild, *context));
            EXPECT_EQ(call.cursor, call.Child(child));
        }
    }
    EXPECT_FALSE(call.order->shape);

    // The optional form passes over both without moving.
    for (int child : {0, 1}) {
        call.cursor = call.Child(child);
        EXPECT_TRUE(call.Offer(call.Entry(Shape), XmlElementType_Element));
        EXPECT_EQ(call.cursor, call.Child(child));
        EXPECT_FALSE(call.order->shape);
    }
    call.cursor = call.Child(2);
    EXPECT_TRUE(call.Offer(&mandatory, XmlElementType_Element));
    ASSERT_TRUE(call.order->shape);
    EXPECT_EQ(static_cast<CCircle*>(call.order->shape.get())->radius, 2);
    EXPECT_EQ(call.cursor, nullptr);
}

TEST(ElementInfoSeqTest, CollectionCountIsCheckedUnlessIgnored)
{
    COrder order;
    std::string const noItems = "<order xmlns='urn:po'><id>1</id><colour>red</colour><shipTo><street>s</street>"
                                "</shipTo><count>2</count></order>";
    EXPECT_EQ(LoadFailure(order, noItems),
              "Failed to process the element [order]\n"
              "The Minimum number of [item] elements allowed in this collection is 1");
    CXmlSerializationContext lenient;
    lenient.SetIgnoreInvalidCollectionCounts(true);
    EXPECT_EQ(LoadFailure(order, noItems, lenient), "<no exception>");

    CEntryCall call("<order xmlns='urn:po'><item>a</item><item>b</item><item>c</item><item>d</item><note/></order>");
    EXPECT_EQ(call.Failure(call.Entry(Items), XmlElementType_PseudoChild),
              "The Maximum number of [item] elements allowed in this collection is 3");
    EXPECT_EQ(call.cursor, call.Child(4));
}

TEST(ElementInfoSeqTest, EnumerationTextGoesThroughTheGeneratedFunctions)
{
    CEntryCall call("<order xmlns='urn:po'><colour>green</colour><colour>mauve</colour></order>");
    EXPECT_TRUE(call.Offer(call.Entry(ColourEntry), XmlElementType_Element));
    EXPECT_EQ(call.order->colour, Colour_Green);
    // The generated function's failure passes through unchanged.
    EXPECT_EQ(call.Failure(call.Entry(ColourEntry), XmlElementType_Element), "[mauve] is no Colour");
    EXPECT_EQ(call.cursor, call.Child(1));
}

TEST(ElementInfoSeqTest, UntypedMandatoryEntryAtAUsedUpCursorFailsWhateverTheOptions)
{
    CElementInfoSeqUntpdMnd any("AnyElement", "urn:any", COrder::Property_Extra, "##any", NAMESPACE);
    CEntryCall call("<order xmlns='urn:po'/>");
    for (XmlElementType owner : {XmlElementType_Element, XmlElementType_PseudoChild})
        EXPECT_EQ(call.Failure(&any, owner, IgnoreMissing()), "Failed to find a required element [AnyElement]");
}
