// Conversions between what callers write and what a catalog holds. They share nothing, so any
// number of threads use them at once.
#include "wordlex/catalog/Store.h"
#include "wordlex/functionality/Escapes.h"

namespace lexon::detail {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t c) noexcept { return c >= 0xD800 && c <= 0xDFFF; }

// Takes the next character off well-formed UTF-8, or one byte as U+FFFD.
char32_t TakeUtf8(std::string_view& text) noexcept {
    static constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t more = first < 0xC0 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    char32_t c = more == 0 ? first : first & (0x3Fu >> more);
    bool good = (first < 0x80 || more != 0) && first < 0xF8 && more < text.size();
    for (std::size_t i = 1; good && i <= more; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        good = (next & 0xC0) == 0x80;
        c = c << 6 | (next & 0x3Fu);
    }
    good = good && c >= kLeast[more] && c <= 0x10FFFF && !IsSurrogate(c);
    text.remove_prefix(good ? more + 1 : 1);
    return good ? c : kReplacement;
}

template <class Text>
void AppendUtf16(Text& text, char32_t c) {
    if (c >= 0x10000) {
        text.push_back(static_cast<typename Text::value_type>(0xD7C0 + (c >> 10)));
        c = 0xDC00 + (c & 0x3FF);
    }
    text.push_back(static_cast<typename Text::value_type>(c));
}

void AppendUtf8(std::string& text, char32_t c) {
    const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        put(c);
        return;
    }
    if (c < 0x800) {
        put(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            put(0xE0 | c >> 12);
        } else {
            put(0xF0 | c >> 18);
            put(0x80 | (c >> 12 & 0x3F));
        }
        put(0x80 | (c >> 6 & 0x3F));
    }
    put(0x80 | (c & 0x3F));
}

}  // namespace

std::u16string ConvertDefaultText(std::string_view text) {
    std::vector<unsigned short> units;
    units.reserve(text.size());
    while (!text.empty())
        AppendUtf16(units, TakeUtf8(text));
    std::vector<unsigned short> resolved;
    const auto converted = lexon_private::Escapes::Convert(units, resolved);
    return {converted.begin(), converted.end()};
}

std::string ToUtf8(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size() + text.size() / 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        const bool pair = c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() &&
                          text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
        if (pair) c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
        AppendUtf8(bytes, IsSurrogate(c) ? kReplacement : c);
    }
    return bytes;
}

}  // namespace lexon::detail
