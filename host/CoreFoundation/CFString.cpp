#include <unicode/utf16.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <utility>

#include "host/CoreFoundation/Codec.h"
#include "host/CoreFoundation/Object.h"

using host::cf::Codec;

struct OpaqueCFAllocator {};

namespace {

constexpr OpaqueCFAllocator nullAllocator;

using Bytes = std::span<const UInt8>;

bool TakePrefix(Bytes& bytes, std::initializer_list<UInt8> prefix) {
    if (bytes.size() < prefix.size() || !std::equal(prefix.begin(), prefix.end(), bytes.begin()))
        return false;
    bytes = bytes.subspan(prefix.size());
    return true;
}

// Drops the mark of an external representation and returns the encoding of what follows.
CFStringEncoding TakeByteOrderMark(Bytes& bytes, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8) TakePrefix(bytes, {0xEF, 0xBB, 0xBF});
    if (encoding != kCFStringEncodingUTF16) return encoding;
    if (TakePrefix(bytes, {0xFF, 0xFE})) return kCFStringEncodingUTF16LE;
    TakePrefix(bytes, {0xFE, 0xFF});
    return kCFStringEncodingUTF16BE;
}

std::string ToUtf8(CFStringRef string) {
    const CFRange all = CFRangeMake(0, string->length);
    CFIndex size = 0;
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false, nullptr, 0, &size);
    std::string text(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, '?', false,
                     reinterpret_cast<UInt8*>(text.data()), size, nullptr);
    return text;
}

// Returns the character at `position` and moves `position` past it. An unpaired surrogate is a
// character of its own.
char32_t TakeCharacter(const UniChar* units, CFIndex& position, CFIndex limit) {
    const char32_t first = units[position++];
    if (!U16_IS_LEAD(first) || position == limit || !U16_IS_TRAIL(units[position])) return first;
    return static_cast<char32_t>(U16_GET_SUPPLEMENTARY(first, units[position++]));
}

// Returns the number of bytes written, or -1 when the string does not fit whole.
CFIndex WriteWhole(CFStringRef string, UInt8* buffer, CFIndex size, CFStringEncoding encoding) {
    CFIndex used = 0;
    const CFIndex converted = CFStringGetBytes(string, CFRangeMake(0, string->length), encoding, 0,
                                               false, buffer, size, &used);
    return converted == string->length ? used : -1;
}

}  // namespace

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFAllocatorRef kCFAllocatorNull = &nullAllocator;

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex byteCount,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    Bytes rest(bytes, static_cast<std::size_t>(byteCount));
    if (isExternalRepresentation) encoding = TakeByteOrderMark(rest, encoding);
    std::vector<UniChar> text;
    if (!Codec(encoding).Decode(rest, text)) return nullptr;
    return new OpaqueCFString(std::move(text));
}

CFStringRef CFStringCreateWithCharactersNoCopy(CFAllocatorRef, const UniChar* units, CFIndex count,
                                               CFAllocatorRef) {
    return new OpaqueCFString(units, count);
}

CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef, CFStringRef format,
                                     ...) {
    const std::string pattern = ToUtf8(format);
    std::va_list arguments;
    va_start(arguments, format);
    const int size = std::vsnprintf(nullptr, 0, pattern.c_str(), arguments);
    va_end(arguments);
    if (size < 0) return nullptr;
    std::string text(static_cast<std::size_t>(size), '\0');
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size() + 1, pattern.c_str(), arguments);
    va_end(arguments);
    return CFStringCreateWithBytes(allocator, reinterpret_cast<const UInt8*>(text.data()), size,
                                   kCFStringEncodingUTF8, false);
}

CFIndex CFStringGetLength(CFStringRef string) { return string->length; }

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    std::copy_n(string->units + range.location, range.length, buffer);
}

const UniChar* CFStringGetCharactersPtr(CFStringRef string) { return string->units; }

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                         UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex maxByteCount, CFIndex* usedByteCount) {
    Codec codec(encoding);
    CFIndex used = 0;
    // One character, whole or not at all.
    const auto write = [&](char32_t character) {
        UInt8 bytes[Codec::kMaxBytes];
        int count = codec.Encode(character, bytes);
        if (count == 0 && lossByte != 0) bytes[count++] = lossByte;
        if (count == 0 || (buffer != nullptr && count > maxByteCount - used)) return false;
        if (buffer != nullptr) std::copy_n(bytes, count, buffer + used);
        used += count;
        return true;
    };
    const CFIndex limit = range.location + range.length;
    CFIndex position = range.location;
    const bool marked = isExternalRepresentation && encoding == kCFStringEncodingUTF16;
    if (!marked || write(0xFEFF)) {
        for (CFIndex next = position; next < limit; position = next) {
            if (!write(TakeCharacter(string->units, next, limit))) break;
        }
    }
    if (usedByteCount != nullptr) *usedByteCount = used;
    return position - range.location;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding) {
    if (bufferSize < 1) return false;
    const CFIndex written =
        WriteWhole(string, reinterpret_cast<UInt8*>(buffer), bufferSize - 1, encoding);
    buffer[std::max<CFIndex>(written, 0)] = '\0';
    return written >= 0;
}

Boolean CFStringGetPascalString(CFStringRef string, StringPtr buffer, CFIndex bufferSize,
                                CFStringEncoding encoding) {
    constexpr CFIndex kMaxLength = 255;
    if (bufferSize < 1) return false;
    const CFIndex written =
        WriteWhole(string, buffer + 1, std::min(bufferSize - 1, kMaxLength), encoding);
    buffer[0] = static_cast<UInt8>(std::max<CFIndex>(written, 0));
    return written >= 0;
}

CFStringRef CFStringFromLiteral(const char* text) {
    static std::mutex mutex;
    // Never destroyed: destructors of other modules may still use their constants.
    static auto& constants = *new std::map<std::string, OpaqueCFString>;
    const std::lock_guard lock(mutex);
    const auto known = constants.find(text);
    if (known != constants.end()) return &known->second;
    const std::string key(text);
    std::vector<UniChar> units;
    if (!Codec(kCFStringEncodingUTF8)
             .Decode({reinterpret_cast<const UInt8*>(key.data()), key.size()}, units))
        return nullptr;
    return &constants.try_emplace(key, std::move(units), true).first->second;
}
