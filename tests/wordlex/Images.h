#pragma once
// Binary dictionaries for tests, written as bytes: nothing here comes from the code under test.
#include <sstream>
#include <string>
#include <string_view>

namespace wordlex_tests {

// Bytes from hexadecimal pairs and 'characters as they are'; blanks are ignored.
inline std::string Hex(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ' ') {
            ++i;
        } else if (text[i] == '\'') {
            const std::size_t end = text.find('\'', i + 1);
            bytes += text.substr(i + 1, end - i - 1);
            i = end + 1;
        } else {
            bytes += static_cast<char>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16));
            i += 2;
        }
    }
    return bytes;
}

// All contain "/A" = "Hi" and "/B" = U+20AC, whose slots are 0x224 and 0x225. Version 2 files also
// contain the locale "fr_FR", those with keys the accelerator "B" of "/B".
inline constexpr std::string_view kMagic = "'Wordlex Binary Format'";
inline constexpr std::string_view kLittleLocale = "05000000 'fr_FR'";
inline constexpr std::string_view kBigLocale = "00000005 'fr_FR'";
inline constexpr std::string_view kLittleBody =
    "00000000 'Y' 02000000 02000000 02000000 04000000 06000000"  // base, flag, n, live, s, K, V
    "00000000 02000000 0200 0200  00000000 04000000 0400 0200"   // keys, values: offsets, lengths
    "'/A' '/B'  4800 6900 AC20"                                  // areas
    "2402 2502  01000000 01000000  00000000 01000000"            // slots, sizes, ids
    "01000000 02000000 01000000 00000000 0200 4200";             // accelerators
inline constexpr std::string_view kBigBody =
    "00000000 'Y' 00000002 00000002 00000002 00000004 00000006"
    "00000000 00000002 0002 0002  00000000 00000004 0004 0002"
    "'/A' '/B'  0048 0069 20AC"
    "0224 0225  00000001 00000001  00000000 00000001"
    "00000001 00000002 00000001 00000000 0002 0042";
inline constexpr std::string_view kBodyWithoutKeys =
    "00000000 'N' 02000000 02000000 02000000 06000000"
    "00000000 04000000 0400 0200  4800 6900 AC20"
    "01000000 02000000 01000000 00000000 0200 4200";
inline constexpr std::string_view kBigBodyWithoutKeys =
    "00000000 'N' 00000002 00000002 00000002 00000006"
    "00000000 00000004 0004 0002  0048 0069 20AC"
    "00000001 00000002 00000001 00000000 0002 0042";

// A whole file, from its parts after the magic.
inline std::string File(std::string_view head, std::string_view locale, std::string_view body) {
    return Hex(kMagic) + Hex(head) + Hex(locale) + Hex(body);
}

inline const std::string kLittleFile = File("02 07 00 00", kLittleLocale, kLittleBody);
inline const std::string kBigFile = File("02 07 00 01", kBigLocale, kBigBody);
inline const std::string kFileWithoutKeys = File("02 07 00 00", kLittleLocale, kBodyWithoutKeys);
inline const std::string kBigFileWithoutKeys = File("02 07 00 01", kBigLocale, kBigBodyWithoutKeys);
inline const std::string kVersion20File = File("02 00 00", kLittleLocale, kLittleBody);
inline const std::string kVersion15File =
    File("01 05 00", "",
         "00000002 00000002 00000004"            // buckets, their ends in the lengths
         "00000002 00000004 00000002 00000002"   // lengths of keys and values
         "0224 0225 '/A' 0048 0069 '/B' 20AC");  // slots, entries
inline const std::string kVersion15Utf8File =
    File("01 05 01", "",
         "00000002 00000002 00000004 00000002 00000002 00000002 00000003 0224 0225"
         "'/A' 'Hi' '/B' E282AC");
inline const std::string kVersion10File =
    File("01 00 00", "",
         "0300  2402 00000000  2502 16000000  0000 2A000000"  // records: slot, start; the end
         "0200000000000000 '/A' 0400000000000000 48006900"
         "0200000000000000 '/B' 0200000000000000 AC20");

// A stream buffer that cannot seek, like a pipe.
struct PipeBuffer : std::stringbuf {
    using std::stringbuf::stringbuf;
    pos_type seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) override {
        return pos_type(off_type(-1));
    }
};

}  // namespace wordlex_tests
