/* Prints the languages of the arguments in the order of the user's preference. */
#include <stdio.h>

#include "localeid/MuiLib.h"

int main(int count, char** arguments) {
    const char** languages = (const char**)arguments + 1;
    if (count < 2 || MuiSortLocalesPerUserPreference(languages) == 0) return 1;
    while (*languages)
        puts(*languages++);
    return 0;
}
