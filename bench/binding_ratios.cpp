// The binding's speed and memory as ratios to a bare expat parse of the same
// document, measured in the same run. Each iteration times the bare parse and
// the operation under test back to back, in thread CPU time, so load from
// other processes on a shared machine touches both alike:
//
//   ratio = bare expat time / operation time   (1.00 = as fast as expat)
//
// For ToXml the document is the one ToXml writes, so the ratio compares
// bytes written with bytes parsed per second. The large document is a
// purchase order of about 10 MB, the small one has ten line items (2.7 KB);
// small documents are timed a hundred to an iteration so that per-document
// set-up shows. Peak memory is FromXml's growth of the resident set, from
// before the call to its high-water mark (tree, objects, everything), in a
// child process, as a multiple of the document's size.
//
// The "bare" parse is namespace-aware with empty start, end and character
// handlers: the least any reader built on expat does.
#include <benchmark/benchmark.h>

#include <malloc.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <string>

#include <expat.h>

#include "purchase_order_fixture.h"

using namespace KdBind;
using namespace PurchaseOrderSchema;
using namespace KdBindBench;

namespace {

constexpr size_t kLargeBytes = 10 * 1000 * 1000;
constexpr int kSmallItems = 10;
constexpr int kSmallPerIteration = 100;

std::string WriteOrder(int lineItems) { return MakeOrder(lineItems)->ToXml(true, true, EOLType_LF, Context()); }

// About 10 MB: the line-item count scaled from a sample.
std::string const& LargeDocument()
{
    static std::string const xml = [] {
        size_t const sample = WriteOrder(1000).size();
        return WriteOrder(static_cast<int>(1000 * kLargeBytes / sample));
    }();
    return xml;
}

std::string const& SmallDocument()
{
    static std::string const xml = WriteOrder(kSmallItems);
    return xml;
}

double ThreadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void OnStart(void*, char const*, char const**) {}
void OnEnd(void*, char const*) {}
void OnText(void*, char const*, int) {}

void BareExpat(std::string const& xml)
{
    XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_Status const status = XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), XML_TRUE);
    XML_ParserFree(parser);
    if (status != XML_STATUS_OK)
        throw std::runtime_error("bare expat refused the document");
}

void FromXmlOnce(std::string const& xml)
{
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(xml.c_str());
    benchmark::DoNotOptimize(order.get());
}

void LoadXmlOnce(std::string const& xml)
{
    CXmlDocument document;
    document.LoadXml(xml.c_str());
    benchmark::DoNotOptimize(document.GetDocumentElement());
}

// The summary printed after the run: the last ratio of each benchmark.
std::map<std::string, double>& Ratios()
{
    static std::map<std::string, double> ratios;
    return ratios;
}

// Times `operation` against the bare parse of `xml`, `repeat` of each per
// iteration; the reported time is the operation's.
void AgainstExpat(benchmark::State& state, char const* name, std::string const& xml, int repeat,
                  std::function<void()> const& operation)
{
    double expatSeconds = 0;
    double operationSeconds = 0;
    for (auto _ : state) {
        double const t0 = ThreadSeconds();
        for (int i = 0; i < repeat; ++i)
            BareExpat(xml);
        double const t1 = ThreadSeconds();
        for (int i = 0; i < repeat; ++i)
            operation();
        double const t2 = ThreadSeconds();
        expatSeconds += t1 - t0;
        operationSeconds += t2 - t1;
        state.SetIterationTime(t2 - t1);
    }
    double const ratio = operationSeconds > 0 ? expatSeconds / operationSeconds : 0;
    state.counters["x_expat"] = ratio;
    state.counters["MB"] = static_cast<double>(xml.size()) / 1e6;
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * repeat * static_cast<int64_t>(xml.size()));
    Ratios()[name] = ratio;
}

void BM_FromXml(benchmark::State& state)
{
    std::string const& xml = LargeDocument();
    AgainstExpat(state, "FromXml, 10 MB", xml, 1, [&] { FromXmlOnce(xml); });
}

void BM_LoadXml(benchmark::State& state)
{
    std::string const& xml = LargeDocument();
    AgainstExpat(state, "LoadXml, 10 MB", xml, 1, [&] { LoadXmlOnce(xml); });
}

void BM_ToXml(benchmark::State& state)
{
    std::string const& xml = LargeDocument();
    CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
    order->FromXml(xml.c_str());
    AgainstExpat(state, "ToXml, 10 MB", xml, 1, [&] {
        std::string written = order->ToXml(true, true, EOLType_LF, Context());
        benchmark::DoNotOptimize(written.data());
    });
}

void BM_FromXmlSmall(benchmark::State& state)
{
    std::string const& xml = SmallDocument();
    AgainstExpat(state, "FromXml, 10 items", xml, kSmallPerIteration, [&] { FromXmlOnce(xml); });
}

long StatusKilobytes(char const* field)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    size_t const length = std::strlen(field);
    while (std::getline(status, line))
        if (line.compare(0, length, field) == 0 && line.size() > length && line[length] == ':')
            return std::stol(line.substr(length + 1));
    return -1;
}

// FromXml's peak resident growth over the document's size, measured in a
// child so that nothing the benchmarks freed earlier is reused unseen.
double PeakMemoryMultiple(std::string const& xml)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        return -1;
    pid_t const child = fork();
    if (child == 0) {
        close(pipeEnds[0]);
        malloc_trim(0);
        {
            std::ofstream clear("/proc/self/clear_refs");
            clear << "5";  // resets the high-water mark to the current resident set
        }
        long const before = StatusKilobytes("VmRSS");
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
        order->FromXml(xml.c_str());
        long const peak = StatusKilobytes("VmHWM");
        double const multiple = static_cast<double>(peak - before) * 1024.0 / static_cast<double>(xml.size());
        ssize_t const written = write(pipeEnds[1], &multiple, sizeof multiple);
        _exit(written == sizeof multiple ? 0 : 1);
    }
    close(pipeEnds[1]);
    double multiple = -1;
    if (read(pipeEnds[0], &multiple, sizeof multiple) != sizeof multiple)
        multiple = -1;
    close(pipeEnds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return multiple;
}

} // namespace

BENCHMARK(BM_FromXml)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_LoadXml)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ToXml)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_FromXmlSmall)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    std::string const& large = LargeDocument();
    // Before any benchmark runs, while the heap holds little but the document.
    double const peak = PeakMemoryMultiple(large);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    std::printf("\nAgainst a bare expat parse of the same document (expat = 1.00, higher is faster):\n");
    for (auto const& [name, ratio] : Ratios())
        std::printf("  %-18s %.2fx\n", name.c_str(), ratio);
    std::printf("Peak memory of FromXml, %.1f MB document: %.1fx its size\n", static_cast<double>(large.size()) / 1e6,
                peak);
    return 0;
}
