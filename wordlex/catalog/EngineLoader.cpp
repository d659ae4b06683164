// Text and version 1 files, whose lines and entries the engine reads.
#include <algorithm>
#include <limits>
#include <mutex>

#include "wordlex/catalog/ImageParts.h"
#include "wordlex/catalog/IndexBuilder.h"
#include "wordlex/catalog/Loaders.h"
#include "wordlex/functionality/Dictionary.h"
#include "wordlex/functionality/DictionaryReader.h"
#include "wordlex/functionality/Escapes.h"
#include "wordlex/functionality/HashTable.h"

namespace lexon::detail {

using lexon_private::Dictionary;
using lexon_private::DictionaryEntry;
using lexon_private::DictionaryReader;
using lexon_private::ImageReader;

namespace {

// The engine shares texts by plain counters and has one set of converters: one load at a time.
std::mutex engineLock;

[[noreturn]] void Refuse(LoadError::Code code, std::size_t line, std::size_t column,
                         std::string reason) {
    throw LoadFault{{.code = code, .line = line, .column = column, .reason = std::move(reason)}};
}

// New entries, each after the older ones. An existing key keeps its id.
class Collector {
public:
    // Line and column are kept for the warning about a text that is replaced.
    void Add(std::string_view key, const unsigned short* units, std::size_t unitCount,
             std::size_t line = 0) {
        entries.push_back({keys.size(), key.size(), texts.size(), unitCount, line});
        keys += key;
        texts.append(reinterpret_cast<const char16_t*>(units), unitCount);
        const std::size_t longest = std::max(keys.size(), sizeof(char16_t) * texts.size());
        if (longest > std::numeric_limits<std::uint32_t>::max())
            Refuse(LoadError::Code::kMalformed, line, 0, "more than 4 GB of keys or of texts");
    }

    // Of two texts of a key the last one counts. Calls replaced(line of the lost text, line of the
    // one that counts).
    template <class Replaced>
    std::shared_ptr<CatalogStore> Finish(Replaced replaced) {
        auto store = std::make_shared<CatalogStore>();
        auto content = std::make_shared<Content>();
        content->keys = std::move(keys);
        content->texts = std::move(texts);
        const Bytes keyArea = std::as_bytes(std::span(content->keys));
        const std::size_t most = entries.size();
        for (auto* const table : {&content->keyOffsets, &content->keyLengths, &content->textOffsets,
                                  &content->textLengths})
            table->reserve(most);
        IndexBuilder builder(static_cast<std::uint32_t>(most), IndexBuilder::RandomSeed());
        std::vector<std::size_t> lines;
        for (const Collected& entry : entries) {
            const auto keyAt = static_cast<std::uint32_t>(entry.keyAt);
            const auto textAt = static_cast<std::uint32_t>(entry.textAt * sizeof(char16_t));
            const auto textLength = static_cast<std::uint32_t>(entry.textCount * sizeof(char16_t));
            const std::string_view key(content->keys.data() + keyAt, entry.keyLength);
            const auto [place, isNew] =
                builder.Claim(key, builder.Prepare(key), [&content = *content](std::uint32_t id) {
                    return std::string_view(content.keys.data() + content.keyOffsets[id],
                                            content.keyLengths[id]);
                });
            if (isNew) {
                const auto keyLength = static_cast<std::uint32_t>(entry.keyLength);
                builder.Set(place, static_cast<std::uint32_t>(lines.size()), {keyAt, keyLength},
                            {textAt, textLength});
                content->keyOffsets.push_back(keyAt);
                content->keyLengths.push_back(keyLength);
                content->textOffsets.push_back(textAt);
                content->textLengths.push_back(textLength);
                lines.push_back(entry.line);
            } else {
                const std::uint32_t id = builder.EntryAt(place);
                replaced(lines[id], entry.line);
                content->textOffsets[id] = textAt;
                content->textLengths[id] = textLength;
                builder.SetText(place, {textAt, textLength});
                lines[id] = entry.line;
            }
        }
        store->entryCount = static_cast<std::uint32_t>(lines.size());
        store->keys = {std::as_bytes(std::span(content->keyOffsets)),
                       std::as_bytes(std::span(content->keyLengths)), sizeof(std::uint32_t),
                       keyArea};
        store->texts = {std::as_bytes(std::span(content->textOffsets)),
                        std::as_bytes(std::span(content->textLengths)), sizeof(std::uint32_t),
                        std::as_bytes(std::span(content->texts))};
        store->keepers.push_back(std::move(content));
        store->SetIndex(std::move(builder).Finish());
        return store;
    }

    std::size_t Count() const noexcept { return entries.size(); }

private:
    struct Collected {
        std::size_t keyAt;
        std::size_t keyLength;
        std::size_t textAt;  // in units
        std::size_t textCount;
        std::size_t line;
    };
    struct Content {
        std::string keys;
        std::u16string texts;
        std::vector<std::uint32_t> keyOffsets;
        std::vector<std::uint32_t> keyLengths;
        std::vector<std::uint32_t> textOffsets;
        std::vector<std::uint32_t> textLengths;
    };

    std::string keys;
    std::u16string texts;
    std::vector<Collected> entries;
};

// The lines of a text as an editor numbers them: CR LF ends one line. The engine sees an empty line
// between CR and LF.
class LineCounter {
public:
    LineCounter(Bytes text, bool isWide, bool isBigEndian) noexcept
        : bytes(text), unitSize(isWide ? 2 : 1), bigEndian(isBigEndian) {}

    // The number of the line that ends `offset` bytes into the text.
    std::size_t Next(std::uint64_t offset) noexcept {
        const unsigned end = UnitBefore(offset);
        const bool secondHalf = lastEnd == '\r' && end == '\n' && offset == lastOffset + unitSize;
        if (!secondHalf) ++line;
        lastEnd = end;
        lastOffset = offset;
        return line;
    }
    std::size_t Line() const noexcept { return line; }

private:
    unsigned UnitBefore(std::uint64_t offset) const noexcept {
        if (offset < unitSize || offset > bytes.size()) return 0;
        const auto at = static_cast<std::size_t>(offset) - unitSize;
        if (unitSize == 1) return LoadAt<std::uint8_t>(bytes, at);
        const unsigned first = LoadAt<std::uint8_t>(bytes, at);
        const unsigned second = LoadAt<std::uint8_t>(bytes, at + 1);
        return bigEndian ? first << 8 | second : second << 8 | first;
    }

    Bytes bytes;
    std::size_t unitSize;
    bool bigEndian;
    std::size_t line = 0;
    unsigned lastEnd = 0;
    std::uint64_t lastOffset = 0;
};

class TextLoader {
public:
    explicit TextLoader(Bytes whole)
        : wide(HasMark(whole)),
          text(wide ? whole.subspan(2) : whole),
          counter(text, wide, wide && whole[0] == std::byte{0xFE}) {
        const char* const begin = reinterpret_cast<const char*>(whole.data());
        reader = DictionaryReader::Make(begin, begin + whole.size());
        if (reader == nullptr)
            Refuse(LoadError::Code::kNotADictionary, 0, 0,
                   "not a dictionary: fewer than two bytes");
    }

    std::shared_ptr<CatalogStore> Load() {
        std::uint64_t before = 0;
        while (unsigned short* const line = reader->ReadALine()) {
            const std::size_t length = reader->GetLineLength();
            const std::size_t number = counter.Next(reader->GetOffset());
            if (length != 0) {
                AddLine(line, line + length, number);
            } else if (!wide && reader->GetOffset() > before + 1) {
                Warn(number, 0, "bytes that are not text of the encoding: the line is lost");
            }
            before = reader->GetOffset();
        }
        WarnOfTheEnd();
        if (entries.Count() == 0 && !warnings.empty()) {
            Refuse(LoadError::Code::kNotADictionary, warnings.front().line, 0,
                   "no entry can be read: " + warnings.front().reason);
        }
        auto store = entries.Finish([this](std::size_t lost, std::size_t counts) {
            Warn(lost, 0, "the text is replaced by that of line " + std::to_string(counts));
        });
        std::ranges::stable_sort(warnings, {}, &LoadWarning::line);
        store->warnings = std::move(warnings);
        return store;
    }

private:
    static bool HasMark(Bytes bytes) noexcept {
        if (bytes.size() < 2) return false;
        const auto mark = LoadAt<std::uint16_t>(bytes, 0);
        return mark == 0xFEFF || mark == 0xFFFE;
    }
    void Warn(std::size_t line, std::size_t column, std::string reason) {
        warnings.push_back({line, column, std::move(reason)});
    }

    void AddLine(unsigned short* line, const unsigned short* end, std::size_t number) {
        const auto column = [line](const unsigned short* at) {
            return static_cast<std::size_t>(at - line) + 1;
        };
        const unsigned short* key = nullptr;
        const unsigned short* value = nullptr;
        unsigned long keyLength = 0;
        unsigned long valueLength = 0;
        const unsigned short* const opening = Dictionary::FindQuoteMark(line);
        if (!Dictionary::ParseEntry(line, key, keyLength, value, valueLength)) {
            Refuse(LoadError::Code::kMalformed, number,
                   opening == nullptr ? 1 : column(opening) + 1,
                   "an entry that begins with \"$\" must begin with \"$$$\"");
        }
        quoted |= opening != nullptr;
        const unsigned short* const closing = value + valueLength;
        if (opening != nullptr && closing != end &&
            Dictionary::FindQuoteMark(closing + 1) != nullptr) {
            Warn(number, column(closing),
                 "the text ends at this quotation mark; write \\\" for one inside it");
        }
        narrowed.assign(key, key + keyLength);
        const auto* const wideUnit =
            std::find_if(key, key + keyLength, [](unsigned short unit) { return unit > 0xFF; });
        if (wideUnit != key + keyLength) {
            Warn(number, column(wideUnit),
                 "a character above U+00FF in a key: the key keeps its low byte only");
        }
        const auto converted = lexon_private::Escapes::Convert({value, valueLength}, resolved);
        entries.Add(narrowed, converted.data(), converted.size(), number);
    }

    // A zero ends a text; so does an odd byte of UTF-16.
    void WarnOfTheEnd() {
        const std::uint64_t end = reader->GetOffset();
        const std::size_t next = counter.Line() + 1;
        const bool rest =
            end < text.size() &&
            std::ranges::any_of(text.subspan(end), [](auto byte) { return byte != std::byte{0}; });
        const bool atZero = text.size() - std::min<std::uint64_t>(end, text.size()) >= 2 || !wide;
        if (rest && !wide && !quoted) {
            Refuse(LoadError::Code::kNotADictionary, 0, 0,
                   "neither a binary dictionary nor a text: zeros, and no entry before them");
        }
        if (rest && atZero) Warn(next, 0, "a zero ends the text here: the rest is lost");
        if (wide && text.size() % 2 != 0)
            Warn(next, 0, "UTF-16 with an odd byte at its end, which is lost");
    }

    bool wide;
    Bytes text;  // without its mark
    LineCounter counter;
    std::unique_ptr<DictionaryReader> reader;
    Collector entries;
    std::vector<LoadWarning> warnings;
    std::string narrowed;
    std::vector<unsigned short> resolved;
    bool quoted = false;  // some line has a quotation mark
};

}  // namespace

std::shared_ptr<CatalogStore> LoadText(Bytes file) {
    const std::lock_guard lock(engineLock);
    return TextLoader(file).Load();
}

std::shared_ptr<CatalogStore> LoadVersion1(Bytes file) {
    const std::lock_guard lock(engineLock);
    ImageReader reader = ReaderOf(file);
    lexon_private::PassMagic(reader);
    const auto header = lexon_private::ReadBinaryHeader(reader);
    if (!reader.Ok()) ThrowFault(reader);
    lexon_private::HashTable<lexon_private::ByteRunKey, DictionaryEntry> table;
    if (header.body == lexon_private::BinaryHeader::Body::kVersion15) {
        table.read_ver15(reader, false, header.encoding);
    } else {
        table.read_ver10(reader, false, header.encoding);
    }
    if (!reader.Ok()) ThrowFault(reader);
    Collector entries;
    table.ForEach([&](const lexon_private::HashItem& item) {
        if (table.Find(item) != &item)
            return;  // in a wrong slot, or after another entry of its key
        const auto& entry = static_cast<const DictionaryEntry&>(item);
        entries.Add({reinterpret_cast<const char*>(entry.GetData()), entry.GetLength()},
                    entry.GetValue().GetData(), entry.GetValue().GetLength());
    });
    return entries.Finish([](std::size_t, std::size_t) {});
}

}  // namespace lexon::detail
