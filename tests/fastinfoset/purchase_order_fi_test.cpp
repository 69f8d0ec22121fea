// The purchase order written as Fast Infoset through the entry point: the
// document's frame, its size against the text, and the encodings a context
// selects. The documents go to the interoperability check.
#include "fastinfoset/fi_test_support.h"
#include "purchase_order.h"

using namespace KdBind;
using namespace KdBindTest;
using namespace PurchaseOrderSchema;

namespace {

struct PurchaseOrderFastInfosetTest : ::testing::Test {
    static void TearDownTestSuite() { CleanMetaData(); }
    // The comment holds UTF-8 text, which both writers must read as such.
    void SetUp() override { ASSERT_TRUE(m_locale.Available()); }

    LocaleScope m_locale{"C.UTF-8"};

    // Details stand under another class's name, which takes a type
    // attribute: see TypeAttributeBorrowsTheTypesPrefix for why documents
    // with one stay out of the interoperability check.
    static CSmartPtr<CPurchaseOrder> Order(int lineItems, bool details = false)
    {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
        order->SetOrderDate(CDateTime(2026, 11, 21));
        order->SetStatus(OrderStatus_shipped);
        CUSAddress& shipTo = order->GetShipTo();
        shipTo.SetName("Alice Smith");
        shipTo.SetStreet("123 Maple Street");
        shipTo.SetCity("Mill Valley");
        shipTo.SetState("CA");
        shipTo.SetZip(90952);
        order->SetComment("Hurry & <quick>, s'il vous pla\xC3\xAEt");
        for (int i = 0; i < lineItems; ++i) {
            CSmartPtr<CLineItem> item = new CLineItem();
            item->SetPartNum(std::to_string(100 + i) + "-AA");
            item->SetProductName("Garden hose");
            item->SetQuantity(static_cast<unsigned short>(1 + i % 9));
            item->SetUSPrice(CDecimal((std::to_string(19 + i) + ".5").c_str()));
            if (details && i % 2 == 0) {
                CSmartPtr<CBookDetails> book = new CBookDetails();
                book->SetAuthor("G. Rass");
                book->SetIsbn("978-0-00-000000-2");
                item->SetDetails(book);
            }
            order->GetLineItems().Add(item);
        }
        order->GetTotals().SetSubtotal(CDecimal("148.95"));
        order->GetTotals().SetItemCount(static_cast<unsigned short>(lineItems));
        return order;
    }

    // Namespaces declared on the document element, so that every name on
    // the wire refers to a declared prefix.
    static CXmlSerializationContext Context()
    {
        CXmlSerializationContext context;
        context.GetNamespaceAliases().Add("po", NAMESPACE);
        context.GetNamespaceAliases().Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
        return context;
    }
};

} // namespace

TEST_F(PurchaseOrderFastInfosetTest, WritesTheDocumentFrameAndIsSmallerThanText)
{
    CXmlSerializationContext const context = Context();
    CSmartPtr<CPurchaseOrder> order = Order(50);
    std::string const fastInfoset = Bytes(order->ToFastInfosetStream(FInfoDecl_10_Encoding, context));
    std::string const text = order->ToXml(true, false, EOLType_LF, context);
    ExportForInterop("purchase_order", fastInfoset, text);

    std::string const declaration = "<?xml version='1.0' encoding='finf'?>";
    ASSERT_EQ(fastInfoset.substr(0, declaration.size()), declaration);
    EXPECT_EQ(fastInfoset.substr(declaration.size(), 5), std::string("\xE0\x00\x00\x01\x00", 5));
    // The last child and the document element share FF; F0 ends the document.
    EXPECT_EQ(fastInfoset.substr(fastInfoset.size() - 2), "\xFF\xF0");
    EXPECT_NE(fastInfoset.find("s'il vous pla\xC3\xAEt"), std::string::npos);  // UTF-8 on the wire
    EXPECT_LT(fastInfoset.size() * 10, text.size() * 4);

    std::string const bare = Bytes(order->ToFastInfosetStream(FInfoDecl_None, context));
    EXPECT_EQ(bare, fastInfoset.substr(declaration.size()));
}

TEST_F(PurchaseOrderFastInfosetTest, SuggestedEncodingsReachTheTypedValues)
{
    CXmlSerializationContext plain = Context();
    CXmlSerializationContext suggested = Context();
    suggested.GetFIContext().SetSuggestedValues();
    CSmartPtr<CPurchaseOrder> order = Order(20);
    std::string const encoded = Bytes(order->ToFastInfosetStream(FInfoDecl_None, suggested));
    ExportForInterop("purchase_order_suggested", encoded, order->ToXml(true, false, EOLType_LF, suggested));
    // A price of 19.5 in the numeric alphabet, two characters an octet,
    // after the octet that names alphabet 1 in a character chunk.
    std::string const price("\x98\x01\x19\xC5", 4);
    EXPECT_NE(encoded.find(price), std::string::npos);
    EXPECT_EQ(Bytes(order->ToFastInfosetStream(FInfoDecl_None, plain)).find(price), std::string::npos);
}

TEST_F(PurchaseOrderFastInfosetTest, TypeAttributeBorrowsTheTypesPrefix)
{
    // The type's namespace is declared as "po", and the schema-instance
    // "type" goes out under that prefix with its own URI: prefix 3 (po),
    // namespace 2 (the schema instance), then the literal local name.
    std::string const fastInfoset = Bytes(Order(1, true)->ToFastInfosetStream(FInfoDecl_None, Context()));
    EXPECT_NE(fastInfoset.find("\x7B\x82\x81\x03type\x08\x05po:BookDetails"), std::string::npos);
}

TEST_F(PurchaseOrderFastInfosetTest, FailuresOfTheEntryPoint)
{
    CSmartPtr<CPurchaseOrder> order = Order(1);
    // An algorithm on a kind whose values it cannot take fails in the conversion.
    CXmlSerializationContext context = Context();
    context.GetFIContext().SetEncoding(
        ItemType_string, CFastInfosetContext::EncodedCharacterString(
                             CFastInfosetContext::EncodedCharacterString::Kind_EncodingAlgorithm, 4));
    EXPECT_NE(FailureOf([&] { order->ToFastInfosetStream(FInfoDecl_None, context); }), "<no failure>");
}
