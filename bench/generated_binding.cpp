// The purchase order of about 10 MB of formatted XML (43,000 line items)
// bound both ways through the classes kdbind-xsd generates from
// examples/purchase_order.xsd, next to the hand-written classes of the same
// schema. Both bindings write the same bytes (checked before timing).
// BM_GeneratedAgainstHandWritten times the two in turn within one run and
// reports time_ratio: the generated binding's time as a share of the
// hand-written one's (1: as fast), in thread CPU time, which a busy machine
// disturbs less than the clock on the wall.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

// The hand-written binding's include directory comes first, so that
// "purchase_order.h" names its header; the generated header is reached
// through its umbrella, which includes its own directory's.
#include "purchase_order_fixture.h"
#include "purchase_order_generated.h"

using namespace KdBind;
using namespace KdBindBench;

namespace {

constexpr int kLineItems = 43000;

using HandWritten = PurchaseOrderSchema::CPurchaseOrder;
using Generated = PurchaseOrderXsd::CPurchaseOrderType;

std::string const& Text()
{
    static std::string const text = MakeOrder(kLineItems)->ToXml(true, true, EOLType_LF, Context());
    return text;
}

template <class Order>
CSmartPtr<Order> Read()
{
    CSmartPtr<Order> order = new Order();
    order->FromXml(Text().c_str());
    return order;
}

// Each binding's order, read from the same text; both write it back as it was.
template <class Order>
Order const& Loaded()
{
    static CSmartPtr<Order> const order = [] {
        CSmartPtr<Order> read = Read<Order>();
        if (read->ToXml(true, true, EOLType_LF, Context()) != Text()) {
            std::fprintf(stderr, "the two bindings do not write the same document\n");
            std::abort();
        }
        return read;
    }();
    return *order;
}

template <class Order>
void Write()
{
    std::string xml = Loaded<Order>().ToXml(true, true, EOLType_LF, Context());
    benchmark::DoNotOptimize(xml.data());
}

template <class Order>
void Load()
{
    CSmartPtr<Order> order = Read<Order>();
    benchmark::DoNotOptimize(order.get());
}

template <class Order>
void BM_ToXml(benchmark::State& state)
{
    Loaded<Order>();
    for (auto _ : state)
        Write<Order>();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(Text().size()));
}

template <class Order>
void BM_FromXml(benchmark::State& state)
{
    Loaded<Order>();
    for (auto _ : state)
        Load<Order>();
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(Text().size()));
}

double ThreadSeconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// direction 0: ToXml, 1: FromXml.
void BM_GeneratedAgainstHandWritten(benchmark::State& state)
{
    bool const writing = state.range(0) == 0;
    Loaded<HandWritten>();
    Loaded<Generated>();
    double handWritten = 0, generated = 0;
    for (auto _ : state) {
        double const start = ThreadSeconds();
        writing ? Write<HandWritten>() : Load<HandWritten>();
        double const middle = ThreadSeconds();
        writing ? Write<Generated>() : Load<Generated>();
        double const end = ThreadSeconds();
        handWritten += middle - start;
        generated += end - middle;
    }
    state.counters["time_ratio"] = generated / handWritten;
}

} // namespace

BENCHMARK(BM_ToXml<HandWritten>)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToXml<Generated>)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromXml<HandWritten>)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromXml<Generated>)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GeneratedAgainstHandWritten)->ArgName("direction")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
