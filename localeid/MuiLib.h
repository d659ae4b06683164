#pragma once
/* Order of an application's user-interface languages, and the two messages that it can show before
 * any of its own resources are loaded. For C and C++ alike.
 *
 * Units:   locale arrays are pointers to NUL-terminated names ended by a null pointer; a null array
 *          is an empty one. Messages are UTF-32, one unit a wchar_t.
 * Owns:    arrays and names stay the caller's; names are read and never kept or changed. Messages
 *          are in static storage.
 * Failure: std::bad_alloc passes through when memory is exhausted; an array that was being sorted
 *          then still holds each of its pointers once.
 * Threads: nothing locks. MuiForceOrderOfOsLocales must not run beside any other function. */

#include <stddef.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Sorts `locales` by the user's preference, the best first, and returns how many of them the
 * preference placed; the others follow in the order in which they stood. */
size_t MuiSortLocalesPerUserPreference(const char** locales);

/* Lets `locales`, the best first, stand for the user's preference until the next call. Null or
 * nothing but empty names: the operating system's preference applies again. */
void MuiForceOrderOfOsLocales(const char* const* locales);

/* "The localized resource files could not be loaded", in the language the user likes best. */
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
