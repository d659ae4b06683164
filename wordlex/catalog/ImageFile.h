#pragma once
#include "wordlex/catalog/ImageParts.h"
#include "wordlex/catalog/IndexBuilder.h"
#include "wordlex/catalog/Loaders.h"

namespace lexon::detail {

// LoadImage with the parts as the store has them.
std::shared_ptr<CatalogStore> LoadImage(OwnedBytes file, ImageParts& parts);
// What a store takes over from the parts of its image; nothing when none of its entries is alive.
void Adopt(const ImageParts& parts, CatalogStore& store);

}  // namespace lexon::detail
