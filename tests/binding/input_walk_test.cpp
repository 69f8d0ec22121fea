// The input walk: the document element, attributes, text, the narrow entry
// point's context, choices, and failures as a path from the root.
#include <gtest/gtest.h>

#include "binding/binding_test_types.h"

using namespace BindingTest;

namespace {

std::string const kLeftOver =
    "Failed read all the elements held within the element [%s]. The unexpected element [%s] remains un processed";

} // namespace

TEST(InputWalkTest, AnyRootLoadsFromAFreshObjectAndStrayTextIsDropped)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(OrderXml(kShipTo + AddressXml("billTo") + "<comment>c</comment>" + kLineItem + kTotals).c_str());
    ASSERT_NE(order->GetBillTo(), nullptr);
    // Each load starts from Init; the root's own name is taken.
    order->FromXml(("<order xmlns='urn:kdbind:example:po' orderDate='2004-01-02'>text" + kShipTo + "between" + kLineItem +
                    kTotals + "</order>")
                       .c_str());
    EXPECT_EQ(order->GetElementName(), "order");
    EXPECT_EQ(order->GetBillTo(), nullptr);
    EXPECT_FALSE(order->GetComment());
    EXPECT_EQ(order->GetLineItems().GetCount(), 1);

    CSmartPtr<CNote> note = new CNote();
    note->FromXml("<note xmlns='urn:kdbind:example:po' lang='en'> a &amp; b </note>");
    EXPECT_EQ(note->text, " a & b ");
    EXPECT_EQ(note->lang.GetString(), "en");
}

TEST(InputWalkTest, AttributesUnknownMissingAndOfTheSchemaInstance)
{
    CPurchaseOrder order;
    auto withAttributes = [](std::string const& attributes) {
        return OrderXml(kShipTo + kLineItem + kTotals, attributes);
    };
    EXPECT_EQ(LoadFailure(order, withAttributes("orderDate='2004-01-02' colour='red'"), With(&Context::SetIgnoreUnknownAttributes)),
              "<no exception>");
    EXPECT_EQ(LoadFailure(order, withAttributes("")),
              "Failed to process the element [purchaseOrder]\nFailed to find the required Attribute [orderDate]");
    // The type and the schema locations never count as unknown; other
    // attributes of the schema instance namespace do.
    std::string const xsi = "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' orderDate='2004-01-02' ";
    EXPECT_EQ(LoadFailure(order, withAttributes(xsi + "xsi:type='T' xsi:schemaLocation='a b' "
                                                      "xsi:noNamespaceSchemaLocation='c'")),
              "<no exception>");
    EXPECT_EQ(LoadFailure(order, withAttributes(xsi + "xsi:nil='true'")),
              "Failed to process the element [purchaseOrder]\nUnexpected Attribute [nil] found.");
}

TEST(InputWalkTest, NarrowFromXmlWalksUnderTheDefaultContextWhateverItIsGiven)
{
    Context const lenient = With(&Context::SetIgnoreUnknownElements);
    std::string const xml = OrderXml("<surprise/>" + kShipTo + kLineItem + kTotals);
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    EXPECT_EQ(Failure([&] { order->FromXml(xml.c_str(), lenient); }),
              "Failed to process the element [purchaseOrder]\nFailed to find a required element [shipTo]");
    EXPECT_EQ(LoadFailure(*order, xml, lenient), "<no exception>");
    EXPECT_EQ(order->GetLineItems().GetCount(), 1);

    // A parsed element is walked under the context it comes with.
    CXmlDocument document;
    document.LoadXml(xml.c_str());
    EXPECT_EQ(Failure([&] { order->FromXmlElement(document.GetDocumentElement(), lenient); }), "<no exception>");
    EXPECT_THROW(order->FromXmlElement(static_cast<CXmlElement const*>(nullptr)), CKdInvalidParamException);
}

TEST(InputWalkTest, PseudoChildThatFailsHalfWayConsumesNothingButKeepsWhatItRead)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    EXPECT_EQ(LoadFailure(*order, OrderXml(kShipTo + kLineItem + "<subtotal>7</subtotal>")),
              "Failed to process the element [purchaseOrder]\nFailed to find a required element [OrderTotals]");
    EXPECT_EQ(order->GetTotals().GetSubtotal(), 7);
}

TEST(InputWalkTest, ChoiceTakesOneAlternativeAndFailsEmptyUnlessSomethingAllowsIt)
{
    CSmartPtr<CDelivery> delivery = new CDelivery();
    std::string const open = "<delivery xmlns='urn:kdbind:example:po'>";
    EXPECT_EQ(LoadFailure(*delivery, open + "<pickup>a</pickup><priority>low</priority></delivery>"),
              "Failed to process the element [delivery]\n" + FormatString(kLeftOver.c_str(), "delivery", "priority"));
    // Unknown elements are passed over until one matches; then the rest is left unread.
    EXPECT_EQ(LoadFailure(*delivery, open + "<x/><y/><priority>low</priority><z/></delivery>",
                          With(&Context::SetIgnoreUnknownElements)),
              "<no exception>");
    EXPECT_EQ(delivery->priority.GetI4(), Priority_low);
    // Optional alternatives let it stay empty.
    EXPECT_EQ(LoadFailure(*delivery, open + "</delivery>"), "<no exception>");

    std::string const kEmptyChoice =
        "No child elements within the element [payment] were populated. The element represents a choice, so one "
        "and only one element should be populated. The element contained no sutable child elements";
    CSmartPtr<CPayment> payment = new CPayment();
    std::string const emptyPayment = "<payment xmlns='urn:kdbind:example:po'/>";
    EXPECT_EQ(LoadFailure(*payment, emptyPayment), "Failed to process the element [payment]\n" + kEmptyChoice);
    EXPECT_EQ(LoadFailure(*payment, emptyPayment, With(&Context::SetIgnoreMissingChoice)), "<no exception>");
    // As an alternative of a choice it is read as optional; in a sequence it is not.
    EXPECT_EQ(LoadFailure(*delivery, open + emptyPayment + "</delivery>"), "<no exception>");
    EXPECT_NE(delivery->payment.GetXmlObject().get(), nullptr);
    CSmartPtr<CInvoice> invoice = new CInvoice();
    EXPECT_EQ(LoadFailure(*invoice, "<invoice xmlns='urn:kdbind:example:po' id='1' priority='low'>" + emptyPayment +
                                        "</invoice>"),
              "Failed to process the element [invoice]\nFailed to process the element [payment]\n" + kEmptyChoice);
}

TEST(InputWalkTest, UnknownGroupTypeFailsBothWays)
{
    struct CBroken : CNote {
        CParentElementInfo* GetClassInfo() const override
        {
            static CParentElementInfo info(static_cast<XmlElementGroupType>(9), XmlElementType_Element, "note",
                                           NAMESPACE, -1, true, false);
            return &info;
        }
    };
    CSmartPtr<CBroken> broken = new CBroken();
    EXPECT_EQ(LoadFailure(*broken, "<note/>"), "Failed to process the element [note]\nUnknow Group Type");
    EXPECT_EQ(Failure([&] { Written(*broken); }), "Failed to convert the element [note] to XML\nUnknown XML Group Type");
}
