#include "wordlex/functionality/BinUtil.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <ostream>
#include <string>

namespace lexon_private {

namespace {

constexpr bool kBigHost = std::endian::native == std::endian::big;

// The polynomial over the sampled bytes. Nine bytes shifted by five bits each stay below 2^53, so
// one remainder at the end equals a remainder after every step. From ten bytes on there are five to
// seven samples. The last two are added without a branch, which would be mispredicted for every
// other key of a load.
std::uint64_t SampledPolynomial(const unsigned char* bytes, unsigned long length) noexcept {
    std::uint64_t polynomial = 0;
    if (length < 10) {
        for (unsigned long i = 0; i < length; ++i)
            polynomial = (polynomial << 5) + bytes[i];
        return polynomial;
    }
    const unsigned long step = length / 5;
    for (unsigned long i = 0; i < 5; ++i)
        polynomial = (polynomial << 5) + bytes[i * step];
    for (unsigned long i = 5; i < 7; ++i) {
        const bool sampled = i * step < length;
        const std::uint64_t more = (polynomial << 5) + bytes[sampled ? i * step : 0];
        polynomial = sampled ? more : polynomial;
    }
    return polynomial;
}

// Writes like the stream's own operations: an exception of its buffer becomes the stream's state.
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
    // A division by a constant becomes a multiplication.
    if (bucketCount == kHashBucketCount) return HashFunc(bytes, length);
    return SampledPolynomial(bytes, length) % bucketCount;
}

unsigned long HashFunc(const unsigned char* bytes, unsigned long length) noexcept {
    return SampledPolynomial(bytes, length) % kHashBucketCount;
}

bool setEndian(lexon::EndianT order) noexcept {
    return order == (kBigHost ? lexon::EndianT::kLittle : lexon::EndianT::kBig);
}

std::uint32_t wbfwrite_wbfid(std::ostream& out, const wbfid_& id, lexon::EndianT order) {
    std::string header = id.identification;
    const bool bigEndianFile = setEndian(order) != kBigHost;
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
