#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace launcher {

// The languages whose folders stand below `dictionaries`: English, in which the application is
// written, first, the others by name. Empty when the folder is missing.
std::vector<std::string> ShippedLanguages(const std::filesystem::path& dictionaries);

// Lets `language` stand for the user's preferred languages from here on.
void PreferLanguage(const std::string& language);

// The shipped language that the user likes best, the first one when no preference fits.
// `shipped` is not empty.
std::string BestLanguage(const std::vector<std::string>& shipped);

// Tells the user that there are no localized resources at all, in the language liked best. UTF-8.
std::string NoResourcesMessage();

}  // namespace launcher
