#pragma once
#include <concepts>
#include <cstdint>
#include <iosfwd>

#include "wordlex/functionality/ByteRunKey.h"
#include "wordlex/functionality/DictionaryEntry.h"
#include "wordlex/functionality/HashTableGeneric.h"
#include "wordlex/functionality/ImageReader.h"
#include "wordlex/functionality/KeyHash.h"

namespace lexon_private {

// A hash table that reads the bodies of version 1 files: entries of type Entry, found by Key. New
// entries are inserted before the older ones of their bucket, in file order.
// Items:   every item inserted is an Entry.
// Keys:    copied, or with `copyKeys` false borrowed from an image in memory, which must then
//          outlive the table. Keys from a stream are always copied.
// Values:  with encoding byte 0 they are UTF-16, big-endian in version 1.5 and little-endian in
//          1.0. Otherwise they are converted with the encoding of that code. A byte-order mark is
//          data.
// Failure: all bits set. The entries before the fault stay; tables are checked before the first
//          entry. An exception, of a conversion or of memory, leaves the table as before.
template <class Key, class Entry>
class HashTable : public HashTableGeneric {
    static_assert(std::derived_from<Entry, Key>);

public:
    using HashTableGeneric::Find;
    // The newest entry with that key, still the table's; null when there is none. The same as
    // finding a probe, without its virtual calls.
    const Entry* Find(const unsigned char* key, unsigned long length) const {
        const auto hasKey = [key, length](const HashItem* item) {
            return static_cast<const Entry*>(item)->HasBytes(key, length);
        };
        return static_cast<const Entry*>(FindUnder(KeyHash(key, length), hasKey));
    }

    std::uint32_t read_ver15(std::istream& in, char encoding);
    std::uint32_t read_ver15(const char* body, const char* end, bool copyKeys, char encoding);
    std::uint32_t read_ver15(ImageReader& reader, bool copyKeys, char encoding);

    std::int32_t read_ver10(std::istream& in, char encoding);
    std::int32_t read_ver10(const char* body, const char* end, bool copyKeys, char encoding);
    std::int32_t read_ver10(ImageReader& reader, bool copyKeys, char encoding);
};

extern template class HashTable<ByteRunKey, DictionaryEntry>;

}  // namespace lexon_private
