#include "wordlex/functionality/IdList.h"

#include <algorithm>
#include <cstring>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/Tags.h"

namespace lexon_private {

std::uint16_t IdList::Tag(const unsigned char* key, unsigned long length) noexcept {
    if (length == 0) return kEmptyKey;
    const std::uint16_t tag = KeyTag(key, length);
    return tag > kNoKey ? tag : static_cast<std::uint16_t>(tag + kNoKey + 1);
}

std::uint32_t IdList::Find(std::uint16_t tag, std::uint32_t from) const noexcept {
    return static_cast<std::uint32_t>(FirstTag(Tags(), from, count, tag));
}

void IdList::Reserve(std::uint32_t more) {
    if (capacity - count >= more) return;
    IdList larger;
    larger.capacity = std::max(count + more, 2 * count);
    larger.block.reset(new std::byte[BlockSize(larger.capacity)]);
    if (count != 0) {
        std::memcpy(larger.block.get(), block.get(), count * sizeof(std::uint32_t));
        std::memcpy(larger.Tags(), Tags(), count * sizeof(std::uint16_t));
    }
    larger.count = count;
    *this = std::move(larger);
}

}  // namespace lexon_private
