// The KdBind demo: builds a purchase order, writes it as XML (and as Fast
// Infoset and compressed Fast Infoset, to compare sizes), reads it back into
// a new object and checks that the round trip is exact, then shows what a
// user sees for an object and a document that break the schema.
#include <clocale>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>

#include "purchase_order.h"

using namespace KdBind;
using namespace PurchaseOrderSchema;

namespace {

// Money is xs:decimal: a price that no double holds.
char const kGnomePrice[] = "12345678901234567890.000000000000000001";

CSmartPtr<CPurchaseOrder> BuildOrder()
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->SetOrderDate(CDateTime(2026, 11, 21));
    order->SetStatus(OrderStatus_shipped);
    // The time the order was placed, to the nanosecond and in the shop's own zone.
    order->SetTimestamp(CDateTime("2026-11-21T09:30:15.123456789+01:00"));

    CUSAddress& shipTo = order->GetShipTo();
    shipTo.SetName("Zoë Brontë");  // this file is UTF-8, and so is the locale of `make demo`
    shipTo.SetStreet("123 Maple Street");
    shipTo.SetCity("Mill Valley");
    shipTo.SetState("CA");
    shipTo.SetZip(90952);

    CSmartPtr<CUSAddress> billTo = new CUSAddress();
    billTo->SetName("Robert Smith");
    billTo->SetStreet("8 Oak Avenue");
    billTo->SetCity("Old Town");
    billTo->SetState("PA");
    billTo->SetZip(95819);
    order->SetBillTo(billTo);

    order->SetComment("Hurry, my lawn is going wild & the neighbours <complain>!");
    order->SetPriority(Priority_urgent);
    order->GetTags().Add("garden");
    order->GetTags().Add("spring sale");
    order->GetParcelWeights().Add(21500);
    order->GetParcelWeights().Add(450);

    CSmartPtr<CLineItem> mower = new CLineItem();
    mower->SetPartNum("872-AA");
    mower->SetProductName("Lawnmower");
    mower->SetQuantity(1);
    mower->SetUSPrice(CDecimal("139.95"));
    CSmartPtr<CGadgetDetails> engine = new CGadgetDetails();
    engine->SetVoltage(230);
    mower->SetDetails(engine);
    mower->SetComment("Confirm this is electric");
    order->GetLineItems().Add(mower);

    CSmartPtr<CLineItem> manual = new CLineItem();
    manual->SetPartNum("926-AA");
    manual->SetProductName("Lawn care, the manual");
    manual->SetQuantity(1);
    manual->SetUSPrice(CDecimal(9));
    CSmartPtr<CBookDetails> book = new CBookDetails();
    book->SetAuthor("G. Rass");
    book->SetIsbn("978-0-00-000000-2");
    manual->SetDetails(book);
    order->GetLineItems().Add(manual);

    CSmartPtr<CLineItem> gnome = new CLineItem();
    gnome->SetPartNum("455-BX");
    gnome->SetProductName("Gold-plated garden gnome");
    gnome->SetQuantity(1);
    gnome->SetUSPrice(CDecimal(kGnomePrice));
    order->GetLineItems().Add(gnome);

    order->GetTotals().SetSubtotal(mower->GetUSPrice() + manual->GetUSPrice() + gnome->GetUSPrice());
    order->GetTotals().SetShipping(CDecimal("9.5"));
    order->GetTotals().SetItemCount(3);
    return order;
}

// A document whose shipping address lacks its mandatory <city>.
char const kBrokenDocument[] =
    "<?xml version=\"1.0\"?>\n"
    "<po:purchaseOrder xmlns:po=\"urn:kdbind:example:po\" orderDate=\"2026-11-21\">\n"
    "\t<po:shipTo>\n"
    "\t\t<po:name>Alice Smith</po:name>\n"
    "\t\t<po:street>123 Maple Street</po:street>\n"
    "\t\t<po:state>CA</po:state>\n"
    "\t\t<po:zip>90952</po:zip>\n"
    "\t</po:shipTo>\n"
    "\t<po:lineItem partNum=\"872-AA\">\n"
    "\t\t<po:productName>Lawnmower</po:productName>\n"
    "\t\t<po:quantity>1</po:quantity>\n"
    "\t\t<po:USPrice>139.95</po:USPrice>\n"
    "\t</po:lineItem>\n"
    "\t<po:subtotal>0</po:subtotal>\n"
    "\t<po:itemCount>0</po:itemCount>\n"
    "</po:purchaseOrder>\n";

// An order from a partner that extends the schema at its extension point:
// an attribute and an element of the partner's own namespace. The element
// goes without line breaks inside: an untyped element keeps all of its
// character data as one text, white space between children included.
char const kTracking[] =
    "<acme:tracking acme:carrier=\"Parcel &amp; Co\"><acme:number>1Z-999-AA</acme:number>"
    "<acme:stop city=\"Mill Valley\" day=\"1\"/><acme:stop city=\"Old Town\" day=\"2\">"
    "<acme:note>Leave it at the door</acme:note></acme:stop></acme:tracking>";

std::string const kExtendedDocument =
    "<?xml version=\"1.0\"?>\n"
    "<po:purchaseOrder xmlns:po=\"urn:kdbind:example:po\" xmlns:acme=\"urn:acme:logistics\"\n"
    "\t\torderDate=\"2026-11-21\" acme:route=\"north-7\">\n"
    "\t<po:shipTo><po:name>Alice Smith</po:name><po:street>123 Maple Street</po:street>"
    "<po:city>Mill Valley</po:city><po:state>CA</po:state><po:zip>90952</po:zip></po:shipTo>\n"
    "\t<po:lineItem partNum=\"872-AA\"><po:productName>Lawnmower</po:productName>"
    "<po:quantity>1</po:quantity><po:USPrice>139.95</po:USPrice></po:lineItem>\n"
    "\t<po:subtotal>139.95</po:subtotal><po:itemCount>1</po:itemCount>\n"
    "\t" + std::string(kTracking) + "\n"
    "</po:purchaseOrder>\n";

} // namespace

int main()
{
    // Text is held in the code page of the process's locale. Without this
    // call a program runs in the "C" locale, whose code page is ASCII, and
    // every letter beyond ASCII would be read back as '?'.
    setlocale(LC_ALL, "");
    int status = 0;
    try {
        CXmlSerializationContext context;
        context.GetNamespaceAliases().Add("po", NAMESPACE);
        context.GetNamespaceAliases().Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");

        CSmartPtr<CPurchaseOrder> order = BuildOrder();
        std::string const written = order->ToXml(true, true, EOLType_LF, context);
        std::cout << "1. The purchase order, written by ToXml:\n\n" << written << "\n";
        CBinaryData const binary = order->ToFastInfosetStream(FInfoDecl_10_Encoding, context);
        std::cout << "   Written as Fast Infoset by ToFastInfosetStream: " << binary.GetLength() << " bytes, against "
                  << written.size() << " bytes of text.\n\n";

        CSmartPtr<CPurchaseOrder> copy = new CPurchaseOrder();
        copy->FromXml(written.c_str());
        std::string const rewritten = copy->ToXml(true, true, EOLType_LF, context);
        bool const exact = rewritten == written;
        std::cout << "2. Read back with FromXml and written again: the round trip is "
                  << (exact ? "exact" : "NOT exact") << ".\n"
                  << "   Ship to " << copy->GetShipTo().GetName() << ", " << copy->GetShipTo().GetCity()
                  << "; subtotal " << copy->GetTotals().GetSubtotal().ToString() << "; priority "
                  << PriorityToString(*copy->GetPriority()) << ";\n   " << copy->GetLineItems().GetCount()
                  << " line items, the second a book by "
                  << dynamic_cast<CBookDetails&>(*copy->GetLineItems().GetAt(1)->GetDetails()).GetAuthor()
                  << " (its class chosen from xsi:type);\n   tags \"" << copy->GetTags().Item(0) << "\" and \""
                  << copy->GetTags().Item(1) << "\", parcels of " << copy->GetParcelWeights().Item(0) << " g and "
                  << copy->GetParcelWeights().Item(1) << " g.\n"
                  << "   Ordered on " << copy->GetOrderDate().ToString() << " (day " << copy->GetOrderDate().GetDayOfYear()
                  << " of the year), stamped " << copy->GetTimestamp()->ToString()
                  << ":\n   all nine digits of its fraction and its zone survive; in UTC that is "
                  << copy->GetTimestamp()->GetNormalized().ToString() << ".\n";
        CDecimal const gnomePrice = copy->GetLineItems().GetAt(2)->GetUSPrice();
        bool const priceExact = gnomePrice == CDecimal(kGnomePrice);
        double const asDouble = CConversions::r8FromString(kGnomePrice, CWhitespaceUtils::WhitespaceRule_Collapse);
        std::cout << "   Prices are xs:decimal: the gnome's " << kGnomePrice << " came back as\n   "
                  << gnomePrice.ToString() << (priceExact ? " (exact)" : " (NOT exact)")
                  << "; a double would have kept " << CConversions::r8ToString(asDouble) << ".\n";
        std::string const path =
            (std::filesystem::temp_directory_path() / "kdbind_demo_purchase_order.finf.gz").string();
        order->ToFastInfosetFile(path.c_str(), FInfoDecl_10_Encoding, context, CompressionType_GZip);
        CSmartPtr<CPurchaseOrder> fromFile = new CPurchaseOrder();
        fromFile->FromXmlFile(path.c_str(), context);
        bool const fileExact = fromFile->ToXml(true, true, EOLType_LF, context) == written;
        std::cout << "   As gzip-compressed Fast Infoset in a file, read back with FromXmlFile: "
                  << (fileExact ? "exact" : "NOT exact") << ".\n   Sizes: text " << written.size()
                  << " bytes, Fast Infoset " << order->ToFastInfosetStream(FInfoDecl_10_Encoding, context).GetLength()
                  << ", compressed " << std::filesystem::file_size(path) << ".\n\n";
        std::remove(path.c_str());
        if (!exact || !priceExact || !fileExact) {
            std::cout << rewritten << "\n";
            status = 1;
        }
        if (copy->GetShipTo().GetName() != "Zoë Brontë") {
            std::cout << "   The name beyond ASCII did not survive: run the demo under a UTF-8 locale.\n\n";
            status = 1;
        }

        std::cout << "3. An order without line items breaks the lineItem occurrence count on output:\n\n";
        try {
            CSmartPtr<CPurchaseOrder> empty = BuildOrder();
            empty->GetLineItems().Clear();
            empty->ToXml(true, true, EOLType_LF, context);
            std::cout << "   It was written, which it should not have been.\n";
            status = 1;
        } catch (CKdValidationException const& e) {
            std::cout << e.GetFullMessage() << "\n\n";
        }

        std::cout << "4. A document whose shipping address has no <city>:\n\n" << kBrokenDocument << "\n";
        try {
            CSmartPtr<CPurchaseOrder> broken = new CPurchaseOrder();
            broken->FromXml(kBrokenDocument);
            std::cout << "   It loaded, which it should not have.\n";
            status = 1;
        } catch (CKdValidationException const& e) {
            std::cout << "   FromXml refuses it; the message reads as the path to the fault:\n\n"
                      << e.GetFullMessage() << "\n";
        }

        std::cout << "\n5. A partner's order with content of its own namespace at the extension point:\n\n"
                  << kExtendedDocument << "\n";
        context.GetNamespaceAliases().Add("acme", "urn:acme:logistics");
        CSmartPtr<CPurchaseOrder> extended = new CPurchaseOrder();
        extended->FromXml(kExtendedDocument.c_str());
        std::string const passedOn = extended->ToXml(true, false, EOLType_LF, context);
        CSmartPtr<CPurchaseOrder> again = new CPurchaseOrder();
        again->FromXml(passedOn.c_str());
        bool const kept = passedOn.find(kTracking) != std::string::npos &&
                          passedOn.find("acme:route=\"north-7\"") != std::string::npos &&
                          again->ToXml(true, false, EOLType_LF, context) == passedOn;
        std::cout << "   Written without formatting, read back and written again, the foreign content "
                  << (kept ? "passes through unchanged" : "does NOT pass through unchanged") << ":\n\n"
                  << passedOn << "\n";
        if (CElement const* tracking = again->GetExtension())
            std::cout << "   The order holds it untyped: the element [" << tracking->GetName() << "] of ["
                      << tracking->GetNamespace() << "] with " << tracking->GetChildren()->GetCount()
                      << " children, and " << again->GetExtensionAttributes().GetCount()
                      << " attribute of another namespace.\n";
        if (!kept)
            status = 1;

        std::cout << "\n6. A part number that breaks the SKU pattern \\d{3}-[A-Z]{2} is refused on output:\n\n";
        try {
            CSmartPtr<CPurchaseOrder> misnumbered = BuildOrder();
            misnumbered->GetLineItems().GetAt(0)->SetPartNum("872-aa");
            misnumbered->ToXml(true, true, EOLType_LF, context);
            std::cout << "   It was written, which it should not have been.\n";
            status = 1;
        } catch (CKdException const& e) {
            std::cout << e.GetFullMessage() << "\n";
        }
    } catch (CKdException const& e) {
        std::cerr << "KdBind failure:\n" << e.GetFullMessage() << "\n";
        status = 1;
    }
    CleanMetaData();
    return status;
}
