// Binding a purchase order both ways: ToXml and FromXml over documents of
// 10,000 to 100,000 line items (about 3 to 30 MB), and the bare element tree
// build of the same text for comparison. Bytes are the document's size.
#include <benchmark/benchmark.h>

#include <string>

#include "purchase_order.h"

using namespace KdBind;
using namespace PurchaseOrderSchema;

namespace {

CSmartPtr<CPurchaseOrder> MakeOrder(int lineItems)
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

CXmlSerializationContext const& Context()
{
    static CXmlSerializationContext context = [] {
        CXmlSerializationContext c;
        c.GetNamespaceAliases().Add("po", NAMESPACE);
        c.GetNamespaceAliases().Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
        return c;
    }();
    return context;
}

void BM_ToXml(benchmark::State& state)
{
    CSmartPtr<CPurchaseOrder> order = MakeOrder(static_cast<int>(state.range(0)));
    size_t bytes = 0;
    for (auto _ : state) {
        std::string xml = order->ToXml(true, true, EOLType_LF, Context());
        bytes = xml.size();
        benchmark::DoNotOptimize(xml.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
    state.counters["MB"] = static_cast<double>(bytes) / 1e6;
}

void BM_FromXml(benchmark::State& state)
{
    std::string const xml = MakeOrder(static_cast<int>(state.range(0)))->ToXml(true, true, EOLType_LF, Context());
    for (auto _ : state) {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
        order->FromXml(xml.c_str());
        benchmark::DoNotOptimize(order.get());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(xml.size()));
}

// The tree alone: what FromXml costs before the walk starts.
void BM_TreeOnly(benchmark::State& state)
{
    std::string const xml = MakeOrder(static_cast<int>(state.range(0)))->ToXml(true, true, EOLType_LF, Context());
    for (auto _ : state) {
        CXmlDocument document;
        document.LoadXml(xml.c_str());
        benchmark::DoNotOptimize(document.GetDocumentElement());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(xml.size()));
}

} // namespace

BENCHMARK(BM_ToXml)->Arg(10000)->Arg(33000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromXml)->Arg(10000)->Arg(33000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreeOnly)->Arg(33000)->Unit(benchmark::kMillisecond);
