// Locale names and lists. The input's first line is the user's preference, the rest the
// application's locales.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/Require.h"
#include "localeid/LocaleId.h"
#include "localeid/LocaleList.h"
#include "localeid/MuiLib.h"
#include "localeid/MuiLibImpl.h"

namespace {

void CheckName(const std::string& name) {
    LocaleId id;
    const bool parsed = id.fromString(name.c_str());
    REQUIRE(parsed || (id.language.empty() && id.script.empty() && id.region.empty()));
    REQUIRE(id.language.empty() || id.language.size() == 2 || id.language.size() == 3);
    REQUIRE(id.script.empty() || id.script.size() == 4);
    REQUIRE(id.region.empty() || id.region.size() == 2 || id.region.size() == 3);
    REQUIRE(!id.language.empty() || (id.script.empty() && id.region.empty()));
    REQUIRE(id.isEqual(id) && id.hasSameParent(id));
    REQUIRE(id.getName().starts_with(id.language));
    // A parsed name is in its final form: written out in full it parses to the same.
    std::string full = id.language;
    for (const std::string& part : {id.script, id.region})
        if (!part.empty()) full += '_' + part;
    const LocaleId again(full.c_str());
    REQUIRE(again.language == id.language && again.script == id.script &&
            again.region == id.region);
}

void CheckList(const CLocaleList& list) {
    std::string joined = ";";
    for (std::size_t i = 0; i < list.size(); ++i) {
        REQUIRE(!list[i].empty());
        CheckName(list[i]);
        joined += list[i] + ",;";
    }
    const CLocaleList again(joined.c_str());
    REQUIRE(again.size() == list.size());
    for (std::size_t i = 0; i < list.size(); ++i)
        REQUIRE(again[i] == list[i]);
}

std::vector<const char*> Pointers(const CLocaleList& list) {
    std::vector<const char*> pointers;
    for (std::size_t i = 0; i < list.size(); ++i)
        pointers.push_back(list[i].c_str());
    pointers.push_back(nullptr);
    return pointers;
}

// A permutation: the placed ones first, then the others in their old order.
void CheckOrder(const CLocaleList& preferred, const CLocaleList& supported) {
    const std::vector<const char*> before = Pointers(supported);
    std::vector<const char*> after = before;
    const std::size_t placed = MuiSortLocalesPerUserPreferenceImpl(after.data(), preferred);
    REQUIRE(placed <= supported.size());
    REQUIRE(after.back() == nullptr);
    REQUIRE(std::is_permutation(before.begin(), before.end(), after.begin()));
    const auto place = [&before](const char* p) { return std::ranges::find(before, p); };
    const auto rest = after.begin() + static_cast<std::ptrdiff_t>(placed);
    REQUIRE(std::is_sorted(rest, after.end(), [&](auto a, auto b) { return place(a) < place(b); }));

    MuiForceOrderOfOsLocales(Pointers(preferred).data());
    std::vector<const char*> forced = before;
    REQUIRE(preferred.empty() || MuiSortLocalesPerUserPreference(forced.data()) == placed);
    REQUIRE(preferred.empty() || forced == after);
    // The search through all messages is slow for long preferences.
    if (preferred.size() > 2) return;
    REQUIRE(*MuiGetLocaleUnavailableErrorMessage() != 0);
    REQUIRE(*MuiGetUnsupportedSystemLocaleErrorMessage(forced.data()) != 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t lineEnd = std::min(text.find('\n'), size);
    const std::string first = text.substr(0, lineEnd);
    CheckName(first);
    const CLocaleList preferred(first.c_str());
    const CLocaleList supported(text.c_str() + lineEnd);
    CheckList(preferred);
    CheckList(supported);
    CheckOrder(preferred, supported);
    return 0;
}
