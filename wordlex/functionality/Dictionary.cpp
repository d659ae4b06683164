#include "wordlex/functionality/Dictionary.h"

#include <algorithm>
#include <cstring>
#include <istream>
#include <limits>
#include <ostream>
#include <string_view>
#include <utility>
#include <vector>

#include "wordlex/functionality/BinaryFormat.h"
#include "wordlex/functionality/BinaryHeader.h"
#include "wordlex/functionality/DictionaryMap.h"
#include "wordlex/functionality/DictionaryReader.h"
#include "wordlex/functionality/FastArray.h"
#include "wordlex/functionality/FindUnit.h"
#include "wordlex/functionality/ImageReader.h"
#include "wordlex/functionality/UnicodeUtil.h"

namespace lexon_private {

constinit Dictionary* Dictionary::sMainDictionary = nullptr;

namespace {

constexpr unsigned long kNone = std::numeric_limits<unsigned long>::max();
constexpr std::uint32_t kNoId = FastArray::kNoId;

// Ids have 32 bits inside the store; a wider number is not an id.
std::uint32_t StoreId(unsigned long id) {
    return id < kNoId ? static_cast<std::uint32_t>(id) : kNoId;
}

unsigned long PublicId(std::uint32_t id) { return id == kNoId ? kNone : id; }

std::unique_ptr<char[]> CopyText(const char* text, std::size_t length) {
    auto copy = std::make_unique<char[]>(length + 1);
    std::copy_n(text, length, copy.get());
    return copy;
}

// The low byte of each unit. `bytes` may overlap the units: every byte is before the units still to
// be read.
void Narrow(const unsigned short* units, unsigned long count, unsigned char* bytes) {
    for (unsigned long i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(units[i]);
}

// Keeps a stream from throwing as long as it lives; clears its state at the end.
class QuietStream {
public:
    explicit QuietStream(std::istream& of) : stream(of), thrownOn(of.exceptions()) {
        stream.exceptions(std::ios_base::goodbit);
    }
    ~QuietStream() {
        try {
            stream.clear();
            stream.exceptions(thrownOn);
        } catch (...) {  // a stream without a buffer stays bad; its next use throws again
        }
    }
    QuietStream(const QuietStream&) = delete;
    QuietStream& operator=(const QuietStream&) = delete;

private:
    std::istream& stream;
    std::ios_base::iostate thrownOn;
};

}  // namespace

Dictionary::Dictionary(bool compact) {
    if (!compact) return;
    Store();
    BecomeCompact();
}

Dictionary::Dictionary(const Dictionary& other) { *this = other; }

Dictionary& Dictionary::operator=(const Dictionary& other) {
    if (this == &other || !other.IsCompact()) return *this;
    std::unique_ptr<char[]> name;
    if (other.localeName != nullptr) {
        name = CopyText(other.localeName.get(), std::strlen(other.localeName.get()));
    }
    localeName = std::move(name);
    other.compactStore->AddReference();
    if (compactStore != nullptr) compactStore->RemoveReference();
    compactStore = other.compactStore;
    storeMajor = other.storeMajor;
    storeMinor = other.storeMinor;
    return *this;
}

Dictionary::~Dictionary() {
    if (sMainDictionary == this) sMainDictionary = nullptr;
    if (compactStore != nullptr) compactStore->RemoveReference();
}

void Dictionary::BecomeCompact() noexcept {
    storeMajor = kWrittenMajor;
    storeMinor = kWrittenMinor;
}

FastArray& Dictionary::Store() {
    if (compactStore == nullptr) {
        compactStore = new FastArray;
        compactStore->AddReference();
    }
    return *compactStore;
}

// Keys

bool Dictionary::ParseKey(const char* text, Key& key) {
    return text != nullptr && *text != '\0' && SplitLiteral(text, key);
}

bool Dictionary::SplitLiteral(const char* text, Key& key) {
    if (*text == '$') {
        if (text[1] != '$' || text[2] != '$') return false;
        text += 3;
    }
    key.bytes = reinterpret_cast<const unsigned char*>(text);
    const char* const equals = std::strchr(text, '=');
    key.length = equals != nullptr ? static_cast<unsigned long>(equals - text) : std::strlen(text);
    key.rest = text + key.length;
    return true;
}

bool Dictionary::ParseLiteral(const char* text, const char*& key, unsigned long& keyLength,
                              const char*& value, unsigned long& valueLength) {
    Key parsed;
    if (!SplitLiteral(text, parsed)) return false;
    key = reinterpret_cast<const char*>(parsed.bytes);
    keyLength = parsed.length;
    value = parsed.rest + (*parsed.rest == '=' ? 1 : 0);
    valueLength = std::strlen(value);
    return true;
}

const DictionaryEntry* Dictionary::FindEntry(const Key& key) const {
    return entries.Find(key.bytes, key.length);
}

std::uint32_t Dictionary::FindId(const Key& key) const {
    return compactStore->FindId(key.bytes, key.length);
}

std::uint32_t Dictionary::FindId(const char* text) const {
    Key key;
    return IsCompact() && ParseKey(text, key) ? FindId(key) : kNoId;
}

// Look-ups

std::optional<UnicodeRun> Dictionary::Find(const Key& key) const {
    if (IsCompact()) {
        const unsigned short* units = nullptr;
        unsigned long length = 0;
        if (FindInPlace(key, units, length)) return UnicodeRun::WithRoom(units, length);
        // The empty key may exist, but no id of it is valid.
        if (key.length != 0 || FindId(key) == kNoId) return std::nullopt;
        return UnicodeRun();
    }
    const DictionaryEntry* const entry = FindEntry(key);
    if (entry == nullptr) return std::nullopt;
    return entry->GetValue();
}

bool Dictionary::FindInPlace(const Key& key, const unsigned short*& units,
                             unsigned long& length) const {
    if (IsCompact()) return compactStore->FindUTF16Ptr(key.bytes, key.length, units, length);
    const DictionaryEntry* const entry = FindEntry(key);
    if (entry == nullptr) return false;
    units = entry->GetUnits().data();
    length = entry->GetUnits().size();
    return true;
}

UnicodeRun Dictionary::DefaultText(const Key& key, const lexon::EncodingInfo* encoding) {
    if (*key.rest == '\0') return {};
    const auto* const text = reinterpret_cast<const unsigned char*>(key.rest + 1);
    const std::size_t length = std::strlen(key.rest + 1);
    if (length == 0) return {};
    if (encoding != nullptr && encoding->selector != 0) {
        return Escapes::Convert(Wordlex::StringToPooledUnicode(text, length, encoding));
    }
    return Escapes::ConvertLatin1({text, length});
}

Wordlex Dictionary::Lookup(const char* text, const lexon::EncodingInfo* encoding) {
    Key key;
    if (!ParseKey(text, key)) return {};
    if (auto value = Find(key)) return Wordlex(*std::move(value));
    if (const Dictionary* const main = Fallback()) {
        if (auto value = main->Find(key)) return Wordlex(*std::move(value));
    }
    return Wordlex(DefaultText(key, encoding));
}

const Dictionary* Dictionary::HolderOf(unsigned long id) const {
    if (ValidId(id)) return this;
    const Dictionary* const main = Fallback();
    return main != nullptr && main->ValidId(id) ? main : nullptr;
}

Wordlex Dictionary::Lookup(unsigned long id, const lexon::EncodingInfo* /*encoding*/) {
    const Dictionary* const holder = HolderOf(id);
    if (holder == nullptr) return {};
    return Wordlex(holder->compactStore->GetValue(StoreId(id)));
}

Wordlex Dictionary::Lookup(const char* key, unsigned long index,
                           const lexon::EncodingInfo* encoding) {
    return DictionaryMap::Instance()[index]->Lookup(key, encoding);
}

Wordlex Dictionary::Lookup(unsigned long id, unsigned long index,
                           const lexon::EncodingInfo* encoding) {
    return DictionaryMap::Instance()[index]->Lookup(id, encoding);
}

bool Dictionary::LookupReturnUTF16Ptr(const char* text, const unsigned short*& units,
                                      unsigned long& length,
                                      const lexon::EncodingInfo* /*encoding*/) {
    units = nullptr;
    Key key;
    if (!ParseKey(text, key)) return false;
    if (FindInPlace(key, units, length)) return true;
    const Dictionary* const main = Fallback();
    return main != nullptr && main->FindInPlace(key, units, length);
}

bool Dictionary::LookupReturnUTF16Ptr(unsigned long id, const unsigned short*& units,
                                      unsigned long& length,
                                      const lexon::EncodingInfo* /*encoding*/) {
    units = nullptr;
    const Dictionary* const holder = HolderOf(id);
    return holder != nullptr && holder->compactStore->GetUTF16Ptr(StoreId(id), units, length);
}

bool Dictionary::HasKey(const char* text, const lexon::EncodingInfo* /*encoding*/) {
    Key key;
    if (!ParseKey(text, key)) return false;
    return IsCompact() ? FindId(key) != kNoId : FindEntry(key) != nullptr;
}

Wordlex Dictionary::Accelerator(const char* key, const lexon::EncodingInfo* encoding) {
    return Accelerator(FindId(key), encoding);
}

Wordlex Dictionary::Accelerator(unsigned int id, const lexon::EncodingInfo* /*encoding*/) {
    if (!IsCompact()) return {};
    return Wordlex(compactStore->Accelerator(id));
}

unsigned long Dictionary::GetNumericId(const char* key) const { return PublicId(FindId(key)); }

char* Dictionary::GetStringId(unsigned long id) const {
    return IsCompact() ? compactStore->FindStringId(StoreId(id)) : nullptr;
}

bool Dictionary::ValidId(unsigned long id) const {
    return IsCompact() && compactStore->ValidId(StoreId(id));
}

// Changes

unsigned long Dictionary::Add(const char* text, const unsigned short* value,
                              unsigned long valueLength, const lexon::EncodingInfo* /*encoding*/,
                              const unsigned short* accelerator, unsigned long acceleratorLength) {
    Key key;
    if (!IsCompact() || !ParseKey(text, key)) return kNone;
    return PublicId(compactStore->Add(
        key.bytes, key.length, reinterpret_cast<const unsigned char*>(value), 2 * valueLength,
        reinterpret_cast<const unsigned char*>(accelerator), 2 * acceleratorLength));
}

unsigned long Dictionary::Remove(const char* key) { return Remove(GetNumericId(key)); }

unsigned long Dictionary::Remove(unsigned long id) {
    return IsCompact() ? PublicId(compactStore->Remove(StoreId(id))) : kNone;
}

Wordlex Dictionary::Locale() const {
    Wordlex name;
    if (localeName != nullptr) name.BackDoorAssignCString(localeName.get(), nullptr);
    return name;
}

void Dictionary::Locale(const char* name) {
    if (!IsCompact() || name == nullptr || *name == '\0') return;
    localeName = CopyText(name, std::strlen(name));
}

// Enumeration

unsigned long Dictionary::NumKeys() const {
    return IsCompact() ? compactStore->LiveCount() : static_cast<unsigned long>(entries.NumItems());
}

bool Dictionary::HasMoreKey() {
    return IsCompact() ? compactStore->HasMoreItem() : entries.HasMoreItem();
}

bool Dictionary::NextKey(char* buffer, unsigned long size, bool throwIfTooSmall) {
    if (IsCompact()) {
        const std::uint32_t id = compactStore->NextItem();
        if (!compactStore->ValidId(id) || compactStore->GetData(id, buffer, size)) return true;
    } else if (const auto* entry = static_cast<const DictionaryEntry*>(entries.NextItem())) {
        if (buffer != nullptr && entry->GetLength() < size) {
            *std::copy_n(entry->GetData(), entry->GetLength(), buffer) = '\0';
            return true;
        }
    } else if (buffer != nullptr && size != 0) {
        *buffer = '\0';
        return true;
    }
    if (throwIfTooSmall) throw lexon::ASErrException(lexon::ASErrException::kShortBuffer);
    return false;
}

char* Dictionary::NextKey() {
    if (!IsCompact()) return nullptr;
    const std::uint32_t id = compactStore->NextItem();
    return compactStore->ValidId(id) ? compactStore->FindStringId(id) : nullptr;
}

bool Dictionary::ReSetKeyEnumeration() {
    if (!IsCompact()) return false;
    compactStore->RestartEnumeration();
    return true;
}

void Dictionary::ForEachEntry(const EntryVisitor& visit) const {
    if (IsCompact()) {
        compactStore->ForEachEntry(visit);
        return;
    }
    entries.ForEach([&visit](const HashItem& item) {
        const auto& entry = static_cast<const DictionaryEntry&>(item);
        EntryView view;
        view.id = kNoId;
        view.key = {entry.GetData(), entry.GetLength()};
        view.value = {entry.GetValue().GetData(), entry.GetValue().GetLength()};
        visit(view);
    });
}

Dictionary* Dictionary::SetAsMain(unsigned long index) {
    sMainDictionary = DictionaryMap::Instance()[index];
    return sMainDictionary;
}

// Reading and writing

void Dictionary::Read(std::istream* stream) {
    if (stream == nullptr) {
        valid = false;
        return;
    }
    // A short text is not a fault: only reading the content throws when the stream does.
    std::optional<QuietStream> quiet(*stream);
    // Most files are binary ones from their start; these are read without moving back.
    if (stream->tellg() == std::streampos(0)) {
        ImageReader image(*stream, lexon::EndianT::kHost);
        if (PassMagic(image)) {
            quiet.reset();
            ReadBinary(image, true);
            return;
        }
        stream->clear();
        stream->seekg(0);
    }
    const auto reader = DictionaryReader::Make(stream);
    char head[kBinaryMagic.size()];
    long count = sizeof head;
    DictionaryReader::ReadDataStream(stream, head, &count);
    stream->clear();
    stream->seekg(0);
    quiet.reset();
    if (HasBinaryMagic(head, static_cast<std::size_t>(count))) {
        Read(*stream);
    } else {
        ReadText(*reader, true);  // from the start again, including the mark of UTF-16
    }
}

void Dictionary::Read(std::istream& stream) {
    ImageReader image(stream, lexon::EndianT::kHost);
    PassMagic(image);
    ReadBinary(image, true);
}

void Dictionary::Read(const char* data, int size, bool copyKeys) {
    if (data == nullptr || size <= 0) {
        valid = false;
    } else if (HasBinaryMagic(data, static_cast<std::size_t>(size))) {
        ImageReader image(data, data + size, lexon::EndianT::kHost);
        PassMagic(image);
        ReadBinary(image, copyKeys);
    } else if (const auto reader = DictionaryReader::Make(data, data + size)) {
        ReadText(*reader, false);
    } else {
        valid = false;
    }
}

void Dictionary::Read(std::istream* stream, unsigned long index) {
    DictionaryMap::Instance()[index]->Read(stream);
}

void Dictionary::ReadBinary(ImageReader& image, bool copyKeys) {
    const BinaryHeader header = ReadBinaryHeader(image);
    bool good = image.Ok();
    if (good && header.body == BinaryHeader::Body::kVersion2) {
        good = ReadCompactImage(image, header);
    } else if (good && header.body == BinaryHeader::Body::kVersion15) {
        good = entries.read_ver15(image, copyKeys, header.encoding) == 0;
    } else if (good) {
        good = entries.read_ver10(image, copyKeys, header.encoding) == 0;
    }
    if (!good) valid = false;
}

bool Dictionary::ReadCompactImage(ImageReader& image, const BinaryHeader& header) {
    // All allocations come first, so that the image, its locale and the version change together.
    auto name = header.locale.has_value() ? CopyText(header.locale->data(), header.locale->size())
                                          : nullptr;
    if (Store().Load(image) == ImageResult::kMalformed) return false;
    if (name != nullptr) localeName = std::move(name);
    BecomeCompact();
    return true;
}

std::uint32_t Dictionary::Serialize(std::ostream& out, bool binary,
                                    const lexon::EncodingInfo* encoding) const {
    return Serialize(out, binary ? lexon::SaveType::kBinary : lexon::SaveType::kText, encoding,
                     lexon::EndianT::kHost, 0);
}

std::uint32_t Dictionary::Serialize(std::ostream& out, lexon::SaveType type,
                                    const lexon::EncodingInfo* encoding, lexon::EndianT order,
                                    unsigned int idBase) const {
    const bool binary = type == lexon::SaveType::kBinary || type == lexon::SaveType::kBinaryNoKeys;
    std::uint32_t written = 0;
    if (binary) {
        written = WriteBinaryHeader(out, encoding != nullptr, order, localeName.get());
    } else {
        out.write("\xFF\xFE", 2);
    }
    return written + (IsCompact() ? compactStore->Serialize2(out, type, encoding, order, idBase)
                                  : entries.Serialize2(out, binary, encoding, order));
}

// Lines of text

const unsigned short* Dictionary::FindQuoteMark(const unsigned short* text) {
    const unsigned short* const end = text + UnicodeUtil::StringLength(text);
    const unsigned short* const mark = FindQuoteMark(text, end);
    return mark == end ? nullptr : mark;
}

const unsigned short* Dictionary::FindQuoteMark(const unsigned short* begin,
                                                const unsigned short* end) {
    const unsigned short* mark = FindUnit(begin, end, u'"');
    while (mark != end && mark != begin && mark[-1] == u'\\') {
        mark = FindUnit(mark + 1, end, u'"');
    }
    return mark;
}

bool Dictionary::ParseEntry(const unsigned short* line, const unsigned short*& key,
                            unsigned long& keyLength, const unsigned short*& value,
                            unsigned long& valueLength) {
    return ParseEntry(line, line + UnicodeUtil::StringLength(line), key, keyLength, value,
                      valueLength);
}

bool Dictionary::ParseEntry(const unsigned short* begin, const unsigned short* end,
                            const unsigned short*& key, unsigned long& keyLength,
                            const unsigned short*& value, unsigned long& valueLength) {
    const unsigned short* const opening = FindQuoteMark(begin, end);
    if (opening != end) {
        begin = opening + 1;
        end = FindQuoteMark(begin, end);
    }
    if (begin != end && *begin == u'$') {
        constexpr std::u16string_view kPrefix = u"$$$";
        const auto length = static_cast<std::size_t>(end - begin);
        if (length < kPrefix.size() || !std::equal(kPrefix.begin(), kPrefix.end(), begin)) {
            return false;
        }
        begin += kPrefix.size();
    }
    const unsigned short* const equals = FindUnit(begin, end, u'=');
    key = begin;
    keyLength = static_cast<unsigned long>(equals - begin);
    value = equals == end ? end : equals + 1;
    valueLength = static_cast<unsigned long>(end - value);
    return true;
}

void Dictionary::AddEntry(unsigned short* line) {
    AddEntry(line, line + UnicodeUtil::StringLength(line));
}

void Dictionary::AddEntry(unsigned short* line, const unsigned short* end) {
    const unsigned short* key = nullptr;
    const unsigned short* value = nullptr;
    unsigned long keyLength = 0;
    unsigned long valueLength = 0;
    if (!ParseEntry(line, end, key, keyLength, value, valueLength)) {
        valid = false;
        return;
    }
    // The bytes of the key take the first half of its units, well before the value.
    auto* const keyBytes = reinterpret_cast<unsigned char*>(line + (key - line));
    Narrow(key, keyLength, keyBytes);

    if (IsCompact()) {
        std::vector<unsigned short> room;
        const Escapes::Units converted = Escapes::Convert({value, valueLength}, room);
        compactStore->Add(keyBytes, keyLength,
                          reinterpret_cast<const unsigned char*>(converted.data()),
                          converted.size_bytes(), nullptr, 0);
        return;
    }
    const ByteRunKey probe(keyBytes, keyLength, false);
    auto entry = DictionaryEntry::Make(probe, value, valueLength);
    entries.Replace(entry.get());
    static_cast<void>(entry.release());
}

void Dictionary::ReadText(DictionaryReader& reader, bool skipMark) {
    constexpr unsigned short kMark = 0xFEFF;
    while (unsigned short* const line = reader.ReadALine()) {
        const bool markAlone = skipMark && line[0] == kMark && line[1] == 0;
        if (line[0] != 0 && !markAlone) AddEntry(line, line + reader.GetLineLength());
    }
}

}  // namespace lexon_private
