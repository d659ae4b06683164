#include "tools/base/Encodings.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "wordlex/staticlib/Wordlexlib.h"

namespace tool {

namespace {

struct Encoding {
    const char* name;
    unsigned int number;  // the platform's number of the encoding
};
constexpr Encoding kEncodings[] = {
    {kDefaultEncoding, 0x08000100},
    {"us-ascii", 0x0600},
    {"iso-8859-1", 0x0201},
    {"iso-8859-2", 0x0202},
    {"iso-8859-9", 0x0209},
    {"iso-8859-15", 0x020F},
    {"windows-1250", 0x0501},
    {"windows-1251", 0x0502},
    {"windows-1252", 0x0500},
    {"windows-1253", 0x0503},
    {"windows-1254", 0x0504},
    {"macintosh", 0x0000},
    {"shift_jis", 0x0A01},
    {"euc-jp", 0x0920},
    {"gb18030", 0x0632},
    {"big5", 0x0A03},
    {"euc-kr", 0x0940},
};

}  // namespace

void UseEncoding(const std::string& name) {
    const auto row = std::ranges::find(kEncodings, name, &Encoding::name);
    lexon::Wordlex::SetDefaultApplicationEncoding(row->number);
    // Old binary files may be in the system's encoding, which the platform takes from here.
    setenv("LC_ALL", ("C." + name).c_str(), 1);
}

std::vector<std::string> EncodingNames() {
    std::vector<std::string> names;
    std::ranges::transform(kEncodings, std::back_inserter(names), &Encoding::name);
    return names;
}

}  // namespace tool
