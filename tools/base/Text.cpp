#include "tools/base/Text.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "tools/base/EntryLine.h"
#include "wordlex/functionality/UnicodeUtil.h"

namespace tool {

namespace {

bool IsHighSurrogate(unsigned short unit) { return (unit & 0xFC00) == 0xD800; }
bool IsLowSurrogate(unsigned short unit) { return (unit & 0xFC00) == 0xDC00; }

std::string Hex(const char* format, unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::vector<unsigned short> Widen(std::string_view bytes) {
    std::vector<unsigned short> units(bytes.size());
    std::ranges::transform(bytes, units.begin(),
                           [](char byte) { return static_cast<unsigned char>(byte); });
    return units;
}

}  // namespace

std::string Utf8(Units units) {
    lexon_private::EncodingInfo utf8{lexon_private::kUtf8Selector};
    using lexon_private::UnicodeUtil;
    std::string text(UnicodeUtil::FromUnicodeSize(units.data(), units.size(), &utf8), '\0');
    UnicodeUtil::UnicodeToCString(units.data(), units.size(), text.data(), text.size(), &utf8);
    text.pop_back();  // the terminator
    return text;
}

Text FromUtf8(std::string_view text) {
    const lexon::EncodingInfo utf8{lexon_private::kUtf8Selector};
    return Text::BackDoorMakeFromCString(text.data(), text.size(), &utf8);
}

bool SubstituteParameter(Text& text, const std::string& name, const Text& value) {
    struct Utf8Names {
        Utf8Names() { lexon_private::UnicodeUtil::SetDefaultEncoding(&utf8); }
        ~Utf8Names() { lexon_private::UnicodeUtil::SetDefaultEncoding(nullptr); }
        lexon_private::EncodingInfo utf8{lexon_private::kUtf8Selector};
    };
    const Utf8Names meanwhile;
    return text.BackDoorParamSubstitute(name.c_str(), value, 1);
}

bool IsUnpairedSurrogate(Units units, std::size_t i) {
    if (IsHighSurrogate(units[i])) return i + 1 == units.size() || !IsLowSurrogate(units[i + 1]);
    return IsLowSurrogate(units[i]) && (i == 0 || !IsHighSurrogate(units[i - 1]));
}

std::size_t FindUnpairedSurrogate(Units units) {
    std::size_t i = 0;
    while (i < units.size() && !IsUnpairedSurrogate(units, i))
        ++i;
    return i;
}

bool IsSecondHalf(Units units, std::size_t i) {
    return IsLowSurrogate(units[i]) && !IsUnpairedSurrogate(units, i);
}

std::string CodePoint(unsigned short unit) { return Hex("U+%04X", unit); }

std::string ShowRaw(Units units) {
    std::vector<unsigned short> shown{u'"'};
    for (const unsigned short unit : units) {
        const bool isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
        if (isControl) {
            const std::string escape = Hex("\\x%02X", unit);
            shown.insert(shown.end(), escape.begin(), escape.end());
        } else {
            shown.push_back(unit);
        }
    }
    shown.push_back(u'"');
    return Utf8(shown);
}

std::string ShowKey(std::string_view key) { return ShowRaw(Widen(key)); }

std::string Show(Units units) {
    std::vector<unsigned short> written;
    AppendValue(written, units);
    return '"' + Utf8(written) + '"';
}

}  // namespace tool
