#pragma once
#include <cstddef>
#include <memory>
#include <new>

#include "wordlex/functionality/ByteRunKey.h"
#include "wordlex/functionality/UnicodeRun.h"

namespace lexon_private {

// A named escape of the entity form #{name}.
struct CharEntityReferencePair {
    unsigned long length;        // units of the name
    const unsigned short* name;  // terminated by 0; null in the row that ends a table
    unsigned short codePoint;    // what the name stands for; 0 for the control words
};

// The rows of charEntityReference ahead of the HTML names that do more than stand for a character.
// They are recognised by their place in the table.
enum class ControlWord { kEndl, kComment, kCopyYear, kMsWindows, kIos, kAndroid, kMacos };

// The names of #{name}: the control words, "tab", "cr", "lf", then the Latin-1 and the special
// entity sets of HTML 4.01 (sections 24.2 and 24.4), ended by a row without a name. Made when the
// library is loaded, never freed.
const CharEntityReferencePair* charEntityReference();
// The prefixes of #{number}: "U+", "u" and none.
const CharEntityReferencePair* charEntityReferenceCharByCodePoint();

// A new array, owned by the caller (array delete): the low 16 bits of every character, and a 0.
unsigned short* MakeChar16(const wchar_t* text);

// Is told what the conversion of a written value meets, in the order of the text, first of '\' and
// '^', then of the entities. Positions and lengths are units of what was written.
class EscapeObserver {
public:
    virtual ~EscapeObserver() = default;
    // An escape character and the unit behind it, 0 at the text's end. Without a replacement (0)
    // both stay, or one of a doubled character.
    virtual void OnUnitEscape(std::size_t position, unsigned short escape, unsigned short unit,
                              unsigned short replacement) = 0;
    // "#{" that begins no entity.
    virtual void OnNoEntity(std::size_t position) = 0;
    // Text that a section or a comment keeps out of the value. A macOS section drops what stands
    // directly before it: the text for every platform, from 0 on, or another macOS section.
    virtual void OnDropped(std::size_t position, std::size_t length, ControlWord by) = 0;
};

// A key with its UTF-16 value, as a hash-table dictionary stores it.
// Owns:     its key bytes unless they are borrowed; shares its value.
// Equality: that of the keys; the value plays no part.
// Values are stored converted: escapes cost at load time, never at lookup.
class DictionaryEntry : public ByteRunKey {
public:
    struct EscapeTableEntry {
        unsigned short escape;       // the unit behind the escape character; 0 ends a table
        unsigned short replacement;  // what the two units become
    };

    // Copies the key, and converts the escapes of `text`, the value as its source writes it. Entry
    // and key lie in the value's allocation, which lasts until entry and value are gone: a hit in a
    // large table waits for memory once, and a text load allocates once for each entry.
    static std::unique_ptr<DictionaryEntry> Make(const ByteRunKey& key, const unsigned short* text,
                                                 unsigned long unitCount);
    // Takes the value as it stands. Without `copyKey` the key's bytes are borrowed and must outlive
    // the entry.
    static std::unique_ptr<DictionaryEntry> Make(const unsigned char* key, unsigned long keyLength,
                                                 bool copyKey, const UnicodeRun& storedValue);
    DictionaryEntry(const DictionaryEntry&) = delete;
    DictionaryEntry& operator=(const DictionaryEntry&) = delete;
    ~DictionaryEntry() override;

    static void* operator new(std::size_t) = delete;
    static void operator delete(void* memory) noexcept;

    const UnicodeRun& GetValue() const noexcept { return value; }

    // The key's form, then the value's; as text one line of a text dictionary. Escapes that the
    // conversion would find in a stored value are not protected.
    std::uint32_t Serialize(std::ostream& out, bool binary,
                            const lexon::EncodingInfo* encoding) const override;
    std::uint32_t SerializeKey(std::ostream& out, bool binary,
                               const lexon::EncodingInfo* encoding) const override;
    // Binary in the other byte order: the units swapped, whatever the encoding. Otherwise the
    // value's own form.
    std::uint32_t SerializeValue(std::ostream& out, bool binary,
                                 const lexon::EncodingInfo* encoding,
                                 lexon::EndianT order) const override;

    // Resolves the escapes of a written value: first those of one unit behind '\' or '^', then, on
    // the result, the entities. Sequences that are no escape stay as they are.
    static UnicodeRun ConvertEscapeSequences(const unsigned short* text, unsigned long length);
    static UnicodeRun ConvertEscapeSequences(const unsigned short* text, unsigned long length,
                                             EscapeObserver& observer);
    // The entities alone: #{name}, #{U+hex}, and sections for other platforms, which are dropped.
    static UnicodeRun ConvertEscapeSequencesISO(const unsigned short* text, unsigned long length);
    static UnicodeRun ConvertEscapeSequencesISO(const UnicodeRun& run) {
        return ConvertEscapeSequencesISO(run.GetData(), run.GetLength());
    }

    // The replacement of `unit`, or 0.
    static unsigned short LookupEscape(const EscapeTableEntry* table, unsigned short unit);
    // The tables of '\' and '^'. The latter is chosen at the first conversion of the process, by
    // lexon::EnableQuorvHatEscapes, and then stays.
    static const EscapeTableEntry* BackslashEscapes();
    static const EscapeTableEntry* HatEscapes();

    // The row whose name begins the text, or null.
    static const CharEntityReferencePair* FindCharEntityReferencePair(const unsigned short* text,
                                                                      unsigned long length);
    // The prefix row of the number that begins the text, or null when there are no digits. Sets the
    // number, of at most four hexadecimal digits, and the units of prefix and digits.
    static const CharEntityReferencePair* FindCharEntityReferencePairCharByCodePoint(
        const unsigned short* text, unsigned long length, unsigned long* number,
        unsigned long* consumed);

private:
    // Ahead of every entry stands its home: the value in whose allocation it lies, or null when it
    // has one of its own.
    using Home = ByteRunValue*;
    static Home& HomeOf(void* entry) noexcept { return *(static_cast<Home*>(entry) - 1); }
    // Makes an entry in memory of `kRoom` bytes.
    static std::unique_ptr<DictionaryEntry> Place(unsigned char* memory, Home home,
                                                  const ByteRunKey& key, bool copyKey,
                                                  const UnicodeRun& value);
    static const unsigned long kRoom;

    DictionaryEntry(const ByteRunKey& key, bool copyKey, const UnicodeRun& storedValue)
        : ByteRunKey(key.GetData(), key.GetLength(), copyKey), value(storedValue) {}

    UnicodeRun value;
};

}  // namespace lexon_private
