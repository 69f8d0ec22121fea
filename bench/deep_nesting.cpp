// Nested elements written one inside the other, 100 to 10,000 deep, in a
// namespace whose prefix each start tag looks up. Items are elements: the
// rate per element should not fall with the depth (compare the first line,
// the baseline, with the others of the same run).
#include <benchmark/benchmark.h>

#include <kdbind/kdbind.h>

using namespace KdBind;

namespace {

void BM_WriteNested(benchmark::State& state)
{
    int const depth = static_cast<int>(state.range(0));
    std::string const uri = "urn:kdbind:bench";
    for (auto _ : state) {
        CTextStream stream;
        CXmlTextWriter writer(stream);
        writer.Open();
        writer.SetFormat(false);
        writer.AddNamespace("b", uri);
        for (int i = 0; i < depth; ++i)
            writer.WriteStartElement("e", uri);
        for (int i = 0; i < depth; ++i)
            writer.WriteEndElement();
        writer.Close();
        benchmark::DoNotOptimize(stream.GetLength());
    }
    state.SetItemsProcessed(state.iterations() * depth);
}
BENCHMARK(BM_WriteNested)->Arg(100)->Arg(1000)->Arg(10000);

} // namespace
