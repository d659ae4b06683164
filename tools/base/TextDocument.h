#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/base/Text.h"

namespace tool {

// A text dictionary for editing. It finds entries as the loader does. Every byte that no edit
// replaces stays as it is: encoding, byte-order mark, line ends, comments, order.
// Units:     positions and lengths of parts are UTF-16 units of their line.
// Edits:     only Bytes() includes them. All other members continue to describe the file as it was
//            read, so indexes and views stay valid. Each part of a line can be replaced once.
// Encodings: a character that the file's encoding lacks is written as its number ("#{U+20AC}") in a
//            value and as "?" in a comment. A key that contains one cannot be inserted.
// Costs:     reading is linear, like the loader's. Edits are cheap; Bytes() is linear.
// Threads:   none.
class TextDocument {
public:
    enum class Kind : std::uint8_t {
        kEntry,
        kMalformed,  // begins with "$" but not with "$$$"
        kLost        // bytes that are not text of the encoding: the loader skips the line
    };
    struct Part {
        std::size_t begin = 0;
        std::size_t length = 0;
    };
    // A line that is not empty.
    struct Line {
        Kind kind = Kind::kEntry;
        bool quoted = false;       // has both quotation marks, and so room for comments
        bool blankBefore = false;  // an empty line precedes it
        std::uint64_t number = 0;  // as an editor counts, from 1
        std::string key;           // the bytes that the loader keeps, without "$$$"; for an entry
        // For an entry. Comments are empty unless the line is quoted.
        Part entry;   // between the marks: "$$$", key, "=", value
        Part value;   // as written
        Part before;  // the comment before the opening mark, without a byte-order mark
        Part after;   // the comment after the closing mark

    private:
        friend TextDocument;
        std::size_t unitsAt = 0;  // in `units`
        std::size_t unitCount = 0;
        std::size_t begin = 0;  // bytes of the source: of the line, including a byte-order mark,
        std::size_t end = 0;    // of its line end,
        std::size_t next = 0;   // and after that
    };

    explicit TextDocument(std::string bytes);
    TextDocument(TextDocument&&) = default;
    TextDocument& operator=(TextDocument&&) = default;
    ~TextDocument() = default;

    const std::vector<Line>& Lines() const { return lines; }
    // The line that a look-up of the key finds: the last one.
    std::optional<std::size_t> Find(std::string_view key) const;
    // UTF-16 with its byte-order mark, or else 8-bit text in the default encoding.
    bool IsUtf16() const { return unitSize == 2; }
    // Whether the loader reads the file to its end. A zero byte or unit ends it early.
    bool IsComplete() const { return complete; }

    // Views into the document. Units of a whole line include a byte-order mark.
    Units UnitsOfLine(const Line& line) const { return {&units[line.unitsAt], line.unitCount}; }
    Units UnitsOfPart(const Line& line, Part part) const {
        return UnitsOfLine(line).subspan(part.begin, part.length);
    }
    Units Value(const Line& line) const { return UnitsOfPart(line, line.value); }
    Text Converted(const Line& line) const;
    std::string Comment(const Line& line, Part part) const;  // UTF-8

    // Edits. A line to insert has no line end and gets that of the file. An empty one is an empty
    // line.
    void SetValue(const Line& line, Units written);
    // `part` is `before` or `after` of the line, which is quoted.
    void SetComment(const Line& line, Part part, std::string_view utf8);
    void Remove(const Line& line);
    // Several lines at one place are in the order of the calls.
    void InsertBefore(const Line& line, Units inserted);
    void InsertAfter(const Line& line, Units inserted);
    void Append(Units inserted);  // after the last line

    bool HasEdits() const { return !edits.empty(); }
    std::string Bytes() const;
    // The same with empty lines for those that are not wanted. Lines keep their numbers.
    std::string BytesOf(const std::function<bool(const Line&)>& isWanted) const;
    // An empty document of the same encoding, mark and line end, for entries moved from this one.
    TextDocument EmptyLikeThis() const;

private:
    struct Edit {
        std::size_t begin;
        std::size_t end;
        std::string bytes;
    };

    void Parse(Line& line);
    unsigned UnitAt(std::size_t at) const;
    std::size_t PassLineEnd(std::size_t at) const;
    std::size_t OffsetOf(const Line& line, std::size_t unit) const;
    void Replace(const Line& line, Part part, std::string bytes);
    std::string BytesWith(const std::vector<Edit>& all) const;
    std::string Encoded(Units text) const;
    std::string EncodedValue(Units written) const;
    std::string EncodedLine(Units line) const;

    std::string source;
    std::size_t markSize = 0;  // bytes of the byte-order mark
    std::size_t unitSize = 1;
    bool bigEndian = false;
    bool complete = true;
    std::string lineEnd;  // as in the file
    std::vector<unsigned short> units;
    std::vector<Line> lines;
    std::unordered_map<std::string_view, std::size_t> byKey;
    std::vector<Edit> edits;
};

// Reads a file for editing. Throws a Failure for one of which the loader would not read every line:
// an edit would see only some of its entries.
TextDocument ReadTextDocument(const std::string& name);
// The same for bytes that were already read.
TextDocument ParseTextDocument(const std::string& name, std::string bytes);

// The file in which `update` keeps removed entries: "de.txt" -> "de.obsolete.txt".
std::string ObsoleteName(const std::filesystem::path& name);
bool IsObsoleteName(const std::filesystem::path& name);

}  // namespace tool
