#pragma once

#include <memory>
#include <span>
#include <vector>

#include "host/CoreFoundation/CoreFoundation.h"

struct UConverter;

namespace host::cf {

enum class Form { kUtf8, kUtf16Big, kUtf16Little, kAscii, kLatin1, kTable };

struct Encoding {
    CFStringEncoding number;
    Form form;
    const char* converter;  // ICU's name; null when no locale can have it as its codeset
};

// Converts one encoding. The first character that is not ASCII opens ICU's converter. It is not
// kept for the next call: opening it costs little compared with converting.
//
// Owns:     its ICU converter.
// Threads:  none; made for one call.
// Failure:  std::bad_alloc; std::runtime_error when ICU lacks the converter's data.
class Codec {
public:
    explicit Codec(CFStringEncoding number);

    // Appends the text of all the bytes; false when they are not valid.
    bool Decode(std::span<const UInt8> bytes, std::vector<UniChar>& text);

    static constexpr int kMaxBytes = 8;  // of one character in any encoding
    // Writes one character, or one unpaired surrogate. Returns the number of bytes, 0 when the
    // encoding lacks it.
    int Encode(char32_t character, UInt8 (&bytes)[kMaxBytes]);

private:
    bool DecodeUtf8(std::span<const UInt8> bytes, std::vector<UniChar>& text);
    bool DecodeUtf16(std::span<const UInt8> bytes, std::vector<UniChar>& text) const;
    bool DecodeTable(std::span<const UInt8> bytes, std::vector<UniChar>& text);
    int EncodeTable(char32_t character, UInt8 (&bytes)[kMaxBytes]);
    UConverter* Converter();

    struct Close {
        void operator()(UConverter* open) const noexcept;
    };
    const Encoding& encoding;
    std::unique_ptr<UConverter, Close> converter;
};

}  // namespace host::cf
