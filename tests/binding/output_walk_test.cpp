// The output walk: what the root carries, the order of content, pseudo
// children, type attributes, choices, and failures as a path from the root.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

using namespace BindingTest;

namespace {

// An order with everything mandatory set and one line item.
CSmartPtr<CPurchaseOrder> NewOrder()
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->SetOrderDate(CDateTime(2004, 1, 2));
    order->GetShipTo().SetName("A");
    CSmartPtr<CLineItem> item = new CLineItem();
    item->SetPartNum("001-AA");
    order->GetLineItems().Add(item);
    order->GetTotals().SetItemCount(1);
    return order;
}

} // namespace

TEST(OutputWalkTest, OnlyTheRootCarriesTheContextsItemsAndContentFollowsTheTable)
{
    Context context;
    context.GetProcessingInstructions().push_back("<?first?>");
    context.GetProcessingInstructions().push_back("<?second?>");
    context.GetNamespaceAliases().Add("z", "urn:z");
    context.GetNamespaceAliases().Add("po", NAMESPACE);
    context.SetDefaultNamespaceURI("urn:d");
    context.SetInLineSchema("<s/>");
    CSmartPtr<CPurchaseOrder> order = NewOrder();
    order->SetPriority(Priority_urgent);
    order->GetTotals().SetShipping(CDecimal("2.5"));
    EXPECT_EQ(order->ToXml(true, false, EOLType_CRLF, context),
              "<?xml version=\"1.0\"?>\r\n<?first?>\r\n\r\n<?second?>\r\n\r\n"
              "<po:purchaseOrder xmlns=\"urn:d\" xmlns:po=\"urn:kdbind:example:po\" xmlns:z=\"urn:z\" "
              "orderDate=\"2004-01-02\" status=\"open\" \r\n<s/>\r\n>"
              "<po:shipTo country=\"US\"><po:name>A</po:name><po:street/><po:city/><po:state/><po:zip>0</po:zip>"
              "</po:shipTo><po:priority>urgent</po:priority><po:lineItem partNum=\"001-AA\"><po:productName/>"
              "<po:quantity>0</po:quantity><po:USPrice>0</po:USPrice></po:lineItem><po:subtotal>0</po:subtotal>"
              "<po:shipping>2.5</po:shipping><po:itemCount>1</po:itemCount></po:purchaseOrder>");
}

TEST(OutputWalkTest, TextComesLastAndMissingMandatoryChildrenWriteNothing)
{
    CSmartPtr<CNote> note = new CNote("a & b");
    note->lang.SetString("en");
    EXPECT_EQ(Written(*note), "<AA:note xmlns:AA=\"urn:kdbind:example:po\" lang=\"en\">a &amp; b</AA:note>");
    CSmartPtr<CContact> contact = new CContact();
    contact->address.SetXmlObject(nullptr);
    EXPECT_EQ(Written(*contact), "<AA:contact xmlns:AA=\"urn:kdbind:example:po\"/>");
}

TEST(OutputWalkTest, PseudoChildrenForwardTheirAttributesPseudoGroupsDoNot)
{
    CSmartPtr<CInvoice> invoice = new CInvoice();
    invoice->id.SetUI4(7);
    invoice->priority.SetI4(Priority_low);
    invoice->Terms().currency.SetString("EUR");
    invoice->Terms().days.SetI4(30);
    EXPECT_EQ(Written(*invoice), "<AA:invoice xmlns:AA=\"urn:kdbind:example:po\" id=\"7\" priority=\"low\" "
                                 "currency=\"EUR\"><AA:days>30</AA:days></AA:invoice>");

    // Entries on the properties of a delivery: its totals and its notes.
    CSmartPtr<CDelivery> delivery = new CDelivery();
    delivery->totals.SetXmlObject(CreateTestObject(ClassId_Terms, "Terms"));
    static_cast<CTerms*>(delivery->totals.GetXmlObject().get())->currency.SetString("USD");
    delivery->notes->Add(new CNote("x"));
    delivery->notes->GetAt(0)->lang.SetString("en");
    CElementInfoSeqClsOpt group("Terms", NAMESPACE, CDelivery::Property_Totals, XmlElementType_PseudoGroup,
                                &CreateTestObject, ClassId_Terms);
    CElementInfoSeqClsOpt child("Terms", NAMESPACE, CDelivery::Property_Totals, XmlElementType_PseudoChild,
                                &CreateTestObject, ClassId_Terms);
    CElementInfoSeqClsCol notes("note", NAMESPACE, CDelivery::Property_Notes, XmlElementType_PseudoChild);
    EXPECT_EQ(WrittenBy([&](CXmlWriter* writer) {
                  for (CElementInfo const* entry : std::initializer_list<CElementInfo const*>{&group, &child, &notes})
                      entry->PseudoChildAttributeToXml(Context::m_defaultContext, delivery, writer);
              }),
              "<e currency=\"USD\" lang=\"en\"/>");
}

TEST(OutputWalkTest, TypeAttributeOnlyUnderAnotherName)
{
    CSmartPtr<CBookDetails> book = new CBookDetails();
    EXPECT_EQ(Written(*book).find("type="), std::string::npos);
    book->SetElementName("details");
    EXPECT_EQ(Written(*book), "<AA:details xmlns:AA=\"urn:kdbind:example:po\" "
                              "xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" AB:type=\"AA:BookDetails\">"
                              "<AA:author/><AA:isbn/></AA:details>");
}

TEST(OutputWalkTest, ChoiceWritesTheFirstSetAlternativeAndMayBeEmptyOnlyWhenOptional)
{
    CSmartPtr<CDelivery> delivery = new CDelivery();
    EXPECT_EQ(Written(*delivery), "<AA:delivery xmlns:AA=\"urn:kdbind:example:po\"/>");  // optional alternatives
    delivery->priority.SetI4(Priority_low);
    delivery->pickup.SetString("door");
    EXPECT_EQ(Written(*delivery), "<AA:delivery xmlns:AA=\"urn:kdbind:example:po\"><AA:pickup>door</AA:pickup>"
                                  "</AA:delivery>");
    delivery->pickup.Clear();
    delivery->priority.Clear();
    // A collection alternative goes out whatever its count.
    for (char const* text : {"a", "b", "c", "d"})
        delivery->notes->Add(new CNote(text));
    EXPECT_EQ(Written(*delivery), "<AA:delivery xmlns:AA=\"urn:kdbind:example:po\"><AA:note>a</AA:note>"
                                  "<AA:note>b</AA:note><AA:note>c</AA:note><AA:note>d</AA:note></AA:delivery>");

    char const kEmptyChoice[] = "This element is a choice, and as such must have at one (and only one) valid item, "
                                "currently there are none set";
    CSmartPtr<CPayment> payment = new CPayment();
    EXPECT_EQ(Failure([&] { Written(*payment); }),
              "Failed to convert the element [payment] to XML\n" + std::string(kEmptyChoice));
    EXPECT_EQ(Written(*payment, With(&Context::SetIgnoreMissingChoice)),
              "<AA:payment xmlns:AA=\"urn:kdbind:example:po\"/>");

    // A known class alternative of a choice writes its child as optional; a
    // sequence does not.
    delivery = new CDelivery();
    delivery->payment.SetXmlObject(payment);
    EXPECT_EQ(Written(*delivery), "<AA:delivery xmlns:AA=\"urn:kdbind:example:po\"><AA:payment/></AA:delivery>");
    CSmartPtr<CInvoice> invoice = new CInvoice();
    invoice->id.SetUI4(7);
    invoice->priority.SetI4(Priority_low);
    invoice->payment.SetXmlObject(payment);
    EXPECT_EQ(Failure([&] { Written(*invoice); }), "Failed to convert the element [invoice] to XML\n"
                                                   "Failed to convert the element [payment] to XML\n" +
                                                       std::string(kEmptyChoice));
}

TEST(OutputWalkTest, FailuresReadAsThePathFromTheRootAndKeepTheFirstThrown)
{
    CSmartPtr<CPurchaseOrder> order = NewOrder();
    order->GetLineItems().Clear();
    EXPECT_EQ(Failure([&] { Written(*order); }),
              "Failed to convert the element [purchaseOrder] to XML\n"
              "The Minimum number of [lineItem] elements allowed in this collection is 1");
    EXPECT_EQ(Written(*order, With(&Context::SetIgnoreInvalidCollectionCounts)).find("lineItem"), std::string::npos);

    CSmartPtr<CInvoice> invoice = new CInvoice();
    invoice->id.SetUI4(7);
    invoice->priority.SetI4(9);
    try {
        Written(*invoice);
        FAIL() << "no exception";
    } catch (CKdValidationException const& e) {
        EXPECT_EQ(e.GetFullMessage(), "Failed to convert the element [invoice] to XML\n"
                                      "Failed to convert attributes to XML\n"
                                      "Invalid value [9] for the enumeration [Priority]");
        CKdException const* first = &e;
        while (first->GetInnerException())
            first = first->GetInnerException();
        EXPECT_NE(dynamic_cast<CKdInvalidValueException const*>(first), nullptr);
    }
}
