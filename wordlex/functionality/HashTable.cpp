#include "wordlex/functionality/HashTable.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "wordlex/functionality/Buffer.h"
#include "wordlex/functionality/EncodingInfo.h"
#include "wordlex/functionality/UnicodeUtil.h"

namespace lexon_private {

namespace {

constexpr std::uint32_t kFailed = 0xFFFFFFFF;
constexpr lexon::EndianT kVersion15Order = lexon::EndianT::kBig;
constexpr lexon::EndianT kVersion10Order = lexon::EndianT::kLittle;

// Turns stored values into UTF-16 in host order.
class ValueDecoder {
public:
    ValueDecoder(char encoding, lexon::EndianT order)
        : inEncoding(encoding != 0),
          // The code is a signed character, widened as one.
          selector{static_cast<std::uint64_t>(static_cast<signed char>(encoding))},
          swap(setEndian(order)) {}

    UnicodeRun Decode(const ImageBytes& value) {
        if (inEncoding) {
            UnicodeUtil::StringToUnicode(value.data(), value.size(), converted, &selector);
            return RunOf(converted.GetLength(), converted.GetData());
        }
        return RunOf(value.size() / sizeof(unsigned short), value.data());
    }

private:
    UnicodeRun RunOf(unsigned long unitCount, const void* units) const {
        if (unitCount == 0) return {};
        unsigned char* bytes = nullptr;
        UnicodeRun run(ByteRunValue::MakeUninitialized(2 * unitCount, bytes));
        std::memcpy(bytes, units, 2 * unitCount);
        if (swap && !inEncoding) {
            auto* const swapped = reinterpret_cast<unsigned short*>(bytes);
            std::transform(swapped, swapped + unitCount, swapped, ByteSwap<unsigned short>);
        }
        return run;
    }

    bool inEncoding;
    EncodingInfo selector;
    bool swap;
    Buffer<unsigned short> converted{0};
};

// The entries read so far, in file order. They are linked only at the end, so an exception leaves
// the table as it was and deletes them.
class ReadEntries {
public:
    void BeginBucket(std::uint16_t slot) { buckets.push_back({slot, entries.size()}); }
    void Add(std::unique_ptr<HashItem> entry) { entries.push_back(std::move(entry)); }

    void LinkInto(HashTableGeneric& table) {
        std::vector<HashItem*> items;
        items.reserve(entries.size());
        for (const std::unique_ptr<HashItem>& entry : entries)
            items.push_back(entry.get());
        std::vector<HashTableGeneric::Group> groups;
        for (std::size_t b = 0; b < buckets.size(); ++b) {
            const std::size_t end = b + 1 < buckets.size() ? buckets[b + 1].begin : entries.size();
            groups.push_back({buckets[b].slot,
                              std::span(items).subspan(buckets[b].begin, end - buckets[b].begin)});
        }
        table.InsertGroups(groups);
        for (std::unique_ptr<HashItem>& entry : entries)
            static_cast<void>(entry.release());
    }

private:
    struct Bucket {
        std::uint16_t slot;
        std::size_t begin;  // in entries
    };

    std::vector<std::unique_ptr<HashItem>> entries;
    std::vector<Bucket> buckets;
};

// Reads one entry's key and value. Their lengths are known, or `nextLength` reads them.
template <class Entry, class NextLength>
std::unique_ptr<HashItem> ReadEntry(ImageReader& reader, bool copyKeys, ValueDecoder& decoder,
                                    NextLength nextLength) {
    const ImageBytes key = reader.GetBytes(nextLength());
    const ImageBytes value = reader.GetBytes(nextLength());
    if (!reader.Ok()) return nullptr;
    return std::make_unique<Entry>(key.data(), key.size(), copyKeys || !reader.InMemory(),
                                   decoder.Decode(value));
}

}  // namespace

template <class Key, class Entry>
std::uint32_t HashTable<Key, Entry>::read_ver15(ImageReader& reader, bool copyKeys, char encoding) {
    reader.SetOrder(kVersion15Order);
    const auto bucketCount = reader.Get<std::uint32_t>();
    const std::uint64_t endsAt = reader.Offset();
    const auto ends = reader.GetTable<std::uint32_t>(bucketCount);
    std::uint32_t end = 0;
    for (std::size_t b = 0; b < ends.size(); end = ends[b++]) {
        if (ends[b] < end || (ends[b] - end) % 2 != 0) {
            reader.Reject(ImageFault::kTableDecreases, endsAt + b * sizeof ends[b]);
            break;
        }
    }
    const auto lengths = reader.GetTable<std::uint32_t>(end);
    const std::uint64_t slotsAt = reader.Offset();
    const auto slots = reader.GetTable<std::uint16_t>(bucketCount);
    for (std::size_t b = 0; b < slots.size(); ++b) {
        if (slots[b] >= kHashBucketCount) {
            reader.Reject(ImageFault::kSlotOutside, slotsAt + b * sizeof slots[b]);
        }
    }
    if (!reader.Ok()) return kFailed;

    ReadEntries entries;
    ValueDecoder decoder(encoding, kVersion15Order);
    const std::uint32_t* length = lengths.begin();
    for (std::size_t b = 0; b < ends.size() && reader.Ok(); ++b) {
        entries.BeginBucket(slots[b]);
        while (length != lengths.begin() + ends[b]) {
            auto entry = ReadEntry<Entry>(reader, copyKeys, decoder, [&] { return *length++; });
            if (entry == nullptr) break;
            entries.Add(std::move(entry));
        }
    }
    entries.LinkInto(*this);
    return reader.Ok() ? 0 : kFailed;
}

template <class Key, class Entry>
std::int32_t HashTable<Key, Entry>::read_ver10(ImageReader& reader, bool copyKeys, char encoding) {
    struct Record {
        std::uint16_t slot;
        std::uint32_t start;  // of its first entry, in the bytes of all entries
    };
    reader.SetOrder(kVersion10Order);
    const auto recordCount = reader.Get<std::uint16_t>();
    std::vector<Record> records;  // the last one marks the end
    for (unsigned r = 0; r < recordCount && reader.Ok(); ++r) {
        const std::uint64_t recordAt = reader.Offset();
        const auto slot = reader.Get<std::uint16_t>();
        const auto start = reader.Get<std::uint32_t>();
        if (slot >= kHashBucketCount && r + 1 < recordCount) {
            reader.Reject(ImageFault::kSlotOutside, recordAt);
        }
        if (!records.empty() && start < records.back().start) {
            reader.Reject(ImageFault::kTableDecreases, recordAt + sizeof slot);
        }
        records.push_back({slot, start});
    }
    if (!reader.Ok()) return -1;

    ReadEntries entries;
    ValueDecoder decoder(encoding, kVersion10Order);
    const auto nextLength = [&reader] { return reader.Get<std::uint64_t>(); };
    // A bucket's entries begin at the running offset, not at its start.
    const std::uint64_t origin = reader.Offset();
    for (std::size_t b = 0; b + 1 < records.size() && reader.Ok(); ++b) {
        entries.BeginBucket(records[b].slot);
        const std::uint64_t end = records[b + 1].start - records[0].start;
        while (reader.Offset() - origin < end) {
            auto entry = ReadEntry<Entry>(reader, copyKeys, decoder, nextLength);
            if (entry == nullptr) break;
            entries.Add(std::move(entry));
        }
    }
    entries.LinkInto(*this);
    return reader.Ok() ? 0 : -1;
}

template <class Key, class Entry>
std::uint32_t HashTable<Key, Entry>::read_ver15(std::istream& in, char encoding) {
    ImageReader reader(in, kVersion15Order);
    return read_ver15(reader, true, encoding);
}

template <class Key, class Entry>
std::uint32_t HashTable<Key, Entry>::read_ver15(const char* body, const char* end, bool copyKeys,
                                                char encoding) {
    ImageReader reader(body, end, kVersion15Order);
    return read_ver15(reader, copyKeys, encoding);
}

template <class Key, class Entry>
std::int32_t HashTable<Key, Entry>::read_ver10(std::istream& in, char encoding) {
    ImageReader reader(in, kVersion10Order);
    return read_ver10(reader, true, encoding);
}

template <class Key, class Entry>
std::int32_t HashTable<Key, Entry>::read_ver10(const char* body, const char* end, bool copyKeys,
                                               char encoding) {
    ImageReader reader(body, end, kVersion10Order);
    return read_ver10(reader, copyKeys, encoding);
}

template class HashTable<ByteRunKey, DictionaryEntry>;

}  // namespace lexon_private
