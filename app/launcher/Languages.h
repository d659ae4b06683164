#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace launcher {

// The languages that have a folder below "Dictionaries" in the application's folder: English first,
// in which the application is written, then the others by name. Empty when there are none.
std::vector<std::string> ShippedLanguages(const std::filesystem::path& appFolder);

// Whether the application can be shown in the language: a shipped one, or the pseudo language.
// Builds include the pseudo language to show which texts are not localized; no user is offered it.
bool CanShow(const std::filesystem::path& appFolder, const std::vector<std::string>& shipped,
             const std::string& language);

// Whether one of these languages has a dictionary, or one dictionary serves all languages.
bool HasDictionary(const std::filesystem::path& appFolder,
                   const std::vector<std::string>& languages);

// Makes `language` the user's only preferred language from here on.
void PreferLanguage(const std::string& language);

// The shipped language that the user prefers; the first one when no preference fits, English when
// none is shipped.
std::string BestLanguage(const std::vector<std::string>& shipped);

// Says that there are no localized resources at all, in the user's preferred language. UTF-8.
std::string NoResourcesMessage();

}  // namespace launcher
