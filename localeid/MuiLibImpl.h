#pragma once
// What stands behind the functions of MuiLib.h, where the conventions on arrays, failure and
// threads are. The last two functions differ by platform.

#include <cstddef>
#include <string>

#include "localeid/LocaleList.h"

namespace localeid {

// The order forced by MuiForceOrderOfOsLocales, names separated by ';'; null when none is.
// Owned, from new[]; the last one is never freed.
extern char* g_osLangOverride;

// What counts as the language that PromoteLanguage looks for.
enum class LanguageMatch { kSameParent, kExact };

// Moves the first entry at or behind `front` that matches `target` to `front`; those it passes move
// back by one. False, and nothing is moved, when no entry matches. `target` is parsed as the
// entries are: also a full name such as "az--AZ" only counts for what that gives.
bool PromoteLanguage(const char** locales, std::size_t front, const std::string& target,
                     LanguageMatch match);

// Sorts `locales` by `preferred`, the best first; returns how many entries were placed. For each
// preferred name come the same locale, the locale that is its parent, then all that share its
// parent.
std::size_t MuiSortLocalesPerUserPreferenceImpl(const char** locales, const CLocaleList& preferred);

// The preferred languages, separated by ';': the forced order if there is one, else the system's.
std::string getOsLangPref();

// Fills `result` with the operating system's list, separated by ';'; empty when it has none. Names
// that are not ASCII are left out.
void GetMacOsLang(std::string& result);

// The language that a platform groups `locale` under, empty for none. Here always empty.
std::string getBaseLanguage(const std::string& locale);

}  // namespace localeid

// Whoever includes this header has the names without the namespace, too; a program that only links
// with the library meets none of them.
using localeid::g_osLangOverride;
using localeid::getBaseLanguage;
using localeid::GetMacOsLang;
using localeid::getOsLangPref;
using localeid::LanguageMatch;
using localeid::MuiSortLocalesPerUserPreferenceImpl;
using localeid::PromoteLanguage;
