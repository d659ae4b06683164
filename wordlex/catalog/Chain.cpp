#include <algorithm>

#include "localeid/MuiLib.h"
#include "localeid/MuiLibImpl.h"
#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/Format.h"

namespace lexon {

std::vector<std::string> Chain::Order(std::span<const std::string> available,
                                      const std::string& own,
                                      std::span<const std::string> preferred) {
    std::vector<const char*> names;
    for (const std::string& name : available)
        names.push_back(name.c_str());
    names.push_back(nullptr);
    std::size_t placed = 0;
    if (preferred.empty()) {
        placed = MuiSortLocalesPerUserPreference(names.data());
    } else {
        CLocaleList list;
        for (const std::string& name : preferred)
            list.AddLocale(name);
        placed = MuiSortLocalesPerUserPreferenceImpl(names.data(), list);
    }
    std::vector<std::string> order(names.begin(),
                                   names.begin() + static_cast<std::ptrdiff_t>(placed));
    if (std::ranges::find(order, own) == order.end()) order.push_back(own);
    return order;
}

std::optional<Chain::Answer> Chain::Find(std::string_view key) const noexcept {
    for (const Link& link : links) {
        if (const auto text = link.catalog.Find(key)) return Answer{*text, &link};
    }
    return std::nullopt;
}

std::u16string Chain::Text(std::string_view key) const {
    if (const auto answer = Find(key)) return std::u16string(answer->text);
    return Catalog().Text(key);
}

std::string Chain::TextUtf8(std::string_view key) const {
    if (const auto answer = Find(key)) return ToUtf8(answer->text);
    return Catalog().TextUtf8(key);
}

}  // namespace lexon
