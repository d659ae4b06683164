#include "wordlex/functionality/HashTableGeneric.h"

#include <algorithm>
#include <numeric>
#include <ostream>
#include <utility>
#include <vector>

#include "wordlex/functionality/ImageWriter.h"
#include "wordlex/functionality/TextLine.h"

namespace lexon_private {

namespace {

using Contents = std::vector<HashItem::Content>;

// The waits for the memory of items overlap in a loop that does nothing else.
Contents ContentsOf(std::span<const HashItem* const> items) {
    Contents contents(items.size());
    std::transform(items.begin(), items.end(), contents.begin(),
                   [](const HashItem* item) { return item->GetContent(); });
    return contents;
}

}  // namespace

HashTableGeneric::~HashTableGeneric() {
    for (std::size_t bucket = 0; bucket < kHashBucketCount; ++bucket) {
        for (HashItem* item = Head(bucket); item != nullptr;)
            delete std::exchange(item, item->next);
    }
}

void HashTableGeneric::MakeBuckets() {
    if (buckets == nullptr) buckets = std::make_unique<Buckets>();
}

void HashTableGeneric::Link(std::size_t bucket, HashItem* item) noexcept {
    HashItem*& head = (*buckets)[bucket];
    item->next = head;
    item->link = &head;
    if (head != nullptr) head->link = &item->next;
    head = item;
    enumRestart = true;
    enumItem = nullptr;
}

void HashTableGeneric::Unlink(HashItem* item) noexcept {
    *item->link = item->next;
    if (item->next != nullptr) item->next->link = item->link;
    item->next = nullptr;
    item->link = nullptr;
    enumRestart = true;
    enumItem = nullptr;
}

void HashTableGeneric::Insert(HashItem* item) {
    MakeBuckets();
    index.PutFirst(item->KeyHash(), item);
    Link(item->Hash(kHashBucketCount), item);
}

void HashTableGeneric::InsertGroups(std::span<const Group> groups) {
    MakeBuckets();
    std::size_t itemCount = 0;
    for (const Group& group : groups)
        itemCount += group.items.size();
    KeyIndex<HashItem*> larger = index;
    larger.Reserve(itemCount);
    const auto forEachLastFirst = [groups](auto visit) {
        for (const Group& group : groups) {
            for (std::size_t i = group.items.size(); i-- > 0;)
                visit(group.bucket, group.items[i]);
        }
    };
    forEachLastFirst([&larger](std::size_t bucket, HashItem* item) {
        if (item->Hash(kHashBucketCount) == bucket) larger.PutFirst(item->KeyHash(), item);
    });
    // From here on nothing fails.
    index = std::move(larger);
    forEachLastFirst([this](std::size_t bucket, HashItem* item) { Link(bucket, item); });
}

HashItem* HashTableGeneric::FindIn(const HashItem& probe, std::uint32_t hash) const {
    return FindUnder(hash, [&probe](const HashItem* item) { return *item == probe; });
}

HashItem* HashTableGeneric::Find(const HashItem& probe) const {
    return FindIn(probe, probe.KeyHash());
}

HashItem* HashTableGeneric::Remove(const HashItem& probe) {
    const std::uint32_t hash = probe.KeyHash();
    HashItem* const item = FindIn(probe, hash);
    if (item == nullptr) return nullptr;
    index.Remove(hash, item);
    Unlink(item);
    return item;
}

void HashTableGeneric::Replace(HashItem* item) {
    MakeBuckets();
    const std::uint32_t hash = item->KeyHash();
    HashItem* const old = FindIn(*item, hash);
    if (old == nullptr) {
        index.PutFirst(hash, item);
    } else {
        index.Replace(hash, old, item);
        Unlink(old);
        delete old;
    }
    Link(item->Hash(kHashBucketCount), item);
}

std::int32_t HashTableGeneric::NumItems() const {
    std::int32_t items = 0;
    ForEach([&items](const HashItem&) { ++items; });
    return items;
}

bool HashTableGeneric::EnterChainFrom(std::size_t firstBucket) const noexcept {
    for (enumBucket = firstBucket; enumBucket < kHashBucketCount; ++enumBucket) {
        enumItem = Head(enumBucket);
        if (enumItem != nullptr) return true;
    }
    return false;
}

bool HashTableGeneric::HasMoreItem() const {
    if (enumRestart) {
        enumRestart = !EnterChainFrom(0);
        return !enumRestart;
    }
    enumItem = enumItem->next;
    if (enumItem != nullptr || EnterChainFrom(enumBucket + 1)) return true;
    enumRestart = true;
    return false;
}

// Follows all chains side by side, so that the waits for memory overlap.
HashTableGeneric::Listing HashTableGeneric::InOrder() const {
    struct Step {
        std::size_t bucket;  // in the listing
        const HashItem* item;
    };
    Listing listing;
    std::vector<Step> steps;
    for (std::uint16_t bucket = 0; bucket < kHashBucketCount; ++bucket) {
        const HashItem* const head = Head(bucket);
        if (head == nullptr) continue;
        steps.push_back({listing.buckets.size(), head});
        listing.buckets.push_back({bucket, 0});
    }
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Step step = steps[i];
        ++listing.buckets[step.bucket].count;
        if (step.item->next == nullptr) continue;
        steps.push_back({step.bucket, step.item->next});
    }
    std::vector<std::size_t> places;  // places of the buckets' next items
    std::size_t itemCount = 0;
    for (const UsedBucket& bucket : listing.buckets) {
        places.push_back(itemCount);
        itemCount += bucket.count;
    }
    listing.items.resize(itemCount);
    for (const Step& step : steps)
        listing.items[places[step.bucket]++] = step.item;
    return listing;
}

std::uint32_t HashTableGeneric::Serialize(std::ostream& out, bool binary,
                                          const lexon::EncodingInfo* encoding) const {
    if (binary) return SerializeBinary(out, encoding);
    std::uint32_t written = 0;
    BlockStream blocks(out);
    TextLine line(blocks);
    const Listing listing = InOrder();
    const Contents contents = ContentsOf(listing.items);
    // Some keys and values at a time are copied together first: the waits for their memory overlap,
    // too.
    std::vector<unsigned char> keys;
    std::vector<unsigned short> values;
    for (std::size_t first = 0, end = 0; first < contents.size(); first = end) {
        constexpr std::size_t kAtOnce = 64;
        end = std::min(first + kAtOnce, contents.size());
        keys.clear();
        for (std::size_t i = first; i < end; ++i)
            keys.insert(keys.end(), contents[i].key.begin(), contents[i].key.end());
        values.clear();
        for (std::size_t i = first; i < end; ++i)
            values.insert(values.end(), contents[i].units.begin(), contents[i].units.end());
        const unsigned char* key = keys.data();
        const unsigned short* value = values.data();
        for (std::size_t i = first; i < end; ++i) {
            if (contents[i].known) {
                line.PutKey({key, contents[i].key.size()});
                written += line.PutValue({value, contents[i].units.size()});
                key += contents[i].key.size();
                value += contents[i].units.size();
            } else {
                line.Write();
                written += listing.items[i]->Serialize(blocks, false, encoding);
            }
        }
    }
    line.Write();
    blocks.Finish();
    return written;
}

std::uint32_t HashTableGeneric::SerializeBinary(std::ostream& out,
                                                const lexon::EncodingInfo* encoding) const {
    std::vector<std::uint32_t> bucketEnds;  // in sizes, two an item
    std::vector<std::uint16_t> bucketSlots;
    std::uint32_t sizeCount = 0;
    const Listing listing = InOrder();
    for (const UsedBucket& bucket : listing.buckets) {
        sizeCount += 2 * bucket.count;
        bucketEnds.push_back(sizeCount);
        bucketSlots.push_back(bucket.number);
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
    const auto indexAt = out.tellp();
    writeIndex();  // reserves the place until the sizes are known
    auto size = sizes.begin();
    ForEach([&](const HashItem& item) {
        *size++ = item.SerializeKey(out, true, encoding);
        *size++ = item.SerializeValue(out, true, encoding, lexon::EndianT::kHost);
    });
    out.seekp(indexAt);
    writeIndex();
    return std::accumulate(sizes.begin(), sizes.end(), std::uint32_t{4});
}

std::uint32_t HashTableGeneric::Serialize2(std::ostream& out, bool binary,
                                           const lexon::EncodingInfo* encoding,
                                           lexon::EndianT order) const {
    if (!binary) return Serialize(out, false, encoding);
    const Listing listing = InOrder();
    const Contents contents = ContentsOf(listing.items);
    std::vector<std::uint32_t> keySizes;
    std::vector<std::uint32_t> valueSizes;
    std::ostream nowhere(nullptr);
    for (std::size_t i = 0; i < contents.size(); ++i) {
        const auto& content = contents[i];
        const HashItem& item = *listing.items[i];
        keySizes.push_back(content.known ? static_cast<std::uint32_t>(content.key.size())
                                         : item.SerializeKey(nowhere, true, encoding));
        valueSizes.push_back(content.known ? static_cast<std::uint32_t>(content.units.size_bytes())
                                           : item.SerializeValue(nowhere, true, nullptr, order));
    }
    const auto keyArea = std::accumulate(keySizes.begin(), keySizes.end(), std::uint64_t{0});
    const auto valueArea = std::accumulate(valueSizes.begin(), valueSizes.end(), std::uint64_t{0});
    const auto itemCount = static_cast<std::uint32_t>(keySizes.size());

    BlockStream blocks(out);
    ImageWriter writer(blocks, order);
    writer.write4(0);  // id base
    writer.WriteByte(kKeyed);
    writer.write4(itemCount);
    writer.write4(itemCount);
    writer.write4(static_cast<std::uint32_t>(listing.buckets.size()));
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
    for (std::size_t i = 0; i < contents.size(); ++i) {
        if (contents[i].known) {
            writer.WriteBytes(contents[i].key.data(), contents[i].key.size());
        } else {
            listing.items[i]->SerializeKey(blocks, true, encoding);
        }
    }
    for (std::size_t i = 0; i < contents.size(); ++i) {
        if (contents[i].known) {
            writer.writearr2(contents[i].units.data(), contents[i].units.size_bytes());
        } else {
            listing.items[i]->SerializeValue(blocks, true, nullptr, order);
        }
    }
    for (const UsedBucket& bucket : listing.buckets)
        writer.write2(bucket.number);
    for (const UsedBucket& bucket : listing.buckets)
        writer.write4(bucket.count);
    for (std::uint32_t id = 0; id < itemCount; ++id)  // those of a bucket are consecutive
        writer.write4(id);
    writer.write4(0);  // accelerator strings
    blocks.Finish();
    return static_cast<std::uint32_t>(12 + keyArea + valueArea);
}

}  // namespace lexon_private
