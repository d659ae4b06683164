#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace launcher {

// The readable dictionaries in the application's folder and in the computer-wide one. A folder
// whose name is not UTF-8 does not count: the host cannot name it.
struct Dictionaries {
    std::set<std::string> languages;  // those that have a dictionary
    bool neutral = false;             // the application has one that serves every language

    bool Any() const { return neutral || !languages.empty(); }
};

Dictionaries FindDictionaries(const std::filesystem::path& appFolder);

// English, in which the application is written, then the languages with a dictionary. The pseudo
// language is not offered: it shows which texts of a build are not localized.
std::vector<std::string> OfferedLanguages(const Dictionaries& dictionaries);

// Whether the application can be shown in the language: in English always, in a language with a
// dictionary, and with a neutral dictionary in every language that has the name of a locale.
bool CanShow(const Dictionaries& dictionaries, const std::string& language);

// Makes `language` the user's only preferred language from here on.
void PreferLanguage(const std::string& language);

// The offered language that the user prefers; the first one when no preference fits.
std::string BestLanguage(const std::vector<std::string>& offered);

// Says that there are no localized resources at all, in the user's preferred language. UTF-8.
std::string NoResourcesMessage();

}  // namespace launcher
