#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/HashItem.h"
#include "wordlex/functionality/Tags.h"

namespace lexon_private {

class ImageWriter;

// A table of 1021 buckets, each a chain of items linked through HashItem::next, newest first.
// Owns:      every item linked into it, from Insert until Remove hands it back.
// Invariant: buckets never grow in number; beside its chain each bucket keeps the chain's items and
//            their tags in one block, so that a search compares tags that lie together and touches
//            only the items whose tag fits. At 100 items a bucket this is what keeps a hit fast.
// Order:     buckets ascending, within a bucket from the chain's head: enumeration and writing.
// Threads:   none, const members included: HasMoreItem writes the enumeration's state.
class HashTableGeneric {
public:
    HashTableGeneric() = default;
    HashTableGeneric(const HashTableGeneric&) = delete;
    HashTableGeneric& operator=(const HashTableGeneric&) = delete;
    ~HashTableGeneric();

    // Links the item in front of its bucket's chain and takes it over. Equal items are not looked
    // for: Remove the old one first to replace it. When memory runs out, the table and the caller's
    // ownership are as before.
    void Insert(HashItem* item);
    // The same in place of the newest equal item, which is deleted if there is one.
    void Replace(HashItem* item);
    // Links the items, in the given order, in front of one bucket's chain; as Insert otherwise.
    void InsertAhead(unsigned long bucket, std::span<HashItem* const> items);
    // Makes room in a bucket, so that inserting that many items cannot fail.
    void ReserveAhead(unsigned long bucket, std::size_t more) { buckets[bucket].Reserve(more); }
    // Unlinks the newest item equal to `probe` and hands it to the caller; null when there is none.
    HashItem* Remove(const HashItem& probe);
    // The newest item equal to `probe`, still the table's; null when there is none.
    HashItem* Find(const HashItem& probe) const;

    std::int32_t NumItems() const;
    // while (HasMoreItem()) use NextItem(): a pass over all items. After its end the next call
    // starts a new pass. No item may come or go during a pass.
    bool HasMoreItem() const;
    HashItem* NextItem() const noexcept { return enumItem; }  // null before and after a pass

    // Calls visit(item) for every item in table order.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const Bucket& bucket : buckets) {
            for (const HashItem* item = bucket.Head(); item != nullptr; item = item->next) {
                visit(*item);
            }
        }
    }

    // Text: every item's own text form, in table order; gives the sum of their results.
    // Binary: a version 1.5 body, but in host byte order; gives 4 and the bytes of keys and values.
    // It writes its index last, so the stream must be able to seek; one that cannot fails.
    std::uint32_t Serialize(std::ostream& out, bool binary,
                            const lexon::EncodingInfo* encoding) const;
    // Text: the same. Binary: a version 2 image with the ids of the items in table order, written
    // front to back; gives 12 and the bytes of keys and values. Values are UTF-16 whatever the
    // encoding. The format has room for 65,535 bytes of a key or value: of a longer one it tells
    // the low 16 bits of the length. The stream fails when 32 bits cannot tell the size of an area.
    std::uint32_t Serialize2(std::ostream& out, bool binary, const lexon::EncodingInfo* encoding,
                             lexon::EndianT order) const;

private:
    // The items of one chain, oldest first, and behind them in the same block their tags. An item
    // that leaves the middle leaves a hole; holes are closed when more than one item in sixteen is
    // one: to move the rest each time, or to search many holes, would take time by the square of a
    // long chain.
    class Bucket {
    public:
        std::size_t Count() const noexcept { return count; }
        HashItem* Head() const noexcept { return end == 0 ? nullptr : Items()[end - 1]; }
        // Where the newest item equal to `probe` lies in the block; none when there is none.
        std::optional<std::size_t> Position(const HashItem& probe, std::uint16_t tag) const;
        HashItem* At(std::size_t position) const noexcept { return Items()[position]; }
        void Reserve(std::size_t more);
        void Append(HashItem* item, std::uint16_t tag) noexcept;  // room is reserved
        HashItem* Unlink(std::size_t position) noexcept;          // the item is the caller's then

    private:
        HashItem** Items() const noexcept { return reinterpret_cast<HashItem**>(block.get()); }
        Tags KeyTags() const noexcept {
            return {block.get() + capacity * sizeof(HashItem*), capacity};
        }

        static constexpr std::uint32_t kHoleShare = 16;

        // The next newer item of the chain than the one there; null when that is the newest.
        HashItem* NewerThan(std::size_t position) const noexcept;
        void CloseHoles() noexcept;

        std::unique_ptr<std::byte[]> block;
        std::uint32_t count = 0;  // of items
        std::uint32_t end = 0;    // of items and holes; the last is an item
        std::uint32_t capacity = 0;
    };

    HashItem* Head(std::size_t bucket) const noexcept { return buckets[bucket].Head(); }
    bool EnterChainFrom(std::size_t firstBucket) const;
    std::uint32_t SerializeBinary(std::ostream& out, const lexon::EncodingInfo* encoding) const;
    std::vector<const HashItem*> ItemsInOrder() const;
    void WriteHashIndex(ImageWriter& writer) const;

    std::array<Bucket, kHashBucketCount> buckets;
    mutable bool enumRestart = true;
    mutable std::int32_t enumBucket = 0;
    mutable HashItem* enumItem = nullptr;
};

}  // namespace lexon_private
