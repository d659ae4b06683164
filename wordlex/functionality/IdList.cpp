#include "wordlex/functionality/IdList.h"

#include <algorithm>

#include "wordlex/functionality/BinUtil.h"

namespace lexon_private {

std::uint16_t IdList::Tag(const unsigned char* key, unsigned long length) noexcept {
    if (length == 0) return kEmptyKey;
    const std::uint16_t tag = KeyTag(key, length);
    return tag > kNoKey ? tag : static_cast<std::uint16_t>(tag + kNoKey + 1);
}

void IdList::Reserve(std::uint32_t more) {
    if (capacity - count >= more) return;
    IdList larger;
    larger.capacity = std::max(count + more, 2 * count);
    larger.block.reset(new std::byte[BlockSize(larger.capacity)]);
    larger.KeyTags().Clear();
    for (std::uint32_t i = 0; i < count; ++i)
        larger.Append(Ids()[i], TagAt(i));
    *this = std::move(larger);
}

}  // namespace lexon_private
