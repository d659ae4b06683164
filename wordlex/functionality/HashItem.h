#pragma once
#include <cstdint>
#include <iosfwd>

#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

// What a HashTableGeneric chains: something that hashes, compares and writes itself.
// Invariant: only the table writes the link to the next item of the bucket; copies are in no table.
class HashItem {
public:
    HashItem() noexcept = default;
    HashItem(const HashItem&) noexcept {}
    HashItem& operator=(const HashItem&) noexcept {
        next = nullptr;
        return *this;
    }

    // Write the item, its key or its value; `binary` false is the UTF-16 text form. Give the count
    // of bytes that the item reports for the written form. `order` tells whether units are swapped.
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
    // A short digest of what operator== compares: equal items have equal tags, so that a table can
    // pass over most others without touching them. Items without one all share the tag 0.
    virtual std::uint16_t Tag() const;

private:
    friend class HashTableGeneric;
    HashItem* next = nullptr;
};

}  // namespace lexon_private
