// The hexadecimal and base64 forms of a 10 MB block, both ways: binary
// values travel through these on every read and write of a document.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include <kdbind/values.h>

using KdBind::CBinaryData;

namespace {

constexpr unsigned long kBlockSize = 10 * 1024 * 1024;

CBinaryData const& Block()
{
    static CBinaryData const block = [] {
        std::mt19937 generator(42);
        auto* bytes = new unsigned char[kBlockSize];
        for (unsigned long i = 0; i < kBlockSize; ++i)
            bytes[i] = static_cast<unsigned char>(generator());
        return CBinaryData(bytes, kBlockSize, true);
    }();
    return block;
}

// Bytes processed are the binary bytes, in both directions, so that the
// figures of the two forms compare.
void HexEncode(benchmark::State& state)
{
    CBinaryData const& block = Block();
    for (auto _ : state)
        benchmark::DoNotOptimize(block.GetAsHexString());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlockSize);
}

void HexDecode(benchmark::State& state)
{
    std::string const text = Block().GetAsHexString();
    for (auto _ : state) {
        CBinaryData decoded;
        decoded.SetAsHexString(text.c_str());
        benchmark::DoNotOptimize(decoded.GetData());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlockSize);
}

void Base64Encode(benchmark::State& state)
{
    CBinaryData const& block = Block();
    for (auto _ : state)
        benchmark::DoNotOptimize(block.GetAsBase64());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlockSize);
}

void Base64Decode(benchmark::State& state)
{
    std::string const text = Block().GetAsBase64();
    for (auto _ : state) {
        CBinaryData decoded;
        decoded.SetAsBase64(text.c_str());
        benchmark::DoNotOptimize(decoded.GetData());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlockSize);
}

} // namespace

BENCHMARK(HexEncode)->Unit(benchmark::kMillisecond);
BENCHMARK(HexDecode)->Unit(benchmark::kMillisecond);
BENCHMARK(Base64Encode)->Unit(benchmark::kMillisecond);
BENCHMARK(Base64Decode)->Unit(benchmark::kMillisecond);
