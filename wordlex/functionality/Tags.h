#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lexon_private {

// The tags of a bucket's items or of a slot's ids, which lie together in a block of their owner's
// so that a search reads them alone, eight at a time.
//
// A block with room for very many tags has a map behind them: for every tag the 64ths of the block
// that may hold it, a bit for each. It is for files that put all their keys into one slot, where
// each key that is read is searched for among all before it.
class Tags {
public:
    // Bytes of a block with that room, map included.
    static constexpr std::size_t BlockSize(std::size_t room) noexcept {
        return room * sizeof(std::uint16_t) + (room < kMapped ? 0 : kMapSize + alignof(Parts));
    }

    // Over a block of at least BlockSize(room) bytes at an even address, which outlives it.
    Tags(std::byte* block, std::size_t room) noexcept : units(block), capacity(room) {}

    std::uint16_t operator[](std::size_t position) const noexcept { return Units()[position]; }
    // Makes the block one without tags; of a new block, before anything else.
    void Clear() const noexcept {
        if (IsMapped()) std::memset(Map(), 0, kMapSize);
    }
    void Set(std::size_t position, std::uint16_t tag) const noexcept {
        Units()[position] = tag;
        if (IsMapped()) Map()[tag] |= Parts{1} << position / PartSize();
    }
    // The first position in [from, count) that has the tag, or `count`.
    std::size_t First(std::size_t from, std::size_t count, std::uint16_t tag) const noexcept;
    // The last position below `count` that has the tag, plus 1; or 0.
    std::size_t BehindLast(std::size_t count, std::uint16_t tag) const noexcept;

private:
    using Parts = std::uint64_t;

    static constexpr std::size_t kMapped = 0x20000;  // tags, from which on searches are too long
    static constexpr std::size_t kParts = 64;
    static constexpr std::size_t kMapSize = 0x10000 * sizeof(Parts);

    std::uint16_t* Units() const noexcept { return reinterpret_cast<std::uint16_t*>(units); }
    bool IsMapped() const noexcept { return capacity >= kMapped; }
    Parts* Map() const noexcept;
    std::size_t PartSize() const noexcept { return capacity / kParts + 1; }

    std::byte* units;
    std::size_t capacity;
};

}  // namespace lexon_private
