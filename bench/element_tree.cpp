// Building the element tree against expat's own parse of the same text: the
// tree is the input path's only intermediate form, so its cost over the bare
// parse is what every load pays.
#include <benchmark/benchmark.h>

#include <string>

#include <expat.h>

#include <kdbind/binding.h>

namespace {

// About 10 MB of small elements with attributes and text, in a default
// namespace, indented as a writer would indent them.
std::string const& Document()
{
    static std::string const xml = [] {
        std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<orders xmlns=\"urn:kdbind:bench:orders\">\n";
        for (long order = 0; text.size() < 10 * 1024 * 1024; ++order) {
            text += "  <order id=\"" + std::to_string(order) + "\" status=\"open\">\n";
            for (int line = 0; line < 4; ++line) {
                text += "    <line sku=\"SKU-" + std::to_string(order * 4 + line) + "\" qty=\"" +
                        std::to_string(line + 1) + "\">Item description " + std::to_string(line) + "</line>\n";
            }
            text += "    <note>Deliver to the back door</note>\n  </order>\n";
        }
        text += "</orders>\n";
        return text;
    }();
    return xml;
}

void CountElement(void* userData, char const*, char const**) { ++*static_cast<long*>(userData); }

void BareExpat(benchmark::State& state)
{
    std::string const& xml = Document();
    long elements = 0;
    for (auto _ : state) {
        elements = 0;
        XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
        XML_SetUserData(parser, &elements);
        XML_SetStartElementHandler(parser, CountElement);
        if (XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), XML_TRUE) != XML_STATUS_OK)
            state.SkipWithError("parse failed");
        XML_ParserFree(parser);
        benchmark::DoNotOptimize(elements);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(xml.size()));
    state.counters["elements"] = static_cast<double>(elements);
}

// Load and destruction both: a document lives for one call.
void ElementTree(benchmark::State& state)
{
    std::string const& xml = Document();
    for (auto _ : state) {
        KdBind::CXmlDocument document;
        document.LoadXml(xml.c_str());
        benchmark::DoNotOptimize(document.GetDocumentElement());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(xml.size()));
}

} // namespace

BENCHMARK(BareExpat)->Unit(benchmark::kMillisecond);
BENCHMARK(ElementTree)->Unit(benchmark::kMillisecond);
