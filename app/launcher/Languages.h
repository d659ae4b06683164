#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace launcher {

// The languages that have a folder below "Dictionaries" in the application's folder: English, in
// which the application is written, first, the others by name. Empty when there are none.
std::vector<std::string> ShippedLanguages(const std::filesystem::path& appFolder);

// Whether the application can be shown in the language: a shipped one, or the pseudo language,
// which a build has to show what is not localized, and which is offered to nobody.
bool CanShow(const std::filesystem::path& appFolder, const std::vector<std::string>& shipped,
             const std::string& language);

// Whether one of these languages has a dictionary, or there is one that is for all languages.
bool HasDictionary(const std::filesystem::path& appFolder,
                   const std::vector<std::string>& languages);

// Lets `language` stand for the user's preferred languages from here on.
void PreferLanguage(const std::string& language);

// The shipped language that the user likes best, the first one when no preference fits; English
// when none is shipped.
std::string BestLanguage(const std::vector<std::string>& shipped);

// Tells the user that there are no localized resources at all, in the language liked best. UTF-8.
std::string NoResourcesMessage();

}  // namespace launcher
