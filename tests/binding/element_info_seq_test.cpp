// The children of a sequence: the search of mandatory leaves and the options
// that relax it, pseudo children, substitution, collections and enumerations.
// Through purchase orders, and through single entries where an owner without
// a tag is needed.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

using namespace BindingTest;

namespace {

std::string const kMissing = "Failed to process the element [purchaseOrder]\nFailed to find a required element ";

} // namespace

TEST(ElementInfoSeqTest, MandatoryChildMustStandAtTheCursorUnlessAnOptionSaysOtherwise)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    EXPECT_EQ(LoadFailure(*order, OrderXml("<junk/>" + kShipTo + kLineItem + kTotals)), kMissing + "[shipTo]");
    EXPECT_EQ(LoadFailure(*order, OrderXml("<shipTo xmlns=''/>" + kLineItem + kTotals)), kMissing + "[shipTo]");

    // Unknown elements are skipped: by the search of a mandatory child, by a
    // primitive of the model group, and by the walk at the end.
    Context const skipping = With(&Context::SetIgnoreUnknownElements);
    EXPECT_EQ(LoadFailure(*order, OrderXml("<a/>" + kShipTo + kLineItem + "<b/><subtotal>2</subtotal><c/>"
                                           "<itemCount>1</itemCount><d/>"),
                          skipping),
              "<no exception>");
    EXPECT_EQ(order->GetTotals().GetSubtotal(), 2);
    CCursor cursor("<r xmlns='urn:kdbind:example:po'><a/><b/></r>");
    EXPECT_EQ(Failure([&] { cursor.Offer(EntryOf(*order, "shipTo"), *order, XmlElementType_Element, skipping); }),
              "Failed to find a required element [shipTo]");
    EXPECT_EQ(cursor.at, nullptr);

    // A missing child is accepted where it would be, without a search. The
    // model group is not covered, not even at the end of the children.
    Context const lenient =
        With(&Context::SetIgnoreMissingMandatoryElements, &Context::SetIgnoreInvalidCollectionCounts);
    cursor.at = cursor.Child(0);
    EXPECT_TRUE(cursor.Offer(EntryOf(*order, "shipTo"), *order, XmlElementType_Element, lenient));
    EXPECT_EQ(cursor.at, cursor.Child(0));
    EXPECT_EQ(LoadFailure(*order, OrderXml(""), lenient), kMissing + "[OrderTotals]");
}

TEST(ElementInfoSeqTest, MandatoryLeavesInAnOwnerWithoutATagDecline)
{
    CSmartPtr<COrderTotals> totals = new COrderTotals();
    CSmartPtr<CDelivery> delivery = new CDelivery();
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    CElementInfoSeqEnumMnd priority("priority", NAMESPACE, CDelivery::Property_Priority, &PriorityToString,
                                    &PriorityFromString);
    CCursor cursor("<r xmlns='urn:kdbind:example:po'><a/><subtotal>5</subtotal><priority>low</priority></r>");
    Context const skipping = With(&Context::SetIgnoreUnknownElements);

    // A primitive skips unknown elements when allowed, and what it skipped
    // stays skipped even when it declines in the end.
    EXPECT_FALSE(cursor.Offer(EntryOf(*totals, "subtotal"), *totals, XmlElementType_PseudoChild));
    EXPECT_EQ(cursor.at, cursor.Child(0));
    EXPECT_TRUE(cursor.Offer(EntryOf(*totals, "subtotal"), *totals, XmlElementType_PseudoChild, skipping));
    EXPECT_EQ(totals->GetSubtotal(), 5);
    EXPECT_FALSE(cursor.Offer(EntryOf(*totals, "subtotal"), *totals, XmlElementType_PseudoChild, skipping));
    EXPECT_EQ(cursor.at, nullptr);

    // An enumeration and a tagged class do not search.
    cursor.at = cursor.Child(0);
    EXPECT_FALSE(cursor.Offer(&priority, *delivery, XmlElementType_PseudoGroup, skipping));
    EXPECT_FALSE(cursor.Offer(EntryOf(*order, "shipTo"), *order, XmlElementType_PseudoChild, skipping));
    EXPECT_EQ(cursor.at, cursor.Child(0));
    cursor.at = cursor.Child(2);
    EXPECT_TRUE(cursor.Offer(&priority, *delivery, XmlElementType_PseudoGroup));
    EXPECT_EQ(delivery->priority.GetI4(), Priority_low);

    EXPECT_EQ(Failure([&] { priority.Validate(Context::m_defaultContext, delivery, true, true); }),
              "Not implemented, should never be called");
}

TEST(ElementInfoSeqTest, ModelGroupChildConsumesSomethingOrIsAbsent)
{
    // Content required: consuming nothing fails in a tagged owner and
    // declines in one without a tag.
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    CElementInfo* required = EntryOf(*order, "OrderTotals");
    CCursor cursor("<r xmlns='urn:kdbind:example:po'><note/></r>");
    EXPECT_EQ(Failure([&] { cursor.Offer(required, *order, XmlElementType_Element); }),
              "Failed to find a required element [OrderTotals]");
    EXPECT_FALSE(cursor.Offer(required, *order, XmlElementType_PseudoChild));
    cursor.at = nullptr;
    EXPECT_FALSE(cursor.Offer(required, *order, XmlElementType_PseudoChild));

    // Without it, consuming nothing is done; under IgnoreUnknownElements a
    // tagged owner is refused, so that its walk skips the element and retries.
    CElementInfoSeqClsMnd lax("OrderTotals", NAMESPACE, required->GetPropertyId(), XmlElementType_PseudoChild,
                              &CreateObject, ClassId_OrderTotals, false);
    Context const skipping = With(&Context::SetIgnoreUnknownElements);
    cursor.at = cursor.Child(0);
    EXPECT_TRUE(cursor.Offer(&lax, *order, XmlElementType_Element));
    EXPECT_FALSE(cursor.Offer(&lax, *order, XmlElementType_Element, skipping));
    EXPECT_TRUE(cursor.Offer(&lax, *order, XmlElementType_PseudoChild, skipping));
    EXPECT_EQ(cursor.at, cursor.Child(0));

    // An optional one that consumes nothing leaves no object behind.
    CElementInfoSeqClsOpt optional("OrderTotals", NAMESPACE, CDelivery::Property_Totals, XmlElementType_PseudoChild,
                                   &CreateObject, ClassId_OrderTotals);
    CSmartPtr<CDelivery> delivery = new CDelivery();
    CCursor totals("<r xmlns='urn:kdbind:example:po'><note/><subtotal>4</subtotal><itemCount>1</itemCount></r>");
    EXPECT_TRUE(totals.Offer(&optional, *delivery, XmlElementType_Element));
    EXPECT_FALSE(delivery->totals.IsValid());
    EXPECT_EQ(totals.at, totals.Child(0));
    totals.at = totals.Child(1);
    EXPECT_TRUE(totals.Offer(&optional, *delivery, XmlElementType_Element));
    ASSERT_TRUE(delivery->totals.IsValid());
    EXPECT_EQ(static_cast<COrderTotals*>(delivery->totals.GetXmlObject().get())->GetSubtotal(), 4);
    EXPECT_EQ(totals.at, nullptr);
}

TEST(ElementInfoSeqTest, OptionalObjectIsStoredOnlyOnceItsContentWasRead)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    EXPECT_EQ(LoadFailure(*order, OrderXml(kShipTo + "<billTo><name>B</name></billTo>" + kLineItem + kTotals)),
              "Failed to process the element [purchaseOrder]\nFailed to process the element [billTo]\n"
              "Failed to find a required element [street]");
    EXPECT_EQ(order->GetBillTo(), nullptr);
}

TEST(ElementInfoSeqTest, SubstitutionWithoutAClassFailsWhateverTheOptions)
{
    CSmartPtr<CLineItem> item = new CLineItem();
    CElementInfo* optional = EntryOf(*item, "details");
    CElementInfoSeqAbsClsMnd mandatory("details", NAMESPACE, optional->GetPropertyId(), XmlElementType_Element,
                                       &CProductDetailsFactory::CreateObject);
    CCursor cursor("<r xmlns='urn:kdbind:example:po' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'><junk/>"
                   "<details xsi:type='Unknown'/><details xsi:type='GadgetDetails'><voltage>2</voltage></details></r>");
    // Absent, or no class for the element: a tagged owner fails, one without a tag declines.
    for (Context const& context : {With(&Context::SetIgnoreUnknownElements),
                                   With(&Context::SetIgnoreMissingMandatoryElements)}) {
        for (int child : {0, 1, 3}) {
            cursor.at = cursor.Child(child);
            EXPECT_EQ(Failure([&] { cursor.Offer(&mandatory, *item, XmlElementType_Element, context); }),
                      "Failed to find a suitable substitution element for [details]");
            EXPECT_FALSE(cursor.Offer(&mandatory, *item, XmlElementType_PseudoChild, context));
            EXPECT_EQ(cursor.at, cursor.Child(child));
        }
    }
    // The optional form passes over both without moving.
    for (int child : {0, 1}) {
        cursor.at = cursor.Child(child);
        EXPECT_TRUE(cursor.Offer(optional, *item, XmlElementType_Element));
        EXPECT_EQ(cursor.at, cursor.Child(child));
    }
    EXPECT_EQ(item->GetDetails(), nullptr);
    cursor.at = cursor.Child(2);
    EXPECT_TRUE(cursor.Offer(&mandatory, *item, XmlElementType_Element));
    ASSERT_NE(dynamic_cast<CGadgetDetails*>(item->GetDetails()), nullptr);
    EXPECT_EQ(static_cast<CGadgetDetails*>(item->GetDetails())->GetVoltage(), 2);
    EXPECT_EQ(cursor.at, nullptr);
}

TEST(ElementInfoSeqTest, CollectionsEnumerationsAndWildcardsPassTheirFailuresOn)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    EXPECT_EQ(LoadFailure(*order, OrderXml(kShipTo + kTotals), With(&Context::SetIgnoreInvalidCollectionCounts)),
              "<no exception>");
    EXPECT_EQ(LoadFailure(*order, OrderXml(kShipTo + "<priority>mauve</priority>" + kLineItem + kTotals)),
              "Failed to process the element [purchaseOrder]\nInvalid value [mauve] for the enumeration [Priority]");

    // A collection takes all it can before its count is checked.
    CSmartPtr<CDelivery> delivery = new CDelivery();
    CElementInfoSeqClsCol notes("note", NAMESPACE, CDelivery::Property_Notes, XmlElementType_Element);
    CCursor cursor("<r xmlns='urn:kdbind:example:po'><note/><note/><note/><note/><pickup/></r>");
    EXPECT_EQ(Failure([&] { cursor.Offer(&notes, *delivery, XmlElementType_PseudoChild); }),
              "The Maximum number of [note] elements allowed in this collection is 3");
    EXPECT_EQ(cursor.at, cursor.Child(4));

    // A mandatory wildcard at the end of the children fails whatever the options.
    CElementInfoSeqUntpdMnd any("AnyElement", "urn:any", CDelivery::Property_Details, "##any", NAMESPACE);
    cursor.at = nullptr;
    for (XmlElementType owner : {XmlElementType_Element, XmlElementType_PseudoChild})
        EXPECT_EQ(Failure([&] {
                      cursor.Offer(&any, *delivery, owner, With(&Context::SetIgnoreMissingMandatoryElements));
                  }),
                  "Failed to find a required element [AnyElement]");
}
