#pragma once
// The ways to fill a catalog. Each makes a whole store or throws a LoadFault.

#include <memory>
#include <string>

#include "wordlex/catalog/Store.h"

namespace lexon::detail {

// What leaves a loader that fails; the file's name is added where it is known.
struct LoadFault {
    LoadError error;
};

// Whether the file begins like a binary dictionary.
bool IsBinary(Bytes file) noexcept;

// Whether the bytes of the file should begin at an odd address, so that its texts lie at even ones.
// The head of the file, some hundred bytes, is enough as a rule; a wrong answer costs a copy.
bool WantsOddAddress(Bytes head) noexcept;

// Text, version 1 or version 2, from bytes that stay the caller's but for `owned`: those are taken
// over, and changed where their byte order is not the machine's.
std::shared_ptr<CatalogStore> LoadText(Bytes file);
std::shared_ptr<CatalogStore> LoadVersion1(Bytes file);
struct OwnedBytes {
    std::unique_ptr<std::byte[]> block;
    std::span<std::byte> bytes;  // inside of the block
};
std::shared_ptr<CatalogStore> LoadImage(OwnedBytes file);

// A file with an index, in place. Null when there is none that can be used as it lies: the file
// then loads as any other. The keeper keeps its bytes.
std::shared_ptr<CatalogStore> OpenIndexed(Bytes file, std::shared_ptr<const void> keeper);
// Whether the last bytes of a file say that it has an index.
bool EndsInIndex(Bytes tail) noexcept;
inline constexpr std::size_t kIndexTrailerSize = 16;

}  // namespace lexon::detail
