#include <algorithm>
#include <set>

#include "tools/CheckedFile.h"
#include "wordlex/functionality/BinaryHeader.h"
#include "wordlex/functionality/FastArray.h"
#include "wordlex/functionality/HashTable.h"

namespace tool {

namespace {

using lexon_private::BinaryHeader;
using lexon_private::EntryView;
using lexon_private::FastArray;
using lexon_private::ImageFault;
using lexon_private::ImageReader;

struct DropReference {
    void operator()(FastArray* store) const { store->RemoveReference(); }
};
using Store = std::unique_ptr<FastArray, DropReference>;

Store NewStore() {
    Store store(new FastArray);
    store->AddReference();
    return store;
}

std::string Bytes(std::span<const unsigned char> key) { return {key.begin(), key.end()}; }

// Entries of an image and what is wrong with them for look-ups.
class EntryCheck {
public:
    EntryCheck(CheckedFile& checkedFile, Findings& findingsOfFile)
        : file(checkedFile), findings(findingsOfFile) {}

    // `found`: whether a look-up of the key finds this entry.
    void Check(const EntryView& entry, bool found) {
        if (!entry.keyed) return;
        const std::string key = Bytes(entry.key);
        if (key.size() > kMergeableKeyBytes) {
            findings.Add(Rule::kLongKey, {file.name},
                         "the key " + ShowKey(key) + " has " + std::to_string(key.size()) +
                             " bytes: a merge of binary files does not find it");
        }
        if (!found) {
            findings.Add(Rule::kUnreachableEntry, {file.name},
                         "an entry with the key " + ShowKey(key) +
                             " that a look-up of the key does not find");
            return;
        }
        Text value(entry.value.data(), entry.value.size());
        file.entries.try_emplace(key, Definition{{file.name}, std::move(value)});
    }

private:
    CheckedFile& file;
    Findings& findings;
};

void CheckVersion2(ImageReader& image, EntryCheck& entries) {
    const Store store = NewStore();
    store->Load(image);
    store->ForEachEntry([&](const EntryView& entry) {
        // The empty key is listed by its length alone.
        entries.Check(entry, entry.key.empty() ||
                                 store->FindId(entry.key.data(), entry.key.size()) == entry.id);
    });
}

void CheckVersion1(ImageReader& image, const BinaryHeader& header, EntryCheck& entries) {
    lexon_private::HashTable<lexon_private::ByteRunKey, lexon_private::DictionaryEntry> table;
    if (header.body == BinaryHeader::Body::kVersion15) {
        table.read_ver15(image, true, header.encoding);
    } else {
        table.read_ver10(image, true, header.encoding);
    }
    table.ForEach([&](const lexon_private::HashItem& item) {
        const auto& entry = static_cast<const lexon_private::DictionaryEntry&>(item);
        EntryView view;
        view.key = {entry.GetData(), entry.GetLength()};
        view.value = UnitsOf(entry.GetValue());
        entries.Check(view, table.Find(entry) == &item);
    });
}

}  // namespace

CheckedFile CheckBinary(const std::string& name, const std::string& bytes, Findings& findings) {
    CheckedFile file{name, {}};
    EntryCheck entries(file, findings);
    ImageReader image(bytes.data(), bytes.data() + bytes.size(), lexon::EndianT::kHost);
    PassMagic(image);
    const BinaryHeader header = ReadBinaryHeader(image);
    const bool headerRead = image.Ok();
    if (headerRead && header.body == BinaryHeader::Body::kVersion2) {
        CheckVersion2(image, entries);
    } else if (headerRead) {
        CheckVersion1(image, header, entries);
    }
    if (!image.Ok()) {
        const bool quiet = headerRead && header.body == BinaryHeader::Body::kVersion2 &&
                           image.Fault() == ImageFault::kCutShort;
        findings.Add(Rule::kMalformedBinary, {name, 0, 0, image.FaultOffset()},
                     std::string("refused: ") + Describe(image.Fault()) +
                         (quiet ? "; none of its entries is loaded"
                                : "; the dictionary becomes invalid and the application shows all "
                                  "of its keys raw"));
    }
    return file;
}

CheckedFile CheckFile(const std::string& name, const std::string& bytes, Findings& findings) {
    const bool binary = lexon_private::HasBinaryMagic(bytes.data(), bytes.size());
    Progress progress("checking", name, binary ? 0 : bytes.size());
    CheckedFile file =
        binary ? CheckBinary(name, bytes, findings) : CheckText(name, bytes, findings, progress);
    CheckAccelerators(file, findings);
    return file;
}

}  // namespace tool
