// The example purchase-order binding end to end: what a user of generated
// classes sees on the way out and back, and on documents that break it.
#include <gtest/gtest.h>

#include <string>

#include "purchase_order.h"

using namespace KdBind;
using namespace PurchaseOrderSchema;

namespace {

struct PurchaseOrderBindingTest : ::testing::Test {
    static void TearDownTestSuite() { CleanMetaData(); }

    // An order with one line item; the document around it is built by hand.
    static std::string Document(std::string const& lineItems, std::string const& shipToExtra = "")
    {
        return "<purchaseOrder xmlns='urn:kdbind:example:po' orderDate='2026-01-02'>"
               "<shipTo><name>A</name><street>S</street><city>C</city><state>ST</state><zip>1</zip>" +
               shipToExtra + "</shipTo>" + lineItems + "<subtotal>1</subtotal><itemCount>1</itemCount>"
                                                       "</purchaseOrder>";
    }
    static std::string LineItem(std::string const& details = "")
    {
        return "<lineItem partNum='123-AB'><productName>P</productName><quantity>2</quantity>"
               "<USPrice>3.5</USPrice>" +
               details + "</lineItem>";
    }
    static std::string Failure(std::string const& xml)
    {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
        try {
            order->FromXml(xml.c_str());
        } catch (CKdException const& e) {
            return e.GetFullMessage();
        }
        return "<no exception>";
    }
};

} // namespace

TEST_F(PurchaseOrderBindingTest, RoundTripIsExactAndSubstitutionKeepsTheClass)
{
    std::string const xml = Document(
        LineItem("<details xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns:p='urn:kdbind:example:po' "
                 "xsi:type='p:BookDetails'><author>Au</author><isbn>I</isbn></details>"));
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(xml.c_str());
    ASSERT_EQ(order->GetLineItems().GetCount(), 1);
    CLineItem const& item = *order->GetLineItems().GetAt(0);
    EXPECT_EQ(item.GetQuantity(), 2);
    EXPECT_EQ(item.GetUSPrice().ToString(), "3.5");
    auto const* book = dynamic_cast<CBookDetails const*>(item.GetDetails());
    ASSERT_NE(book, nullptr);
    EXPECT_EQ(book->GetAuthor(), "Au");
    EXPECT_EQ(order->GetStatus(), OrderStatus_open);  // absent: the constructor's default stays

    std::string const written = order->ToXml(false, false);
    CSmartPtr<CPurchaseOrder> copy = new CPurchaseOrder();
    copy->FromXml(written.c_str());
    EXPECT_EQ(copy->ToXml(false, false), written);
    EXPECT_NE(written.find("<AA:details xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" AB:type=\"AA:BookDetails\">"),
              std::string::npos)
        << written;
}

TEST_F(PurchaseOrderBindingTest, DatesKeepTheirFractionAndZoneBothWays)
{
    std::string xml = Document("<timestamp> 2026-01-02T10:20:30.123456789-05:00 </timestamp>" + LineItem());
    xml.replace(xml.find("2026-01-02'"), 10, "2026-01-02Z");
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(xml.c_str());
    ASSERT_TRUE(order->GetTimestamp().has_value());
    EXPECT_EQ(order->GetTimestamp()->GetNanoSecond(), 789);
    EXPECT_EQ(order->GetTimestamp()->GetZoneHour(), -5);
    EXPECT_EQ(order->GetOrderDate().GetType(), CDateTime::dt_date);

    std::string const written = order->ToXml(false, false);
    EXPECT_NE(written.find(" orderDate=\"2026-01-02Z\""), std::string::npos) << written;
    EXPECT_NE(written.find(">2026-01-02T10:20:30.123456789-05:00</"), std::string::npos) << written;
    CSmartPtr<CPurchaseOrder> copy = new CPurchaseOrder();
    copy->FromXml(written.c_str());
    EXPECT_EQ(copy->GetTimestamp()->CompareTo(*order->GetTimestamp()), 0);
    EXPECT_EQ(copy->ToXml(false, false), written);

    std::string bad = Document(LineItem());
    bad.replace(bad.find("2026-01-02'"), 10, "2026-02-30");
    EXPECT_EQ(Failure(bad), "Failed to process the element [purchaseOrder]\nInvalid Day [30] (1 <= day <= days in month");
    EXPECT_EQ(Failure(Document("<timestamp>2026-01-02T24:00:00</timestamp>" + LineItem())),
              "Failed to process the element [purchaseOrder]\nInvalid XSD Time [24:00:00] expected hh:mm:ss[.ff]");
}

TEST_F(PurchaseOrderBindingTest, DefaultAttributeIsLeftOutOnlyWhenAsked)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(Document(LineItem()).c_str());
    CXmlSerializationContext quiet;
    quiet.SetNoOptionalAttributeDefaultOutput(true);
    std::string const plain = order->ToXml(false, false);
    std::string const withoutDefaults = order->ToXml(false, false, EOLType_LF, quiet);
    EXPECT_NE(plain.find(" status=\"open\""), std::string::npos);
    EXPECT_EQ(withoutDefaults.find("status="), std::string::npos);
    EXPECT_EQ(withoutDefaults.find("country="), std::string::npos);
}

TEST_F(PurchaseOrderBindingTest, FailuresNameThePathFromTheRoot)
{
    EXPECT_EQ(Failure(Document("")),
              "Failed to process the element [purchaseOrder]\n"
              "The Minimum number of [lineItem] elements allowed in this collection is 1");
    EXPECT_EQ(Failure(Document(LineItem("<details><voltage>1</voltage></details>"))),
              "Failed to process the element [purchaseOrder]\nFailed to process the element [lineItem]\n"
              "Failed read all the elements held within the element [lineItem]. The unexpected element [details] "
              "remains un processed");
    std::string misplaced = Document(LineItem());
    misplaced.replace(misplaced.find("<shipTo"), 7, "<shipTo partNum='x'");
    EXPECT_EQ(Failure(misplaced), "Failed to process the element [purchaseOrder]\nFailed to process the element "
                                  "[shipTo]\nUnexpected Attribute [partNum] found.");
    EXPECT_EQ(Failure("<purchaseOrder xmlns='urn:kdbind:example:po' orderDate='2026-01-02'/>"),
              "Failed to process the element [purchaseOrder]\nFailed to find a required element [shipTo]");
}

TEST_F(PurchaseOrderBindingTest, DeeperThanTheClassesAllowFailsAsALeftOver)
{
    std::string deep;
    for (int i = 0; i < 2000; ++i)
        deep += "<x>";
    for (int i = 0; i < 2000; ++i)
        deep += "</x>";
    EXPECT_EQ(Failure(Document(LineItem(), deep)),
              "Failed to process the element [purchaseOrder]\nFailed to process the element [shipTo]\n"
              "Failed read all the elements held within the element [shipTo]. The unexpected element [x] remains "
              "un processed");
}

TEST_F(PurchaseOrderBindingTest, ThousandsOfUnexpectedSiblingsFailOnTheFirst)
{
    std::string siblings;
    for (int i = 0; i < 5000; ++i)
        siblings += "<unexpected/>";
    EXPECT_EQ(Failure(Document(LineItem() + siblings)),
              "Failed to process the element [purchaseOrder]\nFailed to find a required element [OrderTotals]");

    // Skipped one by one under the option, through the wide entry point that honours it.
    CXmlSerializationContext lenient;
    lenient.SetIgnoreUnknownElements(true);
    std::string const xml = Document(LineItem() + siblings);
    std::wstring const wide(xml.begin(), xml.end());
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(wide.c_str(), lenient);
    EXPECT_EQ(order->GetTotals().GetItemCount(), 1);
}

TEST_F(PurchaseOrderBindingTest, UnknownSubstitutionLeavesTheDetailsUnreadAndFails)
{
    EXPECT_EQ(Failure(Document(LineItem("<details xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                                        "xsi:type='Unknown'/>"))),
              "Failed to process the element [purchaseOrder]\nFailed to process the element [lineItem]\n"
              "Failed read all the elements held within the element [lineItem]. The unexpected element [details] "
              "remains un processed");
}

TEST_F(PurchaseOrderBindingTest, ExtensionPointTakesOneForeignElementAndForeignAttributes)
{
    std::string const foreign = "<t:track xmlns:t='urn:t' t:by='x'><t:n>1</t:n><stop/></t:track>";
    std::string xml = Document(LineItem());
    xml.insert(xml.rfind("</purchaseOrder>"), foreign);
    xml.insert(xml.find(" orderDate"), " xmlns:u='urn:u' u:route='north'");
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(xml.c_str());
    ASSERT_NE(order->GetExtension(), nullptr);
    EXPECT_EQ(order->GetExtension()->GetChildren()->GetCount(), 2);
    EXPECT_EQ(order->GetExtensionAttributes().Item(0)->GetValue(), "north");
    std::string const written = order->ToXml(false, false);
    EXPECT_NE(written.find("AB:route=\"north\""), std::string::npos) << written;
    CSmartPtr<CPurchaseOrder> copy = new CPurchaseOrder();
    copy->FromXml(written.c_str());
    EXPECT_EQ(copy->ToXml(false, false), written);

    // One element only, and none of the order's own namespace.
    EXPECT_EQ(Failure(Document(LineItem()).insert(Document(LineItem()).rfind("</purchaseOrder>"), foreign + foreign)),
              "Failed to process the element [purchaseOrder]\nFailed read all the elements held within the element "
              "[purchaseOrder]. The unexpected element [track] remains un processed");
    EXPECT_EQ(Failure(Document(LineItem()).insert(Document(LineItem()).rfind("</purchaseOrder>"), "<extra/>")),
              "Failed to process the element [purchaseOrder]\nFailed read all the elements held within the element "
              "[purchaseOrder]. The unexpected element [extra] remains un processed");
}

TEST_F(PurchaseOrderBindingTest, FacetsRefuseOnOutputAndListItemsOnInput)
{
    // Value lists sit between priority and the line items.
    std::string const lists = "<tag>a</tag><tag> b </tag><parcelWeight>7</parcelWeight>";
    std::string xml = Document(LineItem());
    xml.insert(xml.find("<lineItem"), lists);
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(xml.c_str());
    ASSERT_EQ(order->GetTags().GetCount(), 2);
    EXPECT_EQ(order->GetTags().Item(1), " b ");  // tags preserve their blanks
    EXPECT_EQ(order->GetParcelWeights().Item(0), 7);

    // A list item outside its range fails as it is read, with its path.
    xml.replace(xml.find(">7<"), 3, ">0<");
    EXPECT_EQ(Failure(xml), "Failed to process the element [purchaseOrder]\nInvalid Value for parcelWeight [0]");

    // Facets of attributes and elements are tested as they are written.
    auto const writeFailure = [&] {
        try {
            order->ToXml();
        } catch (CKdException const& e) {
            return e.GetFullMessage();
        }
        return std::string("<no exception>");
    };
    CLineItem& item = *order->GetLineItems().GetAt(0);
    item.SetPartNum("12-AB");
    EXPECT_EQ(writeFailure(),
              "Failed to convert the element [purchaseOrder] to XML\nFailed to convert the element [lineItem] to "
              "XML\nFailed to convert attributes to XML\nInvalid Value for partNum [12-AB]");
    item.SetPartNum("123-AB");
    item.SetQuantity(100);
    EXPECT_NE(writeFailure().find("Invalid Value for quantity [100]"),
              std::string::npos);
}
