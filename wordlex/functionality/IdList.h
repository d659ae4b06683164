#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>

#include "wordlex/functionality/Table.h"
#include "wordlex/functionality/Tags.h"

namespace lexon_private {

// The entry ids of one hash slot, in the order in which they were listed, each with a tag of its
// key. The tags lie together behind the ids, so that a search reads them alone and touches only
// entries whose tag fits: at 100 ids a slot this is what keeps a hit fast.
// Owns: its block, unless that is a piece of a larger one made for a whole image.
class IdList {
public:
    // Tags that no key has but the empty one, and none at all.
    static constexpr std::uint16_t kEmptyKey = 0;
    static constexpr std::uint16_t kNoKey = 1;  // of an entry that is dead when it is listed
    static std::uint16_t Tag(const unsigned char* key, unsigned long length) noexcept;

    // Bytes of a block for that many ids; blocks one behind another stay aligned.
    static constexpr std::size_t BlockSize(std::size_t idCount) noexcept {
        const std::size_t bytes = idCount * sizeof(std::uint32_t) + Tags::BlockSize(idCount);
        return (bytes + alignof(std::uint32_t) - 1) / alignof(std::uint32_t) *
               alignof(std::uint32_t);
    }

    std::uint32_t Count() const noexcept { return count; }
    const std::uint32_t* Ids() const noexcept {
        return reinterpret_cast<const std::uint32_t*>(block.get());
    }
    std::uint16_t TagAt(std::uint32_t i) const noexcept { return KeyTags()[i]; }
    // The first position from `from` on that has the tag, or Count().
    std::uint32_t Find(std::uint16_t tag, std::uint32_t from) const noexcept {
        return static_cast<std::uint32_t>(KeyTags().First(from, count, tag));
    }

    // An empty list with room for `room` ids in a borrowed block that outlives it.
    void Borrow(std::byte* borrowed, std::uint32_t room) noexcept {
        block = BorrowableArray<std::byte>(borrowed, {.borrowed = true});
        capacity = room;
        KeyTags().Clear();
    }
    // Makes room for more ids, at least doubling a full list.
    void Reserve(std::uint32_t more);
    // Room is reserved.
    void Append(std::uint32_t id, std::uint16_t tag) noexcept {
        reinterpret_cast<std::uint32_t*>(block.get())[count] = id;
        KeyTags().Set(count++, tag);
    }

private:
    Tags KeyTags() const noexcept {
        return {block.get() + capacity * sizeof(std::uint32_t), capacity};
    }

    BorrowableArray<std::byte> block;
    std::uint32_t count = 0;
    std::uint32_t capacity = 0;
};

}  // namespace lexon_private
