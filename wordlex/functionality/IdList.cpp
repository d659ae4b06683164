#include "wordlex/functionality/IdList.h"

#include <algorithm>
#include <cstring>

#include "wordlex/functionality/BinUtil.h"

namespace lexon_private {

std::uint16_t IdList::Tag(const unsigned char* key, unsigned long length) noexcept {
    if (length == 0) return kEmptyKey;
    const std::uint16_t tag = KeyTag(key, length);
    return tag > kNoKey ? tag : static_cast<std::uint16_t>(tag + kNoKey + 1);
}

std::uint32_t IdList::Find(std::uint16_t tag, std::uint32_t from) const noexcept {
    // A block without the tag is passed over by a few vector instructions.
    constexpr std::uint32_t kBlock = 16;
    const std::uint16_t* const tags = Tags();
    std::uint32_t i = from;
    for (; count - i >= kBlock; i += kBlock) {
        std::uint16_t hits = 0;
        for (std::uint32_t j = 0; j < kBlock; ++j)
            hits = static_cast<std::uint16_t>(hits | (tags[i + j] == tag ? 1 : 0));
        if (hits != 0) break;
    }
    while (i < count && tags[i] != tag)
        ++i;
    return i;
}

void IdList::Reserve(std::uint32_t more) {
    if (capacity - count >= more) return;
    IdList larger;
    larger.capacity = std::max(count + more, 2 * count);
    larger.block = Block(new std::byte[BlockSize(larger.capacity)]);
    if (count != 0) {
        std::memcpy(larger.block.get(), block.get(), count * sizeof(std::uint32_t));
        std::memcpy(larger.Tags(), Tags(), count * sizeof(std::uint16_t));
    }
    larger.count = count;
    *this = std::move(larger);
}

}  // namespace lexon_private
