#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/base/TextDocument.h"
#include "tools/check/Findings.h"
#include "tools/lsp/LineMap.h"

namespace tool::lsp {

// A dictionary or a source: the editor's text, or the file on disk.
// Positions: those of the editor's text; editors leave out a byte-order mark.
// Threads:   none: the document is read on first use.
class TextFile {
public:
    using Line = TextDocument::Line;

    // The file on disk.
    TextFile(std::string uriOfFile, std::string bytesOnDisk);
    // The editor's text. The loader reads it in the form of the file on disk, whose first bytes are
    // `head`: in UTF-16, or in UTF-8 with or without a mark. With `asUtf16` always in UTF-16.
    TextFile(std::string uriOfFile, const std::string& text, std::string_view head, bool asUtf16);

    const std::string& Uri() const { return uri; }
    // The bytes that the loader reads.
    const std::string& Bytes() const { return bytes; }
    bool IsBinary() const;
    const TextDocument& Document() const;

    // Of a finding; the start of the file for a finding without a line.
    Range RangeOf(const Place& place) const;
    // Of units of a line of the document.
    Range RangeOf(const Line& line, std::size_t begin, std::size_t end) const;
    Range RangeOf(const Line& line, TextDocument::Part part) const {
        return RangeOf(line, part.begin, part.begin + part.length);
    }
    std::size_t LengthOf(const Line& line) const { return Document().UnitsOfLine(line).size(); }
    // The line of a position, which is not empty, and the unit in it.
    struct Spot {
        const Line* line;
        std::size_t unit;
    };
    std::optional<Spot> SpotAt(Position position) const;

    // For a source, which is UTF-8: converts between positions and bytes.
    std::size_t OffsetAt(Position position) const;
    Range RangeOfBytes(std::size_t begin, std::size_t end) const;

private:
    // The number of units at the start of the first line that the editor's text lacks.
    std::size_t HiddenUnits(const Line& line) const;
    Position PositionOf(std::size_t offset) const;

    std::string uri;
    std::string bytes;
    LineMap lines;
    bool showsMark = false;  // the editor's text begins with a mark
    mutable std::optional<TextDocument> document;
};

}  // namespace tool::lsp
