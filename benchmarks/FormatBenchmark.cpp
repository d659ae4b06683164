// A text with two markers compared with libfmt, and a message with a plural compared with ICU.
#include <benchmark/benchmark.h>
#ifdef WORDLEX_WITH_FMT
#include <fmt/format.h>
#endif
#include <unicode/msgfmt.h>

#include <string>
#include <string_view>

#include "wordlex/catalog/Catalog.h"

namespace benchmarks {
namespace {

constexpr const char* kLanguage = "en";
constexpr const char* kFile = "Ankunft am Hauptbahnhof.mov";

void Numbers_project_catalog(benchmark::State& state) {
    const lexon::Formatter formatter(kLanguage);
    int clip = 41;
    for (auto _ : state) {
        benchmark::DoNotOptimize(clip);
        benchmark::DoNotOptimize(formatter.Format(u"Rendering clip ^1 of ^2", {clip, 170}));
    }
}
BENCHMARK(Numbers_project_catalog);

void Texts_project_catalog(benchmark::State& state) {
    const lexon::Formatter formatter(kLanguage);
    int clip = 41;
    for (auto _ : state) {
        benchmark::DoNotOptimize(clip);
        benchmark::DoNotOptimize(
            formatter.Format(u"Clip ^1: the file ^2 is missing", {clip, kFile}));
    }
}
BENCHMARK(Texts_project_catalog);

#ifdef WORDLEX_WITH_FMT
void Numbers_fmt(benchmark::State& state) {
    int clip = 41;
    for (auto _ : state) {
        benchmark::DoNotOptimize(clip);
        benchmark::DoNotOptimize(fmt::format("Rendering clip {} of {}", clip, 170));
    }
}
BENCHMARK(Numbers_fmt);

void Texts_fmt(benchmark::State& state) {
    int clip = 41;
    for (auto _ : state) {
        benchmark::DoNotOptimize(clip);
        benchmark::DoNotOptimize(fmt::format("Clip {}: the file {} is missing", clip, kFile));
    }
}
BENCHMARK(Texts_fmt);
#endif

constexpr std::u16string_view kClips = u"{clips, plural, one {# clip} other {# clips}} selected";

void Message_project_catalog(benchmark::State& state) {
    const lexon::Formatter formatter(kLanguage);
    int clips = 5;
    for (auto _ : state) {
        benchmark::DoNotOptimize(clips);
        benchmark::DoNotOptimize(formatter.FormatMessage(kClips, {{"clips", clips}}));
    }
}
BENCHMARK(Message_project_catalog);

// The pattern is already parsed and the argument's name converted, as in a program.
void Message_icu(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::MessageFormat format(
        icu::UnicodeString(kClips.data(), static_cast<std::int32_t>(kClips.size())),
        icu::Locale(kLanguage), status);
    const icu::UnicodeString name(u"clips");
    int clips = 5;
    for (auto _ : state) {
        benchmark::DoNotOptimize(clips);
        const icu::Formattable value(clips);
        icu::UnicodeString text;
        benchmark::DoNotOptimize(format.format(&name, &value, 1, text, status).getBuffer());
    }
    if (U_FAILURE(status)) state.SkipWithError(u_errorName(status));
}
BENCHMARK(Message_icu);

}  // namespace
}  // namespace benchmarks
