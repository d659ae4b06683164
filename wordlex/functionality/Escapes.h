#pragma once
#include <cstddef>
#include <span>
#include <vector>

#include "wordlex/functionality/UnicodeRun.h"

namespace lexon_private {

// A named escape of the entity form #{name}.
struct CharEntityReferencePair {
    unsigned long length;        // units of the name
    const unsigned short* name;  // terminated by 0; null in the row that ends a table
    unsigned short codePoint;    // the character; 0 for the control words
};

// The first rows of charEntityReference, which are more than a character. They are recognised by
// their place in the table.
enum class ControlWord { kEndl, kComment, kCopyYear, kMsWindows, kIos, kAndroid, kMacos };

// The names of #{name}: the control words, "tab", "cr", "lf", then the Latin-1 and the special
// entity sets of HTML 4.01 (sections 24.2 and 24.4). A row without a name ends the table. Made when
// the library is loaded, never freed.
const CharEntityReferencePair* charEntityReference();
// The prefixes of #{number}: "U+", "u" and none.
const CharEntityReferencePair* charEntityReferenceCharByCodePoint();

// A new array, owned by the caller (array delete): the low 16 bits of every character, and a 0.
unsigned short* MakeChar16(const wchar_t* text);

// An escape of one unit after '\' or '^'.
struct EscapeTableEntry {
    unsigned short escape;       // the unit after the escape character; 0 ends a table
    unsigned short replacement;  // replaces the two units
};

// Receives events of a conversion in the order of the text: first for '\' and '^', then for the
// entities. Positions and lengths are units of the written value.
class EscapeObserver {
public:
    virtual ~EscapeObserver() = default;
    // An escape character and the unit after it, 0 at the text's end. Without a replacement (0)
    // both stay, or one of a doubled character.
    virtual void OnUnitEscape(std::size_t position, unsigned short escape, unsigned short unit,
                              unsigned short replacement) = 0;
    // "#{" that does not begin an entity.
    virtual void OnNoEntity(std::size_t position) = 0;
    // Text that a section or a comment keeps out of the value. A macOS section drops the text
    // directly before it: the text for every platform, from 0 on, or another macOS section.
    virtual void OnDropped(std::size_t position, std::size_t length, ControlWord by) = 0;
    // The last call: for each unit of the converted value, the position of its written form.
    virtual void OnConverted(std::span<const std::size_t> /*origins*/) {}
};

// Converts written values to their text, in two passes: first the escapes of one unit after '\' or
// '^', then, on the result, the entities: #{name}, #{U+hex}, and sections for other platforms,
// which are dropped. Other sequences stay as they are.
// Threads: the first conversion of the process settles the table of '^' for all threads.
class Escapes {
public:
    using Units = std::span<const unsigned short>;

    // Both passes. Most values have no escapes: the result is then `written` itself, without an
    // allocation. Otherwise the result is in `room`.
    static Units Convert(Units written, std::vector<unsigned short>& room);
    static UnicodeRun Convert(Units written);
    // Shares the run when it has no escapes.
    static UnicodeRun Convert(const UnicodeRun& written);
    // The same for 8-bit text whose bytes are units. The run has room; see UnicodeRun.
    static UnicodeRun ConvertLatin1(std::span<const unsigned char> written);
    // Reports to the observer.
    static UnicodeRun Convert(Units written, EscapeObserver& observer);
    // Only the second pass.
    static UnicodeRun ConvertEntities(Units text);

    // The replacement of `unit`, or 0.
    static unsigned short Lookup(const EscapeTableEntry* table, unsigned short unit);
    // The tables of '\' and '^'. lexon::EnableQuorvHatEscapes decides about the latter at its first
    // use.
    static const EscapeTableEntry* Backslash();
    static const EscapeTableEntry* Hat();

    // The row whose name begins the text, or null.
    static const CharEntityReferencePair* FindName(Units text);
    // The prefix row of the number at the start of the text, or null without digits. Sets the
    // number, of at most four hexadecimal digits, and the length of prefix and digits in units.
    static const CharEntityReferencePair* FindNumber(Units text, unsigned long& number,
                                                     unsigned long& consumed);
};

}  // namespace lexon_private
