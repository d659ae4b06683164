#include "tools/lsp/TextFile.h"

#include <algorithm>
#include <vector>

#include "wordlex/functionality/BinaryHeader.h"

namespace tool::lsp {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";
constexpr unsigned short kMark = 0xFEFF;

bool IsUtf16(std::string_view head) {
    return head.starts_with(kLittleEndianMark) || head.starts_with(kBigEndianMark);
}

// Without the mark.
std::vector<unsigned short> UnitsOfUtf16(std::string_view bytes) {
    const bool bigEndian = bytes.starts_with(kBigEndianMark);
    std::vector<unsigned short> units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units.push_back(
            static_cast<unsigned short>(bigEndian ? first << 8 | second : second << 8 | first));
    }
    return units;
}

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }
// UTF-16 units of the character that begins with this byte.
std::size_t UnitsOfCharacter(char c) { return static_cast<unsigned char>(c) >= 0xF0 ? 2 : 1; }

}  // namespace

TextFile::TextFile(std::string uriOfFile, std::string bytesOnDisk)
    : uri(std::move(uriOfFile)), bytes(std::move(bytesOnDisk)) {
    if (IsUtf16(bytes)) lines = LineMap(UnitsOfUtf16(bytes));
}

TextFile::TextFile(std::string uriOfFile, const std::string& text, std::string_view head,
                   bool asUtf16)
    : uri(std::move(uriOfFile)), showsMark(text.starts_with(kUtf8Mark)) {
    if (!asUtf16 && !IsUtf16(head)) {
        bytes = head.starts_with(kUtf8Mark) && !showsMark ? std::string(kUtf8Mark) + text : text;
        return;
    }
    const Text converted =
        FromUtf8(std::string_view(text).substr(showsMark ? kUtf8Mark.size() : 0));
    bytes = kLittleEndianMark;
    for (const unsigned short unit : UnitsOf(converted))
        bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    lines = LineMap(UnitsOf(converted));
}

bool TextFile::IsBinary() const {
    return lexon_private::HasBinaryMagic(bytes.data(), bytes.size());
}

const TextDocument& TextFile::Document() const {
    if (!document.has_value()) document.emplace(bytes);
    return *document;
}

Range TextFile::RangeOf(const Place& place) const {
    if (place.line == 0) return {};
    // A place without units has a column. Columns differ from units only after characters beyond
    // the BMP.
    const bool hasUnits = place.unit != 0 || place.endUnit != 0 || place.column <= 1;
    const std::size_t shown = showsMark && place.line == 1 ? 1 : 0;
    const std::size_t begin = (hasUnits ? place.unit : place.column - 1) + shown;
    const std::size_t end = (hasUnits ? place.endUnit : place.column - 1) + shown;
    return {lines.ToEditor(place.line, begin), lines.ToEditor(place.line, std::max(begin, end))};
}

std::size_t TextFile::HiddenUnits(const Line& line) const {
    if (line.number != 1 || showsMark) return 0;
    const Units units = Document().UnitsOfLine(line);
    return !units.empty() && units.front() == kMark ? 1 : 0;
}

Range TextFile::RangeOf(const Line& line, std::size_t begin, std::size_t end) const {
    const std::size_t hidden = HiddenUnits(line);
    return {lines.ToEditor(line.number, begin - std::min(begin, hidden)),
            lines.ToEditor(line.number, end - std::min(end, hidden))};
}

std::optional<TextFile::Spot> TextFile::SpotAt(Position position) const {
    const LineMap::Spot spot = lines.FromEditor(position);
    const auto& all = Document().Lines();
    const auto found = std::ranges::lower_bound(all, spot.number, {}, &Line::number);
    if (found == all.end() || found->number != spot.number) return std::nullopt;
    return Spot{&*found, std::min(spot.unit + HiddenUnits(*found), LengthOf(*found))};
}

std::size_t TextFile::OffsetAt(Position position) const {
    std::size_t at = bytes.starts_with(kUtf8Mark) && !showsMark ? kUtf8Mark.size() : 0;
    for (std::size_t line = 0; line < position.line; ++line) {
        at = bytes.find_first_of("\r\n", at);
        if (at == bytes.npos) return bytes.size();
        at += bytes.compare(at, 2, "\r\n") == 0 ? 2U : 1U;
    }
    for (std::size_t unit = 0; unit < position.character && at < bytes.size();) {
        if (bytes[at] == '\n' || bytes[at] == '\r') break;
        unit += UnitsOfCharacter(bytes[at]);
        do {
            ++at;
        } while (at < bytes.size() && IsContinuation(bytes[at]));
    }
    return at;
}

Position TextFile::PositionOf(std::size_t offset) const {
    Position position;
    for (std::size_t at = bytes.starts_with(kUtf8Mark) && !showsMark ? kUtf8Mark.size() : 0;
         at < offset; ++at) {
        const char c = bytes[at];
        if (c == '\n' || (c == '\r' && bytes.compare(at, 2, "\r\n") != 0)) {
            position = {position.line + 1, 0};
        } else if (!IsContinuation(c)) {
            position.character += UnitsOfCharacter(c);
        }
    }
    return position;
}

Range TextFile::RangeOfBytes(std::size_t begin, std::size_t end) const {
    return {PositionOf(begin), PositionOf(end)};
}

}  // namespace tool::lsp
