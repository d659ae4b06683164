#include <algorithm>
#include <array>
#include <iostream>
#include <numeric>
#include <ostream>
#include <vector>

#include "wordlex/functionality/FastArray.h"
#include "wordlex/functionality/ImageWriter.h"
#include "wordlex/functionality/TextLine.h"

namespace lexon_private {

namespace {

// Makes the stream bad, even if it then throws.
void Spoil(std::ostream& out) noexcept {
    try {
        out.setstate(std::ios_base::badbit);
    } catch (...) {  // the state is set anyway
    }
}

// The ids of all arrays by slot, in each slot in the order of the lists.
struct SlotLists {
    std::array<std::uint32_t, kHashBucketCount> counts{};
    std::vector<std::uint32_t> ids;

    template <class ForEachListed>
    explicit SlotLists(ForEachListed forEachListed) {
        forEachListed([this](std::uint16_t slot, std::uint32_t) { ++counts[slot]; });
        std::array<std::uint32_t, kHashBucketCount> ends{};
        std::exclusive_scan(counts.begin(), counts.end(), ends.begin(), 0U);
        ids.resize(ends.back() + counts.back());
        forEachListed([&](std::uint16_t slot, std::uint32_t id) { ids[ends[slot]++] = id; });
    }
    std::uint32_t UsedCount() const {
        return static_cast<std::uint32_t>(
            std::count_if(counts.begin(), counts.end(), [](std::uint32_t n) { return n != 0; }));
    }
    void Write(ImageWriter& writer) const {
        for (std::size_t slot = 0; slot < counts.size(); ++slot) {
            if (counts[slot] != 0) writer.write2(static_cast<std::uint16_t>(slot));
        }
        for (const std::uint32_t count : counts) {
            if (count != 0) writer.write4(count);
        }
        for (const std::uint32_t id : ids)
            writer.write4(id);
    }
};

}  // namespace

std::uint32_t FastArray::Serialize2(std::ostream& out, lexon::SaveType type,
                                    const lexon::EncodingInfo* /*encoding*/, lexon::EndianT order,
                                    unsigned int idBase) const try {
    switch (type) {
        case lexon::SaveType::kBinary:
            return WriteImage(out, true, order, idBase);
        case lexon::SaveType::kBinaryNoKeys:
            return WriteImage(out, false, order, idBase);
        case lexon::SaveType::kNothing:
            return 0;
        default:
            SerializeText(out);
            return 0;
    }
} catch (...) {
    std::cerr << "Serialize2"
              << ": Caught exception\n";
    Spoil(out);
    return 0;
}

std::uint32_t FastArray::WriteImage(std::ostream& out, bool withKeys, lexon::EndianT order,
                                    std::uint32_t idBase) const {
    // An array may be empty if memory ran out before its first entry.
    const auto hasKeys = [](const cFarray& array) { return array.keyed && array.entryCount != 0; };
    const bool keyed = withKeys && std::any_of(arrays.begin(), arrays.end(), hasKeys);
    const auto keyLength = [](const cFarray& array, std::uint32_t entry) -> std::uint16_t {
        return array.keyed ? array.keys.Length(entry) : std::uint16_t{0};
    };
    const auto valueLength = [](const cFarray& array, std::uint32_t entry) {
        return array.values.Length(entry);
    };
    const auto sumOf = [this](auto length) {
        std::uint64_t sum = 0;
        ForEach([&](const cFarray& array, std::uint32_t entry) { sum += length(array, entry); });
        return sum;
    };
    const SlotLists slots([this](auto visit) {
        for (std::size_t a = 0; a < arrays.size(); ++a) {
            arrays[a].ForEachListed(
                [&](std::uint16_t slot, std::uint32_t entry) { visit(slot, idBases[a] + entry); });
        }
    });

    BlockStream blocks(out);
    ImageWriter writer(blocks, order);
    writer.write4(idBase);
    writer.WriteByte(keyed ? kKeyed : kNotKeyed);
    writer.write4(totalCount);
    writer.write4(liveCount);
    writer.write4(slots.UsedCount());
    if (keyed) writer.WriteSize(sumOf(keyLength));
    writer.WriteSize(sumOf(valueLength));

    const auto writeTables = [&](auto length) {
        std::uint32_t offset = 0;
        ForEach([&](const cFarray& array, std::uint32_t entry) {
            writer.write4(offset);
            offset += length(array, entry);
        });
        ForEach([&](const cFarray& array, std::uint32_t entry) {
            writer.write2(length(array, entry));
        });
    };
    if (keyed) writeTables(keyLength);
    writeTables(valueLength);
    if (keyed) {
        ForEach([&](const cFarray& array, std::uint32_t entry) {
            if (array.keyed) writer.WriteBytes(array.keys.Data(entry), array.keys.Length(entry));
        });
    }
    ForEach([&](const cFarray& array, std::uint32_t entry) {
        writer.writearr2(array.values.Data(entry), array.values.Length(entry));
    });
    if (keyed) slots.Write(writer);
    WriteAccelerators(writer);
    blocks.Finish();
    return writer.Written();
}

void FastArray::WriteAccelerators(ImageWriter& writer) const {
    struct Accelerator {
        const cFarray* array;
        std::uint32_t index;
        std::uint32_t id;
        std::uint16_t length;
    };
    std::vector<Accelerator> texts;
    std::uint64_t areaSize = 0;
    for (std::size_t a = 0; a < arrays.size(); ++a) {
        for (std::uint32_t i = 0; i < arrays[a].acceleratorCount; ++i) {
            const std::uint16_t length = arrays[a].accelerators.Length(i);
            if (length == 0) continue;
            texts.push_back({&arrays[a], i, idBases[a] + arrays[a].acceleratorEntries[i], length});
            areaSize += length;
        }
    }
    writer.write4(static_cast<std::uint32_t>(texts.size()));
    if (texts.empty()) return;
    writer.WriteSize(areaSize);
    for (const Accelerator& text : texts)
        writer.write4(text.id);
    std::uint32_t offset = 0;
    for (const Accelerator& text : texts) {
        writer.write4(offset);
        offset += text.length;
    }
    for (const Accelerator& text : texts)
        writer.write2(text.length);
    for (const Accelerator& text : texts)
        writer.writearr2(text.array->accelerators.Data(text.index), text.length);
}

// The line of an entry, as a hash-table entry writes it. For the empty key only the value: the
// value's writer closes the quotation that the key's writer opens.
void FastArray::SerializeText(std::ostream& out) const {
    BlockStream blocks(out);
    TextLine line(blocks);
    ForEach([&](const cFarray& array, std::uint32_t entry) {
        const std::uint16_t keyLength = array.keyed ? array.keys.Length(entry) : std::uint16_t{0};
        const std::uint16_t valueLength = array.values.Length(entry);
        if (keyLength != 0) line.PutKey({array.keys.Data(entry), keyLength});
        if (keyLength != 0 || valueLength != 0) {
            line.PutValue({array.values.Data(entry), valueLength / sizeof(unsigned short)});
        }
    });
    line.Write();
    blocks.Finish();
}

}  // namespace lexon_private
