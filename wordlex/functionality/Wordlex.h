#pragma once
#include <cstdint>
#include <utility>

#include "wordlex/functionality/UnicodeRun.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

// The library's string: a UnicodeRun with text operations. Members that make a string from a raw
// buffer or copy it to one begin with BackDoor.
// Invariant: the shared units never change. An operation that changes the text makes a new value of
//            the exact size, fills it and releases the old one. If nothing changes, the value
//            stays.
// Equality:  of texts, by UnicodeUtil::Compare. Strings that share one value are equal without it.
// Units:     lengths and capacities count UTF-16 units, for 8-bit text bytes. Nothing inside is
//            terminated.
// Failure:   conversion errors throw ASErrException. After any exception, the string is as it was.
// Threads:   none, as UnicodeRun.
class Wordlex : public UnicodeRun {
public:
    Wordlex() = default;
    explicit Wordlex(UnicodeRun text) noexcept : UnicodeRun(std::move(text)) {}  // shares its value
    explicit Wordlex(long value);                                                // decimal digits
    Wordlex(const unsigned short* units, unsigned long count) : UnicodeRun(units, count) {}
    Wordlex(const unsigned char* bytes, unsigned long count, const lexon::EncodingInfo* encoding)
        : Wordlex(StringToPooledUnicode(bytes, count, encoding)) {}

    // The result of Dictionary::Lookup for a key or an id in the registry's dictionary number
    // `which`, including fall-backs.
    Wordlex(const char* key, unsigned long which, const lexon::EncodingInfo* encoding);
    Wordlex(unsigned int id, unsigned long which, const lexon::EncodingInfo* encoding);

    // A null text is the empty text. The pascal form reads `count` bytes after the first byte,
    // which it ignores.
    static Wordlex BackDoorMakeFromUnicode(const unsigned short* units, unsigned long count);
    static Wordlex BackDoorMakeFromCString(const char* bytes, unsigned long count,
                                           const lexon::EncodingInfo* encoding);
    static Wordlex BackDoorMakeFromPascalString(const unsigned char* text, unsigned long count,
                                                const lexon::EncodingInfo* encoding);
    // Text with its own length: up to a 0 unit, up to a NUL, or counted by its first byte.
    void BackDoorAssignUnicode(const unsigned short* text);
    void BackDoorAssignCString(const char* text, const lexon::EncodingInfo* encoding);
    void BackDoorAssignPascalString(const unsigned char* text, const lexon::EncodingInfo* encoding);
    // Bytes that are not valid text return the empty string.
    static Wordlex StringToPooledUnicode(const unsigned char* bytes, unsigned long count,
                                         const lexon::EncodingInfo* encoding);

    // The sizes count the terminator, or the count byte; the NoNull forms have none. A destination
    // that is too small gets what fits. Then, or when it is null, `throwIfTooSmall` throws 'BUFF';
    // the 8-bit forms throw it only for a null destination.
    unsigned long BackDoorGetUnicodeSize() const noexcept { return GetLength() + 1; }
    void BackDoorGetUnicode(unsigned short* destination, unsigned long capacity,
                            bool throwIfTooSmall) const;
    unsigned long BackDoorGetUnicodeSizeNoNull() const noexcept { return GetLength(); }
    void BackDoorGetUnicodeNoNull(unsigned short* destination, unsigned long capacity,
                                  bool throwIfTooSmall) const;
    unsigned long BackDoorGetCStringSize(const lexon::EncodingInfo* encoding) const;
    void BackDoorGetCString(char* destination, unsigned long capacity, bool throwIfTooSmall,
                            const lexon::EncodingInfo* encoding) const;
    unsigned long BackDoorGetPascalStringSize(const lexon::EncodingInfo* encoding) const;
    void BackDoorGetPascalString(unsigned char* destination, unsigned long capacity,
                                 bool throwIfTooSmall, const lexon::EncodingInfo* encoding) const;
    // The shared units, null when empty, and their count; valid while the value is held.
    void BackDoorGetInternalData(const unsigned short*& units,
                                 unsigned long& length) const noexcept;

    int CompareTo(const Wordlex& other) const;
    bool operator==(const Wordlex& other) const { return CompareTo(other) == 0; }
    bool operator!=(const Wordlex& other) const { return CompareTo(other) != 0; }
    bool operator<(const Wordlex& other) const { return CompareTo(other) < 0; }
    bool operator<=(const Wordlex& other) const { return CompareTo(other) <= 0; }
    bool operator>(const Wordlex& other) const { return CompareTo(other) > 0; }
    bool operator>=(const Wordlex& other) const { return CompareTo(other) >= 0; }

    bool IsAllWhiteSpace() const;  // true for the empty string
    // False when a unit after an ASCII sign is not a digit; the digits still count.
    bool ToInteger(long& result) const;

    // Markers: '^' directly followed by a digit character. A doubled '^' is not an escape.
    static unsigned short DigitCharacter(unsigned char n) noexcept {
        return static_cast<unsigned short>(u'0' + n);
    }
    bool WillReplace(unsigned char n) const;
    std::uint16_t CountHatOccurrences(unsigned short unit) const;  // 65535 for all numbers above it
    // Replaces every marker of n by `value`, in one pass: markers in `value` stay.
    void Replace(unsigned char n, const Wordlex& value);

    // Replaces the `occurrence`-th (from 1) tag < param name = "NAME" /> by `value`. Each shown
    // space is any number of spaces, also none. False and unchanged when there is no such tag.
    bool BackDoorParamSubstitute(const char* name, const Wordlex& value, int occurrence);

    void TrimBlanks();                         // U+0020 at both ends
    void TrimEllipsis();                       // one "..." or U+2026 at the end
    void EllipsisToHostEllipsis() noexcept {}  // the ellipsis of this platform is U+2026 itself
    // Removes '&' marks ("&&" becomes '&', '&' before a space stays), marks in parentheses
    // completely, and everything from the first space followed by a backspace on.
    void RemoveAccelerators();
    // The unit after the first mark that RemoveAccelerators removes, apart from "&&"; 0 when there
    // is none.
    unsigned short GetAccelerator() const noexcept;
    void ChangeNewLineCharacter();       // LF becomes CR
    void RemoveBadFilenameCharacters();  // ':' becomes '-'
    bool RemoveExtension();              // cuts at the last '.'; false when there is none

    // A platform encoding number, for conversions that have neither a selector nor a default.
    static void SetDefaultApplicationEncoding(unsigned int encoding);

private:
    void ChangeUnits(unsigned short from, unsigned short to);
};

// The keywords of the parameter tag, "param" and "name". Made at load or at their first use, also
// in another static initializer. Destroyed at process exit, after the objects that used them.
const Wordlex& wStrParam();
const Wordlex& wStrName();

}  // namespace lexon_private
