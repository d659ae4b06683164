#include "tools/check/CharacterCheck.h"

#include <unicode/unorm2.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tool {

namespace {

// A zero-width joiner or non-joiner is part of the spelling of some languages.
bool IsHidden(unsigned short unit) {
    const bool isControl = (unit < 0x20 && unit != '\t') || (unit >= 0x7F && unit < 0xA0);
    return isControl || unit == 0x200B || unit == 0x2028 || unit == 0x2029 || unit == 0x2060 ||
           unit == 0xFEFF;
}

bool ChangesDirection(unsigned short unit) {
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

// The first direction mark without its other half, or the length.
std::size_t FindUnbalanced(Units text) {
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!ChangesDirection(text[i])) continue;
        const bool endsEmbedding = text[i] == 0x202C;
        const bool endsIsolate = text[i] == 0x2069;
        if (!endsEmbedding && !endsIsolate) {
            open.push_back(i);
            continue;
        }
        const bool fits = !open.empty() && (text[open.back()] >= 0x2066) == endsIsolate;
        if (!fits) return i;
        open.pop_back();
    }
    return open.empty() ? text.size() : open.front();
}

// The byte that windows-1252, or else ISO-8859-1, shows as this character; 0 for others.
unsigned char ByteOf(unsigned short unit) {
    static constexpr unsigned short kFrom80[] = {
        0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    const auto row = std::ranges::find(kFrom80, unit);
    if (row != std::end(kFrom80)) return static_cast<unsigned char>(0x80 + (row - kFrom80));
    return unit < 0x100 ? static_cast<unsigned char>(unit) : 0;
}

bool IsLetter(unsigned short unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || unit >= 0xC0;
}

// The length of a UTF-8 character that begins at `i` and was decoded byte by byte; 0 for none. A
// letter such as "Ã" before a closing mark looks the same but is not one.
std::size_t DoubleEncodedAt(Units text, std::size_t i) {
    const unsigned short lead = text[i];
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : lead >= 0xE1 && lead <= 0xEF ? 3
                                                              : 0;
    if (length == 0 || i + length > text.size()) return 0;
    bool punctuation = true;
    for (std::size_t k = 1; k < length; ++k) {
        const unsigned char byte = ByteOf(text[i + k]);
        if (byte < 0x80 || byte > 0xBF) return 0;
        punctuation = punctuation && (text[i + k] >= 0x2013 || byte == 0xBB || byte == 0xA0);
    }
    const bool ends = i + length == text.size() || !IsLetter(text[i + length]);
    return punctuation && ends && text[i] != 0x00E2 ? 0 : length;
}

bool IsDecomposed(Units text, std::size_t i) {
    if (i == 0 || text[i] < 0x0300) return false;
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* const composer = unorm2_getNFCInstance(&status);
    return U_SUCCESS(status) && unorm2_composePair(composer, text[i - 1], text[i]) >= 0;
}

}  // namespace

void CheckCharacters(Units written, Units converted, const EscapeSink& add) {
    const auto isPlain = [](unsigned short unit) { return unit >= 0x20 && unit < 0x7F; };
    if (std::ranges::any_of(converted, ChangesDirection)) {
        if (const std::size_t at = FindUnbalanced(converted); at != converted.size()) {
            add(Rule::kUnbalancedDirection, OriginsOf(written)[at], 1,
                CodePoint(converted[at]) +
                    " has no other half, which ends or begins the direction");
        }
    }
    if (std::ranges::all_of(written, isPlain)) return;

    const auto hidden = std::ranges::find_if(written, IsHidden);
    if (hidden != written.end()) {
        add(Rule::kHiddenCharacter, static_cast<std::size_t>(hidden - written.begin()), 1,
            CodePoint(*hidden) + " does not show in an editor; written as #{" + CodePoint(*hidden) +
                "} it is meant");
    }
    const auto lost = std::ranges::find(written, 0xFFFD);
    if (lost != written.end()) {
        add(Rule::kReplacementCharacter, static_cast<std::size_t>(lost - written.begin()), 1,
            "U+FFFD replaces a character that a conversion lost");
    }
    for (std::size_t i = 0; i < written.size(); ++i) {
        if (const std::size_t length = DoubleEncodedAt(written, i); length != 0) {
            add(Rule::kDoubleEncoded, i, length,
                ShowRaw(written.subspan(i, length)) +
                    " is one character of UTF-8 that was "
                    "converted twice");
            break;
        }
    }
    for (std::size_t i = 0; i < written.size(); ++i) {
        if (!IsDecomposed(written, i)) continue;
        add(Rule::kDecomposed, i - 1, 2,
            ShowRaw(written.subspan(i - 1, 2)) + " is two characters, for which there is one");
        break;
    }
}

}  // namespace tool
