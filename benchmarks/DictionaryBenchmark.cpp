// Look-ups, loads, additions and saves through the public facade, in both stores. For comparison,
// two plain maps of the C++ library: a look-up that returns a pointer, and one that returns a new
// copy.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "benchmarks/Corpus.h"

namespace benchmarks {
namespace {

enum class Store { kHash, kCompact };

const Corpus& CorpusOf(benchmark::State& state) {
    static std::unordered_map<std::size_t, std::unique_ptr<Corpus>> made;
    auto& corpus = made[static_cast<std::size_t>(state.range(0))];
    if (corpus == nullptr) corpus = std::make_unique<Corpus>(state.range(0));
    return *corpus;
}

std::unique_ptr<lexon::Dictionary> Load(const Corpus& corpus, Store store) {
    const std::string file = store == Store::kHash ? corpus.TextFile() : corpus.BinaryFile();
    auto dictionary = std::make_unique<lexon::Dictionary>();
    dictionary->Read(file.data(), static_cast<int>(file.size()), true);
    return dictionary;
}

// Calls `ask` for every request, round and round.
template <class Ask>
void ForRequests(benchmark::State& state, const std::vector<std::string>& requests, Ask ask) {
    std::size_t next = 0;
    for (auto _ : state) {
        ask(requests[next]);
        if (++next == requests.size()) next = 0;
    }
    state.SetItemsProcessed(state.iterations());
}

void CopyOut(lexon::Dictionary& dictionary, const std::string& request) {
    static unsigned short units[4096];
    const lexon::Wordlex text = dictionary.Lookup(request.c_str(), nullptr);
    text.GetUnicode(units, text.GetUnicodeSize(), true);
    benchmark::DoNotOptimize(units);
}

template <Store kStore>
void LookupHit(benchmark::State& state) {
    const auto dictionary = Load(CorpusOf(state), kStore);
    ForRequests(state, CorpusOf(state).Requests(),
                [&](const std::string& request) { CopyOut(*dictionary, request); });
}

template <Store kStore>
void LookupMissWithDefault(benchmark::State& state) {
    const auto dictionary = Load(CorpusOf(state), kStore);
    ForRequests(state, CorpusOf(state).Requests("Absent=The text in English"),
                [&](const std::string& request) { CopyOut(*dictionary, request); });
}

template <Store kStore>
void LookupInPlace(benchmark::State& state) {
    const auto dictionary = Load(CorpusOf(state), kStore);
    ForRequests(state, CorpusOf(state).Requests(), [&](const std::string& request) {
        const unsigned short* units = nullptr;
        unsigned long length = 0;
        benchmark::DoNotOptimize(dictionary->LookupReturnUTF16Ptr(request.c_str(), units, length));
        benchmark::DoNotOptimize(units);
    });
}

template <bool kCopy>
void PlainMap(benchmark::State& state) {
    const Corpus& corpus = CorpusOf(state);
    std::unordered_map<std::string_view, std::u16string_view> map;
    for (std::size_t i = 0; i < corpus.keys.size(); ++i)
        map[corpus.keys[i]] = corpus.values[i];
    ForRequests(state, corpus.Requests(""), [&](const std::string& request) {
        const auto found = map.find(std::string_view(request).substr(3));
        if constexpr (kCopy) {
            const std::u16string copy(found->second);
            benchmark::DoNotOptimize(copy.data());
        } else {
            benchmark::DoNotOptimize(found->second.data());
        }
    });
}

template <Store kStore, bool kStream>
void LoadFile(benchmark::State& state) {
    const std::string file =
        kStore == Store::kHash ? CorpusOf(state).TextFile() : CorpusOf(state).BinaryFile();
    for (auto _ : state) {
        lexon::Dictionary dictionary;
        if constexpr (kStream) {
            std::istringstream in(file);
            dictionary.Read(&in);
        } else {
            dictionary.Read(file.data(), static_cast<int>(file.size()), true);
        }
        benchmark::DoNotOptimize(dictionary.IsValid());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.size()));
}

void LoadEightBit(benchmark::State& state, const char* endOfLine) {
    lexon::Wordlex::SetDefaultApplicationEncoding(lexon::encodings::kUtf8);
    const std::string file = CorpusOf(state).EightBitFile(endOfLine);
    for (auto _ : state) {
        lexon::Dictionary dictionary;
        dictionary.Read(file.data(), static_cast<int>(file.size()), true);
        benchmark::DoNotOptimize(dictionary.IsValid());
    }
}

// A stream read byte by byte.
void GetText(benchmark::State& state) {
    const std::string file = CorpusOf(state).TextFile();
    for (auto _ : state) {
        std::istringstream in(file);
        char byte = 0;
        while (in.get(byte))
            benchmark::DoNotOptimize(byte);
    }
}

// A text of so many megabytes whose keys are all in one bucket: its hash reads every fourth byte.
template <Store kStore>
void LoadOneBucket(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0)) << 20;
    std::string text;
    for (std::size_t number = 10'000'000; text.size() < size; ++number) {
        const std::string digits = std::to_string(number);
        std::string key = "/k__/k__/k__/k__/k__";
        for (std::size_t i = 0; i < digits.size(); ++i)
            key[i / 2 * 4 + 2 + i % 2] = digits[i];
        text += key + "=text\n";
    }
    for (auto _ : state) {
        lexon::Dictionary dictionary(kStore == Store::kCompact);
        dictionary.Read(text.data(), static_cast<int>(text.size()), true);
        benchmark::DoNotOptimize(dictionary.NumKeys());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void AddAll(benchmark::State& state) {
    for (auto _ : state) {
        lexon::Dictionary dictionary(true);
        CorpusOf(state).AddTo(dictionary);
        benchmark::DoNotOptimize(dictionary.NumKeys());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// In a hundred arrays for each 10,000 entries.
void LookupAdded(benchmark::State& state) {
    lexon::Dictionary dictionary(true);
    CorpusOf(state).AddTo(dictionary);
    ForRequests(state, CorpusOf(state).Requests(),
                [&](const std::string& request) { CopyOut(dictionary, request); });
}

// Writes a new file with `write` in each round.
template <class Write>
void WriteFiles(benchmark::State& state, Write write) {
    const auto path = std::filesystem::temp_directory_path() /
                      ("dictionary-benchmark-" + std::to_string(getpid()));
    for (auto _ : state) {
        std::ofstream out(path, std::ios::binary);
        write(out);
        if (!out.flush()) state.SkipWithError("the file was not written");
    }
    std::filesystem::remove(path);
}

template <Store kStore, lexon::SaveType kType>
void Save(benchmark::State& state) {
    const auto dictionary = Load(CorpusOf(state), kStore);
    WriteFiles(state, [&](std::ostream& out) {
        dictionary->Serialize(out, kType, nullptr, lexon::EndianT::kLittle, 0);
    });
}

// The bytes of such a file in one call.
template <lexon::SaveType kType>
void WriteAtOnce(benchmark::State& state) {
    std::ostringstream saved;
    Load(CorpusOf(state), Store::kHash)
        ->Serialize(saved, kType, nullptr, lexon::EndianT::kLittle, 0);
    const std::string bytes = saved.str();
    WriteFiles(state, [&](std::ostream& out) {
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    });
}

#define SIZES ->Arg(1'000)->Arg(10'000)->Arg(100'000)
BENCHMARK(LookupHit<Store::kHash>) SIZES;
BENCHMARK(LookupHit<Store::kCompact>) SIZES;
BENCHMARK(PlainMap<true>) SIZES;
BENCHMARK(LookupInPlace<Store::kHash>) SIZES->Arg(1'000'000);
BENCHMARK(LookupInPlace<Store::kCompact>) SIZES->Arg(1'000'000);
BENCHMARK(PlainMap<false>) SIZES->Arg(1'000'000);
BENCHMARK(LookupMissWithDefault<Store::kHash>) SIZES;
BENCHMARK(LookupMissWithDefault<Store::kCompact>) SIZES;
BENCHMARK(LoadFile<Store::kHash, true>) SIZES;
BENCHMARK(LoadFile<Store::kHash, false>) SIZES;
BENCHMARK(LoadFile<Store::kCompact, true>) SIZES;
BENCHMARK(LoadFile<Store::kCompact, false>) SIZES;
BENCHMARK(GetText) SIZES;
BENCHMARK_CAPTURE(LoadEightBit, Lf, "\n")->Arg(10'000);
BENCHMARK_CAPTURE(LoadEightBit, CrLf, "\r\n")->Arg(10'000);
BENCHMARK(LoadOneBucket<Store::kHash>)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadOneBucket<Store::kCompact>)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
#define ADDED_SIZES ->Arg(10'000)->Arg(50'000)->Arg(100'000)->Arg(200'000)
BENCHMARK(AddAll) ADDED_SIZES;
BENCHMARK(LookupAdded) ADDED_SIZES;
BENCHMARK(Save<Store::kHash, lexon::SaveType::kText>) SIZES;
BENCHMARK(Save<Store::kCompact, lexon::SaveType::kText>) SIZES;
BENCHMARK(WriteAtOnce<lexon::SaveType::kText>) SIZES;
BENCHMARK(Save<Store::kHash, lexon::SaveType::kBinary>) SIZES;
BENCHMARK(Save<Store::kCompact, lexon::SaveType::kBinary>) SIZES;
BENCHMARK(WriteAtOnce<lexon::SaveType::kBinary>) SIZES;

}  // namespace
}  // namespace benchmarks
