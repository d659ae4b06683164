#pragma once
// Compares the catalog with the engine, for tests and for the fuzzer.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/Store.h"
#include "wordlex/functionality/BinaryFormat.h"
#include "wordlex/functionality/Dictionary.h"

namespace catalog_tests {

inline std::span<const std::byte> BytesOf(std::string_view bytes) {
    return std::as_bytes(std::span(bytes));
}

// The first key or id for which the two return different results; empty when there is none.
inline std::string Difference(const lexon::Catalog& catalog, lexon_private::Dictionary& engine) {
    const auto same = [](std::optional<std::u16string_view> text, bool found,
                         const unsigned short* units, unsigned long length) {
        return text.has_value() == found &&
               (!found || std::equal(text->begin(), text->end(), units, units + length));
    };
    std::set<std::string> keys = {"$$$", "$$$/nowhere", "$$$=", "$"};
    unsigned long count = 0;
    std::uint32_t idsEnd = 0;
    engine.ForEachEntry([&](const lexon_private::EntryView& entry) {
        const std::string key(entry.key.begin(), entry.key.end());
        ++count;
        idsEnd = entry.id + 1;
        if (key.find('\0') != std::string::npos) return;  // no look-up can name it
        keys.insert("$$$" + key);
        keys.insert("$$$" + key + "x");
    });
    const bool compact = engine.ReSetKeyEnumeration();
    for (const std::string& key : keys) {
        const unsigned short* units = nullptr;
        unsigned long length = 0;
        const bool found = engine.LookupReturnUTF16Ptr(key.c_str(), units, length, nullptr);
        if (!same(catalog.Find(key), found, units, length)) return "text of " + key;
        const unsigned long id = engine.GetNumericId(key.c_str());
        if (compact && found && catalog.IdOf(key) != id) return "id of " + key;
        if (!compact && found &&
            catalog.KeyOf(catalog.IdOf(key).value()) != key.substr(3, key.find('=') - 3))
            return "key of " + key;
    }
    unsigned long seen = 0;
    for (const lexon::Entry& entry : catalog.All()) {
        ++seen;
        if (entry.text != catalog.Find(entry.id)) return "range at " + std::to_string(entry.id);
    }
    if (!compact) {
        std::set<std::string> found;
        std::set<std::string> unasked;  // keys that a C string cannot contain
        engine.ForEachEntry([&](const lexon_private::EntryView& entry) {
            const std::string key(entry.key.begin(), entry.key.end());
            if (key.find('\0') != std::string::npos || key.find('=') != std::string::npos) {
                unasked.insert(key);
            } else if (engine.HasKey(("$$$" + key).c_str(), nullptr)) {
                found.insert(key);
            }
        });
        const bool fits = seen >= found.size() && seen <= found.size() + unasked.size();
        return fits ? "" : "number of entries";
    }
    for (std::uint32_t id = 0; id <= idsEnd; ++id) {
        const unsigned short* units = nullptr;
        unsigned long length = 0;
        const bool found = engine.LookupReturnUTF16Ptr(id, units, length, nullptr);
        seen -= found;
        if (!same(catalog.Find(id), found, units, length)) return "text of " + std::to_string(id);
        lexon_private::Wordlex accelerator = engine.Accelerator(id, nullptr);
        accelerator.BackDoorGetInternalData(units, length);
        if (!same(catalog.Accelerator(id), length != 0, units, length))
            return "accelerator of " + std::to_string(id);
        const std::unique_ptr<char[]> key(engine.GetStringId(id));
        const std::string_view text = catalog.KeyOf(id).value_or("");
        if (text.substr(0, text.find('\0')) != (found && key != nullptr ? key.get() : ""))
            return "key of " + std::to_string(id);
    }
    return seen == 0 ? "" : "number of entries";
}

// Makes the catalog build the index that it builds late.
inline void MakeIndexed(const lexon::Catalog& catalog) {
    for (unsigned i = 0; i <= lexon::detail::CatalogStore::kLookupsInLists; ++i)
        catalog.Find("$$$/nowhere");
}

// Loads the file into both, and compares before and after the index is made. The catalog refuses a
// file from which the engine would load nothing, or which would make it invalid; unless the file is
// not a dictionary at all.
inline std::string DifferenceOf(const std::string& file) {
    lexon_private::Dictionary engine;
    engine.Read(file.data(), static_cast<int>(file.size()), true);
    const lexon::LoadResult loaded = lexon::Catalog::TryLoad(BytesOf(file));
    if (loaded.Ok()) {
        if (!engine.IsValid()) return "loaded what is invalid";
        const std::string early = Difference(*loaded, engine);
        MakeIndexed(*loaded);
        return early.empty() ? Difference(*loaded, engine) : "early " + early;
    }
    if (!engine.IsValid() || engine.NumKeys() == 0 ||
        loaded.Error().code == lexon::LoadError::Code::kNotADictionary ||
        lexon_private::kBinaryMagic.starts_with(file))
        return "";
    return "refused: " + loaded.Error().Message();
}

}  // namespace catalog_tests
