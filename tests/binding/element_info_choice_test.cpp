// Alternatives of an xs:choice: a leaf takes the element at the cursor or
// declines, never fails for a missing one, and takes back a store that came
// to nothing.
#include <gtest/gtest.h>

#include "binding/element_info_test_types.h"

using namespace ElementInfoTest;

namespace {

// Alternatives built on the properties of COrder.
struct CAlternatives {
    CElementInfoChoicePrimOpt note{"note", NAMESPACE, COrder::Property_Note, ItemType_string, nullptr,
                                   CWhitespaceUtils::WhitespaceRule_Preserve, NoFacets()};
    CElementInfoChoiceEnumOpt shade{"shade", NAMESPACE, COrder::Property_Shade, &ColourToString, &ColourFromString};
    CElementInfoChoiceClsOpt billTo{"billTo", NAMESPACE, COrder::Property_BillTo, XmlElementType_Element,
                                    &CreateObject, Class_Address};
    CElementInfoChoiceClsOpt totals{"OrderTotals", NAMESPACE, COrder::Property_Extra, XmlElementType_PseudoChild,
                                    &CreateObject, Class_OrderTotals};
    CElementInfoChoiceAbsClsOpt shape{"shape", NAMESPACE, COrder::Property_Shape, XmlElementType_Element,
                                      &CreateShape};
    CElementInfoChoiceClsCol items{"item", NAMESPACE, COrder::Property_Items, XmlElementType_Element};

    std::vector<CElementInfo*> All() { return {&note, &shade, &billTo, &totals, &shape, &items}; }
};

} // namespace

TEST(ElementInfoChoiceTest, UsedUpCursorMakesEveryLeafDeclineAndMakesNoObject)
{
    CAlternatives alternatives;
    CEntryCall call("<order xmlns='urn:po'/>");
    for (CElementInfo* entry : alternatives.All())
        EXPECT_FALSE(call.Offer(entry, XmlElementType_Element)) << entry->GetElementName();
    EXPECT_FALSE(call.order->hasNote);
    EXPECT_FALSE(call.order->billTo);
    EXPECT_FALSE(call.order->extra);
    EXPECT_FALSE(call.order->shape);
}

TEST(ElementInfoChoiceTest, PseudoAlternativeThatConsumesNothingIsCleared)
{
    CAlternatives alternatives;
    CEntryCall call("<order xmlns='urn:po'><note/></order>");
    call.order->extra = new COrderTotals();
    EXPECT_FALSE(call.Offer(&alternatives.totals, XmlElementType_Element));
    EXPECT_FALSE(call.order->extra);
    EXPECT_EQ(call.cursor, call.Child(0));
    EXPECT_TRUE(call.Offer(&alternatives.note, XmlElementType_Element));
    EXPECT_TRUE(call.order->hasNote);
}

TEST(ElementInfoChoiceTest, AbstractAlternativeWithoutAClassStoresNullAndDeclines)
{
    CAlternatives alternatives;
    CEntryCall call("<order xmlns='urn:po'><shape kind='square'/><shape kind='circle'><radius>1</radius></shape>"
                    "</order>");
    call.order->shape = new CCircle();
    EXPECT_FALSE(call.Offer(&alternatives.shape, XmlElementType_Element));
    EXPECT_FALSE(call.order->shape);
    EXPECT_EQ(call.cursor, call.Child(0));

    call.cursor = call.Child(1);
    EXPECT_TRUE(call.Offer(&alternatives.shape, XmlElementType_Element));
    ASSERT_TRUE(call.order->shape);
    EXPECT_EQ(static_cast<CCircle*>(call.order->shape.get())->radius, 1);
}

TEST(ElementInfoChoiceTest, ObjectIsStoredBeforeItsContentIsRead)
{
    CAlternatives alternatives;
    CEntryCall call("<order xmlns='urn:po'><billTo><city>c</city></billTo></order>");
    EXPECT_EQ(call.Failure(&alternatives.billTo, XmlElementType_Element),
              "Failed to process the element [billTo]\nFailed to find a required element [street]");
    // The half-read object stays.
    EXPECT_TRUE(call.order->billTo);
}

TEST(ElementInfoChoiceTest, CollectionCountIsCheckedOnlyWhenItTookSomething)
{
    CAlternatives alternatives;
    CEntryCall call("<order xmlns='urn:po'><note/><item/><item/><item/><item/></order>");
    EXPECT_FALSE(call.Offer(&alternatives.items, XmlElementType_Element));
    EXPECT_EQ(call.cursor, call.Child(0));

    call.cursor = call.Child(1);
    EXPECT_EQ(call.Failure(&alternatives.items, XmlElementType_Element),
              "The Maximum number of [item] elements allowed in this collection is 3");
    CXmlSerializationContext lenient;
    lenient.SetIgnoreInvalidCollectionCounts(true);
    call.order->items->Clear();
    call.cursor = call.Child(1);
    EXPECT_TRUE(call.Offer(&alternatives.items, XmlElementType_Element, lenient));
    EXPECT_EQ(call.cursor, nullptr);

    // Output checks no count: four go out, none declines.
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    EXPECT_TRUE(alternatives.items.ElementToXml(CXmlSerializationContext::m_defaultContext, call.order, &writer));
    call.order->items->Clear();
    EXPECT_FALSE(alternatives.items.ElementToXml(CXmlSerializationContext::m_defaultContext, call.order, &writer));
    EXPECT_EQ(std::string(stream.GetText()), "<AA:item xmlns:AA=\"urn:po\"/><AA:item xmlns:AA=\"urn:po\"/>"
                                             "<AA:item xmlns:AA=\"urn:po\"/><AA:item xmlns:AA=\"urn:po\"/>");
}
