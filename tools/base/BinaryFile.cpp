#include "tools/base/BinaryFile.h"

#include <vector>

#include "wordlex/functionality/ArrayImage.h"

namespace tool {

namespace {

using lexon_private::ArrayImage;
using lexon_private::BinaryHeader;
using lexon_private::DictionaryEntry;
using lexon_private::EntryView;
using lexon_private::FastArray;
using lexon_private::HashItem;
using lexon_private::ImageReader;

// In a version 2 body: after the id base, the mark of keys and the number of entries.
constexpr std::uint64_t kLiveCountAt = 4 + 1 + 4;

bool AnyAlive(const lexon_private::cFarray& array) {
    for (std::uint32_t i = 0; i < array.entryCount; ++i) {
        if ((array.keyed && array.keys.Length(i) != 0) || array.values.Length(i) != 0) return true;
    }
    return false;
}

ImageReader ReaderAt(const std::string& bytes, std::uint64_t at, lexon::EndianT order) {
    return {bytes.data() + at, bytes.data() + bytes.size(), order};
}

const DictionaryEntry& EntryOf(const HashItem& item) {
    return static_cast<const DictionaryEntry&>(item);
}

}  // namespace

BinaryFile::BinaryFile(const std::string& bytes) : store(new FastArray) {
    store->AddReference();
    ImageReader image = ReaderAt(bytes, 0, lexon::EndianT::kHost);
    PassMagic(image);
    header = ReadBinaryHeader(image);
    headerRead = image.Ok();
    if (headerRead && IsVersion2()) {
        const std::uint64_t bodyAt = image.Offset();
        store->Load(image);
        ImageReader body = ReaderAt(bytes, bodyAt, header.order);
        const ArrayImage entries(body, 0);
        idBase = entries.idBase;
        if (body.Ok() && entries.liveCount == 0 && AnyAlive(entries.array)) {
            noneAliveAt = bodyAt + kLiveCountAt;
        }
    } else if (headerRead) {
        ImageReader again = ReaderAt(bytes, image.Offset(), header.order);
        ReadVersion1(image, table, header.encoding);
        if (header.encoding != 0) ReadVersion1(again, undecoded, 0);
    }
    fault = image.Fault();
    faultOffset = image.FaultOffset();
}

void BinaryFile::ReadVersion1(ImageReader& image, Table& into, char encoding) const {
    if (header.body == BinaryHeader::Body::kVersion15) {
        into.read_ver15(image, true, encoding);
    } else {
        into.read_ver10(image, true, encoding);
    }
}

void BinaryFile::ForEachEntry(const Visitor& visit) const {
    store->ForEachEntry([&](const EntryView& view) {
        visit({view, !view.keyed || store->FindId(view.key.data(), view.key.size()) == view.id});
    });
    std::vector<const DictionaryEntry*> stored;  // in the table's order, which is the same
    undecoded.ForEach([&](const HashItem& item) { stored.push_back(&EntryOf(item)); });
    std::size_t i = 0;
    table.ForEach([&](const HashItem& item) {
        const DictionaryEntry& entry = EntryOf(item);
        EntryView view;
        view.id = FastArray::kNoId;
        view.key = {entry.GetData(), entry.GetLength()};
        view.value = {entry.GetValue().GetData(), entry.GetValue().GetLength()};
        const bool isText = i < stored.size() && stored[i]->GetValue().GetLength() != 0;
        visit({view, table.Find(entry) == &item, !isText || !view.value.empty()});
        ++i;
    });
}

}  // namespace tool
