// Facet checks over a million values: a pattern facet with its compiled
// pattern kept against one compiled for every value, and a range facet with
// its bounds kept against bounds parsed for every value.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include <kdbind/binding.h>

using namespace KdBind;

namespace {

constexpr int kValueCount = 1000000;
char const* const kPartPattern = "\\d{3}-[A-Z]{2}";

// Part numbers such as "872-AA", all valid, so that no refusal is timed.
std::vector<std::string> const& PartNumbers()
{
    static std::vector<std::string> const parts = [] {
        std::vector<std::string> built;
        built.reserve(kValueCount);
        for (int i = 0; i < kValueCount; ++i)
            built.push_back(std::to_string(100 + i % 900) + "-" + static_cast<char>('A' + i % 26) +
                            static_cast<char>('A' + i / 26 % 26));
        return built;
    }();
    return parts;
}

// The check as the library runs it: the record keeps its compiled pattern.
void PatternFacetCached(benchmark::State& state)
{
    CPrimitiveRestrictions const facets(kPartPattern, -1, -1, "", "", "", "", -1);
    for (auto _ : state)
        for (std::string const& part : PartNumbers())
            CXmlObjectHelper::CheckRestrictionForstring("part", part, facets);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValueCount);
}

// The same test with the pattern rewritten and compiled for each value.
void PatternFacetCompiledEachTime(benchmark::State& state)
{
    for (auto _ : state)
        for (std::string const& part : PartNumbers())
            if (!CCompiledPattern(kPartPattern).Matches(part))
                state.SkipWithError("refused");
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValueCount);
}

// The range facet as the library runs it: bounds parsed once per record.
void RangeFacetCached(benchmark::State& state)
{
    CPrimitiveRestrictions const facets("", -1, -1, "0", "1000000", "", "", -1);
    for (auto _ : state)
        for (long value = 0; value < kValueCount; ++value)
            CXmlObjectHelper::CheckRestrictionFori4("quantity", value, facets);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValueCount);
}

// The same bounds parsed again for each value.
void RangeFacetParsedEachTime(benchmark::State& state)
{
    CPrimitiveRestrictions const facets("", -1, -1, "0", "1000000", "", "", -1);
    auto const collapse = CWhitespaceUtils::WhitespaceRule_Collapse;
    for (auto _ : state)
        for (long value = 0; value < kValueCount; ++value)
            if (value < CConversions::i4FromString(facets.minInclusive, collapse) ||
                value > CConversions::i4FromString(facets.maxInclusive, collapse))
                state.SkipWithError("refused");
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * kValueCount);
}

} // namespace

BENCHMARK(PatternFacetCached)->Unit(benchmark::kMillisecond);
BENCHMARK(PatternFacetCompiledEachTime)->Unit(benchmark::kMillisecond);
BENCHMARK(RangeFacetCached)->Unit(benchmark::kMillisecond);
BENCHMARK(RangeFacetParsedEachTime)->Unit(benchmark::kMillisecond);
