#include "localeid/LocaleId.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "localeid/AsciiClass.h"

namespace {

using localeid::IsAsciiAlnum;
using localeid::ToAsciiLower;
using localeid::ToAsciiUpper;

enum class State { kStart, kAfterLanguage, kAfterScript, kAfterRegion };

// The kind of a part of a name, decided by its length and the part before it.
struct Transition {
    State state;
    std::ptrdiff_t length;
    std::string LocaleId::*field;
    State next;
};

constexpr Transition grammar[] = {
    {State::kStart, 2, &LocaleId::language, State::kAfterLanguage},
    {State::kStart, 3, &LocaleId::language, State::kAfterLanguage},
    {State::kAfterLanguage, 2, &LocaleId::region, State::kAfterRegion},
    {State::kAfterLanguage, 3, &LocaleId::region, State::kAfterRegion},
    {State::kAfterLanguage, 4, &LocaleId::script, State::kAfterScript},
    {State::kAfterScript, 2, &LocaleId::region, State::kAfterRegion},
    {State::kAfterScript, 3, &LocaleId::region, State::kAfterRegion},
};

constexpr std::string_view languagesInSeveralScripts[] = {"az", "bs", "ha", "iu", "sr", "tg", "uz"};

struct ScriptOfLanguage {
    std::string_view language;
    std::string_view script;
};

// For names without a script.
constexpr ScriptOfLanguage defaultScripts[] = {
    {"sr", "Cyrl"}, {"tg", "Cyrl"}, {"uz", "Cyrl"}, {"iu", "Cans"}};

struct ScriptOfRegion {
    std::string_view language;
    std::string_view region;
    std::string_view script;
};

// Regions that imply one script; it replaces any script in the name.
constexpr ScriptOfRegion regionScripts[] = {
    {"zh", "CN", "Hans"}, {"zh", "SG", "Hans"}, {"zh", "TW", "Hant"}, {"zh", "HK", "Hant"},
    {"zh", "MO", "Hant"}, {"mn", "CN", "Mong"}, {"mn", "SG", "Cyrl"}, {"pa", "PK", "Arab"},
    {"pa", "IN", "Guru"}, {"ha", "GH", "Latn"}, {"ha", "NE", "Latn"},
};

void NormalizeCase(LocaleId& id) {
    std::ranges::transform(id.language, id.language.begin(), ToAsciiLower);
    std::ranges::transform(id.script, id.script.begin(), ToAsciiLower);
    if (!id.script.empty()) id.script.front() = ToAsciiUpper(id.script.front());
    std::ranges::transform(id.region, id.region.begin(), ToAsciiUpper);
}

void FillScript(LocaleId& id) {
    if (id.script.empty()) {
        const auto found =
            std::ranges::find(defaultScripts, id.language, &ScriptOfLanguage::language);
        if (found != std::end(defaultScripts)) id.script = found->script;
    }
    const auto found = std::ranges::find_if(regionScripts, [&](const ScriptOfRegion& row) {
        return row.language == id.language && row.region == id.region;
    });
    if (found != std::end(regionScripts)) id.script = found->script;
}

}  // namespace

LocaleId::LocaleId(const char* name) { fromString(name); }

bool LocaleId::fromString(const char* name) {
    clear();
    if (name == nullptr) return false;

    State state = State::kStart;
    const char* token = name;
    while (IsAsciiAlnum(*token)) {
        const char* end = token;
        while (IsAsciiAlnum(*end))
            ++end;
        const auto step = std::ranges::find_if(grammar, [&](const Transition& row) {
            return row.state == state && row.length == end - token;
        });
        if (step == std::end(grammar)) {
            clear();
            return false;
        }
        (this->*step->field).assign(token, end);
        state = step->next;
        token = *end == '\0' ? end : end + 1;  // past one separator, never two
    }
    NormalizeCase(*this);
    FillScript(*this);
    return true;
}

void LocaleId::clear() noexcept {
    language.clear();
    script.clear();
    region.clear();
}

bool LocaleId::needScriptAlways() const noexcept {
    return std::ranges::find(languagesInSeveralScripts, language) !=
           std::end(languagesInSeveralScripts);
}

bool LocaleId::needScriptIfNoRegion() const noexcept {
    return needScriptAlways() || language == "zh";
}

std::string LocaleId::getName() const {
    std::string name = language;
    if (needScriptAlways() || (region.empty() && needScriptIfNoRegion())) name += "-" + script;
    if (!region.empty()) name += "-" + region;
    return name;
}

std::string LocaleId::getParentName() const {
    return needScriptIfNoRegion() ? language + "-" + script : language;
}

// The interface takes a copy.
// NOLINTBEGIN(performance-unnecessary-value-param)
bool LocaleId::isEqual(LocaleId other) const { return getName() == other.getName(); }

bool LocaleId::hasSameParent(LocaleId other) const {
    return getParentName() == other.getParentName();
}
// NOLINTEND(performance-unnecessary-value-param)
