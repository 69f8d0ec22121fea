// Runs a fuzz target without libFuzzer: every file of the seed corpus once,
// then a fixed number of deterministic mutations of them (byte changes,
// insertions, deletions, repeats and splices), stopping early when the time
// budget is spent. A crash, a sanitizer report or an abort of the target
// fails the run; the input that did it is written to replay-failure.bin
// before each call, so that it is left behind.
//
//   kdbind_replay_<target> <corpus directory> [mutations] [seconds]
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>

#include <signal.h>
#include <unistd.h>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size);

namespace {

using Bytes = std::string;

std::vector<Bytes> ReadCorpus(std::filesystem::path const& directory)
{
    std::vector<std::filesystem::path> paths;
    for (auto const& entry : std::filesystem::directory_iterator(directory))
        if (entry.is_regular_file())
            paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());  // the same order, so the same mutations, on every run
    std::vector<Bytes> seeds;
    for (auto const& path : paths) {
        std::ifstream file(path, std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return seeds;
}

Bytes Mutate(Bytes input, std::vector<Bytes> const& seeds, std::mt19937& random)
{
    auto pick = [&](size_t bound) { return bound ? std::uniform_int_distribution<size_t>(0, bound - 1)(random) : 0; };
    static char const kInteresting[] = "<>/&;\"'=:x#\r\n\t 0-9.E+]";
    for (int steps = 1 + static_cast<int>(pick(4)); steps > 0; --steps) {
        size_t const at = pick(input.size() + 1);
        switch (pick(6)) {
        case 0:  // replace a byte
            if (at < input.size())
                input[at] = static_cast<char>(random());
            break;
        case 1:  // insert a byte that means something to a parser
            input.insert(at, 1, kInteresting[pick(sizeof kInteresting - 1)]);
            break;
        case 2:  // delete a run
            if (at < input.size())
                input.erase(at, 1 + pick(16));
            break;
        case 3: {  // repeat a run
            size_t const length = std::min<size_t>(input.size() - std::min(at, input.size()), 1 + pick(64));
            input.insert(at, input.substr(std::min(at, input.size()), length));
            break;
        }
        case 4: {  // splice in a piece of another seed
            Bytes const& other = seeds[pick(seeds.size())];
            size_t const from = pick(other.size() + 1);
            input.insert(at, other.substr(from, 1 + pick(128)));
            break;
        }
        default:  // cut the end off
            input.resize(at);
            break;
        }
    }
    return input;
}

// The number of the input that runs: seeds first, then mutations.
volatile sig_atomic_t g_current = -1;

void ReportCurrent()
{
    char text[64];
    int const length = snprintf(text, sizeof text, "\nfailed on input %d (see --dump)\n", static_cast<int>(g_current));
    if (length > 0)
        (void)!write(2, text, static_cast<size_t>(length));
}

void OnFatalSignal(int signal)
{
    ReportCurrent();
    ::signal(signal, SIG_DFL);
    raise(signal);
}

void Run(Bytes const& input, long number)
{
    g_current = static_cast<sig_atomic_t>(number);
    LLVMFuzzerTestOneInput(reinterpret_cast<uint8_t const*>(input.data()), input.size());
}

} // namespace

// Present in the sanitizer runtimes only: called before a report ends the process.
extern "C" void __sanitizer_set_death_callback(void (*callback)(void)) __attribute__((weak));

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: " << argv[0] << " <corpus directory> [mutations] [seconds]\n";
        return 2;
    }
    long const mutations = argc > 2 ? std::atol(argv[2]) : 2000;
    double const seconds = argc > 3 ? std::atof(argv[3]) : 5.0;
    std::vector<Bytes> const seeds = ReadCorpus(argv[1]);
    if (seeds.empty()) {
        std::cerr << "no seeds in " << argv[1] << "\n";
        return 2;
    }
    long const seedCount = static_cast<long>(seeds.size());
    long const dump = argc > 3 && std::string(argv[2]) == "--dump" ? std::atol(argv[3]) : -1;
    auto input = [&, random = std::mt19937(20261123), made = seedCount](long number) mutable {
        if (number < seedCount)
            return seeds[static_cast<size_t>(number)];
        Bytes mutated;
        while (made <= number) {
            mutated = Mutate(seeds[static_cast<size_t>(made % seedCount)], seeds, random);
            ++made;
        }
        return mutated;
    };
    if (dump >= 0) {
        for (long number = seedCount; number < dump; ++number)
            input(number);
        Bytes const bytes = input(dump);
        std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return 0;
    }

    for (int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT})
        ::signal(signal, OnFatalSignal);
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback(ReportCurrent);
    for (long number = 0; number < seedCount; ++number)
        Run(seeds[static_cast<size_t>(number)], number);
    auto const start = std::chrono::steady_clock::now();
    long done = 0;
    for (; done < mutations; ++done) {
        if (std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() > seconds)
            break;
        Run(input(seedCount + done), seedCount + done);
    }
    std::cout << seeds.size() << " seeds and " << done << " mutations passed\n";
    return 0;
}
