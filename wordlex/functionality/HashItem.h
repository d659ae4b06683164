#pragma once
#include <cstdint>
#include <iosfwd>
#include <span>

#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

// An item of a HashTableGeneric: it hashes, compares and writes itself.
// Invariant: only the table writes the links of the bucket's chain; copies are in no table.
class HashItem {
public:
    HashItem() noexcept = default;
    HashItem(const HashItem&) noexcept {}
    HashItem& operator=(const HashItem&) noexcept {
        next = nullptr;
        link = nullptr;
        return *this;
    }

    // Write the item, its key or its value; with `binary` false in the UTF-16 text form. Return the
    // number of bytes that the item reports for the written form. `order` says whether units are
    // swapped.
    virtual std::uint32_t Serialize(std::ostream& out, bool binary,
                                    const lexon::EncodingInfo* encoding) const = 0;
    virtual std::uint32_t SerializeKey(std::ostream& out, bool binary,
                                       const lexon::EncodingInfo* encoding) const;
    virtual std::uint32_t SerializeValue(std::ostream& out, bool binary,
                                         const lexon::EncodingInfo* encoding,
                                         lexon::EndianT order) const;
    virtual ~HashItem() = default;
    // In [0, bucketCount); `bucketCount` is never 0.
    virtual unsigned long Hash(unsigned long bucketCount) const = 0;
    virtual bool operator==(const HashItem& other) const = 0;
    // A hash of what operator== compares, over all 32 bits: a table finds an item by it. Items
    // without one are found by their bucket, by comparing with all its items.
    virtual std::uint32_t KeyHash() const;
    // Key and value of an item that writes them as they are in memory, so that a table can copy
    // them without the calls above. Not known of other items.
    struct Content {
        bool known = false;
        std::span<const unsigned char> key;
        std::span<const unsigned short> units;  // of the value, in host order
    };
    virtual Content GetContent() const noexcept { return {}; }

private:
    friend class HashTableGeneric;
    HashItem* next = nullptr;   // the next older item of the bucket
    HashItem** link = nullptr;  // points at this item: the next newer one's link, or the head
};

}  // namespace lexon_private
