#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "wordlex/functionality/BinaryHeader.h"
#include "wordlex/functionality/EntryView.h"
#include "wordlex/functionality/FastArray.h"
#include "wordlex/functionality/HashTable.h"

namespace tool {

// An entry of a binary file.
struct BinaryEntry {
    lexon_private::EntryView view;
    bool found = true;  // by a look-up of its key, or without a key by its id
    // False for bytes that are not text in their encoding; the value is then empty. A single such
    // byte looks like an empty value.
    bool decoded = true;
};

// One binary dictionary, read with the library's own parts.
// Faults: the first one is kept. A file with a fault has fewer entries, or none.
class BinaryFile {
public:
    explicit BinaryFile(const std::string& bytes);

    using Visitor = std::function<void(const BinaryEntry&)>;
    // Entries neither removed nor overridden, in the order of the file.
    void ForEachEntry(const Visitor& visit) const;

    const lexon_private::BinaryHeader& Header() const { return header; }
    bool IsVersion2() const { return header.body == lexon_private::BinaryHeader::Body::kVersion2; }
    std::uint32_t IdBase() const { return idBase; }
    // Where the file says that none of its entries is alive, although some are.
    std::optional<std::uint64_t> NoneAliveAt() const { return noneAliveAt; }

    lexon_private::ImageFault Fault() const { return fault; }
    std::uint64_t FaultOffset() const { return faultOffset; }
    // Whether only the body has the fault.
    bool HeaderRead() const { return headerRead; }

private:
    using Table =
        lexon_private::HashTable<lexon_private::ByteRunKey, lexon_private::DictionaryEntry>;
    struct DropReference {
        void operator()(lexon_private::FastArray* counted) const { counted->RemoveReference(); }
    };

    void ReadVersion1(lexon_private::ImageReader& image, Table& into, char encoding) const;

    lexon_private::BinaryHeader header;
    bool headerRead = false;
    lexon_private::ImageFault fault = lexon_private::ImageFault::kNone;
    std::uint64_t faultOffset = 0;
    std::uint32_t idBase = 0;
    std::optional<std::uint64_t> noneAliveAt;
    std::unique_ptr<lexon_private::FastArray, DropReference> store;  // of version 2
    Table table;                                                     // of version 1
    Table undecoded;  // the same entries, their values as stored
};

}  // namespace tool
