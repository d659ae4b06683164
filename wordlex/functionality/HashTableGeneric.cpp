#include "wordlex/functionality/HashTableGeneric.h"

#include <algorithm>
#include <ostream>
#include <vector>

namespace lexon_private {

std::size_t HashTableGeneric::Bucket::Position(const HashItem& probe) const {
    const std::uint16_t tag = probe.Tag();
    const std::uint16_t* const tags = Tags();
    for (std::size_t i = count; i-- > 0;) {
        if (tags[i] == tag && *Items()[i] == probe) return i;
    }
    return count;
}

void HashTableGeneric::Bucket::Reserve(std::size_t more) {
    if (capacity - count >= more) return;
    Bucket larger;
    larger.capacity = static_cast<std::uint32_t>(std::max(count + more, 2 * std::size_t{count}));
    larger.block.reset(
        new std::byte[larger.capacity * (sizeof(HashItem*) + sizeof(std::uint16_t))]);
    std::copy_n(Items(), count, larger.Items());
    std::copy_n(Tags(), count, larger.Tags());
    larger.count = count;
    *this = std::move(larger);
}

void HashTableGeneric::Bucket::Append(HashItem* item) {
    Items()[count] = item;
    Tags()[count] = item->Tag();
    ++count;
}

void HashTableGeneric::Bucket::Erase(std::size_t position) noexcept {
    std::copy(Items() + position + 1, Items() + count, Items() + position);
    std::copy(Tags() + position + 1, Tags() + count, Tags() + position);
    --count;
}

HashTableGeneric::~HashTableGeneric() {
    for (const Bucket& bucket : buckets) {
        for (HashItem* item : bucket.Chain())
            delete item;
    }
}

void HashTableGeneric::Insert(HashItem* item) {
    InsertAhead(item->Hash(kHashBucketCount), {&item, 1});
}

void HashTableGeneric::InsertAhead(unsigned long bucketIndex, std::span<HashItem* const> items) {
    Bucket& bucket = buckets[bucketIndex];
    bucket.Reserve(items.size());
    for (std::size_t i = items.size(); i-- > 0;) {
        items[i]->next = bucket.Head();
        bucket.Append(items[i]);
    }
}

std::size_t HashTableGeneric::Search(const HashItem& probe) const {
    lastBucket = probe.Hash(kHashBucketCount);
    const Bucket& bucket = buckets[lastBucket];
    const std::size_t position = bucket.Position(probe);
    const std::size_t previous = position == bucket.Count() ? 0 : position + 1;
    lastPrevious = previous < bucket.Count() ? bucket.Chain()[previous] : nullptr;
    return position;
}

HashItem* HashTableGeneric::Find(const HashItem& probe) const {
    const std::size_t position = Search(probe);
    const Bucket& bucket = buckets[lastBucket];
    return position == bucket.Count() ? nullptr : bucket.Chain()[position];
}

HashItem* HashTableGeneric::Remove(const HashItem& probe) {
    const std::size_t position = Search(probe);
    Bucket& bucket = buckets[lastBucket];
    if (position == bucket.Count()) return nullptr;
    HashItem* const found = bucket.Chain()[position];
    if (lastPrevious != nullptr) lastPrevious->next = found->next;
    found->next = nullptr;
    bucket.Erase(position);
    return found;
}

std::int32_t HashTableGeneric::NumItems() const {
    std::size_t items = 0;
    for (const Bucket& bucket : buckets)
        items += bucket.Count();
    return static_cast<std::int32_t>(items);
}

bool HashTableGeneric::EnterChainFrom(std::size_t firstBucket) const {
    const auto first = buckets.begin() + static_cast<std::ptrdiff_t>(firstBucket);
    const auto found =
        std::find_if(first, buckets.end(), [](const Bucket& b) { return b.Count() != 0; });
    if (found == buckets.end()) return false;
    enumBucket = static_cast<std::int32_t>(found - buckets.begin());
    enumItem = found->Head();
    return true;
}

bool HashTableGeneric::HasMoreItem() const {
    if (enumRestart) {
        enumRestart = !EnterChainFrom(0);
        return !enumRestart;
    }
    enumItem = enumItem->next;
    if (enumItem != nullptr || EnterChainFrom(static_cast<std::size_t>(enumBucket) + 1))
        return true;
    enumRestart = true;
    return false;
}

std::uint32_t HashTableGeneric::Serialize(std::ostream& out, bool binary,
                                          const lexon::EncodingInfo* encoding) const {
    if (binary) return SerializeBinary(out, encoding);
    std::uint32_t written = 0;
    ForEach([&](const HashItem& item) { written += item.Serialize(out, false, encoding); });
    return written;
}

std::uint32_t HashTableGeneric::SerializeBinary(std::ostream& out,
                                                const lexon::EncodingInfo* encoding) const {
    std::vector<std::uint32_t> bucketEnds;  // in sizes, two an item
    std::vector<std::uint16_t> bucketSlots;
    std::uint32_t sizeCount = 0;
    for (std::size_t slot = 0; slot < buckets.size(); ++slot) {
        if (buckets[slot].Count() == 0) continue;
        sizeCount += static_cast<std::uint32_t>(2 * buckets[slot].Count());
        bucketEnds.push_back(sizeCount);
        bucketSlots.push_back(static_cast<std::uint16_t>(slot));
    }
    std::vector<std::uint32_t> sizes(sizeCount);

    const auto writeTable = [&out]<class T>(const std::vector<T>& table) {
        out.write(reinterpret_cast<const char*>(table.data()),
                  static_cast<std::streamsize>(table.size() * sizeof(T)));
    };
    const auto writeIndex = [&] {
        writeTable(bucketEnds);
        writeTable(sizes);
        writeTable(bucketSlots);
    };

    const auto bucketCount = static_cast<std::uint32_t>(bucketEnds.size());
    out.write(reinterpret_cast<const char*>(&bucketCount), sizeof bucketCount);
    const auto index = out.tellp();
    writeIndex();  // holds the place until the sizes are known
    std::uint32_t written = 4;
    auto size = sizes.begin();
    ForEach([&](const HashItem& item) {
        written += * size++ = item.SerializeKey(out, true, encoding);
        written += * size++ = item.SerializeValue(out, true, encoding, lexon::EndianT::kHost);
    });
    out.seekp(index);
    writeIndex();
    return written;
}

}  // namespace lexon_private
