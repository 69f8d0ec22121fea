// The purchase order of the benchmarks: an order of the given number of line
// items (10,000 make about 3 MB of formatted XML), and the context that
// declares its namespaces on the document element.
#ifndef KDBIND_BENCH_PURCHASE_ORDER_FIXTURE_H
#define KDBIND_BENCH_PURCHASE_ORDER_FIXTURE_H

#include <string>

#include "purchase_order.h"

namespace KdBindBench {

using namespace KdBind;
using namespace PurchaseOrderSchema;

inline CSmartPtr<CPurchaseOrder> MakeOrder(int lineItems)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->SetOrderDate(CDateTime(2026, 11, 21));
    CUSAddress& shipTo = order->GetShipTo();
    shipTo.SetName("Alice Smith");
    shipTo.SetStreet("123 Maple Street");
    shipTo.SetCity("Mill Valley");
    shipTo.SetState("CA");
    shipTo.SetZip(90952);
    for (int i = 0; i < lineItems; ++i) {
        CSmartPtr<CLineItem> item = new CLineItem();
        item->SetPartNum(std::to_string(100 + i % 900) + "-AA");  // the SKU pattern: three digits
        item->SetProductName("Garden hose, 25 m, reinforced");
        item->SetQuantity(static_cast<unsigned short>(1 + i % 9));
        item->SetUSPrice(CDecimal((std::to_string(19 + i % 100) + ".99").c_str()));
        if (i % 3 == 0) {
            CSmartPtr<CGadgetDetails> details = new CGadgetDetails();
            details->SetVoltage(230);
            item->SetDetails(details);
        }
        if (i % 5 == 0)
            item->SetComment("Leave at the back door & ring twice");
        order->GetLineItems().Add(item);
    }
    order->GetTotals().SetSubtotal(CDecimal("1234.5"));
    order->GetTotals().SetItemCount(static_cast<unsigned short>(lineItems));
    return order;
}

inline CXmlSerializationContext const& Context()
{
    static CXmlSerializationContext context = [] {
        CXmlSerializationContext c;
        c.GetNamespaceAliases().Add("po", NAMESPACE);
        c.GetNamespaceAliases().Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
        return c;
    }();
    return context;
}

} // namespace KdBindBench

#endif
