#pragma once
// The public face of the Wordlex library: localization dictionaries and UTF-16 strings.
//
// This is the only header that code outside wordlex/ includes. Both classes are handles: each owns
// exactly one private object of the same name on the heap and forwards every call to it.
//
// Units:    text is UTF-16 in host byte order. Lengths count 16-bit units unless a name or comment
//           says bytes. Keys are byte strings and are compared exactly.
// Keys:     "$$$/Path/Name=Default text". The "$$$" may be left out; the key ends at the first "=".
//           A null or empty key is not valid, nor is one that begins with "$" but not with "$$$":
//           the call returns its failure value.
// Null:     a null text is read as the empty text, and a null name or result pointer makes the call
//           do nothing, unless a member says otherwise.
// Failure:  look-ups and edits report it by value: an empty string, false, null or all bits set.
//           lexon::ASErrException is thrown for conversion errors, and for short destinations where
//           the caller asked for it. Exhausted memory throws std::bad_alloc.
// Encoding: converting to 8-bit text writes "?" for a character that the encoding lacks. Converting
//           bytes that are not valid in the encoding returns the empty string. Neither is an error.
// Threads:  nothing locks. Even const members of a dictionary write scratch state, and reference
//           counts are plain integers. All empty strings share one count, so one lock must guard
//           the whole library.

#include <cstdint>
#include <exception>
#include <iosfwd>
#include <type_traits>

namespace lexon_private {
class Dictionary;
class Wordlex;
}  // namespace lexon_private

// The version of the library, "5.1". Static storage.
const char* WLLibraryVersion() noexcept;

// Does nothing. Each source that includes this header calls it once at load time (below), so that
// code built against this interface links only with a library that has it.
void WordlexLibVersion_5_1() noexcept;

namespace lexon {

namespace detail {
[[maybe_unused]] static const bool kLinkedWithVersion_5_1 = (WordlexLibVersion_5_1(), true);
}

// Selects the 8-bit encoding of a conversion: kUtf8, or with any other value the encoding of the
// environment's locale. A null pointer to one means the library's default: what
// Wordlex::SetDefaultApplicationEncoding set, else the encoding of the environment's locale.
// The default texts of keys are the exception: for them null and selector 0 mean Latin-1.
struct EncodingInfo {
    static constexpr std::uint32_t kUtf8 = 1;
    std::uint32_t selector = 0;
};

// Numbers for Wordlex::SetDefaultApplicationEncoding. They are the platform's own (CoreFoundation's
// CFStringEncoding); any other number of the platform may be given as well.
namespace encodings {
inline constexpr unsigned int kMacRoman = 0x0000;
inline constexpr unsigned int kLatin1 = 0x0201;           // ISO 8859-1
inline constexpr unsigned int kLatin2 = 0x0202;           // ISO 8859-2
inline constexpr unsigned int kLatin9 = 0x020F;           // ISO 8859-15
inline constexpr unsigned int kWindowsLatin1 = 0x0500;    // code page 1252
inline constexpr unsigned int kWindowsLatin2 = 0x0501;    // code page 1250
inline constexpr unsigned int kWindowsCyrillic = 0x0502;  // code page 1251
inline constexpr unsigned int kAscii = 0x0600;
inline constexpr unsigned int kShiftJis = 0x0A01;
inline constexpr unsigned int kKoi8R = 0x0A02;
inline constexpr unsigned int kBig5 = 0x0A03;
inline constexpr unsigned int kGb18030 = 0x0632;
inline constexpr unsigned int kEucKr = 0x0940;
inline constexpr unsigned int kUtf8 = 0x08000100;
inline constexpr unsigned int kNotSet = 0xFFFFFFFF;  // back to the environment's locale
}  // namespace encodings

// Byte order of written dictionaries.
enum class EndianT : int { kBig = 0, kLittle = 1, kHost = 2 };

// Kind of output of a dictionary. For kNothing a compact store writes nothing after the byte-order
// mark, a hash-table dictionary writes text. kBinaryNoKeys leaves out the keys of a compact store.
enum class SaveType : int { kBinary = 0, kNothing = 1, kText = 2, kBinaryNoKeys = 3 };

// When set before the first conversion of the process, "^e" in dictionary texts becomes U+00E9.
extern bool EnableQuorvHatEscapes;

// The library's exception. The library's own codes are four-character codes; any other value is the
// status of a conversion procedure.
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
    // Takes the text; `text` can then only be assigned to and destroyed, even after an exception.
    explicit Wordlex(lexon_private::Wordlex&& text);
    Wordlex(const Wordlex& other);
    Wordlex& operator=(const Wordlex& other);
    ~Wordlex();

    // Replace the held string by a copy of the given text. When the conversion throws, the string
    // is empty afterwards. `MakeFromPascalString` reads `count` bytes after the count byte. A null
    // text makes the string empty for any count.
    void MakeFromUnicode(const unsigned short* units, unsigned long count);
    void MakeFromCString(const char* bytes, unsigned long count, EncodingInfo* encoding);
    void MakeFromPascalString(const unsigned char* text, unsigned long count,
                              EncodingInfo* encoding);
    // The same from text that carries its own length: up to a 0 unit, up to a NUL, or counted by
    // its first byte. When the conversion throws, the string is as it was.
    void AssignUnicode(const unsigned short* units);
    void AssignCString(const char* text, EncodingInfo* encoding);
    void AssignPascalString(const unsigned char* text, EncodingInfo* encoding);

    // Copy the text out. Sizes and capacities count units for UTF-16 and bytes for 8-bit text; a
    // capacity is at least 1. The UTF-16 forms copy what fits; with `throwIfTooSmall` a short
    // destination then raises 'BUFF'. The 8-bit forms cut a long text and never raise 'BUFF' for a
    // short destination, whatever `throwIfTooSmall` says. A null destination raises 'BUFF' in all
    // forms when `throwIfTooSmall` is set, and is left alone otherwise.
    // A Pascal string has at most 255 bytes: give GetPascalString a capacity of 256 or less, since
    // its count byte keeps the low eight bits of a longer length.
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
    // Borrows the shared units, not terminated; valid while this string keeps its text. `units` is
    // set to null for the empty string. A null argument is not set.
    void GetInternalData(const unsigned short** units, unsigned long* length) const;

    // Replaces the first, or the `occurrence`-th (from 1), tag <param name="NAME"/>. Returns false
    // and changes nothing when there is no such tag or `name` is null.
    bool ParamSubstitute(const char* name, const Wordlex& value);
    bool ParamSubstitute(const char* name, const Wordlex& value, int occurrence);
    // Markers: '^' and the digit character of n (U+0030 + n). `n` is the number 0 to 9, not its
    // character: Replace(1, ...) replaces "^1", and Replace('1', ...) does not compile.
    bool WillReplace(unsigned char n) const;
    void Replace(unsigned char n, const Wordlex& value);
    template <class Character, std::enable_if_t<std::is_same_v<Character, char>, bool> = true>
    bool WillReplace(Character digit) const = delete;
    template <class Character, std::enable_if_t<std::is_same_v<Character, char>, bool> = true>
    void Replace(Character digit, const Wordlex& value) = delete;

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
    bool ToInteger(long& result) const;  // false when a unit is not a digit; skips such units
    void TrimBlanks();                   // leading and trailing U+0020
    void TrimEllipsis();                 // one trailing "..." or U+2026
    void EllipsisToHostEllipsis();       // leaves the text as it is on this platform
    void RemoveAccelerators();           // '&', "(&X)", and all from a space-backspace pair on
    void RemoveBadFilenameCharacters();  // ':' becomes '-'
    bool RemoveExtension();              // cuts at the last '.'; false when there is none

    // Sets the encoding that conversions without a selector use, 8-bit text dictionaries among
    // them: a number of lexon::encodings. For the whole process; set it before the first load.
    static void SetDefaultApplicationEncoding(unsigned int encoding);

private:
    lexon_private::Wordlex* text;  // owned, never null
};

// Handle to one dictionary, empty and valid when made.
// Const:    only IsValid and Serialize are const members. Look-ups are not, since they write
//           scratch state.
class Dictionary {
public:
    Dictionary();                       // hash-table store
    explicit Dictionary(bool compact);  // true: compact store, with ids, Add and Remove
    // A file's name does not convert to a flag: open the file, then call Read.
    template <class Character>
    explicit Dictionary(const Character* file) = delete;
    explicit Dictionary(const lexon_private::Dictionary& other);
    // A copy of a compact dictionary shares its store; a copy of a hash-table dictionary is empty.
    Dictionary(const Dictionary& other);
    // Takes over all entries; the main dictionary stays the main one. The moved-from dictionary may
    // only be assigned to or destroyed.
    Dictionary(Dictionary&& other) noexcept;
    Dictionary& operator=(const Dictionary& other);
    Dictionary& operator=(Dictionary&& other) noexcept;
    ~Dictionary();

    // Frees a text from GetStringId or NextKey() and sets the caller's pointer to null.
    void Release(char** text);

    // The value of the key here, else in the main dictionary, else the key's default text with its
    // escapes converted, else the empty string. `encoding` is that of the default text; null and
    // selector 0 mean Latin-1: each byte becomes the unit of the same value.
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

    // Compact store only. Adds the key, or changes its value; the value is stored as it is.
    // Returns the id, or all bits set.
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

    // Enumeration: HasMoreKey moves to the next key and returns false after the last one; the next
    // call starts again. Both NextKey forms return the key that HasMoreKey moved to, as often as
    // they are called. When a key is added or removed, the enumeration of a hash-table dictionary
    // ends, and that of a compact one continues by id.
    bool HasMoreKey();
    bool ReSetKeyEnumeration();  // false for a hash-table dictionary
    // Copies the key and a NUL. A buffer that is null or too small throws 'BUFF' or returns false.
    // Without a current key the result is true and the key empty (a compact store leaves the buffer
    // alone), so rely on HasMoreKey for the end.
    bool NextKey(char* buffer, unsigned long size, bool throwIfTooSmall);
    char* NextKey();  // compact store only; new text or null; free with Release

    // Add the entries of a dictionary file, text or binary, to this one. Malformed content makes
    // the dictionary invalid for good. The stream must be able to move back to its start. With
    // `copyKeys` false the keys of old binary images are borrowed from `data`, which must then
    // outlive this object.
    // Some inputs add nothing and still leave the dictionary valid: a stream that failed to open (a
    // missing file), a folder, a pipe, an empty file, and most version 2 files that are cut short.
    // To notice them, check the stream before the call, and IsValid() and NumKeys() after it.
    void Read(std::istream* stream);
    void Read(const char* data, int size, bool copyKeys);

    void SetAsMain();
    bool IsValid() const;

    // Write the dictionary. The result counts bytes of content, not the size of the file; the
    // stream's state reports failed writes. The short form writes version 2 in host order when
    // `binary`, else text. `idBase`, of which 32 bits count, is the id of the first entry of a
    // written image.
    unsigned int Serialize(std::ostream& out, bool binary, const EncodingInfo* encoding) const;
    unsigned int Serialize(std::ostream& out, SaveType type, const EncodingInfo* encoding,
                           EndianT order, unsigned long idBase) const;

private:
    lexon_private::Dictionary* dictionary;  // owned; null only after a move
};

}  // namespace lexon
