#include "app/launcher/Languages.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "localeid/MuiLib.h"

namespace launcher {
namespace {

constexpr std::string_view kOwnLanguage = "en";
constexpr std::string_view kPseudoLanguage = "qps";
constexpr const char* kDictionariesFolder = "Dictionaries";
constexpr const char* kDictionary = "wdictionary.dat";

}  // namespace

std::vector<std::string> ShippedLanguages(const std::filesystem::path& appFolder) {
    std::vector<std::string> names;
    std::error_code ignored;  // an unreadable folder ships nothing
    for (std::filesystem::directory_iterator entry(appFolder / kDictionariesFolder, ignored), end;
         entry != end; entry.increment(ignored)) {
        const bool isOffered = entry->path().filename() != kPseudoLanguage;
        if (isOffered && entry->is_directory(ignored)) names.push_back(entry->path().filename());
    }
    std::ranges::sort(names, {}, [](const std::string& name) {
        return std::pair(name != kOwnLanguage, std::string_view(name));
    });
    return names;
}

bool CanShow(const std::filesystem::path& appFolder, const std::vector<std::string>& shipped,
             const std::string& language) {
    std::error_code unreachable;
    return std::ranges::find(shipped, language) != shipped.end() ||
           (language == kPseudoLanguage &&
            std::filesystem::is_directory(appFolder / kDictionariesFolder / language, unreachable));
}

bool HasDictionary(const std::filesystem::path& appFolder,
                   const std::vector<std::string>& languages) {
    const auto isFile = [](const std::filesystem::path& path) {
        std::error_code unreachable;
        return std::filesystem::is_regular_file(path, unreachable);
    };
    return isFile(appFolder / kDictionary) ||
           std::ranges::any_of(languages, [&](const std::string& language) {
               return isFile(appFolder / kDictionariesFolder / language / kDictionary);
           });
}

void PreferLanguage(const std::string& language) {
    const char* const only[] = {language.c_str(), nullptr};
    MuiForceOrderOfOsLocales(only);
}

std::string BestLanguage(const std::vector<std::string>& shipped) {
    if (shipped.empty()) return std::string(kOwnLanguage);
    std::vector<const char*> names;
    names.reserve(shipped.size() + 1);
    for (const auto& name : shipped)
        names.push_back(name.c_str());
    names.push_back(nullptr);
    MuiSortLocalesPerUserPreference(names.data());
    return names.front();
}

std::string NoResourcesMessage() {
    const std::wstring_view message = MuiGetLocaleUnavailableErrorMessage();
    // A path converts UTF-32 to UTF-8.
    return std::filesystem::path(std::u32string(message.begin(), message.end())).string();
}

}  // namespace launcher
