#pragma once
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <memory_resource>
#include <vector>

#include "wordlex/functionality/EntryView.h"
#include "wordlex/functionality/ImageReader.h"
#include "wordlex/functionality/KeyIndex.h"
#include "wordlex/functionality/RefCountObj.h"
#include "wordlex/functionality/UnicodeRun.h"
#include "wordlex/functionality/cFarray.h"

namespace lexon_private {

struct ArrayImage;
class ImageWriter;

// The result for an image.
enum class ImageResult {
    kLoaded,     // merged; also when it contains nothing
    kRejected,   // it ends early, its id base conflicts with the store, a string leaves its area,
                 // strings share too many bytes, ids run out
    kMalformed,  // it names a slot above 1020 or an entry that does not exist
};

// The compact store: entries in packed tables, numbered by ids that are never reused. Images and
// added entries are a list of arrays.
//
// A key is found through the index. KeyHash leads to the ids with that hash; the result is the
// first one with equal key bytes. The 1021 slots of ids that images contain are kept to be written
// again, without the ids of merged entries; they are not searched. But they decide what can be
// found: an id that is listed in the slot of its key is in the index under the hash of its key.
// One that is listed in another slot is there under another hash, for the next image that is
// merged. So a key that an image lists in a wrong slot is not found by its key, and of equal keys
// the one listed first is found.
//
// Owns:      everything in it; nothing refers to an image once it is loaded.
// Ids:       32 bits, from 0 without gaps in the order of loading and adding; kNoId means none. An
//            id is valid until its entry is removed or overridden. The id of the empty key is never
//            valid.
// Units:     lengths of keys, values and accelerators are bytes unless a name says units. A text
//            longer than 65,535 bytes is cut to the low 16 bits of its length.
// Failure:   by value, as each member documents. A failed allocation leaves the store as before.
// Threads:   none; enumeration moves a cursor even through const members.
class FastArray final : public RefCountObj {
public:
    static constexpr std::uint32_t kNoId = 0xFFFFFFFF;

    FastArray() = default;
    FastArray(const FastArray&) = delete;
    FastArray& operator=(const FastArray&) = delete;

    // The id of the entry with exactly this key, or kNoId.
    std::uint32_t FindId(const unsigned char* key, unsigned long keyLength) const;
    // The value of that entry in place, like GetUTF16Ptr.
    bool FindUTF16Ptr(const unsigned char* key, unsigned long keyLength,
                      const unsigned short*& units, unsigned long& unitCount) const;
    bool ValidId(std::uint32_t id) const;
    // Entries neither removed nor overridden.
    std::uint32_t LiveCount() const noexcept { return liveCount; }

    // A copy of the value, made in one allocation; empty for an invalid id.
    UnicodeRun GetValue(std::uint32_t id) const;
    // The value in place, valid until the store changes; false for an invalid id.
    bool GetUTF16Ptr(std::uint32_t id, const unsigned short*& units,
                     unsigned long& unitCount) const;
    UnicodeRun Accelerator(std::uint32_t id) const;  // empty when there is none
    // A new NUL-terminated copy of the key, freed with array delete; empty when the entry was
    // removed, null when there is no such entry or it has no keys.
    char* FindStringId(std::uint32_t id) const;
    // Copies the key and a NUL. False when they do not fit or the id is invalid; the buffer then
    // contains an empty text.
    bool GetData(std::uint32_t id, char* buffer, unsigned long size) const;

    // Adds an entry, or changes the value of the key's entry; returns its id. A null value or
    // accelerator is empty, whatever its length. For an existing entry the accelerator replaces the
    // entry's accelerator; an entry without one gets it only if it is the first of its array.
    std::uint32_t Add(const unsigned char* key, unsigned long keyLength, const unsigned char* value,
                      unsigned long valueLength, const unsigned char* accelerator,
                      unsigned long acceleratorLength);
    // Returns the id, or kNoId when it is invalid or its array has no keys.
    std::uint32_t Remove(std::uint32_t id);

    // while (HasMoreItem()) use NextItem(), which may be invalid: call ValidId. After the end the
    // next call starts again.
    bool HasMoreItem() const;
    std::uint32_t NextItem() const noexcept { return cursor; }
    void RestartEnumeration() noexcept {
        restart = true;
        cursor = 0;
    }

    // Visits every entry that is neither removed nor overridden, in the order of ids.
    void ForEachEntry(const EntryVisitor& visit) const;

    // Loads the image at the reader's position, completely or not at all. An image with id base 0
    // is merged: an existing key keeps its id and gets the new value, and the new entry is dead and
    // not listed. Keys of 1,024 bytes and more are never recognised as existing. An image whose
    // base is the store's next id is appended unchanged. An empty store treats any base as 0. The
    // live count becomes at least that of the entries that are certainly alive and at most that of
    // all; with 0, nothing is loaded. A key listed in the wrong slot is not found; one listed twice
    // is found once. A writable array is closed, so that the next added entry follows the image.
    ImageResult Load(ImageReader& reader);
    // The same from the stream's position or from memory; the other arguments are unused. Always
    // returns 0; Load reports more.
    std::uint32_t Read(std::istream& in, char encoding, lexon::EndianT order);
    std::uint32_t Read(const char* begin, const char* end, bool copyKeys, char encoding,
                       lexon::EndianT order);

    // Writes an image whose first entry has the id `idBase`, with keys (kBinary) if the store has
    // any or without (kBinaryNoKeys), and returns its number of bytes. Or writes UTF-16 text
    // without a byte-order mark, or nothing, and returns 0. Values stay UTF-16 for any encoding. An
    // exception is reported on the standard error stream and returns 0. The stream fails when an
    // area would need more than 32 bits: values of loaded images that share bytes are written
    // apart.
    std::uint32_t Serialize2(std::ostream& out, lexon::SaveType type,
                             const lexon::EncodingInfo* encoding, lexon::EndianT order,
                             unsigned int idBase) const;

private:
    static constexpr std::uint32_t kWritableEntries = 100;

    // The new value of an entry that an image overrides.
    struct Update {
        std::uint32_t id = kNoId;
        std::uint32_t imageEntry = 0;
        std::uint16_t length = 0;
        PackedRuns<unsigned short>::Run prepared = nullptr;
    };

    ~FastArray() override = default;

    struct Place {
        std::size_t array;
        std::uint32_t entry;  // its index in the array
    };

    // Index of the array that holds the id, or -1.
    int getArrayNum(std::uint32_t id) const;
    Place PlaceOf(std::uint32_t id) const;  // of an id below the total
    // The array of a valid id and the entry's index there; null for an invalid id.
    const cFarray* FindEntry(std::uint32_t id, std::uint32_t& entry) const;
    // The first id under the hash whose entry has the key, or kNoId. Sets the place of that entry.
    std::uint32_t FindUnder(std::uint32_t hash, const unsigned char* key, unsigned long keyLength,
                            Place& place) const;

    void ReserveArray();  // makes room for one more array
    cFarray& WritableArray();
    // Changes value and accelerator of an entry.
    void ReplaceTexts(Place place, const unsigned char* value, unsigned long valueLength,
                      const unsigned char* accelerator, unsigned long acceleratorLength);

    // Removes the entries of the image whose keys exist here, also from its lists, and prepares the
    // new values of the existing entries.
    std::vector<Update> TakeHeldKeys(ArrayImage& image);
    // This store's index plus the entries that the image lists.
    KeyIndex<std::uint32_t> IndexWith(const ArrayImage& image) const;

    std::uint32_t WriteImage(std::ostream& out, bool withKeys, lexon::EndianT order,
                             std::uint32_t idBase) const;
    void WriteAccelerators(ImageWriter& writer) const;
    void SerializeText(std::ostream& out) const;
    // Calls visit(array, entry) for every entry in the order of ids.
    template <class Visit>
    void ForEach(Visit visit) const {
        for (const cFarray& array : arrays) {
            for (std::uint32_t entry = 0; entry < array.entryCount; ++entry)
                visit(array, entry);
        }
    }

    std::uint32_t totalCount = 0;
    std::uint32_t liveCount = 0;
    KeyIndex<std::uint32_t> index;
    // Keys, values and accelerators as first added.
    std::pmr::monotonic_buffer_resource addedStrings{std::pmr::new_delete_resource()};
    std::vector<cFarray> arrays;
    std::vector<std::uint32_t> idBases;  // of the arrays: id of the first entry, ascending
    bool writable = false;               // whether added entries go into the last array
    mutable bool restart = true;
    mutable std::uint32_t cursor = 0;
};

}  // namespace lexon_private
