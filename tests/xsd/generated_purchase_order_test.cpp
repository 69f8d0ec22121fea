// The purchase order kdbind-xsd generates from examples/purchase_order.xsd
// against the hand-written binding of the same schema: what one writes the
// other reads and writes back byte for byte, as text and as Fast Infoset,
// and a document that breaks the schema fails alike in both.
#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

// The hand-written binding's include directory comes first, so that
// "purchase_order.h" names its header; the generated header is reached
// through its umbrella, which includes its own directory's.
#include "purchase_order.h"
#include "purchase_order_generated.h"

using namespace KdBind;
namespace Hand = PurchaseOrderSchema;
namespace Gen = PurchaseOrderXsd;

namespace {

struct GeneratedPurchaseOrderTest : ::testing::Test {
    static void SetUpTestSuite() { setlocale(LC_ALL, "C.UTF-8"); }  // "Köln" keeps its letter
    static void TearDownTestSuite()
    {
        Hand::CleanMetaData();
        Gen::CleanMetaData();
    }

    static CXmlSerializationContext Context()
    {
        CXmlSerializationContext context;
        context.GetNamespaceAliases().Add("po", Hand::NAMESPACE);
        context.GetNamespaceAliases().Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
        context.GetNamespaceAliases().Add("acme", "urn:acme");
        return context;
    }

    // Reads the document into a fresh object and writes it again, or gives
    // the failure's message: what a user of either binding sees.
    template <class Order>
    static std::string Rewrite(std::string const& xml)
    {
        try {
            CSmartPtr<Order> order = new Order();
            order->FromXml(xml.c_str());
            return order->ToXml(true, true, EOLType_LF, Context());
        } catch (CKdException const& e) {
            return "failure: " + e.GetFullMessage();
        }
    }
};

// Every construct of the schema once: both addresses, the optional
// elements, the value lists, both kinds of details, the grouped totals and
// the extension point's element and attribute.
CSmartPtr<Hand::CPurchaseOrder> HandWrittenOrder()
{
    CSmartPtr<Hand::CPurchaseOrder> order = new Hand::CPurchaseOrder();
    order->SetOrderDate(CDateTime(2026, 11, 21));
    order->SetStatus(Hand::OrderStatus_cancelled);
    order->SetTimestamp(CDateTime("2026-11-21T09:30:15.5-05:00"));
    order->GetShipTo().SetName("Ann");
    order->GetShipTo().SetZip(12345);
    CSmartPtr<Hand::CUSAddress> billTo = new Hand::CUSAddress();
    billTo->SetCountry("CA");
    order->SetBillTo(billTo);
    order->SetComment(" keep  spaces & <marks> ");
    order->SetPriority(Hand::Priority_low);
    order->GetTags().Add("a b");
    order->GetParcelWeights().Add(1);
    order->GetParcelWeights().Add(30000);
    for (int i = 0; i < 3; ++i) {
        CSmartPtr<Hand::CLineItem> item = new Hand::CLineItem();
        item->SetPartNum("12" + std::to_string(i) + "-XY");
        item->SetQuantity(static_cast<unsigned short>(99 - i));
        item->SetUSPrice(CDecimal("-0.000000000000000000001"));
        if (i == 0) {
            CSmartPtr<Hand::CBookDetails> book = new Hand::CBookDetails();
            book->SetAuthor("Au");
            item->SetDetails(book);
        } else if (i == 1) {
            CSmartPtr<Hand::CGadgetDetails> gadget = new Hand::CGadgetDetails();
            gadget->SetVoltage(65535);
            item->SetDetails(gadget);
            item->SetComment("");
        }
        order->GetLineItems().Add(item);
    }
    order->GetTotals().SetSubtotal(CDecimal("12.50"));
    order->GetTotals().SetShipping(CDecimal(0));
    order->GetTotals().SetItemCount(3);
    CSmartPtr<CElement> extension = new CElement("track", "urn:acme", "##other", Hand::NAMESPACE);
    // Text only: formatted output would add white space to an untyped
    // element's text, in both bindings alike.
    extension->FromXml("<acme:track xmlns:acme='urn:acme' acme:id='7'>x</acme:track>");
    order->SetExtension(extension);
    return order;
}

} // namespace

TEST_F(GeneratedPurchaseOrderTest, HandWrittenTextReadsAndWritesBackIdentically)
{
    std::string const written = HandWrittenOrder()->ToXml(true, true, EOLType_LF, Context());
    ASSERT_NE(written.find("<acme:track"), std::string::npos);
    EXPECT_EQ(Rewrite<Gen::CPurchaseOrderType>(written), written);

    CSmartPtr<Gen::CPurchaseOrderType> order = new Gen::CPurchaseOrderType();
    order->FromXml(written.c_str());
    EXPECT_EQ(order->GetLineItem().GetCount(), 3);
    EXPECT_EQ(dynamic_cast<Gen::CBookDetails&>(*order->GetLineItem().GetAt(0)->GetDetails()).GetAuthor(), "Au");
    EXPECT_EQ(order->GetParcelWeight().Item(1), 30000);
    EXPECT_EQ(*order->GetStatus(), Gen::OrderStatus_cancelled);
    ASSERT_NE(order->GetAny(), nullptr);
    EXPECT_EQ(order->GetAny()->GetName(), "track");
}

TEST_F(GeneratedPurchaseOrderTest, GeneratedTextReadsAndWritesBackIdentically)
{
    CSmartPtr<Gen::CPurchaseOrderType> order = new Gen::CPurchaseOrderType();
    order->SetOrderDate(CDateTime(2026, 1, 2));
    order->GetShipTo().SetCity("Köln");
    order->GetTag().Add("t");
    order->GetParcelWeight().Add(500);
    CSmartPtr<Gen::CLineItem> item = new Gen::CLineItem();
    item->SetPartNum("001-AA");
    item->SetUSPrice(CDecimal("1e3"));
    CSmartPtr<Gen::CGadgetDetails> gadget = new Gen::CGadgetDetails();
    gadget->SetVoltage(12);
    item->SetDetails(gadget);
    order->GetLineItem().Add(item);
    order->GetOrderTotals().SetItemCount(1);
    std::string const written = order->ToXml(true, true, EOLType_LF, Context());
    EXPECT_EQ(Rewrite<Hand::CPurchaseOrder>(written), written);
    EXPECT_EQ(Rewrite<Gen::CPurchaseOrderType>(written), written);
}

TEST_F(GeneratedPurchaseOrderTest, FastInfosetCrossesBothWaysIdentically)
{
    CSmartPtr<Hand::CPurchaseOrder> const hand = HandWrittenOrder();
    CBinaryData const binary = hand->ToFastInfosetStream(FInfoDecl_10_Encoding, Context());
    CSmartPtr<Gen::CPurchaseOrderType> generated = new Gen::CPurchaseOrderType();
    generated->FromXmlStream(binary, Context());
    CBinaryData const again = generated->ToFastInfosetStream(FInfoDecl_10_Encoding, Context());
    ASSERT_EQ(again.GetLength(), binary.GetLength());
    EXPECT_EQ(std::string(reinterpret_cast<char const*>(again.GetData()), again.GetLength()),
              std::string(reinterpret_cast<char const*>(binary.GetData()), binary.GetLength()));
    CSmartPtr<Hand::CPurchaseOrder> back = new Hand::CPurchaseOrder();
    back->FromXmlStream(again, Context());
    EXPECT_EQ(back->ToXml(true, true, EOLType_LF, Context()), hand->ToXml(true, true, EOLType_LF, Context()));
}

// Facets, enumerations, occurrences, substitution and the wildcards: each
// broken document fails (or passes) the same way in both bindings.
TEST_F(GeneratedPurchaseOrderTest, BrokenDocumentsFailAlike)
{
    std::string const good = HandWrittenOrder()->ToXml(true, true, EOLType_LF, Context());
    auto edit = [&](std::string const& from, std::string const& to) {
        std::string text = good;
        size_t const at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return at == std::string::npos ? text : text.replace(at, from.size(), to);
    };
    std::vector<std::string> const documents = {
        edit("<po:city/>", ""),
        edit("120-XY", "12-XY"),
        edit("<po:quantity>99<", "<po:quantity>100<"),
        edit("<po:parcelWeight>1<", "<po:parcelWeight>0<"),
        edit("<po:parcelWeight>30000<", "<po:parcelWeight>30001<"),
        edit("<po:priority>low<", "<po:priority>high<"),
        edit("status=\"cancelled\"", "status=\"closed\""),
        edit("po:BookDetails", "po:PaperDetails"),
        edit("<po:voltage>65535<", "<po:voltage>65536<"),
        edit("<po:itemCount>", "<po:shipping>1</po:shipping><po:itemCount>"),
        edit("</acme:track>", "</acme:track><acme:more/>"),
        edit("orderDate=", "acme:extra=\"1\" orderDate="),
        edit("orderDate=", "po:local=\"1\" orderDate="),
        edit("<acme:track acme:id=\"7\">x</acme:track>", "<po:track>x</po:track>"),
    };
    for (std::string const& document : documents) {
        std::string const hand = Rewrite<Hand::CPurchaseOrder>(document);
        EXPECT_EQ(Rewrite<Gen::CPurchaseOrderType>(document), hand) << document;
    }
}
