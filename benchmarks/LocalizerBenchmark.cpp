// One text of a catalog, from the host's request to the host's string, with the lock. The floor is
// a flat map that hands out a copy, without a lock.
#include <benchmark/benchmark.h>
#include <tsl/robin_map.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string_view>

#include "benchmarks/Corpus.h"
#include "host/vexacore/Utility.h"
#include "localizer/VEXALocalizer.h"

namespace benchmarks {
namespace {

enum class Store { kHash, kCompact };

template <Store kStore, bool kHit>
void GetLocalizedString(benchmark::State& state) {
    const Corpus corpus(static_cast<std::size_t>(state.range(0)));
    const auto folder = std::filesystem::temp_directory_path() /
                        ("localizer-benchmark-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "wdictionary.dat", std::ios::binary)
        << (kStore == Store::kHash ? corpus.TextFile() : corpus.BinaryFile());
    FE::Localizer localizer;
    if (!localizer.LoadDictionary(vexacore::utility::StdToUTF16String(folder.native())))
        state.SkipWithError("the dictionary was not found");
    std::filesystem::remove_all(folder);

    const std::vector<std::string> requests =
        corpus.Requests(kHit ? "=The text in English" : "Absent=The text in English");
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(localizer.GetLocalizedString(requests[next].c_str()));
        if (++next == requests.size()) next = 0;
    }
}

void FlatMapCopy(benchmark::State& state) {
    const Corpus corpus(static_cast<std::size_t>(state.range(0)));
    tsl::robin_map<std::string_view, std::u16string_view> map;
    for (std::size_t i = 0; i < corpus.keys.size(); ++i)
        map[corpus.keys[i]] = corpus.values[i];
    std::size_t next = 0;
    for (auto _ : state) {
        const std::u16string copy(map.find(corpus.keys[next])->second);
        benchmark::DoNotOptimize(copy.data());
        if (++next == corpus.keys.size()) next = 0;
    }
}

#define SIZES ->Arg(1'000)->Arg(10'000)->Arg(100'000)
BENCHMARK(GetLocalizedString<Store::kHash, true>) SIZES;
BENCHMARK(GetLocalizedString<Store::kCompact, true>) SIZES;
BENCHMARK(GetLocalizedString<Store::kHash, false>) SIZES;
BENCHMARK(GetLocalizedString<Store::kCompact, false>) SIZES;
BENCHMARK(FlatMapCopy) SIZES;

}  // namespace
}  // namespace benchmarks
