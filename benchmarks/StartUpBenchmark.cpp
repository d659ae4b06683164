// The set-up of the host with the sample's dictionaries, the first text, and the tear-down. And one
// text of the running application, from the host's request to the host's string.
#include <benchmark/benchmark.h>

#include "host/Ovis/Language.h"
#include "host/vexacore/Localizer.h"
#include "startup/VEXAInitializer.h"

namespace benchmarks {
namespace {

constexpr char kRequest[] = "$$$/Framewright/Product/Tagline=not found";

bool Answers() {
    return vexacore::config::Localizer::Get()->GetLocalizedString(kRequest) != u"not found";
}

void FromRunToTheFirstText(benchmark::State& state) {
    Ovis::SetLanguageString(u"de");
    for (auto _ : state) {
        const Startup::VEXAInitializer initializer;
        if (!Answers()) state.SkipWithError("there is no dictionary beside the program");
    }
}
BENCHMARK(FromRunToTheFirstText)->Unit(benchmark::kMicrosecond);

void OneText(benchmark::State& state) {
    Ovis::SetLanguageString(u"de");
    const Startup::VEXAInitializer initializer;
    const vexacore::config::Localizer* const localizer = vexacore::config::Localizer::Get();
    for (auto _ : state)
        benchmark::DoNotOptimize(localizer->GetLocalizedString(kRequest));
}
BENCHMARK(OneText);

}  // namespace
}  // namespace benchmarks
