#pragma once
/* The order of an application's user-interface languages, and the two messages that it can show
 * before any of its own resources are loaded. For C and C++.
 *
 * Units:   a locale array consists of pointers to NUL-terminated names and ends with a null
 *          pointer. A null array is an empty one. Messages are UTF-32, one unit a wchar_t.
 * Owns:    arrays and names stay the caller's. Names are neither kept nor changed. Messages are
 *          in static storage.
 * Failure: exhausted memory throws std::bad_alloc. An array that was being sorted then still
 *          contains each of its pointers once.
 * Threads: nothing locks. MuiForceOrderOfOsLocales must not run while another function runs. */

#include <stddef.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Sorts `locales` by the user's preference, the best first, and returns how many of them the
 * preference placed. The others follow in their old order. */
size_t MuiSortLocalesPerUserPreference(const char** locales);

/* Uses `locales`, the best first, as the user's preference until the next call. After null, or
 * nothing but empty names, the operating system's preference applies again. */
void MuiForceOrderOfOsLocales(const char* const* locales);

/* "The localized resource files could not be loaded", in the user's preferred language. */
const wchar_t* MuiGetLocaleUnavailableErrorMessage(void);

/* "The language of the operating system is not supported", in the best of the languages that the
 * application has. Sorts `supportedLocales` as MuiSortLocalesPerUserPreference does. */
const wchar_t* MuiGetUnsupportedSystemLocaleErrorMessage(const char** supportedLocales);

/* For platforms with ANSI code pages and installable user-interface languages; no effect here. */
void MuiForceOsAnsiCP(void);
void MuiRemoveUnsupportedLocales(void);

#ifdef __cplusplus
}
#endif
