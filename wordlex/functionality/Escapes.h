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
    unsigned short codePoint;    // what the name stands for; 0 for the control words
};

// The first rows of charEntityReference, which do more than stand for a character. They are
// recognised by their place in the table.
enum class ControlWord { kEndl, kComment, kCopyYear, kMsWindows, kIos, kAndroid, kMacos };

// The names of #{name}: the control words, "tab", "cr", "lf", then the Latin-1 and the special
// entity sets of HTML 4.01 (sections 24.2 and 24.4), ended by a row without a name. Made when the
// library is loaded, never freed.
const CharEntityReferencePair* charEntityReference();
// The prefixes of #{number}: "U+", "u" and none.
const CharEntityReferencePair* charEntityReferenceCharByCodePoint();

// A new array, owned by the caller (array delete): the low 16 bits of every character, and a 0.
unsigned short* MakeChar16(const wchar_t* text);

// An escape of one unit after '\' or '^'.
struct EscapeTableEntry {
    unsigned short escape;       // the unit after the escape character; 0 ends a table
    unsigned short replacement;  // what the two units become
};

// Receives what the conversion of a written value meets, in the order of the text: first '\' and
// '^', then the entities. Positions and lengths are units of the written value.
class EscapeObserver {
public:
    virtual ~EscapeObserver() = default;
    // An escape character and the unit after it, 0 at the text's end. Without a replacement (0)
    // both stay, or one of a doubled character.
    virtual void OnUnitEscape(std::size_t position, unsigned short escape, unsigned short unit,
                              unsigned short replacement) = 0;
    // "#{" that begins no entity.
    virtual void OnNoEntity(std::size_t position) = 0;
    // Text that a section or a comment keeps out of the value. A macOS section drops what stands
    // directly before it: the text for every platform, from 0 on, or another macOS section.
    virtual void OnDropped(std::size_t position, std::size_t length, ControlWord by) = 0;
    // The last call: for each unit of the converted value, the position of what it was written as.
    virtual void OnConverted(std::span<const std::size_t> /*origins*/) {}
};

// The conversion of written values to the text that they stand for, in two passes: first the
// escapes of one unit after '\' or '^', then, on the result, the entities: #{name}, #{U+hex}, and
// sections for other platforms, which are dropped. Sequences that are no escape stay as they are.
// Threads: the first conversion of the process settles the table of '^' for all threads.
class Escapes {
public:
    using Units = std::span<const unsigned short>;

    // Both passes. Most values have no escapes: the result is then `written` itself, and costs no
    // allocation. Otherwise the result lies in `room`.
    static Units Convert(Units written, std::vector<unsigned short>& room);
    static UnicodeRun Convert(Units written);
    // Shares the run when it has no escapes.
    static UnicodeRun Convert(const UnicodeRun& written);
    // The same for 8-bit text whose bytes are units. The run has room; see UnicodeRun.
    static UnicodeRun ConvertLatin1(std::span<const unsigned char> written);
    // Reports what it meets.
    static UnicodeRun Convert(Units written, EscapeObserver& observer);
    // The second pass alone.
    static UnicodeRun ConvertEntities(Units text);

    // The replacement of `unit`, or 0.
    static unsigned short Lookup(const EscapeTableEntry* table, unsigned short unit);
    // The tables of '\' and '^'. lexon::EnableQuorvHatEscapes chooses the latter when it is first
    // asked for.
    static const EscapeTableEntry* Backslash();
    static const EscapeTableEntry* Hat();

    // The row whose name begins the text, or null.
    static const CharEntityReferencePair* FindName(Units text);
    // The prefix row of the number that begins the text, or null when there are no digits. Sets the
    // number, of at most four hexadecimal digits, and the units of prefix and digits.
    static const CharEntityReferencePair* FindNumber(Units text, unsigned long& number,
                                                     unsigned long& consumed);
};

}  // namespace lexon_private
