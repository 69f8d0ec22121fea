// A million decimals read from their text and printed back, as the decimal
// kind and as the double kind, through the conversions every document value
// takes: prices such as "1234.56" and 30-digit values.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include <kdbind/values.h>

using namespace KdBind;

namespace {

constexpr size_t kCount = 1000000;
constexpr auto kRule = CWhitespaceUtils::WhitespaceRule_Collapse;

std::vector<std::string> const& Prices()
{
    static std::vector<std::string> const texts = [] {
        std::mt19937_64 random(7);
        std::vector<std::string> out;
        out.reserve(kCount);
        for (size_t i = 0; i < kCount; ++i) {
            unsigned long long const cents = 1 + random() % 10000000;
            std::string text = std::to_string(cents / 100) + ".";
            text += static_cast<char>('0' + cents % 100 / 10);
            text += static_cast<char>('0' + cents % 10);
            out.push_back(text);
        }
        return out;
    }();
    return texts;
}

// Twenty digits before the point and ten after: more than a double holds.
std::vector<std::string> const& Long()
{
    static std::vector<std::string> const texts = [] {
        std::mt19937_64 random(8);
        std::vector<std::string> out;
        out.reserve(kCount);
        for (size_t i = 0; i < kCount; ++i) {
            std::string text(31, '0');
            for (char& c : text)
                c = static_cast<char>('0' + random() % 10);
            text[0] = static_cast<char>('1' + random() % 9);
            text[20] = '.';
            text[30] = static_cast<char>('1' + random() % 9);
            out.push_back(text);
        }
        return out;
    }();
    return texts;
}

template <std::vector<std::string> const& (*Texts)()>
void DecimalRoundTrip(benchmark::State& state)
{
    std::vector<std::string> const& texts = Texts();
    for (auto _ : state)
        for (std::string const& text : texts)
            benchmark::DoNotOptimize(CConversions::decimalToString(CConversions::decimalFromString(text, kRule)));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * texts.size()));
}

template <std::vector<std::string> const& (*Texts)()>
void DoubleRoundTrip(benchmark::State& state)
{
    std::vector<std::string> const& texts = Texts();
    for (auto _ : state)
        for (std::string const& text : texts)
            benchmark::DoNotOptimize(CConversions::r8ToString(CConversions::r8FromString(text, kRule)));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * texts.size()));
}

} // namespace

BENCHMARK(DoubleRoundTrip<&Prices>)->Name("prices/double")->Unit(benchmark::kMillisecond);
BENCHMARK(DecimalRoundTrip<&Prices>)->Name("prices/decimal")->Unit(benchmark::kMillisecond);
BENCHMARK(DoubleRoundTrip<&Long>)->Name("30 digits/double")->Unit(benchmark::kMillisecond);
BENCHMARK(DecimalRoundTrip<&Long>)->Name("30 digits/decimal")->Unit(benchmark::kMillisecond);
