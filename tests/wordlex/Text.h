#pragma once
// UTF-16 text for tests: the library's units are unsigned short, literals are char16_t.
#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "wordlex/functionality/UnicodeRun.h"

namespace wordlex_tests {

// The units of a literal; data() of an empty one may be null.
inline std::vector<unsigned short> Units(std::u16string_view text) {
    return {text.begin(), text.end()};
}

// The same with a 0 after them.
inline std::vector<unsigned short> TerminatedUnits(std::u16string_view text) {
    std::vector<unsigned short> units = Units(text);
    units.push_back(0);
    return units;
}

inline std::u16string Text(const unsigned short* units, unsigned long count) {
    return {units, units + count};
}

inline std::u16string Text(const lexon_private::UnicodeRun& run) {
    return Text(run.GetData(), run.GetLength());
}

inline lexon_private::UnicodeRun RunOf(std::u16string_view text) {
    const std::vector<unsigned short> units = Units(text);
    return {units.data(), units.size()};
}

inline const unsigned char* Bytes(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace wordlex_tests
