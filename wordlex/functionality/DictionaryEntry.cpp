#include "wordlex/functionality/DictionaryEntry.h"

#include <algorithm>
#include <ostream>
#include <vector>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/TextLine.h"

namespace lexon_private {

// The allocation of a value: the value's units, its entry, the bytes of the entry's key.
std::unique_ptr<DictionaryEntry> DictionaryEntry::Make(const ByteRunKey& key,
                                                       const unsigned short* text,
                                                       unsigned long unitCount) {
    std::vector<unsigned short> converted;
    const Escapes::Units units = Escapes::Convert({text, unitCount}, converted);
    static_assert(sizeof(ByteRunValue) % alignof(DictionaryEntry) == 0);
    const unsigned long valueSize = units.size_bytes();
    const unsigned long padding = -valueSize % alignof(DictionaryEntry);
    unsigned char* bytes = nullptr;
    const UnicodeRun value(ByteRunValue::MakeUninitialized(
        valueSize, bytes, padding + sizeof(DictionaryEntry) + key.GetLength()));
    std::copy_n(units.data(), units.size(), reinterpret_cast<unsigned short*>(bytes));
    unsigned char* const place = bytes + valueSize + padding;
    unsigned char* const keyBytes = place + sizeof(DictionaryEntry);
    std::copy_n(key.GetData(), key.GetLength(), keyBytes);
    std::unique_ptr<DictionaryEntry> entry(
        ::new (place) DictionaryEntry(keyBytes, key.GetLength(), false, value));
    entry->liesInValue = true;
    return entry;
}

void DictionaryEntry::operator delete(DictionaryEntry* entry, std::destroying_delete_t) noexcept {
    if (entry->liesInValue) {
        const UnicodeRun memory = entry->value;
        entry->~DictionaryEntry();
    } else {
        entry->~DictionaryEntry();
        ::operator delete(entry);
    }
}

std::uint32_t DictionaryEntry::Serialize(std::ostream& out, bool binary,
                                         const lexon::EncodingInfo* encoding) const {
    if (binary) {
        const std::uint32_t keyBytes = SerializeKey(out, true, encoding);
        return keyBytes + value.Serialize(out, true, encoding);
    }
    TextLine line(out);
    line.PutKey({GetData(), GetLength()});  // an empty one, too: the line needs its opening mark
    const std::uint32_t valueBytes = line.PutValue({value.GetData(), value.GetLength()});
    line.Write();
    return valueBytes;
}

std::uint32_t DictionaryEntry::SerializeKey(std::ostream& out, bool binary,
                                            const lexon::EncodingInfo* encoding) const {
    return ByteRunKey::Serialize(out, binary, encoding);
}

std::uint32_t DictionaryEntry::SerializeValue(std::ostream& out, bool binary,
                                              const lexon::EncodingInfo* encoding,
                                              lexon::EndianT order) const {
    if (!binary || !setEndian(order)) return value.Serialize(out, binary, encoding);
    WriteSwapped(value.GetData(), value.GetLength(), [&out](const char* bytes, std::size_t count) {
        out.write(bytes, static_cast<std::streamsize>(count));
    });
    return static_cast<std::uint32_t>(2 * value.GetLength());
}

}  // namespace lexon_private
