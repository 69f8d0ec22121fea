// A million dateTime values parsed and printed, by CDateTime and by the
// CConversions pair the binding uses, against a baseline of sscanf and
// snprintf over the same texts measured in the same run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <kdbind/values.h>

using KdBind::CConversions;
using KdBind::CDateTime;
using KdBind::CWhitespaceUtils;

namespace {

constexpr int kValues = 1000000;

// A mix of forms: with and without a fraction, with "Z", an offset or no zone.
std::vector<std::string> const& Texts()
{
    static std::vector<std::string> const texts = [] {
        std::mt19937 generator(7);
        std::vector<std::string> result;
        result.reserve(kValues);
        char buffer[64];
        char const* const zones[] = {"", "Z", "+05:30", "-08:00"};
        for (int i = 0; i < kValues; ++i) {
            unsigned const r = generator();
            int length = snprintf(buffer, sizeof buffer, "%04u-%02u-%02uT%02u:%02u:%02u", 1900 + r % 200,
                                  1 + r % 12, 1 + r % 28, r % 24, (r >> 8) % 60, (r >> 16) % 60);
            if (i % 2)
                length += snprintf(buffer + length, sizeof buffer - length, ".%0*u", 1 + static_cast<int>(r % 9),
                                   (r >> 4) % 10);
            snprintf(buffer + length, sizeof buffer - length, "%s", zones[(r >> 24) % 4]);
            result.emplace_back(buffer);
        }
        return result;
    }();
    return texts;
}

std::vector<CDateTime> const& Values()
{
    static std::vector<CDateTime> const values = [] {
        std::vector<CDateTime> result(kValues);
        for (int i = 0; i < kValues; ++i)
            result[i].ParseXSDDateTime(Texts()[i].c_str());
        return result;
    }();
    return values;
}

void Parse(benchmark::State& state)
{
    std::vector<std::string> const& texts = Texts();
    for (auto _ : state) {
        for (std::string const& text : texts) {
            CDateTime value;
            value.ParseXSDDateTime(text.c_str());
            benchmark::DoNotOptimize(value);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValues);
}

void Print(benchmark::State& state)
{
    std::vector<CDateTime> const& values = Values();
    for (auto _ : state)
        for (CDateTime const& value : values)
            benchmark::DoNotOptimize(value.ToString());
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValues);
}

// The path of an element or attribute: the whitespace rule, then the parser.
void ParseThroughConversions(benchmark::State& state)
{
    std::vector<std::string> const& texts = Texts();
    for (auto _ : state)
        for (std::string const& text : texts)
            benchmark::DoNotOptimize(CConversions::datetimeFromString(text, CWhitespaceUtils::WhitespaceRule_Collapse));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValues);
}

// Baseline: the six fields read by sscanf, without fraction or zone.
void BaselineSscanf(benchmark::State& state)
{
    std::vector<std::string> const& texts = Texts();
    for (auto _ : state) {
        for (std::string const& text : texts) {
            int fields[6];
            benchmark::DoNotOptimize(sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d", &fields[0], &fields[1],
                                            &fields[2], &fields[3], &fields[4], &fields[5]));
            benchmark::DoNotOptimize(fields);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValues);
}

// Baseline: the six fields printed by snprintf into a string.
void BaselineSnprintf(benchmark::State& state)
{
    std::vector<CDateTime> const& values = Values();
    for (auto _ : state) {
        for (CDateTime const& value : values) {
            char buffer[64];
            int const length = snprintf(buffer, sizeof buffer, "%04d-%02u-%02uT%02u:%02u:%02u", value.GetYear(),
                                        value.GetMonth(), value.GetDay(), value.GetHour(), value.GetMinute(),
                                        value.GetSecond());
            benchmark::DoNotOptimize(std::string(buffer, static_cast<size_t>(length)));
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValues);
}

} // namespace

BENCHMARK(Parse)->Unit(benchmark::kMillisecond);
BENCHMARK(BaselineSscanf)->Unit(benchmark::kMillisecond);
BENCHMARK(ParseThroughConversions)->Unit(benchmark::kMillisecond);
BENCHMARK(Print)->Unit(benchmark::kMillisecond);
BENCHMARK(BaselineSnprintf)->Unit(benchmark::kMillisecond);
