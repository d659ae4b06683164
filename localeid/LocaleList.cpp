#include "localeid/LocaleList.h"

#include <utility>

#include "localeid/AsciiClass.h"

namespace {

constexpr bool IsNameByte(char c) noexcept {
    return localeid::IsAsciiAlnum(c) || c == '-' || c == '_';
}

}  // namespace

CLocaleList::CLocaleList(const char* names) { FromString(names); }

std::size_t CLocaleList::FromString(const char* names) {
    std::vector<std::string> found;
    for (const char* at = names != nullptr ? names : ""; *at != '\0';) {
        const char* end = at;
        while (IsNameByte(*end))
            ++end;
        if (end != at) found.emplace_back(at, end);
        at = *end == '\0' ? end : end + 1;
    }
    locales = std::move(found);
    return locales.size();
}

void CLocaleList::AddLocale(std::string name) { locales.push_back(std::move(name)); }

void CLocaleList::clear() noexcept { locales.clear(); }

std::size_t CLocaleList::size() const noexcept { return locales.size(); }

bool CLocaleList::empty() const noexcept { return locales.empty(); }

const std::string& CLocaleList::operator[](std::size_t index) const { return locales[index]; }
