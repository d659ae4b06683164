#include "wordlex/functionality/BinUtil.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <ostream>
#include <string>

namespace lexon_private {

namespace {

constexpr lexon::EndianT kNativeOrder =
    std::endian::native == std::endian::big ? lexon::EndianT::kBig : lexon::EndianT::kLittle;

// The polynomial over the sampled bytes. Nine bytes shifted by five bits each stay below 2^53, so
// one remainder at the end equals a remainder after every step.
std::uint64_t SampledPolynomial(const unsigned char* bytes, unsigned long length) noexcept {
    const unsigned long step = length < 5 ? 1 : length / 5;
    std::uint64_t polynomial = 0;
    for (unsigned long i = 0; i < length; i += step)
        polynomial = (polynomial << 5) + bytes[i];
    return polynomial;
}

std::uint64_t LoadWord(const unsigned char* bytes) noexcept {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15;  // 2^64 over the golden ratio

// Both halves of the product in one word: each bit of the factors reaches most of it, and unlike
// the low half alone it lets no flipped top bit be foreseen.
std::uint64_t FoldedProduct(std::uint64_t a, std::uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// Writes as the stream's own operations do: an exception of its buffer becomes the stream's state.
std::uint32_t Put(std::ostream& out, std::string_view bytes) {
    const std::ostream::sentry ready(out);
    if (!ready) return 0;
    const auto wanted = static_cast<std::streamsize>(bytes.size());
    std::streamsize taken = 0;
    try {
        taken = out.rdbuf()->sputn(bytes.data(), wanted);
    } catch (const std::exception&) {
        taken = 0;
    }
    if (taken != wanted) out.setstate(std::ios_base::badbit);
    return static_cast<std::uint32_t>(taken);
}

}  // namespace

unsigned long HashBytes(const unsigned char* bytes, unsigned long length,
                        unsigned long bucketCount) noexcept {
    // A division by a constant is a multiplication.
    if (bucketCount == kHashBucketCount) return HashFunc(bytes, length);
    return SampledPolynomial(bytes, length) % bucketCount;
}

unsigned long HashFunc(const unsigned char* bytes, unsigned long length) noexcept {
    return SampledPolynomial(bytes, length) % kHashBucketCount;
}

std::uint16_t KeyTag(const unsigned char* bytes, unsigned long length) noexcept {
    // Where the loader has put this library differs from process to process, so that nobody can
    // make keys ahead that all have one tag.
    static const char kHere = 0;
    const std::uint64_t secret = (reinterpret_cast<std::uintptr_t>(&kHere) | 1) * kGolden;
    const std::uint64_t otherSecret = secret * kGolden;
    constexpr unsigned long kWord = sizeof(std::uint64_t);
    std::uint64_t mix = length ^ secret;
    const auto take = [&](std::uint64_t first, std::uint64_t second) {
        mix = FoldedProduct(mix ^ first, otherSecret ^ second);
    };
    if (length < kWord) {
        std::uint64_t word = 0;
        for (unsigned long i = 0; i < length; ++i)
            word = word << 8 | bytes[i];
        take(word, 0);
    } else if (length <= 2 * kWord) {
        take(LoadWord(bytes), LoadWord(bytes + length - kWord));
    } else {
        const unsigned long last = length - 2 * kWord;
        for (unsigned long i = 0; i < last; i += 2 * kWord)
            take(LoadWord(bytes + i), LoadWord(bytes + i + kWord));
        take(LoadWord(bytes + last), LoadWord(bytes + last + kWord));
    }
    return static_cast<std::uint16_t>(mix ^ mix >> 32);
}

bool setEndian(lexon::EndianT order) noexcept {
    return order != lexon::EndianT::kHost && order != kNativeOrder;
}

std::uint32_t wbfwrite_wbfid(std::ostream& out, const wbfid_& id, lexon::EndianT order) {
    std::string header = id.identification;
    const bool bigEndianFile = setEndian(order) != (kNativeOrder == lexon::EndianT::kBig);
    for (const std::uint8_t field :
         {id.major, id.minor, id.encoding, bigEndianFile ? kBigEndianFile : kLittleEndianFile}) {
        header += static_cast<char>(field);
    }
    return Put(out, header);
}

std::uint32_t wbfwrite_deflocale(std::ostream& out, lexon::EndianT order) {
    constexpr std::string_view kName = defaultLocale;
    return wbfwrite_locale(out, kName.data(), static_cast<std::uint32_t>(kName.size()), order);
}

std::uint32_t wbfwrite_locale(std::ostream& out, const char* name, std::uint32_t length,
                              lexon::EndianT order) {
    const std::uint32_t field = setEndian(order) ? ByteSwap(length) : length;
    std::array<char, sizeof field> bytes;
    std::memcpy(bytes.data(), &field, sizeof field);
    const std::uint32_t written = Put(out, {bytes.data(), bytes.size()});
    return written + Put(out, {name, length});
}

}  // namespace lexon_private
