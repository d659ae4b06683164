#include "tools/base/TextDocument.h"

#include <algorithm>

#include "tools/base/Files.h"
#include "tools/base/TextScanner.h"
#include "wordlex/functionality/BinaryHeader.h"
#include "wordlex/functionality/Dictionary.h"
#include "wordlex/functionality/Escapes.h"
#include "wordlex/functionality/UnicodeUtil.h"

namespace tool {

namespace {

using lexon_private::Buffer;
using lexon_private::Dictionary;
using lexon_private::UnicodeUtil;

constexpr unsigned short kMark = 0xFEFF;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kObsolete = ".obsolete";

// 8-bit text in the default encoding.
std::string Encoded8(Units text) {
    std::string bytes(UnicodeUtil::FromUnicodeSize(text.data(), text.size(), nullptr), '\0');
    UnicodeUtil::UnicodeToCString(text.data(), text.size(), bytes.data(), bytes.size(), nullptr);
    bytes.pop_back();  // the terminator
    return bytes;
}

bool Decodes(std::string_view bytes, Units to) {
    Buffer<unsigned short> decoded(bytes.size() + 1);
    UnicodeUtil::StringToUnicode(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                                 decoded, nullptr);
    return std::ranges::equal(Units(decoded.GetData(), decoded.GetLength()), to);
}

bool IsAscii(Units text) {
    return std::ranges::all_of(text, [](unsigned short unit) { return unit < 0x80; });
}

}  // namespace

TextDocument::TextDocument(std::string bytes) : source(std::move(bytes)) {
    TextScanner scanner(source);
    if (scanner.IsUtf16()) unitSize = 2;
    bigEndian = scanner.IsBigEndian();
    markSize = IsUtf16() ? 2 : source.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
    units.reserve(source.size() / unitSize);
    while (scanner.Next()) {
        Line line;
        line.number = scanner.LineNumber();
        const std::string_view lineBytes = scanner.LineBytes();
        line.begin = static_cast<std::size_t>(lineBytes.data() - source.data());
        line.end = line.begin + lineBytes.size();
        line.next = PassLineEnd(line.end);
        line.blankBefore = line.begin != (lines.empty() ? 0 : lines.back().next);
        line.unitsAt = units.size();
        line.unitCount = scanner.Line().size();
        units.insert(units.end(), scanner.Line().begin(), scanner.Line().end());
        if (scanner.IsLost()) {
            line.kind = Kind::kLost;
        } else {
            Parse(line);
        }
        lines.push_back(std::move(line));
    }
    complete = !scanner.AtEnd().byZero;
    units.push_back(0);  // gives a lost last line a place, too
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i].kind == Kind::kEntry) byKey.insert_or_assign(lines[i].key, i);
    lineEnd = Encoded(Units(std::initializer_list<unsigned short>{u'\n'}));
    for (std::size_t at = markSize; at + unitSize <= source.size(); at += unitSize) {
        if (const std::size_t past = PassLineEnd(at); past != at) {
            lineEnd = source.substr(at, past - at);
            break;
        }
    }
}

// The line whose units were added last.
void TextDocument::Parse(Line& line) {
    units.push_back(0);
    const unsigned short* const begin = &units[line.unitsAt];
    const unsigned short* const opening = Dictionary::FindQuoteMark(begin);
    const unsigned short* const closing =
        opening == nullptr ? nullptr : Dictionary::FindQuoteMark(opening + 1);
    const auto part = [begin](const unsigned short* from, const unsigned short* to) {
        return Part{static_cast<std::size_t>(from - begin), static_cast<std::size_t>(to - from)};
    };
    const unsigned short* const end = begin + line.unitCount;
    line.quoted = closing != nullptr;
    line.entry = part(opening == nullptr ? begin : opening + 1, line.quoted ? closing : end);
    if (line.quoted) {
        const bool hasMark = line.begin == 0 && *begin == kMark;
        line.before = part(begin + (hasMark ? 1 : 0), opening);
        line.after = part(closing + 1, end);
    }
    const unsigned short* key = nullptr;
    const unsigned short* value = nullptr;
    unsigned long keyLength = 0;
    unsigned long valueLength = 0;
    if (Dictionary::ParseEntry(begin, key, keyLength, value, valueLength)) {
        line.value = part(value, value + valueLength);
        line.key.resize(keyLength);
        std::transform(key, key + keyLength, line.key.begin(), [](unsigned short unit) {
            return static_cast<char>(static_cast<unsigned char>(unit));
        });
    } else {
        line.kind = Kind::kMalformed;
    }
    units.pop_back();
}

std::optional<std::size_t> TextDocument::Find(std::string_view key) const {
    const auto found = byKey.find(key);
    return found == byKey.end() ? std::nullopt : std::optional(found->second);
}

Text TextDocument::Converted(const Line& line) const {
    const auto converted = lexon_private::Escapes::Convert(Value(line));
    return {converted.GetData(), converted.GetLength()};
}

std::string TextDocument::Comment(const Line& line, Part part) const {
    return Utf8(UnitsOfPart(line, part));
}

unsigned TextDocument::UnitAt(std::size_t at) const {
    const auto byteAt = [this](std::size_t i) -> unsigned {
        return static_cast<unsigned char>(source[i]);
    };
    if (at + unitSize > source.size()) return 0;
    if (unitSize == 1) return byteAt(at);
    return bigEndian ? byteAt(at) << 8 | byteAt(at + 1) : byteAt(at + 1) << 8 | byteAt(at);
}

// The offset after the line end that begins at `at`, if one does.
std::size_t TextDocument::PassLineEnd(std::size_t at) const {
    const unsigned unit = UnitAt(at);
    if (unit == '\r' && UnitAt(at + unitSize) == '\n') return at + 2 * unitSize;
    return IsLineEnd(unit, IsUtf16()) ? at + unitSize : at;
}

// The byte of the source where a unit of the line begins.
std::size_t TextDocument::OffsetOf(const Line& line, std::size_t unit) const {
    if (IsUtf16()) return line.begin + unitSize * unit;
    const Units head = UnitsOfLine(line).first(unit);
    if (IsAscii(head)) return line.begin + unit;
    const std::string_view bytes =
        std::string_view(source).substr(line.begin, line.end - line.begin);
    const std::size_t usual = Encoded8(head).size();
    if (Decodes(bytes.substr(0, usual), head)) return line.begin + usual;
    // Some encodings write a character in more than one way.
    for (std::size_t size = 0; size <= bytes.size(); ++size)
        if (Decodes(bytes.substr(0, size), head)) return line.begin + size;
    throw Failure("line " + std::to_string(line.number) +
                  " cannot be edited in its encoding; convert the file to UTF-8");
}

void TextDocument::Replace(const Line& line, Part part, std::string bytes) {
    edits.push_back(
        {OffsetOf(line, part.begin), OffsetOf(line, part.begin + part.length), std::move(bytes)});
}

void TextDocument::SetValue(const Line& line, Units written) {
    Replace(line, line.value, EncodedValue(written));
}

void TextDocument::SetComment(const Line& line, Part part, std::string_view utf8) {
    if (Comment(line, part) == utf8) return;
    Replace(line, part, Encoded(UnitsOf(FromUtf8(utf8))));
}

void TextDocument::Remove(const Line& line) {
    edits.push_back({std::max(line.begin, line.begin == 0 ? markSize : 0), line.next, {}});
}

void TextDocument::InsertBefore(const Line& line, Units inserted) {
    const std::size_t at = line.begin == 0 ? markSize : line.begin;
    edits.push_back({at, at, EncodedLine(inserted) + lineEnd});
}

void TextDocument::InsertAfter(const Line& line, Units inserted) {
    const bool ended = line.next != line.end;
    edits.push_back({line.next, line.next,
                     ended ? EncodedLine(inserted) + lineEnd : lineEnd + EncodedLine(inserted)});
}

void TextDocument::Append(Units inserted) {
    if (!lines.empty()) return InsertAfter(lines.back(), inserted);
    edits.push_back({source.size(), source.size(), EncodedLine(inserted) + lineEnd});
}

std::string TextDocument::Bytes() const { return BytesWith(edits); }

std::string TextDocument::BytesOf(const std::function<bool(const Line&)>& isWanted) const {
    std::vector<Edit> all = edits;
    for (const Line& line : lines)
        if (!isWanted(line)) all.push_back({std::max(line.begin, markSize), line.end, {}});
    return BytesWith(all);
}

std::string TextDocument::BytesWith(const std::vector<Edit>& all) const {
    std::vector<const Edit*> inOrder;
    inOrder.reserve(all.size());
    std::ranges::transform(all, std::back_inserter(inOrder), [](const Edit& e) { return &e; });
    std::ranges::stable_sort(inOrder, {}, &Edit::begin);
    std::string bytes;
    bytes.reserve(source.size() + source.size() / 4);
    std::size_t at = 0;
    for (const Edit* const edit : inOrder) {
        if (edit->begin > at) bytes.append(source, at, edit->begin - at);
        bytes += edit->bytes;
        at = std::max(at, edit->end);
    }
    return bytes.append(source, at);
}

TextDocument TextDocument::EmptyLikeThis() const {
    TextDocument empty(source.substr(0, markSize));
    empty.lineEnd = lineEnd;
    return empty;
}

std::string TextDocument::Encoded(Units text) const {
    if (!IsUtf16()) return Encoded8(text);
    std::string bytes;
    for (const unsigned short unit : text) {
        const auto high = static_cast<char>(static_cast<unsigned char>(unit >> 8));
        const auto low = static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        bytes += {bigEndian ? high : low, bigEndian ? low : high};
    }
    return bytes;
}

std::string TextDocument::EncodedValue(Units written) const {
    std::string bytes = Encoded(written);
    if (IsUtf16() || IsAscii(written) || Decodes(bytes, written)) return bytes;
    bytes.clear();
    bool escaped = false;  // the unit before begins an escape
    for (std::size_t i = 0; i < written.size(); ++i) {
        const bool isPair = i + 1 < written.size() && IsSecondHalf(written, i + 1);
        const Units character = written.subspan(i, isPair ? 2 : 1);
        const std::string own = Encoded8(character);
        if (Decodes(own, character)) {
            bytes += own;
            escaped = !escaped && (written[i] == u'\\' || written[i] == u'^');
        } else {
            // An invalid escape stays invalid: a doubled character leaves one.
            if (escaped) bytes += bytes.back();
            escaped = false;
            for (const unsigned short unit : character)
                bytes += "#{" + CodePoint(unit) + "}";
        }
        i += isPair ? 1 : 0;
    }
    return bytes;
}

std::string TextDocument::EncodedLine(Units line) const {
    std::vector<unsigned short> terminated(line.begin(), line.end());
    terminated.push_back(0);
    const unsigned short* key = nullptr;
    const unsigned short* value = nullptr;
    unsigned long keyLength = 0;
    unsigned long valueLength = 0;
    Dictionary::ParseEntry(terminated.data(), key, keyLength, value, valueLength);
    const auto keyAt = static_cast<std::size_t>(key - terminated.data());
    const auto valueAt = static_cast<std::size_t>(value - terminated.data());
    const Units keyUnits = line.subspan(keyAt, keyLength);
    if (!IsUtf16() && !IsAscii(keyUnits) && !Decodes(Encoded8(keyUnits), keyUnits)) {
        throw Failure("the key " + ShowRaw(keyUnits) +
                      " cannot be written in the file's encoding; convert the file to UTF-8");
    }
    return Encoded(line.first(valueAt)) + EncodedValue(line.subspan(valueAt, valueLength)) +
           Encoded(line.subspan(valueAt + valueLength));
}

TextDocument ReadTextDocument(const std::string& name) {
    return ParseTextDocument(name, ReadInput(name));
}

TextDocument ParseTextDocument(const std::string& name, std::string bytes) {
    if (lexon_private::HasBinaryMagic(bytes.data(), bytes.size())) {
        throw Failure(name + ": a binary dictionary; use the text file that it was made from");
    }
    TextDocument document(std::move(bytes));
    for (const TextDocument::Line& line : document.Lines()) {
        const std::string place = name + ':' + std::to_string(line.number) + ": ";
        if (line.kind == TextDocument::Kind::kLost) {
            throw Failure(place +
                          "these bytes are not text of the encoding; name it with --encoding");
        }
        if (line.kind == TextDocument::Kind::kMalformed) {
            throw Failure(place + "the key begins with \"$\" but not with \"$$$\"; write \"$$$\"");
        }
    }
    if (!document.IsComplete()) {
        throw Failure(name + ": a zero ends the file early; run wordlex check for the place");
    }
    return document;
}

std::string ObsoleteName(const std::filesystem::path& name) {
    return (name.parent_path() / name.stem()).string() + std::string(kObsolete) +
           name.extension().string();
}

bool IsObsoleteName(const std::filesystem::path& name) {
    return name.stem().extension() == kObsolete;
}

}  // namespace tool
