#pragma once
// The implementation of MuiLib.h, which documents the conventions on arrays, failure and threads.
// The last two functions differ by platform.

#include <cstddef>
#include <string>

#include "localeid/LocaleList.h"

namespace localeid {

// The order set by MuiForceOrderOfOsLocales, names separated by ';'. Null when none is set. Owned,
// from new[]; the last one is never freed.
extern char* g_osLangOverride;

// What counts as the language that PromoteLanguage looks for.
enum class LanguageMatch { kSameParent, kExact };

// Moves the first entry at or after `front` that matches `target` to `front`; the entries between
// move back by one. False, and nothing moves, when no entry matches. `target` is parsed as the
// entries are: a full name such as "az--AZ" counts only for what its parts say.
bool PromoteLanguage(const char** locales, std::size_t front, const std::string& target,
                     LanguageMatch match);

// Sorts `locales` by `preferred`, the best first; returns how many entries were placed. Each
// preferred name places the same locale, then the locale that is its parent, then all locales with
// the same parent.
std::size_t MuiSortLocalesPerUserPreferenceImpl(const char** locales, const CLocaleList& preferred);

// The preferred languages, separated by ';': the forced order if there is one, else the system's.
std::string getOsLangPref();

// Fills `result` with the operating system's list, separated by ';'. Empty when it has none. Names
// that are not ASCII are left out.
void GetMacOsLang(std::string& result);

// The language that a platform groups `locale` under; empty for none. Always empty here.
std::string getBaseLanguage(const std::string& locale);

}  // namespace localeid

// Code that includes this header can use the names without the namespace, too. A program that only
// links with the library never sees them.
using localeid::g_osLangOverride;
using localeid::getBaseLanguage;
using localeid::GetMacOsLang;
using localeid::getOsLangPref;
using localeid::LanguageMatch;
using localeid::MuiSortLocalesPerUserPreferenceImpl;
using localeid::PromoteLanguage;
