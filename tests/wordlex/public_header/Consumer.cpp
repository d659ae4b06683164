// A program outside the library: it sees the public header and nothing else of the project.
#include "wordlex/staticlib/Wordlexlib.h"

#include <cstring>

int main() {
    lexon::Wordlex text;
    text.AssignCString("&Open ^0 of <param name=\"total\"/>...", nullptr);
    text.Replace(0, lexon::Wordlex(1));
    const bool found = text.ParamSubstitute("total", lexon::Wordlex(12));
    text.RemoveAccelerators();
    text.TrimEllipsis();
    char bytes[32];
    text.GetCString(bytes, sizeof bytes, true, nullptr);
    const bool right = std::strcmp(bytes, "Open 1 of 12") == 0;
    return found && right && std::strcmp(WLLibraryVersion(), "5.1") == 0 ? 0 : 1;
}
