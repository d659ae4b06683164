#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/HashItem.h"
#include "wordlex/functionality/KeyIndex.h"

namespace lexon_private {

// A table of 1021 buckets, each a chain of items linked through HashItem::next, newest first. The
// buckets define the order of enumeration and of written forms; items are found through the index.
// Owns:      every item linked into it, from Insert until Remove returns it.
// Invariant: the index contains the items that are in the bucket of their own hash, the newest of
//            equal ones first. Old files may contain others: these are only enumerated and written.
// Order:     buckets ascending, within a bucket from the chain's head: enumeration and writing.
// Memory:    buckets and index are made with the first item. When memory runs out, the table and
//            the caller's ownership of items are as before.
// Threads:   none, including const members: HasMoreItem writes the enumeration's state.
class HashTableGeneric {
public:
    HashTableGeneric() = default;
    HashTableGeneric(const HashTableGeneric&) = delete;
    HashTableGeneric& operator=(const HashTableGeneric&) = delete;
    ~HashTableGeneric();

    // Takes over the item and links it at the head of its bucket's chain. Does not search for equal
    // items: to replace an item, remove the old one first.
    void Insert(HashItem* item);
    // The same, replacing the newest equal item, which is deleted if there is one.
    void Replace(HashItem* item);
    // Items for one bucket, which may differ from that of their hash.
    struct Group {
        std::uint16_t bucket;
        std::span<HashItem* const> items;
    };
    // Links each group in its order at the head of its bucket's chain: all of them, or none.
    void InsertGroups(std::span<const Group> groups);
    // Unlinks the newest item equal to `probe` and returns it to the caller; null when there is
    // none.
    HashItem* Remove(const HashItem& probe);
    // The newest item equal to `probe`, still the table's; null when there is none.
    HashItem* Find(const HashItem& probe) const;

    std::int32_t NumItems() const;
    // while (HasMoreItem()) use NextItem(): a pass over all items. After its end the next call
    // starts a new pass. Adding or removing an item also ends a pass.
    bool HasMoreItem() const;
    HashItem* NextItem() const noexcept { return enumItem; }  // null before and after a pass

    // Calls visit(item) for every item in table order.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (std::size_t bucket = 0; bucket < kHashBucketCount; ++bucket) {
            for (const HashItem* item = Head(bucket); item != nullptr; item = item->next)
                visit(*item);
        }
    }

    // Text: every item's own text form, in table order; returns the sum of their results. Binary: a
    // version 1.5 body, but in host byte order; returns 4 plus the bytes of keys and values. Writes
    // its index last, so it fails for a stream that cannot seek.
    std::uint32_t Serialize(std::ostream& out, bool binary,
                            const lexon::EncodingInfo* encoding) const;
    // Text: the same. Binary: a version 2 image with the ids of the items in table order, written
    // front to back; returns 12 plus the bytes of keys and values. Values are UTF-16 for any
    // encoding. The format has room for 65,535 bytes of a key or value: of a longer one it has the
    // low 16 bits of the length. The stream fails when the size of an area needs more than 32 bits.
    std::uint32_t Serialize2(std::ostream& out, bool binary, const lexon::EncodingInfo* encoding,
                             lexon::EndianT order) const;

protected:
    // The newest item under that hash for which matches(item) is true; null when there is none.
    template <class Matches>
    HashItem* FindUnder(std::uint32_t hash, const Matches& matches) const {
        auto item = index.First(hash);
        while (item.has_value() && !matches(*item))
            item = index.Next(hash, *item);
        return item.value_or(nullptr);
    }

private:
    using Buckets = std::array<HashItem*, kHashBucketCount>;  // the heads of the chains
    struct UsedBucket {
        std::uint16_t number;
        std::uint32_t count;
    };
    // All items in table order, and the buckets that contain them.
    struct Listing {
        std::vector<UsedBucket> buckets;
        std::vector<const HashItem*> items;
    };

    HashItem* Head(std::size_t bucket) const noexcept {
        return buckets == nullptr ? nullptr : (*buckets)[bucket];
    }
    Listing InOrder() const;
    HashItem* FindIn(const HashItem& probe, std::uint32_t hash) const;
    void MakeBuckets();
    void Link(std::size_t bucket, HashItem* item) noexcept;
    void Unlink(HashItem* item) noexcept;
    bool EnterChainFrom(std::size_t firstBucket) const noexcept;
    std::uint32_t SerializeBinary(std::ostream& out, const lexon::EncodingInfo* encoding) const;

    std::unique_ptr<Buckets> buckets;  // null until there is an item
    KeyIndex<HashItem*> index;
    mutable bool enumRestart = true;
    mutable std::size_t enumBucket = 0;
    mutable HashItem* enumItem = nullptr;
};

}  // namespace lexon_private
