#include "localeid/MuiLib.h"

/* Calls every function of the header from C, with `order` forced; returns the number of entries of
 * `locales` that it placed, and both messages. */
size_t UseMuiLibFromC(const char** order, const char** locales, const wchar_t* messages[2]) {
    size_t placed;
    MuiForceOsAnsiCP();
    MuiRemoveUnsupportedLocales();
    MuiForceOrderOfOsLocales(order);
    placed = MuiSortLocalesPerUserPreference(locales);
    messages[0] = MuiGetLocaleUnavailableErrorMessage();
    messages[1] = MuiGetUnsupportedSystemLocaleErrorMessage(locales);
    MuiForceOrderOfOsLocales(NULL);
    return placed;
}
