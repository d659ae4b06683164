// Prints a text of the dictionary that the one argument names.
#include <fstream>
#include <iostream>

#include "wordlex/staticlib/Wordlexlib.h"

int main(int, char** arguments) {
    lexon::Wordlex::SetDefaultApplicationEncoding(lexon::encodings::kUtf8);
    std::ifstream file(arguments[1], std::ios::binary);
    lexon::Dictionary dictionary;
    dictionary.Read(&file);
    char greeting[64] = {};
    dictionary.Lookup("$$$/Greeting=Hello", nullptr).GetCString(greeting, 64, true, nullptr);
    std::cout << greeting << " from version " << WLLibraryVersion() << '\n';
}
