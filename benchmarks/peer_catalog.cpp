// The catalog as one more peer of a harness that compares localization catalogs: a source to put
// beside its harness.hpp, compiled with the project's root on the include path and linked with
// Wordlex::catalog. Keys are written $$$/key=default text.
//  project_catalog        v2.dat, read whole; a view into the catalog
//  project_catalog_copy   the same; a std::u16string
//  project_catalog_indexed, project_catalog_indexed_copy
//                         v2i.dat, which `wordlex compile --indexed` wrote, mapped
//  project_catalog_text   text.dat; a view
#include "harness.hpp"
#include "wordlex/catalog/Catalog.h"

namespace peers {
namespace {

enum class From { kVersion2, kIndexed, kText };

template <From kFrom, bool kCopy>
struct Catalog : NoPrepare {
    static constexpr const char* kName =
        kFrom == From::kText ? "project_catalog_text"
        : kFrom == From::kIndexed
            ? (kCopy ? "project_catalog_indexed_copy" : "project_catalog_indexed")
            : (kCopy ? "project_catalog_copy" : "project_catalog");
    static constexpr const char* kHands = kCopy ? "u16string copy" : "utf16 ptr";
    static constexpr const char* kLoadOf = !kCopy                    ? nullptr
                                           : kFrom == From::kIndexed ? "project_catalog_indexed"
                                                                     : "project_catalog";
    static constexpr bool kDecorated = true;

    lexon::Catalog catalog;

    static std::string file(const Dir& dir) {
        return dir.path + (kFrom == From::kText      ? "/text.dat"
                           : kFrom == From::kIndexed ? "/v2i.dat"
                                                     : "/v2.dat");
    }
    static std::unique_ptr<Catalog> open(const Dir& dir, unsigned) {
        return std::make_unique<Catalog>(Catalog{{}, lexon::Catalog::Load(file(dir))});
    }
    std::size_t get(const char* key) {
        const auto found = catalog.Find(key);
        if (!found.has_value()) return kMiss;
        if constexpr (kCopy) {
            const std::u16string copy(*found);
            benchmark::DoNotOptimize(copy.data());
        } else {
            benchmark::DoNotOptimize(found->data());
        }
        return found->size();
    }
    std::u16string text(const char* key) { return std::u16string(catalog.Find(key).value_or(u"")); }
};

}  // namespace

void registerCatalog() {
    registerVariant<Catalog<From::kVersion2, false>>();
    registerVariant<Catalog<From::kVersion2, true>>();
    registerVariant<Catalog<From::kIndexed, false>>();
    registerVariant<Catalog<From::kIndexed, true>>();
    registerVariant<Catalog<From::kText, false>>();
}

}  // namespace peers
