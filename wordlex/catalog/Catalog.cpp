#include "wordlex/catalog/Catalog.h"

#include "wordlex/catalog/Format.h"
#include "wordlex/catalog/Store.h"
#include "wordlex/catalog/platform/Terminated.h"
#include "wordlex/functionality/Escapes.h"

namespace lexon {

using namespace detail;

namespace {

std::u16string ConvertDefaultText(std::string_view text) {
    const std::u16string wide = ToUtf16(text);
    const std::vector<unsigned short> written(wide.begin(), wide.end());
    std::vector<unsigned short> room;
    const auto converted = lexon_private::Escapes::Convert(written, room);
    return {converted.begin(), converted.end()};
}

}  // namespace

Catalog::Catalog(std::shared_ptr<const CatalogStore> content) noexcept
    : store(std::move(content)) {}

// Not inlined into FindTerminated(), which is faster while it is small.
[[gnu::noinline]] std::optional<std::u16string_view> Catalog::Find(
    std::string_view key) const noexcept {
    if (store == nullptr) return std::nullopt;
    const WrittenKey written(key);
    if (!written.valid) return std::nullopt;
    return store->Find(written.key);
}

std::optional<std::u16string_view> Catalog::FindTerminated(const char* key) const noexcept {
    if (store == nullptr) return std::nullopt;
    if (*key == '\0') return std::nullopt;
    if (*key == '(') [[unlikely]]
        return Find(std::string_view(key));
    if (*key == '$') {
        if (key[1] != '$' || key[2] != '$') return std::nullopt;
        key += WrittenKey::kPrefix.size();
    }
    return store->Find(Before(key, '='));
}

std::u16string Catalog::Text(std::string_view key) const {
    if (const auto text = Find(key)) return std::u16string(*text);
    return ConvertDefaultText(WrittenKey(key).defaultText);
}

std::string Catalog::TextUtf8(std::string_view key) const {
    if (const auto text = Find(key)) return ToUtf8(*text);
    return ToUtf8(Text(key));
}

std::optional<std::u16string_view> Catalog::Find(std::uint32_t id) const noexcept {
    if (store == nullptr) return std::nullopt;
    return store->TextOf(id);
}

std::optional<std::uint32_t> Catalog::IdOf(std::string_view key) const noexcept {
    if (store == nullptr) return std::nullopt;
    const WrittenKey written(key);
    if (!written.valid) return std::nullopt;
    return store->IdOf(written.key);
}

std::optional<std::string_view> Catalog::KeyOf(std::uint32_t id) const noexcept {
    if (store == nullptr) return std::nullopt;
    return store->KeyOf(id);
}

std::optional<std::u16string_view> Catalog::Accelerator(std::string_view key) const noexcept {
    const auto id = IdOf(key);
    return id.has_value() ? Accelerator(*id) : std::nullopt;
}

std::optional<std::u16string_view> Catalog::Accelerator(std::uint32_t id) const noexcept {
    if (store == nullptr) return std::nullopt;
    return store->AcceleratorOf(id);
}

Catalog::Entries Catalog::All() const noexcept { return Entries(store.get()); }

std::string_view Catalog::Locale() const noexcept {
    return store == nullptr ? std::string_view() : std::string_view(store->locale);
}

std::span<const LoadWarning> Catalog::Warnings() const noexcept {
    if (store == nullptr) return {};
    return store->warnings;
}

Catalog::Entries::Iterator Catalog::Entries::begin() const noexcept {
    Iterator first(store, 0);
    first.SkipDead();
    return first;
}

Catalog::Entries::Iterator Catalog::Entries::end() const noexcept {
    return {store, store == nullptr ? 0 : store->entryCount};
}

void Catalog::Entries::Iterator::SkipDead() noexcept {
    while (store != nullptr && id < store->entryCount && !store->Has(id))
        ++id;
}

Entry Catalog::Entries::Iterator::operator*() const noexcept {
    return {id, store->KeyOf(id).value_or(std::string_view()),
            store->TextOf(id).value_or(std::u16string_view()),
            store->AcceleratorOf(id).value_or(std::u16string_view())};
}

}  // namespace lexon
