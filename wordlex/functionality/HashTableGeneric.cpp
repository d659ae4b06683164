#include "wordlex/functionality/HashTableGeneric.h"

#include <algorithm>
#include <numeric>
#include <ostream>
#include <utility>
#include <vector>

#include "wordlex/functionality/ImageWriter.h"

namespace lexon_private {

namespace {

// Around an item mostly lies what was allocated with it, value and key: they come from memory
// together with it rather than one after the other, which saves a quarter of a hit in a large
// table.
void PrefetchAround(const HashItem* item) noexcept {
    constexpr std::intptr_t kCacheLine = 64;
    // By numbers: these lines need not be part of any object.
    const auto address = reinterpret_cast<std::intptr_t>(item);
    for (const std::intptr_t line : {-4, -3, -2, -1, 1, 2}) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        __builtin_prefetch(reinterpret_cast<const void*>(address + line * kCacheLine));
    }
}

// Calls visit(item) for each, and fetches what lies around the items that come soon: those of a
// bucket lie anywhere in memory.
template <class Visit>
void VisitFetched(std::span<const HashItem* const> items, Visit visit) {
    constexpr std::size_t kAhead = 8;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i + kAhead < items.size()) PrefetchAround(items[i + kAhead]);
        visit(*items[i]);
    }
}

}  // namespace

std::optional<std::size_t> HashTableGeneric::Bucket::Position(const HashItem& probe,
                                                              std::uint16_t tag) const {
    const Tags tags = KeyTags();
    std::size_t behind = tags.BehindLast(end, tag);
    for (; behind != 0; behind = tags.BehindLast(behind - 1, tag)) {
        const HashItem* const item = Items()[behind - 1];
        if (item == nullptr) continue;
        PrefetchAround(item);
        if (*item == probe) return behind - 1;
    }
    return std::nullopt;
}

HashItem* HashTableGeneric::Bucket::NewerThan(std::size_t position) const noexcept {
    HashItem** const behind = Items() + end;
    HashItem** const newer = std::find_if(Items() + position + 1, behind,
                                          [](const HashItem* item) { return item != nullptr; });
    return newer == behind ? nullptr : *newer;
}

void HashTableGeneric::Bucket::CloseHoles() noexcept {
    const Tags tags = KeyTags();
    tags.Clear();
    std::uint32_t kept = 0;
    for (std::uint32_t i = 0; i < end; ++i) {
        if (Items()[i] == nullptr) continue;
        Items()[kept] = Items()[i];
        tags.Set(kept++, tags[i]);
    }
    end = kept;
}

void HashTableGeneric::Bucket::Reserve(std::size_t more) {
    if (capacity - end >= more) return;
    CloseHoles();
    constexpr std::size_t kFirst = 4;
    Bucket larger;
    larger.capacity =
        static_cast<std::uint32_t>(std::max({count + more, 2 * std::size_t{count}, kFirst}));
    larger.block.reset(
        new std::byte[larger.capacity * sizeof(HashItem*) + Tags::BlockSize(larger.capacity)]);
    larger.KeyTags().Clear();
    std::copy_n(Items(), count, larger.Items());
    for (; larger.end < count; ++larger.end)
        larger.KeyTags().Set(larger.end, KeyTags()[larger.end]);
    larger.count = count;
    *this = std::move(larger);
}

void HashTableGeneric::Bucket::Append(HashItem* item, std::uint16_t tag) noexcept {
    item->next = Head();
    Items()[end] = item;
    KeyTags().Set(end++, tag);
    ++count;
}

HashItem* HashTableGeneric::Bucket::Unlink(std::size_t position) noexcept {
    HashItem* const item = Items()[position];
    if (HashItem* const newer = NewerThan(position)) newer->next = item->next;
    item->next = nullptr;
    Items()[position] = nullptr;
    --count;
    while (end != 0 && Items()[end - 1] == nullptr)
        --end;
    if (end - count > count / kHoleShare + kHoleShare) CloseHoles();
    return item;
}

HashTableGeneric::~HashTableGeneric() {
    for (const Bucket& bucket : buckets) {
        for (HashItem* item = bucket.Head(); item != nullptr;)
            delete std::exchange(item, item->next);
    }
}

void HashTableGeneric::Insert(HashItem* item) {
    InsertAhead(item->Hash(kHashBucketCount), {&item, 1});
}

void HashTableGeneric::InsertAhead(unsigned long bucketIndex, std::span<HashItem* const> items) {
    Bucket& bucket = buckets[bucketIndex];
    bucket.Reserve(items.size());
    for (std::size_t i = items.size(); i-- > 0;)
        bucket.Append(items[i], items[i]->Tag());
}

HashItem* HashTableGeneric::Find(const HashItem& probe) const {
    const Bucket& bucket = buckets[probe.Hash(kHashBucketCount)];
    const std::optional<std::size_t> position = bucket.Position(probe, probe.Tag());
    return position.has_value() ? bucket.At(*position) : nullptr;
}

HashItem* HashTableGeneric::Remove(const HashItem& probe) {
    Bucket& bucket = buckets[probe.Hash(kHashBucketCount)];
    const std::optional<std::size_t> position = bucket.Position(probe, probe.Tag());
    return position.has_value() ? bucket.Unlink(*position) : nullptr;
}

void HashTableGeneric::Replace(HashItem* item) {
    Bucket& bucket = buckets[item->Hash(kHashBucketCount)];
    const std::uint16_t tag = item->Tag();
    bucket.Reserve(1);
    // From here on nothing fails.
    const std::optional<std::size_t> position = bucket.Position(*item, tag);
    if (position.has_value()) delete bucket.Unlink(*position);
    bucket.Append(item, tag);
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

// The chains are followed side by side, so that the waits for memory overlap.
std::vector<const HashItem*> HashTableGeneric::ItemsInOrder() const {
    struct Step {
        std::size_t bucket;
        const HashItem* item;
    };
    std::vector<Step> steps;
    for (std::size_t bucket = 0; bucket < kHashBucketCount; ++bucket) {
        if (const HashItem* const head = Head(bucket)) steps.push_back({bucket, head});
    }
    std::array<std::size_t, kHashBucketCount + 1> places{};  // where a bucket's next item goes
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Step step = steps[i];
        ++places[step.bucket + 1];
        if (step.item->next != nullptr) steps.push_back({step.bucket, step.item->next});
    }
    std::partial_sum(places.begin(), places.end(), places.begin());
    std::vector<const HashItem*> items(steps.size());
    for (const Step& step : steps)
        items[places[step.bucket]++] = step.item;
    return items;
}

std::uint32_t HashTableGeneric::Serialize(std::ostream& out, bool binary,
                                          const lexon::EncodingInfo* encoding) const {
    if (binary) return SerializeBinary(out, encoding);
    std::uint32_t written = 0;
    BlockStream blocks(out);
    VisitFetched(ItemsInOrder(),
                 [&](const HashItem& item) { written += item.Serialize(blocks, false, encoding); });
    blocks.Finish();
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
    auto size = sizes.begin();
    ForEach([&](const HashItem& item) {
        *size++ = item.SerializeKey(out, true, encoding);
        *size++ = item.SerializeValue(out, true, encoding, lexon::EndianT::kHost);
    });
    out.seekp(index);
    writeIndex();
    return std::accumulate(sizes.begin(), sizes.end(), std::uint32_t{4});
}

std::uint32_t HashTableGeneric::Serialize2(std::ostream& out, bool binary,
                                           const lexon::EncodingInfo* encoding,
                                           lexon::EndianT order) const {
    if (!binary) return Serialize(out, false, encoding);
    const auto writeKey = [&](const HashItem& item, std::ostream& to) {
        return item.SerializeKey(to, true, encoding);
    };
    const auto writeValue = [&](const HashItem& item, std::ostream& to) {
        return item.SerializeValue(to, true, nullptr, order);
    };

    std::vector<std::uint32_t> keySizes;
    std::vector<std::uint32_t> valueSizes;
    const std::vector<const HashItem*> items = ItemsInOrder();
    std::ostream measure(nullptr);  // items report their sizes only by being written
    VisitFetched(items, [&](const HashItem& item) {
        keySizes.push_back(writeKey(item, measure));
        valueSizes.push_back(writeValue(item, measure));
    });
    const auto keyArea = std::accumulate(keySizes.begin(), keySizes.end(), std::uint64_t{0});
    const auto valueArea = std::accumulate(valueSizes.begin(), valueSizes.end(), std::uint64_t{0});
    const auto itemCount = static_cast<std::uint32_t>(keySizes.size());

    BlockStream blocks(out);
    ImageWriter writer(blocks, order);
    writer.write4(0);  // id base
    writer.WriteByte(kKeyed);
    writer.write4(itemCount);
    writer.write4(itemCount);
    writer.write4(static_cast<std::uint32_t>(std::count_if(
        buckets.begin(), buckets.end(), [](const Bucket& bucket) { return bucket.Count() != 0; })));
    writer.WriteSize(keyArea);
    writer.WriteSize(valueArea);
    const auto writeTables = [&writer](const std::vector<std::uint32_t>& sizes) {
        std::uint32_t offset = 0;
        for (const std::uint32_t size : sizes) {
            writer.write4(offset);
            offset += size;
        }
        for (const std::uint32_t size : sizes)
            writer.write2(static_cast<std::uint16_t>(size));
    };
    writeTables(keySizes);
    writeTables(valueSizes);
    VisitFetched(items, [&](const HashItem& item) { writeKey(item, blocks); });
    VisitFetched(items, [&](const HashItem& item) { writeValue(item, blocks); });
    WriteHashIndex(writer);
    writer.write4(0);  // accelerator strings
    blocks.Finish();
    return static_cast<std::uint32_t>(12 + keyArea + valueArea);
}

// The ids of the items of a bucket follow one another.
void HashTableGeneric::WriteHashIndex(ImageWriter& writer) const {
    for (std::size_t slot = 0; slot < buckets.size(); ++slot) {
        if (buckets[slot].Count() != 0) writer.write2(static_cast<std::uint16_t>(slot));
    }
    std::uint32_t itemCount = 0;
    for (const Bucket& bucket : buckets) {
        const auto count = static_cast<std::uint32_t>(bucket.Count());
        if (count != 0) writer.write4(count);
        itemCount += count;
    }
    for (std::uint32_t id = 0; id < itemCount; ++id)
        writer.write4(id);
}

}  // namespace lexon_private
