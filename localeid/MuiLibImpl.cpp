#include "localeid/MuiLibImpl.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string_view>

#include "localeid/LocaleId.h"
#include "localeid/MuiLib.h"
#include "localeid/MuiMessages.h"

namespace localeid {

char* g_osLangOverride = nullptr;

namespace {

std::size_t CountLocales(const char* const* locales) {
    std::size_t count = 0;
    if (locales != nullptr) {
        while (locales[count] != nullptr)
            ++count;
    }
    return count;
}

// The locales of the message table in its order, ended by null.
std::array<const char*, kMessageLanguages + 1> MessageLocales() {
    std::array<const char*, kMessageLanguages + 1> locales{};
    std::transform(allMessages.begin(), allMessages.begin() + kMessageLanguages, locales.begin(),
                   [](const MuiMessageRow& row) { return row.locale; });
    return locales;
}

// The row of `locale`, or the default row, which comes right after those searched.
const MuiMessageRow& FindMessages(std::string_view locale) {
    return *std::find_if(allMessages.begin(), allMessages.begin() + kMessageLanguages,
                         [&](const MuiMessageRow& row) { return row.locale == locale; });
}

}  // namespace

bool PromoteLanguage(const char** locales, std::size_t front, const std::string& target,
                     LanguageMatch match) {
    const std::size_t count = CountLocales(locales);
    if (count <= front) return false;

    const LocaleId wanted(target.c_str());
    const char** const first = locales + front;
    const char** const last = locales + count;
    const char** const found = std::find_if(first, last, [&](const char* name) {
        const LocaleId candidate(name);
        return match == LanguageMatch::kExact ? candidate.isEqual(wanted)
                                              : candidate.hasSameParent(wanted);
    });
    if (found == last) return false;
    std::rotate(first, found, found + 1);
    return true;
}

std::size_t MuiSortLocalesPerUserPreferenceImpl(const char** locales,
                                                const CLocaleList& preferred) {
    std::size_t placed = 0;
    const auto promote = [&](const std::string& target, LanguageMatch match) {
        const bool moved = PromoteLanguage(locales, placed, target, match);
        if (moved) ++placed;
        return moved;
    };
    for (std::size_t i = 0; i < preferred.size(); ++i) {
        const LocaleId preference(preferred[i].c_str());
        const std::string parent = preference.getParentName();
        promote(preference.getName(), LanguageMatch::kExact);
        promote(parent, LanguageMatch::kExact);
        const std::string base = getBaseLanguage(parent);
        if (!base.empty()) promote(base, LanguageMatch::kExact);
        while (promote(parent, LanguageMatch::kSameParent)) {
        }
    }
    return placed;
}

std::string getOsLangPref() {
    if (g_osLangOverride != nullptr) return g_osLangOverride;
    std::string languages;
    GetMacOsLang(languages);
    return languages;
}

}  // namespace localeid

// The plain-linkage functions.

std::size_t MuiSortLocalesPerUserPreference(const char** locales) {
    const CLocaleList preferred(getOsLangPref().c_str());
    return MuiSortLocalesPerUserPreferenceImpl(locales, preferred);
}

void MuiForceOrderOfOsLocales(const char* const* locales) {
    std::string joined;
    for (std::size_t i = 0; i < localeid::CountLocales(locales); ++i) {
        // Empty names add no separator.
        if (!joined.empty() && *locales[i] != '\0') joined += ';';
        joined += locales[i];
    }
    std::unique_ptr<char[]> order;
    if (!joined.empty()) {
        order = std::make_unique<char[]>(joined.size() + 1);
        std::memcpy(order.get(), joined.c_str(), joined.size() + 1);
    }
    // Nothing throws from here on: if memory runs out above, the old order stays.
    delete[] g_osLangOverride;
    g_osLangOverride = order.release();
}

const wchar_t* MuiGetLocaleUnavailableErrorMessage() {
    auto locales = localeid::MessageLocales();
    MuiSortLocalesPerUserPreference(locales.data());
    return localeid::FindMessages(locales.front()).localeUnavailable;
}

const wchar_t* MuiGetUnsupportedSystemLocaleErrorMessage(const char** supportedLocales) {
    MuiSortLocalesPerUserPreference(supportedLocales);
    CLocaleList preferred;
    for (std::size_t i = 0; i < localeid::CountLocales(supportedLocales); ++i) {
        preferred.AddLocale(supportedLocales[i]);
    }
    auto locales = localeid::MessageLocales();
    MuiSortLocalesPerUserPreferenceImpl(locales.data(), preferred);
    return localeid::FindMessages(locales.front()).unsupportedSystemLocale;
}
