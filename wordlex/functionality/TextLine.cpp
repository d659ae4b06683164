#include "wordlex/functionality/TextLine.h"

#include <algorithm>
#include <ostream>

#include "wordlex/functionality/FindUnit.h"

namespace lexon_private {

template <class Unit>
void TextLine::PutAll(std::span<const Unit> all) {
    while (!all.empty()) {
        if (used == kUnits) Write();
        const std::size_t count = std::min(all.size(), kUnits - used);
        std::copy_n(all.begin(), count, units.begin() + static_cast<std::ptrdiff_t>(used));
        used += count;
        all = all.subspan(count);
    }
}

void TextLine::PutKey(std::span<const unsigned char> key) {
    Put(u'"');
    PutAll(key);
    Put(u'=');
}

std::uint32_t TextLine::PutValue(std::span<const unsigned short> value) {
    std::size_t escapes = 0;
    auto rest = value;
    for (;;) {
        const unsigned short* const end = rest.data() + rest.size();
        const unsigned short* const mark = FindUnit(rest.data(), end, u'"', u'\r', u'\n');
        const auto plain = static_cast<std::size_t>(mark - rest.data());
        PutAll(rest.first(plain));
        if (mark == end) break;
        Put(u'\\');
        Put(*mark == u'\r' ? u'r' : *mark == u'\n' ? u'n' : u'"');
        ++escapes;
        rest = rest.subspan(plain + 1);
    }
    Put(u'"');
    Put(u'\n');
    return static_cast<std::uint32_t>(sizeof(unsigned short) * (value.size() + escapes));
}

void TextLine::Write() {
    out.write(reinterpret_cast<const char*>(units.data()),
              static_cast<std::streamsize>(used * sizeof(unsigned short)));
    used = 0;
}

}  // namespace lexon_private
