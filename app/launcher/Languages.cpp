#include "app/launcher/Languages.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/FWR/Application.h"
#include "host/Foundation/Foundation.h"
#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Utility.h"
#include "localeid/LocaleId.h"
#include "localeid/MuiLib.h"

namespace launcher {
namespace {

namespace fs = std::filesystem;
namespace utility = vexacore::utility;

constexpr const char* kOwnLanguage = "en";
constexpr const char* kPseudoLanguage = "qps";
constexpr const char* kDictionariesFolder = "Dictionaries";

bool HasDictionary(const fs::path& folder) {
    return utility::FileUtils::WhyUnreadable(folder / "wdictionary.dat").empty();
}

// The names in UTF-8 of what the folder contains.
std::vector<std::string> NamesIn(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code ignored;  // an unreadable folder contains nothing
    for (fs::directory_iterator entry(folder, ignored), end; entry != end;
         entry.increment(ignored)) {
        const std::string name = entry->path().filename();
        if (utility::UTF16toStdString(utility::StdToUTF16String(name)) == name)
            names.push_back(name);
    }
    return names;
}

// Where start-up looks for the folders of languages that all users of the computer share.
fs::path SharedLanguages() {
    std::optional<NSError> error;
    const auto url = NSFileManager::DefaultManager().URLForDirectory(
        NSApplicationSupportDirectory, NSLocalDomainMask, nullptr, false, &error);
    const fs::path support =
        error ? "/" : utility::UTF16toStdString(utility::MACtoVEXA(url->Path()));
    return support / "Norvale" / FWR::GetApplicationName() / FWR::GetApplicationVersion() /
           "locale";
}

bool IsLocaleName(const std::string& name) {
    constexpr const char* kParts =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    return name.find_first_not_of(kParts) == name.npos && !LocaleId(name.c_str()).language.empty();
}

}  // namespace

Dictionaries FindDictionaries(const fs::path& appFolder) {
    Dictionaries found;
    found.neutral = HasDictionary(appFolder);
    for (const auto& name : NamesIn(appFolder / kDictionariesFolder)) {
        if (HasDictionary(appFolder / kDictionariesFolder / name)) found.languages.insert(name);
    }
    const auto shared = SharedLanguages();
    for (const auto& name : NamesIn(shared)) {
        const auto folder = shared / name / kDictionariesFolder;
        if (HasDictionary(folder) || HasDictionary(folder / kDictionariesFolder / name))
            found.languages.insert(name);
    }
    return found;
}

std::vector<std::string> OfferedLanguages(const Dictionaries& dictionaries) {
    std::vector<std::string> names{kOwnLanguage};
    std::ranges::copy_if(dictionaries.languages, std::back_inserter(names), [](const auto& name) {
        return name != kOwnLanguage && name != kPseudoLanguage;
    });
    return names;
}

bool CanShow(const Dictionaries& dictionaries, const std::string& language) {
    return language == kOwnLanguage || dictionaries.languages.contains(language) ||
           (dictionaries.neutral && IsLocaleName(language));
}

void PreferLanguage(const std::string& language) {
    const char* const only[] = {language.c_str(), nullptr};
    MuiForceOrderOfOsLocales(only);
}

std::string BestLanguage(const std::vector<std::string>& offered) {
    std::vector<const char*> names;
    names.reserve(offered.size() + 1);
    for (const auto& name : offered)
        names.push_back(name.c_str());
    names.push_back(nullptr);
    MuiSortLocalesPerUserPreference(names.data());
    return names.front();
}

std::string NoResourcesMessage() {
    const std::wstring_view message = MuiGetLocaleUnavailableErrorMessage();
    // A path converts UTF-32 to UTF-8.
    return fs::path(std::u32string(message.begin(), message.end())).string();
}

}  // namespace launcher
