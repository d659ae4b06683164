// Escapes at load time and markers at use.
#include <benchmark/benchmark.h>

#include <string_view>

#include "wordlex/functionality/DictionaryEntry.h"
#include "wordlex/functionality/Wordlex.h"

namespace benchmarks {
namespace {

using lexon_private::DictionaryEntry;
using lexon_private::Wordlex;

const unsigned short* UnitsOf(std::u16string_view text) {
    return reinterpret_cast<const unsigned short*>(text.data());
}

void Convert(benchmark::State& state, std::u16string_view text) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            DictionaryEntry::ConvertEscapeSequences(UnitsOf(text), text.size()));
    }
}
BENCHMARK_CAPTURE(Convert, Plain, u"Move the selected clips to the end of the sequence");
BENCHMARK_CAPTURE(Convert, Hat, u"Move ^1 selected clips to ^[^2^] at the end of the sequence");
BENCHMARK_CAPTURE(Convert, Entities, u"Copyright #{copy} #{copyyear} Norvale #{amp} Sons#{endl}");
BENCHMARK_CAPTURE(Convert, Sections, u"Delete#{mswindows}Recycle#{macos}Move to Trash#{ios}Remove");

void Replace(benchmark::State& state) {
    constexpr std::u16string_view kText = u"Rendering ^1 of ^2: frame ^1 of clip ^3";
    const Wordlex text(UnitsOf(kText), kText.size());
    const Wordlex value(42L);
    for (auto _ : state) {
        Wordlex changed = text;
        changed.Replace(1, value);
        benchmark::DoNotOptimize(changed.GetData());
    }
}
BENCHMARK(Replace);

void ReplaceNothing(benchmark::State& state) {
    constexpr std::u16string_view kText = u"Move the selected clips to the end of the sequence";
    Wordlex text(UnitsOf(kText), kText.size());
    const Wordlex value(42L);
    for (auto _ : state) {
        text.Replace(1, value);
        benchmark::DoNotOptimize(text.GetData());
    }
}
BENCHMARK(ReplaceNothing);

}  // namespace
}  // namespace benchmarks
