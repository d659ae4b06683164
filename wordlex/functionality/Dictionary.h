#pragma once
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>

#include "wordlex/functionality/DictionaryEntry.h"
#include "wordlex/functionality/EntryView.h"
#include "wordlex/functionality/HashTable.h"
#include "wordlex/functionality/Wordlex.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

class DictionaryReader;
class FastArray;
class ImageReader;
struct BinaryHeader;

// The in-memory dictionary: 8-bit keys to UTF-16 values, in one of two stores. Below store version
// 2 it is a hash table of entries. From 2 on it is a compact store; only that has ids, Add, Remove,
// accelerators and a settable locale. In the hash table these operations return their failure
// value.
// Owns:     its entries and its locale name; shares its compact store with its copies.
// Keys:     "$$$/Path/Name=Default text": the "$$$" may be left out, the key ends at the first "=".
//           A null or empty key, or one that begins with "$" but not with "$$$", is not valid: the
//           operation returns its failure value.
// Main:     one dictionary of the process may be the main one. Look-ups in every other one fall
//           back to it.
// Threads:  none, including const members: results share counted values, enumerations keep a place.
// Loading adds to the content. A load that fails leaves:
//
//   input                                           valid   content of the dictionary afterwards
//   null stream, null image or size not above 0     no      as before
//   text: "$" without "$$$" at an entry's head      no      all other lines of the file
//   text: stream that fails                         as is   what was delivered, the last line cut
//   text: stream that throws at a fault or its end  as is   the lines before it; throws
//   text: image of fewer than two bytes             no      as before
//   text: conversion error or memory exhausted      as is   the lines before the fault; throws
//   binary image shorter than its header            no      as before
//   binary: unknown version                         no      as before
//   version 2: end inside the locale block          no      as before
//   version 2: slot above 1020, id of an entry      no      as before
//     that does not exist
//   version 2: body cut short, id base in conflict, as is   as before; compact, with the new locale
//     a string outside its area, strings that share
//     too many bytes, too many entries
//   version 1: body cut short, tables that          no      the entries linked before the fault
//     decrease, slot above 1020
//   binary: memory exhausted, conversion error      as is   as before; throws
class Dictionary {
public:
    Dictionary() : Dictionary(false) {}
    explicit Dictionary(bool compact);
    // A copy of a hash table starts empty and valid, because entries are never copied. A compact
    // store is shared: the copies see each other's changes.
    Dictionary(const Dictionary& other);
    Dictionary& operator=(const Dictionary& other);
    ~Dictionary();

    // Text or binary from a stream that can move back to its start.
    void Read(std::istream* stream);
    // Binary from the stream's position. The magic is not compared.
    void Read(std::istream& stream);
    // Text or binary from an image. Without `copyKeys` the keys of a version 1 image are borrowed
    // from it; the image must then outlive the dictionary.
    void Read(const char* data, int size, bool copyKeys);
    static void Read(std::istream* stream, unsigned long index);

    // This dictionary's value, else the main dictionary's, else the key's default text with its
    // escapes converted, else the empty string. `encoding` is that of the default text. Null and
    // selector 0 convert each byte to the unit of the same value.
    Wordlex Lookup(const char* key, const lexon::EncodingInfo* encoding);
    Wordlex Lookup(unsigned long id, const lexon::EncodingInfo* encoding);
    // On the registry's dictionary of that index.
    static Wordlex Lookup(const char* key, unsigned long index,
                          const lexon::EncodingInfo* encoding);
    static Wordlex Lookup(unsigned long id, unsigned long index,
                          const lexon::EncodingInfo* encoding);
    // The stored value in place, here or in the main dictionary; valid until that dictionary
    // changes. When the result is false, `units` is null and `length` unchanged.
    bool LookupReturnUTF16Ptr(const char* key, const unsigned short*& units, unsigned long& length,
                              const lexon::EncodingInfo* encoding);
    bool LookupReturnUTF16Ptr(unsigned long id, const unsigned short*& units, unsigned long& length,
                              const lexon::EncodingInfo* encoding);
    bool HasKey(const char* key, const lexon::EncodingInfo* encoding);  // here alone

    Wordlex Accelerator(const char* key, const lexon::EncodingInfo* encoding);
    Wordlex Accelerator(unsigned int id, const lexon::EncodingInfo* encoding);
    unsigned long GetNumericId(const char* key) const;  // all 64 bits set when there is none
    char* GetStringId(unsigned long id) const;          // new text, freed with array delete; null
    bool ValidId(unsigned long id) const;

    // Stores the value unchanged. Returns the id, or all 64 bits set.
    unsigned long Add(const char* key, const unsigned short* value, unsigned long valueLength,
                      const lexon::EncodingInfo* encoding, const unsigned short* accelerator,
                      unsigned long acceleratorLength);
    unsigned long Remove(const char* key);
    unsigned long Remove(unsigned long id);

    Wordlex Locale() const;         // empty when there is none
    void Locale(const char* name);  // null and "" change nothing

    unsigned long NumKeys() const;
    // while (HasMoreKey()) get the key from one of the NextKey forms. When a key is added or
    // removed, the enumeration of a hash table ends and that of a compact store continues by id.
    bool HasMoreKey();
    // Copies the key and a NUL. A buffer that is null or too small throws 'BUFF' or returns false.
    bool NextKey(char* buffer, unsigned long size, bool throwIfTooSmall);
    char* NextKey();  // new text, freed with array delete; null
    bool ReSetKeyEnumeration();
    // Visits all entries, including keys with NUL bytes and entries without keys, in the order in
    // which they are written. Old binary files may contain a key twice: the first one counts.
    void ForEachEntry(const EntryVisitor& visit) const;

    bool IsValid() const noexcept { return valid; }
    void SetAsMain() noexcept { sMainDictionary = this; }
    static Dictionary* SetAsMain(unsigned long index);

    // Writes the dictionary: version 2.7 binary, or UTF-16 text after its mark. Returns the sum of
    // the results for header, locale and body; the stream's state reports failures.
    std::uint32_t Serialize(std::ostream& out, bool binary,
                            const lexon::EncodingInfo* encoding) const;
    std::uint32_t Serialize(std::ostream& out, lexon::SaveType type,
                            const lexon::EncodingInfo* encoding, lexon::EndianT order,
                            unsigned int idBase) const;

    // The first U+0022 of the text that has no "\" directly before it, or null.
    static const unsigned short* FindQuoteMark(const unsigned short* text);
    // Splits a line at its quotation marks and its first "=", without "$$$". False when the entry's
    // text begins with "$" but not with "$$$".
    static bool ParseEntry(const unsigned short* line, const unsigned short*& key,
                           unsigned long& keyLength, const unsigned short*& value,
                           unsigned long& valueLength);
    // The same split for a look-up key, which has no quotation marks; the value is the default
    // text.
    static bool ParseLiteral(const char* text, const char*& key, unsigned long& keyLength,
                             const char*& value, unsigned long& valueLength);
    // Stores one line of a text dictionary, converted. Clears the valid flag when its text begins
    // with "$" but not with "$$$". Overwrites the line: its key is narrowed in place.
    void AddEntry(unsigned short* line);

private:
    struct Key {
        const unsigned char* bytes = nullptr;
        unsigned long length = 0;
        const char* rest = nullptr;  // the end of the key: "=" and the default text, or the NUL
    };

    static bool ParseKey(const char* text, Key& key);  // false, too, for null and ""
    static bool SplitLiteral(const char* text, Key& key);
    // The forms for lines whose end is known.
    static const unsigned short* FindQuoteMark(const unsigned short* begin,
                                               const unsigned short* end);  // `end` when none
    static bool ParseEntry(const unsigned short* begin, const unsigned short* end,
                           const unsigned short*& key, unsigned long& keyLength,
                           const unsigned short*& value, unsigned long& valueLength);
    void AddEntry(unsigned short* line, const unsigned short* end);
    bool IsCompact() const noexcept { return storeMajor >= 2; }
    void BecomeCompact() noexcept;
    FastArray& Store();  // made at the first call
    std::optional<UnicodeRun> Find(const Key& key) const;
    bool FindInPlace(const Key& key, const unsigned short*& units, unsigned long& length) const;
    const Dictionary* HolderOf(unsigned long id) const;  // this, the main dictionary or null
    const DictionaryEntry* FindEntry(const Key& key) const;
    std::uint32_t FindId(const Key& key) const;
    std::uint32_t FindId(const char* key) const;
    const Dictionary* Fallback() const noexcept {
        return sMainDictionary == this ? nullptr : sMainDictionary;
    }
    static UnicodeRun DefaultText(const Key& key, const lexon::EncodingInfo* encoding);
    void ReadText(DictionaryReader& reader, bool skipMark);
    void ReadBinary(ImageReader& image, bool copyKeys);
    bool ReadCompactImage(ImageReader& image, const BinaryHeader& header);

    static Dictionary* sMainDictionary;

    HashTable<ByteRunKey, DictionaryEntry> entries;
    bool valid = true;
    FastArray* compactStore = nullptr;  // one reference; null until the dictionary is compact
    std::int8_t storeMajor = 0;
    std::int8_t storeMinor = 0;
    std::unique_ptr<char[]> localeName;
};

}  // namespace lexon_private
