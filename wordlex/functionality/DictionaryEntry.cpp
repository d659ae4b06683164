#include "wordlex/functionality/DictionaryEntry.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <vector>

#include "wordlex/functionality/BinUtil.h"
#include "wordlex/functionality/UnicodeChar.h"

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
    const std::uint32_t keyBytes = ByteRunKey::Serialize(out, binary, encoding);
    if (!binary && GetLength() == 0) {
        // An empty key writes nothing; the line needs its opening mark all the same.
        static constexpr std::array<char16_t, 2> kEmptyKey{u'"', u'='};
        out.write(reinterpret_cast<const char*>(kEmptyKey.data()), sizeof kEmptyKey);
    }
    return keyBytes + value.Serialize(out, binary, encoding);
}

std::uint32_t DictionaryEntry::SerializeKey(std::ostream& out, bool binary,
                                            const lexon::EncodingInfo* encoding) const {
    return ByteRunKey::Serialize(out, binary, encoding);
}

std::uint32_t DictionaryEntry::SerializeValue(std::ostream& out, bool binary,
                                              const lexon::EncodingInfo* encoding,
                                              lexon::EndianT order) const {
    if (!binary || !setEndian(order)) return value.Serialize(out, binary, encoding);
    for (const unsigned short unit : Escapes::Units(value.GetData(), value.GetLength())) {
        const unsigned short swapped = UnicodeChar::ByteSwap(unit);
        out.write(reinterpret_cast<const char*>(&swapped), sizeof swapped);
    }
    return static_cast<std::uint32_t>(2 * value.GetLength());
}

}  // namespace lexon_private
