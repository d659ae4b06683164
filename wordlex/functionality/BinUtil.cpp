#include "wordlex/functionality/BinUtil.h"

#include <bit>
#include <cstring>

namespace lexon_private {

namespace {

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

}  // namespace

unsigned long HashBytes(const unsigned char* bytes, unsigned long length,
                        unsigned long bucketCount) noexcept {
    return SampledPolynomial(bytes, length) % bucketCount;
}

unsigned long HashFunc(const unsigned char* bytes, unsigned long length) noexcept {
    return SampledPolynomial(bytes, length) % kHashBucketCount;
}

std::uint16_t KeyTag(const unsigned char* bytes, unsigned long length) noexcept {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;  // 2^64 over the golden ratio
    std::uint64_t mix = length * kMultiplier;
    const auto take = [&mix](std::uint64_t word) {
        mix = (mix ^ word) * kMultiplier;
        mix ^= mix >> 32;
    };
    if (length < sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        for (unsigned long i = 0; i < length; ++i)
            word = word << 8 | bytes[i];
        take(word);
    } else {
        unsigned long i = 0;
        for (; i + sizeof(std::uint64_t) <= length; i += sizeof(std::uint64_t)) {
            take(LoadWord(bytes + i));
        }
        take(LoadWord(bytes + length - sizeof(std::uint64_t)));
    }
    return static_cast<std::uint16_t>(mix);
}

bool setEndian(lexon::EndianT order) noexcept {
    constexpr lexon::EndianT kNative =
        std::endian::native == std::endian::big ? lexon::EndianT::kBig : lexon::EndianT::kLittle;
    return order != lexon::EndianT::kHost && order != kNative;
}

}  // namespace lexon_private
