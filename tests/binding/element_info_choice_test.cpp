// Alternatives of an xs:choice: a leaf takes the element at the cursor or
// declines, never fails for a missing one, and takes back a store that came
// to nothing. Then the helpers with which generated setters keep one
// alternative selected.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

using namespace BindingTest;

namespace {

// The helpers themselves, for the cases the setters do not reach.
struct CExposedDelivery : CDelivery {
    using CXmlObjectBase::Choice_CollectionChanged;
    using CXmlObjectBase::Choice_Read_Collection;
    using CXmlObjectBase::Choice_SetElementValid;
    using CXmlObjectBase::Throw_IfPropertyIsNull;
};

CXmlObjectBase* ObjectOf(KdVariant const& property) { return property.GetXmlObject().get(); }

} // namespace

TEST(ElementInfoChoiceTest, AtTheEndOfTheChildrenEveryAlternativeDeclinesAndMakesNothing)
{
    CSmartPtr<CDelivery> delivery = new CDelivery();
    CCursor cursor("<delivery xmlns='urn:kdbind:example:po'/>");
    for (CElementInfo** entry = delivery->GetClassElementInfo(); *entry; ++entry)
        EXPECT_FALSE(cursor.Offer(*entry, *delivery, XmlElementType_Element)) << (*entry)->GetElementName();
    for (KdVariant const* property : {&delivery->pickup, &delivery->priority, &delivery->address, &delivery->totals,
                                      &delivery->details, &delivery->payment})
        EXPECT_FALSE(property->IsValid());
    EXPECT_EQ(Failure([&] { EntryOf(*delivery, "pickup")->Validate(Context::m_defaultContext, delivery, true, true); }),
              "Not implemented, should never be called");
}

TEST(ElementInfoChoiceTest, ObjectsAreStoredBeforeReadingAndTakenBackWhenNothingCame)
{
    CSmartPtr<CDelivery> delivery = new CDelivery();
    CCursor cursor("<r xmlns='urn:kdbind:example:po' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'><note/>"
                   "<details xsi:type='Unknown'/><details xsi:type='BookDetails'><author>A</author><isbn>I</isbn>"
                   "</details><address><name>B</name></address></r>");
    // A model group that consumed nothing is cleared, whatever it held.
    delivery->totals.SetXmlObject(new COrderTotals());
    EXPECT_FALSE(cursor.Offer(EntryOf(*delivery, "OrderTotals"), *delivery, XmlElementType_Element));
    EXPECT_EQ(ObjectOf(delivery->totals), nullptr);
    EXPECT_EQ(cursor.at, cursor.Child(0));

    // A substitution without a class stores null and declines, so that the
    // walk tries the next alternative.
    cursor.at = cursor.Child(1);
    delivery->details.SetXmlObject(new CBookDetails());
    EXPECT_FALSE(cursor.Offer(EntryOf(*delivery, "details"), *delivery, XmlElementType_Element));
    EXPECT_EQ(ObjectOf(delivery->details), nullptr);
    EXPECT_EQ(cursor.at, cursor.Child(1));
    cursor.at = cursor.Child(2);
    EXPECT_TRUE(cursor.Offer(EntryOf(*delivery, "details"), *delivery, XmlElementType_Element));
    EXPECT_EQ(static_cast<CBookDetails*>(ObjectOf(delivery->details))->GetAuthor(), "A");

    // A failing read leaves the half-read object in place.
    EXPECT_EQ(Failure([&] { cursor.Offer(EntryOf(*delivery, "address"), *delivery, XmlElementType_Element); }),
              "Failed to process the element [address]\nFailed to find a required element [street]");
    ASSERT_NE(ObjectOf(delivery->address), nullptr);
    EXPECT_EQ(static_cast<CUSAddress*>(ObjectOf(delivery->address))->GetName(), "B");
}

TEST(ElementInfoChoiceTest, CollectionCountIsCheckedOnlyWhenItTookSomething)
{
    CSmartPtr<CDelivery> delivery = new CDelivery();
    CElementInfo* notes = EntryOf(*delivery, "note");
    CCursor cursor("<r xmlns='urn:kdbind:example:po'><pickup/><note/><note/><note/><note/></r>");
    EXPECT_FALSE(cursor.Offer(notes, *delivery, XmlElementType_Element));
    EXPECT_EQ(cursor.at, cursor.Child(0));
    cursor.at = cursor.Child(1);
    EXPECT_EQ(Failure([&] { cursor.Offer(notes, *delivery, XmlElementType_Element); }),
              "The Maximum number of [note] elements allowed in this collection is 3");
    delivery->notes->Clear();
    cursor.at = cursor.Child(1);
    EXPECT_TRUE(cursor.Offer(notes, *delivery, XmlElementType_Element,
                             With(&Context::SetIgnoreInvalidCollectionCounts)));
    EXPECT_EQ(cursor.at, nullptr);
}

TEST(ChoiceHelpersTest, SettersAndCollectionEventsKeepOneAlternativeSelected)
{
    CSmartPtr<CDelivery> delivery = new CDelivery();
    CSmartPtr<CUSAddress> address = new CUSAddress();
    address->SetElementName("address");
    delivery->SetAddress(address);
    EXPECT_EQ(delivery->selected, "Address");
    CSmartPtr<CNote> note = new CNote("n");  // a refused item stays with its holder
    EXPECT_EQ(Failure([&] { delivery->notes->Add(note); }),
              "The Property [Address] is already set. Only one element within this class bay be set at a time");
    EXPECT_EQ(delivery->notes->GetCount(), 0);

    delivery->SetAddress(nullptr);
    EXPECT_EQ(delivery->selected, "");
    delivery->notes->Add(note);
    EXPECT_EQ(delivery->selected, "Notes");
    EXPECT_EQ(Failure([&] { delivery->SetAddress(address); }),
              "The Property [Notes] is already set. Only one element within this class bay be set at a time");
    delivery->SetAddress(nullptr);  // clearing another alternative is ignored
    EXPECT_EQ(delivery->selected, "Notes");
    delivery->notes->Clear();
    EXPECT_EQ(delivery->selected, "");
    delivery->SetAddress(nullptr);  // clearing with nothing selected selects
    EXPECT_EQ(delivery->selected, "Address");

    address->SetElementName("shipTo");
    EXPECT_EQ(Failure([&] { delivery->SetAddress(address); }),
              "This property requrires an element with the name address the element being set has the element name "
              "shipTo");
}

TEST(ChoiceHelpersTest, GuardsConfirmationsAndCollectionReads)
{
    CSmartPtr<CExposedDelivery> delivery = new CExposedDelivery();
    EXPECT_EQ(Failure([&] { delivery->Throw_IfPropertyIsNull(nullptr, "ShipTo"); }),
              "The Property [ShipTo] is mandatory, it may node be NULL");
    // Marking valid confirms a selection and never makes one: an empty
    // selector fails too, in the wording without brackets.
    std::string selected;
    EXPECT_EQ(Failure([&] { delivery->Choice_SetElementValid(true, "Card", selected); }),
              "The Property  is already set. Only one element within this class bay be set at a time");
    delivery->Choice_SetElementValid(false, "Card", (selected = "Other"));
    EXPECT_EQ(selected, "");
    selected = "Other";
    delivery->Choice_CollectionChanged("Notes", 0, selected);
    EXPECT_THROW(delivery->Choice_CollectionChanged("Notes", 1, selected), CKdInvalidStateException);
    EXPECT_EQ(selected, "Other");

    CCursor cursor("<r xmlns='urn:kdbind:example:po'><note>1</note><note>2</note><other/><note/><note/><note/>"
                   "<note/></r>");
    CXmlElement* const parent = cursor.document.GetDocumentElement();
    CSmartPtr<CNoteCol> notes = new CNoteCol();
    long count = 1;  // an earlier alternative took elements
    delivery->Choice_Read_Collection(notes, parent, cursor.at, count, Context::m_defaultContext);
    EXPECT_EQ(cursor.at, cursor.Child(0));
    count = 0;
    delivery->Choice_Read_Collection(notes, parent, cursor.at, count, Context::m_defaultContext);
    EXPECT_EQ(cursor.at, cursor.Child(2));
    EXPECT_EQ(notes->GetCount(), 2);
    EXPECT_EQ(count, 1);
    count = 0;
    delivery->Choice_Read_Collection(notes, parent, cursor.at, count, Context::m_defaultContext);
    EXPECT_EQ(count, 0);  // nothing to take
    // Too many: the cursor has moved on when the count check fails.
    cursor.at = cursor.Child(3);
    notes = new CNoteCol();
    EXPECT_THROW(delivery->Choice_Read_Collection(notes, parent, cursor.at, count, Context::m_defaultContext),
                 CKdValidationException);
    EXPECT_EQ(cursor.at, nullptr);
    EXPECT_EQ(count, 0);
}
