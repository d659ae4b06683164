#pragma once
#include <memory>
#include <new>
#include <span>
#include <utility>

#include "wordlex/functionality/ByteRunKey.h"
#include "wordlex/functionality/Escapes.h"
#include "wordlex/functionality/UnicodeRun.h"

namespace lexon_private {

// A key with its UTF-16 value, as a hash-table dictionary stores it.
// Owns:     its key bytes unless they are borrowed; shares its value.
// Equality: that of the keys; the value does not matter.
// Memory:   an entry from Make is, with its key, in the allocation of its value. delete works for
//           both kinds.
// Values are stored converted: escapes cost time at load, never at look-up.
class DictionaryEntry : public ByteRunKey {
public:
    using EscapeTableEntry = lexon_private::EscapeTableEntry;

    // Copies the key, and converts the escapes of `text`, the value as its source writes it.
    DictionaryEntry(const ByteRunKey& key, const unsigned short* text, unsigned long unitCount)
        : ByteRunKey(key), value(ConvertEscapeSequences(text, unitCount)) {}
    // Stores the value unchanged. Without `copyKey` the key's bytes are borrowed and must outlive
    // the entry.
    DictionaryEntry(const unsigned char* key, unsigned long keyLength, bool copyKey,
                    UnicodeRun storedValue)
        : ByteRunKey(key, keyLength, copyKey), value(std::move(storedValue)) {}
    // The first constructor's entry in one allocation: that of the value, which lasts until entry
    // and value are gone. A hit in a large table then waits for memory once, and a text load
    // allocates once for each entry.
    static std::unique_ptr<DictionaryEntry> Make(const ByteRunKey& key, const unsigned short* text,
                                                 unsigned long unitCount);
    DictionaryEntry(const DictionaryEntry&) = delete;
    DictionaryEntry& operator=(const DictionaryEntry&) = delete;
    ~DictionaryEntry() override = default;

    // Destroys the entry and frees its memory, or its share of its value's.
    static void operator delete(DictionaryEntry* entry, std::destroying_delete_t) noexcept;

    const UnicodeRun& GetValue() const noexcept { return value; }
    // The units of the value, in place. Their address is stored beside the key, so a hit that only
    // needs the address does not wait for the value's memory.
    std::span<const unsigned short> GetUnits() const noexcept { return units; }

    // The key's form, then the value's; as text one line of a text dictionary. Sequences in a
    // stored value that look like escapes are not protected.
    std::uint32_t Serialize(std::ostream& out, bool binary,
                            const lexon::EncodingInfo* encoding) const override;
    std::uint32_t SerializeKey(std::ostream& out, bool binary,
                               const lexon::EncodingInfo* encoding) const override;
    // Binary in the other byte order: the units swapped, for any encoding. Otherwise the value's
    // own form.
    std::uint32_t SerializeValue(std::ostream& out, bool binary,
                                 const lexon::EncodingInfo* encoding,
                                 lexon::EndianT order) const override;

    Content GetContent() const noexcept override { return {true, {GetData(), GetLength()}, units}; }

    // The conversion of escapes; see Escapes.
    static UnicodeRun ConvertEscapeSequences(const unsigned short* text, unsigned long length) {
        return Escapes::Convert(Escapes::Units(text, length));
    }
    static UnicodeRun ConvertEscapeSequencesISO(const unsigned short* text, unsigned long length) {
        return Escapes::ConvertEntities({text, length});
    }
    static UnicodeRun ConvertEscapeSequencesISO(const UnicodeRun& run) {
        return ConvertEscapeSequencesISO(run.GetData(), run.GetLength());
    }
    static unsigned short LookupEscape(const EscapeTableEntry* table, unsigned short unit) {
        return Escapes::Lookup(table, unit);
    }
    static const CharEntityReferencePair* FindCharEntityReferencePair(const unsigned short* text,
                                                                      unsigned long length) {
        return Escapes::FindName({text, length});
    }
    static const CharEntityReferencePair* FindCharEntityReferencePairCharByCodePoint(
        const unsigned short* text, unsigned long length, unsigned long* number,
        unsigned long* consumed) {
        return Escapes::FindNumber({text, length}, *number, *consumed);
    }

private:
    bool liesInValue = false;
    UnicodeRun value;
    std::span<const unsigned short> units{value.GetData(), value.GetLength()};
};

}  // namespace lexon_private
