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

void AppendUtf8(std::string& bytes, char32_t code) {
    const auto add = [&bytes](char32_t byte) {
        bytes += static_cast<char>(static_cast<unsigned char>(byte));
    };
    if (code < 0x80) return add(code);
    if (code < 0x800) {
        add(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            add(0xE0 | code >> 12);
        } else {
            add(0xF0 | code >> 18);
            add(0x80 | (code >> 12 & 0x3F));
        }
        add(0x80 | (code >> 6 & 0x3F));
    }
    add(0x80 | (code & 0x3F));
}

std::string Utf8(Units units) {
    std::string text;
    text.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t code = units[i];
        if (IsUnpairedSurrogate(units, i)) {
            code = '?';
        } else if (IsHighSurrogate(units[i])) {
            code = 0x10000 + ((code & 0x3FF) << 10 | (units[++i] & 0x3FFU));
        }
        AppendUtf8(text, code);
    }
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

char32_t NextCharacter(Units units, std::size_t& i) {
    const char32_t unit = units[i++];
    if (i == units.size() || !IsSecondHalf(units, i)) return unit;
    return 0x10000 + ((unit - 0xD800) << 10) + (units[i++] - 0xDC00U);
}

std::string Counted(std::size_t count, const std::string& thing, const std::string& things) {
    const std::string plural = things.empty() ? thing + 's' : things;
    return std::to_string(count) + ' ' + (count == 1 ? thing : plural);
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
