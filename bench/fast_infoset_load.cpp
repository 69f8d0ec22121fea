// Loading the purchase order of about 10 MB of formatted XML (43,000 line
// items) through FromXmlStream, from its four forms: text, Fast Infoset,
// and both gzip-compressed. Bytes processed are the XML text's size in every
// case, so that rates read as MB of equivalent XML per second. The Tree
// benchmarks stop at the element tree, which is where the forms differ.
// BM_LoadFastInfosetAgainstText times the text and the Fast Infoset load in
// turn within one run and reports load_time_ratio: the Fast Infoset load's
// time as a share of the text load's (0.5: twice as fast), in thread CPU
// time, which a busy machine disturbs less than the clock on the wall.
#include <benchmark/benchmark.h>

#include <ctime>
#include <string>
#include <vector>

#include "purchase_order_fixture.h"

using namespace KdBind;
using namespace KdBindBench;

namespace {

constexpr int kLineItems = 43000;

enum Form { Form_Text, Form_FastInfoset, Form_TextGzip, Form_FastInfosetGzip };

std::vector<CBinaryData> MakeDocuments()
{
    CSmartPtr<CPurchaseOrder> const order = MakeOrder(kLineItems);
    CXmlSerializationContext const& context = Context();
    return {order->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, context),
            order->ToFastInfosetStream(FInfoDecl_10_Encoding, context),
            order->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, context, CompressionType_GZip),
            order->ToFastInfosetStream(FInfoDecl_10_Encoding, context, CompressionType_GZip)};
}

CBinaryData const& Document(Form form)
{
    static std::vector<CBinaryData> const documents = MakeDocuments();
    return documents[form];
}

void Load(Form form)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXmlStream(Document(form), Context());
    benchmark::DoNotOptimize(order.get());
}

void BM_Load(benchmark::State& state)
{
    Form const form = static_cast<Form>(state.range(0));
    Document(form);  // made before the clock runs
    for (auto _ : state)
        Load(form);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(Document(Form_Text).GetLength()));
    state.counters["input_MB"] = static_cast<double>(Document(form).GetLength()) / 1e6;
}

void BM_Tree(benchmark::State& state)
{
    Form const form = static_cast<Form>(state.range(0));
    CBinaryData const& data = Document(form);
    for (auto _ : state) {
        CXmlDocument document(Context());
        document.LoadXmlStream(const_cast<unsigned char*>(data.GetData()), data.GetLength());
        benchmark::DoNotOptimize(document.GetDocumentElement());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(Document(Form_Text).GetLength()));
}

double ThreadSeconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void BM_LoadFastInfosetAgainstText(benchmark::State& state)
{
    Document(Form_Text);
    double text = 0, binary = 0;
    for (auto _ : state) {
        double const start = ThreadSeconds();
        Load(Form_Text);
        double const middle = ThreadSeconds();
        Load(Form_FastInfoset);
        double const end = ThreadSeconds();
        text += middle - start;
        binary += end - middle;
    }
    state.counters["load_time_ratio"] = binary / text;
}

void Forms(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("form");  // 0 text, 1 Fast Infoset, 2 text.gz, 3 Fast Infoset.gz
    for (int form = Form_Text; form <= Form_FastInfosetGzip; ++form)
        benchmark->Arg(form);
}

} // namespace

BENCHMARK(BM_Load)->Apply(Forms)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Tree)->Apply(Forms)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFastInfosetAgainstText)->Unit(benchmark::kMillisecond);
