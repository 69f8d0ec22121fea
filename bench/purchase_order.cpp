// Binding a purchase order both ways: ToXml and FromXml over documents of
// 10,000 to 100,000 line items (about 3 to 30 MB), and the bare element tree
// build of the same text for comparison. Bytes are the document's size.
#include <benchmark/benchmark.h>

#include <string>

#include "purchase_order_fixture.h"

using namespace KdBind;
using namespace PurchaseOrderSchema;
using namespace KdBindBench;

namespace {

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
