// The entry points to and from byte blocks and files, on the example
// purchase order: every route out comes back to the same object.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "purchase_order.h"
#include "runtime/test_support.h"

using namespace KdBind;
using namespace PurchaseOrderSchema;
using KdBindTest::FailureOf;

namespace {

struct StreamEntryPointsTest : ::testing::Test {
    static void TearDownTestSuite() { CleanMetaData(); }
    void TearDown() override
    {
        AsyncToXmlFile(false);
        remove(path.c_str());
    }

    // Enough line items for compression to pay.
    static CSmartPtr<CPurchaseOrder> Order()
    {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
        order->SetOrderDate(CDateTime(2026, 11, 21));
        CUSAddress& shipTo = order->GetShipTo();
        shipTo.SetName("Zoe Unal");
        shipTo.SetStreet("1 Main St");
        shipTo.SetCity("Springfield");
        shipTo.SetState("IL");
        shipTo.SetZip(62701);
        for (int i = 0; i < 20; ++i) {
            CSmartPtr<CLineItem> item = new CLineItem();
            item->SetPartNum(std::to_string(100 + i) + "-AB");
            item->SetProductName("Widget & gadget");
            item->SetQuantity(i + 1);
            item->SetUSPrice(CDecimal(std::to_string(i * 5 / 2).c_str()));
            order->GetLineItems().Add(item);
        }
        order->GetTotals().SetSubtotal(CDecimal("475"));
        order->GetTotals().SetItemCount(20);
        return order;
    }

    static std::string FileBytes(std::string const& file)
    {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    std::string path = ::testing::TempDir() + "kdbind_entry_" +
                       ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".xml";
    CSmartPtr<CPurchaseOrder> order = Order();
    std::string const expected = order->ToXml(false, false);
};

} // namespace

TEST_F(StreamEntryPointsTest, StreamsComeBackInEveryCompression)
{
    for (CompressionType compression : {CompressionType_None, CompressionType_GZip, CompressionType_ZLib}) {
        CBinaryData const data = order->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_CRLF,
                                                    CXmlSerializationContext::m_defaultContext, compression);
        if (compression == CompressionType_None)
            EXPECT_EQ(KdBindTest::Bytes(data).rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n", 0), 0u);
        else
            EXPECT_LT(data.GetLength(), expected.size() / 2);
        CSmartPtr<CPurchaseOrder> back = new CPurchaseOrder();
        back->FromXmlStream(data);
        EXPECT_EQ(back->ToXml(false, false), expected) << "compression " << compression;
    }
}

TEST_F(StreamEntryPointsTest, FilesComeBackPlainAndCompressed)
{
    for (CompressionType compression : {CompressionType_None, CompressionType_GZip}) {
        order->ToXmlFile(path.c_str(), true, true, XmlEncoding_UTF8, EOLType_LF,
                         CXmlSerializationContext::m_defaultContext, compression);
        if (compression == CompressionType_GZip) {
            EXPECT_EQ(FileBytes(path).substr(0, 2), "\x1F\x8B");
        }
        CSmartPtr<CPurchaseOrder> back = new CPurchaseOrder();
        back->FromXmlFile(path.c_str());
        EXPECT_EQ(back->ToXml(false, false), expected) << "compression " << compression;
    }
}

// The file text stream never fills the bytes it writes, so streaming straight
// to disk fails at the first flush and leaves the file it opened; compressed
// output still takes the in-memory route under the switch.
TEST_F(StreamEntryPointsTest, TheAsyncSwitchStreamsOnlyUncompressedFiles)
{
    AsyncToXmlFile(true);
    EXPECT_EQ(FailureOf([&] { order->ToXmlFile(path.c_str(), true, false, XmlEncoding_UTF16, EOLType_LF); }),
              "Failed to write data to the file");
    EXPECT_EQ(FileBytes(path), "\xFF\xFE");

    order->ToXmlFile(path.c_str(), true, false, XmlEncoding_UTF8, EOLType_LF,
                     CXmlSerializationContext::m_defaultContext, CompressionType_GZip);
    CSmartPtr<CPurchaseOrder> back = new CPurchaseOrder();
    back->FromXmlFile(path.c_str());
    EXPECT_EQ(back->ToXml(false, false), expected);
}

TEST_F(StreamEntryPointsTest, ZlibFramingIsForStreamsOnlyAndWritesNoFile)
{
    remove(path.c_str());
    CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext;
    char const* const refused = "ZLIB Compression only available for To Stream methods.";
    EXPECT_EQ(FailureOf([&] {
                  order->ToXmlFile(path.c_str(), true, true, XmlEncoding_UTF8, EOLType_LF, context,
                                   CompressionType_ZLib);
              }),
              refused);
    AsyncToXmlFile(true);
    EXPECT_EQ(FailureOf([&] {
                  order->ToFastInfosetFile(path.c_str(), FInfoDecl_10_Encoding, context, CompressionType_ZLib);
              }),
              refused);
    EXPECT_EQ(fopen(path.c_str(), "rb"), nullptr);
}

TEST_F(StreamEntryPointsTest, FastInfosetComesBackFromStreamsAndFilesInEveryCompression)
{
    CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext;
    unsigned long plainSize = 0;
    for (CompressionType compression : {CompressionType_None, CompressionType_GZip, CompressionType_ZLib}) {
        CBinaryData const data = order->ToFastInfosetStream(FInfoDecl_10_Encoding, context, compression);
        if (compression == CompressionType_None)
            plainSize = data.GetLength();
        else
            EXPECT_LT(data.GetLength(), plainSize);
        CSmartPtr<CPurchaseOrder> back = new CPurchaseOrder();
        back->FromXmlStream(data);
        EXPECT_EQ(back->ToXml(false, false), expected) << "compression " << compression;
    }
    EXPECT_LT(plainSize, expected.size());

    order->ToFastInfosetFile(path.c_str(), FInfoDecl_None, context, CompressionType_GZip);
    EXPECT_EQ(FileBytes(path).substr(0, 2), "\x1F\x8B");
    CSmartPtr<CPurchaseOrder> back = new CPurchaseOrder();
    back->FromXmlFile(path.c_str());
    EXPECT_EQ(back->ToXml(false, false), expected);

    // No byte order mark in front of a Fast Infoset file.
    order->ToFastInfosetFile(path.c_str(), FInfoDecl_None, context);
    EXPECT_EQ(FileBytes(path).substr(0, 4), std::string("\xE0\x00\x00\x01", 4));
}
