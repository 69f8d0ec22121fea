// The purchase order of about 10 MB of formatted XML (43,000 line items)
// written as Fast Infoset and as text. Bytes processed are the XML text's
// size for both, so that both rates read as MB of equivalent XML per second.
// BM_FastInfosetAgainstText times the two in turn within one run and
// reports the speed ratio (above 1: Fast Infoset is faster) and the size
// ratio of the binary document to the text.
#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

#include "purchase_order_fixture.h"

using namespace KdBind;
using namespace KdBindBench;

namespace {

constexpr int kLineItems = 43000;

CSmartPtr<CPurchaseOrder> const& Order()
{
    static CSmartPtr<CPurchaseOrder> const order = MakeOrder(kLineItems);
    return order;
}

size_t TextSize()
{
    static size_t const size = Order()->ToXml(true, true, EOLType_LF, Context()).size();
    return size;
}

void BM_WriteText(benchmark::State& state)
{
    for (auto _ : state) {
        std::string xml = Order()->ToXml(true, true, EOLType_LF, Context());
        benchmark::DoNotOptimize(xml.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(TextSize()));
}

void BM_WriteFastInfoset(benchmark::State& state)
{
    size_t size = 0;
    for (auto _ : state) {
        CBinaryData data = Order()->ToFastInfosetStream(FInfoDecl_10_Encoding, Context());
        size = data.GetLength();
        benchmark::DoNotOptimize(data.GetData());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(TextSize()));
    state.counters["size_ratio"] = static_cast<double>(size) / static_cast<double>(TextSize());
}

void BM_FastInfosetAgainstText(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    Clock::duration text{}, binary{};
    size_t size = 0;
    for (auto _ : state) {
        Clock::time_point const start = Clock::now();
        std::string xml = Order()->ToXml(true, true, EOLType_LF, Context());
        benchmark::DoNotOptimize(xml.data());
        Clock::time_point const middle = Clock::now();
        CBinaryData data = Order()->ToFastInfosetStream(FInfoDecl_10_Encoding, Context());
        benchmark::DoNotOptimize(data.GetData());
        Clock::time_point const end = Clock::now();
        text += middle - start;
        binary += end - middle;
        size = data.GetLength();
    }
    state.counters["speed_ratio"] =
        std::chrono::duration<double>(text).count() / std::chrono::duration<double>(binary).count();
    state.counters["size_ratio"] = static_cast<double>(size) / static_cast<double>(TextSize());
}

} // namespace

BENCHMARK(BM_WriteText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteFastInfoset)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FastInfosetAgainstText)->Unit(benchmark::kMillisecond);
