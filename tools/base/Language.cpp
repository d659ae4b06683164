#include "tools/base/Language.h"

#include <unicode/uchar.h>

#include <algorithm>

#include "wordlex/catalog/MessagePattern.h"

namespace tool {

namespace {

constexpr char kSeparators[] = "_-";

// Whether the name begins with a language that has rules for plurals.
bool BeginsWithLanguage(const std::string& name) {
    const std::size_t length = std::min(name.find_first_of(kSeparators), name.size());
    return (length == 2 || length == 3) && !lexon::detail::PluralCategories(name, false).empty();
}

// A script ("Hans") or a region ("BR", "419").
bool IsSubtag(const std::string& tag) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (tag.size() == 3) return std::ranges::all_of(tag, isDigit);
    if (tag.size() != 4) return tag.size() == 2;
    return u_getPropertyValueEnum(UCHAR_SCRIPT, tag.c_str()) != UCHAR_INVALID_CODE;
}

// Whether a name is that of a language and nothing else: "my-app" is no Burmese.
bool IsLanguage(const std::string& name) {
    if (!BeginsWithLanguage(name)) return false;
    for (std::size_t at = name.find_first_of(kSeparators); at < name.size();) {
        const std::size_t end = std::min(name.find_first_of(kSeparators, at + 1), name.size());
        if (!IsSubtag(name.substr(at + 1, end - at - 1))) return false;
        at = end;
    }
    return true;
}

}  // namespace

std::string LanguageOf(const std::filesystem::path& file, const std::string& locale) {
    if (BeginsWithLanguage(locale)) return locale;
    for (std::string name : {file.stem().string(), file.parent_path().filename().string()}) {
        while (!IsLanguage(name)) {
            const std::size_t separator = name.find_first_of("._-");
            if (separator == name.npos) break;
            name.erase(0, separator + 1);
        }
        if (IsLanguage(name)) return name;
    }
    return {};
}

}  // namespace tool
