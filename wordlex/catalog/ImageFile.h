#pragma once
#include "wordlex/catalog/ImageParts.h"
#include "wordlex/catalog/IndexBuilder.h"
#include "wordlex/catalog/Loaders.h"

namespace lexon::detail {

// LoadImage, with the parts as they are in the store.
std::shared_ptr<CatalogStore> LoadImage(OwnedBytes file, ImageParts& parts);
// Copies the parts of an image to its store; nothing when none of its entries is alive.
void Adopt(const ImageParts& parts, CatalogStore& store);

}  // namespace lexon::detail
