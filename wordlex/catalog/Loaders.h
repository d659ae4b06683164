#pragma once
// Functions that fill a catalog. Each makes a complete store or throws a LoadFault.

#include <memory>
#include <string>

#include "wordlex/catalog/Store.h"

namespace lexon::detail {

// Thrown by a loader that fails; the file's name is added by its caller.
struct LoadFault {
    LoadError error;
};

// Whether the file begins like a binary dictionary.
bool IsBinary(Bytes file) noexcept;

// Whether the bytes of the file should begin at an odd address, so that its texts are at even ones.
// The first some hundred bytes of the file are usually enough; a wrong result costs a copy.
bool WantsOddAddress(Bytes head) noexcept;

// Text, version 1 or version 2. The bytes stay the caller's, except for `owned`: those are taken
// over, and changed when their byte order is not the machine's.
std::shared_ptr<CatalogStore> LoadText(Bytes file);
std::shared_ptr<CatalogStore> LoadVersion1(Bytes file);
struct OwnedBytes {
    std::unique_ptr<std::byte[]> block;
    std::span<std::byte> bytes;  // inside the block
};
std::shared_ptr<CatalogStore> LoadImage(OwnedBytes file);

// A file with an index, in place. Null when it has no index that can be used in place; the file
// then loads like any other. The keeper keeps its bytes.
std::shared_ptr<CatalogStore> OpenIndexed(Bytes file, std::shared_ptr<const void> keeper);
// Whether the last bytes of a file announce an index.
bool EndsInIndex(Bytes tail) noexcept;
inline constexpr std::size_t kIndexTrailerSize = 16;

}  // namespace lexon::detail
