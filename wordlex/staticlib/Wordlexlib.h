#pragma once
// The public face of the Wordlex library: localization dictionaries and UTF-16 strings.
//
// This is the only header that code outside wordlex/ includes. Both classes are handles: each owns
// exactly one private object of the same name on the heap and forwards every call to it.
//
// Units:    text is UTF-16 in host byte order; lengths are counts of 16-bit units unless a name or
//           comment says bytes. Keys are byte strings, compared exactly.
// Keys:     "$$$/Path/Name=Default text". The "$$$" may be left out; the key ends at the first "=".
//           A null or empty key, or one that begins with "$" but not with "$$$", is no key: the
//           call gives its failure value.
// Failure:  look-ups and edits report it by value: an empty string, false, null or all bits set.
//           lexon::ASErrException is thrown for conversion errors, and for short destinations where
//           the caller asked for it. Exhausted memory throws std::bad_alloc.
// Threads:  nothing locks. Even const members of a dictionary write scratch state, and shared text
//           is counted in plain integers, the empty text of all strings among it: one lock guards
//           the whole library.

#include <cstdint>
#include <exception>
#include <iosfwd>

namespace lexon_private {
class Dictionary;
class Wordlex;
}  // namespace lexon_private

// The version of the library, "5.1". Static storage.
const char* WLLibraryVersion() noexcept;

// Does nothing. Whoever includes this header calls it once at load time (below), so that code built
// against this interface links only with a library that has it.
void WordlexLibVersion_5_1() noexcept;

namespace lexon {

namespace detail {
[[maybe_unused]] static const bool kLinkedWithVersion_5_1 = (WordlexLibVersion_5_1(), true);
}

// Selects the 8-bit encoding of a conversion: 1 is UTF-8, any other value the system's default
// 8-bit encoding. A null pointer to one means the library's default.
struct EncodingInfo {
    std::uint32_t selector = 0;
};

// Byte order of written dictionaries.
enum class EndianT : int { kBig = 0, kLittle = 1, kHost = 2 };

// Kind of output of a dictionary. A compact store writes nothing behind the byte-order mark for
// kNothing, a hash-table dictionary text. kBinaryNoKeys leaves the keys of a compact store out.
enum class SaveType : int { kBinary = 0, kNothing = 1, kText = 2, kBinaryNoKeys = 3 };

// When set before the first conversion of the process, "^e" in dictionary texts becomes U+00E9.
extern bool EnableQuorvHatEscapes;

// The library's exception. Codes of the library's own are four-character codes; any other value is
// the status of a conversion procedure.
class ASErrException : public std::exception {
public:
    static constexpr std::int64_t kBadParameter = 0x5041524D;  // 'PARM': bad parameter, dead value
    static constexpr std::int64_t kShortBuffer = 0x42554646;   // 'BUFF': destination missing, short

    explicit ASErrException(std::int64_t code) noexcept;
    std::int64_t GetCode() const noexcept { return code; }
    const char* what() const noexcept override;  // names the code: "Wordlex error 'BUFF'"

private:
    std::int64_t code;
    char message[48];
};

// Handle to one UTF-16 string. Copies share the text; changing one never shows in another.
class Wordlex {
public:
    Wordlex();
    // The text of `key` in the registry's dictionary number `which`; falls back as Lookup does.
    Wordlex(const char* key, unsigned long which, const EncodingInfo* encoding);
    // The text of the numeric `id` in the registry's dictionary number `which`.
    Wordlex(unsigned int id, unsigned long which, const EncodingInfo* encoding);
    explicit Wordlex(long value);  // the decimal digits of `value`
    explicit Wordlex(const lexon_private::Wordlex& text);
    Wordlex(const Wordlex& other);
    Wordlex& operator=(const Wordlex& other);
    ~Wordlex();

    // Replace the held string by a copy of the given text. When the conversion throws, the string
    // is empty afterwards. `MakeFromPascalString` reads `count` bytes behind the count byte.
    void MakeFromUnicode(const unsigned short* units, unsigned long count);
    void MakeFromCString(const char* bytes, unsigned long count, EncodingInfo* encoding);
    void MakeFromPascalString(const unsigned char* text, unsigned long count,
                              EncodingInfo* encoding);
    // The same from text that carries its own length: up to a 0 unit, up to a NUL, or counted by
    // its first byte. When the conversion throws, the string is as it was.
    void AssignUnicode(const unsigned short* units);
    void AssignCString(const char* text, EncodingInfo* encoding);
    void AssignPascalString(const unsigned char* text, EncodingInfo* encoding);

    // Copy the text out. Sizes and capacities count units for UTF-16 and bytes for 8-bit text. The
    // UTF-16 forms copy what fits; with `throwIfTooSmall` a short destination then raises 'BUFF'.
    // The 8-bit forms cut silently. A null destination raises it in either form, when asked for.
    unsigned long GetUnicodeSize() const;  // length + 1, never 0
    void GetUnicode(unsigned short* destination, unsigned long capacity,
                    bool throwIfTooSmall) const;
    unsigned long GetUnicodeSizeNoNull() const;  // length
    void GetUnicodeNoNull(unsigned short* destination, unsigned long capacity,
                          bool throwIfTooSmall) const;
    unsigned long GetCStringSize(EncodingInfo* encoding) const;  // bytes with the terminator
    void GetCString(char* destination, unsigned long capacity, bool throwIfTooSmall,
                    EncodingInfo* encoding) const;
    unsigned long GetPascalStringSize(EncodingInfo* encoding) const;  // bytes with the count byte
    void GetPascalString(unsigned char* destination, unsigned long capacity, bool throwIfTooSmall,
                         EncodingInfo* encoding) const;
    // Borrows the shared units, not terminated; valid while this string keeps its text.
    void GetInternalData(const unsigned short** units, unsigned long* length) const;

    // Replaces the first, or the `occurrence`-th (from 1), tag <param name="NAME"/>; false and
    // unchanged when there is none.
    bool ParamSubstitute(const char* name, const Wordlex& value);
    bool ParamSubstitute(const char* name, const Wordlex& value, int occurrence);
    // Markers: '^' and the digit character of n (U+0030 + n).
    bool WillReplace(unsigned char n) const;
    void Replace(unsigned char n, const Wordlex& value);

    // Order by the library's compare procedure: negative, 0 or positive.
    int CompareTo(const Wordlex& other) const;
    bool operator==(const Wordlex& other) const;
    bool operator!=(const Wordlex& other) const;
    bool operator<(const Wordlex& other) const;
    bool operator<=(const Wordlex& other) const;
    bool operator>(const Wordlex& other) const;
    bool operator>=(const Wordlex& other) const;

    void Clear();
    bool IsAllWhiteSpace() const;  // true for the empty string
    bool IsEmpty() const;
    bool ToInteger(long& result) const;  // false when a unit is no digit; digits still counted
    void TrimBlanks();                   // leading and trailing U+0020
    void TrimEllipsis();                 // one trailing "..." or U+2026
    void EllipsisToHostEllipsis();       // leaves the text as it is on this platform
    void RemoveAccelerators();           // '&', "(&X)", and all from a space-backspace pair on
    void RemoveBadFilenameCharacters();  // ':' becomes '-'
    bool RemoveExtension();              // cuts at the last '.'; false when there is none

    // Sets the platform encoding number that conversions without a selector use.
    static void SetDefaultApplicationEncoding(unsigned int encoding);

private:
    lexon_private::Wordlex* text;  // owned, never null
};

// Handle to one dictionary, empty and valid when made.
class Dictionary {
public:
    Dictionary();                       // hash-table store
    explicit Dictionary(bool compact);  // true: compact store, with ids, Add and Remove
    explicit Dictionary(const lexon_private::Dictionary& other);
    // A copy of a compact dictionary shares its store; a copy of a hash-table dictionary is empty.
    Dictionary(const Dictionary& other);
    Dictionary& operator=(const Dictionary& other);
    ~Dictionary();

    // Frees a text from GetStringId or NextKey() and sets the caller's pointer to null.
    void Release(char** text);

    // The value of the key here, else in the main dictionary, else the key's default text with its
    // escapes converted, else the empty string. `encoding` is that of the default text; null or
    // selector 0 takes each byte as the unit of the same value.
    Wordlex Lookup(const char* key, const EncodingInfo* encoding);
    Wordlex Lookup(unsigned long id, const EncodingInfo* encoding);
    // The stored value in place, here or in the main dictionary; valid until that dictionary
    // changes. `units` is null when the result is false. Never the default text.
    bool LookupReturnUTF16Ptr(const char* key, const unsigned short*& units, unsigned long& length);
    bool LookupReturnUTF16Ptr(unsigned long id, const unsigned short*& units,
                              unsigned long& length);
    unsigned long GetNumericId(const char* key);  // all bits set when there is none
    char* GetStringId(unsigned long id);          // new text or null; free with Release
    Wordlex Accelerator(const char* key, const EncodingInfo* encoding);
    Wordlex Accelerator(unsigned int id, const EncodingInfo* encoding);

    // Compact store only. Adds the key, or changes its value; the value is stored as it is. Gives
    // the id, or all bits set.
    unsigned long Add(const char* key, const unsigned short* value, unsigned long valueLength,
                      const EncodingInfo* encoding, const unsigned short* accelerator,
                      unsigned long acceleratorLength);
    unsigned long Remove(const char* key);
    unsigned long Remove(unsigned long id);

    Wordlex Locale();               // the locale's name; empty when there is none
    void Locale(const char* name);  // compact store only; null and "" change nothing

    bool ValidId(unsigned long id);
    bool HasKey(const char* key, const EncodingInfo* encoding);  // here, not in the main dictionary
    unsigned long NumKeys();

    // Enumeration: while HasMoreKey(), take the key from one of the NextKey forms. Keys must not be
    // added or removed meanwhile.
    bool HasMoreKey();
    bool ReSetKeyEnumeration();  // false for a hash-table dictionary
    bool NextKey(char* buffer, unsigned long size, bool throwIfTooSmall);
    char* NextKey();  // compact store only; new text or null; free with Release

    // Adds what a dictionary holds, text or binary, to this one; malformed content makes the
    // dictionary invalid for good. The stream must be able to move back to its start. `copyKeys`
    // false lets keys of old binary images be borrowed from `data`, which must then outlive this.
    void Read(std::istream* stream);
    void Read(const char* data, int size, bool copyKeys);

    void SetAsMain();
    bool IsValid() const;

    // Write the dictionary; the result is a count of written bytes, not the size of the file. The
    // stream's state tells of failed writes. The short form writes version 2 in host order when
    // `binary`, else text; `idBase`, of which 32 bits count, is the id that a written image gives
    // its first entry.
    unsigned int Serialize(std::ostream& out, bool binary, const EncodingInfo* encoding) const;
    unsigned int Serialize(std::ostream& out, SaveType type, const EncodingInfo* encoding,
                           EndianT order, unsigned long idBase) const;

private:
    lexon_private::Dictionary* dictionary;  // owned, never null
};

}  // namespace lexon
