#pragma once
// The messages for when none of the application's own files can be read, in each supported
// language. Translators review MuiMessages.cpp.

#include <array>
#include <cstddef>

namespace localeid {

struct MuiMessageRow {
    const char* locale;                      // name of the texts' language
    const wchar_t* localeUnavailable;        // the localized resources cannot be loaded
    const wchar_t* unsupportedSystemLocale;  // the operating system's language is not supported
};

// Rows of languages, before the last row, which has no locale and the English texts.
constexpr std::size_t kMessageLanguages = 32;

extern const std::array<MuiMessageRow, kMessageLanguages + 1> allMessages;

}  // namespace localeid

// As in MuiLibImpl.h.
using localeid::allMessages;
using localeid::kMessageLanguages;
using localeid::MuiMessageRow;
