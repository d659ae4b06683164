#pragma once
#include <cstdint>
#include <functional>
#include <span>

namespace lexon_private {

// One entry of a dictionary, for both stores. All its members are borrowed, and valid until the
// dictionary changes.
struct EntryView {
    std::uint32_t id = 0;  // in a hash table all bits set
    bool keyed = true;     // false in a compact store's array without keys
    std::span<const unsigned char> key;
    std::span<const unsigned short> value;
    std::span<const unsigned short> accelerator;  // empty when there is none
};

using EntryVisitor = std::function<void(const EntryView&)>;

}  // namespace lexon_private
