#include "wordlex/functionality/KeyHash.h"

#include <unistd.h>

#include <array>

#define XXH_INLINE_ALL
#define XXH_NO_INLINE_HINTS 1  // forced inlining is refused in builds that optimize little
#include <xxhash.h>

namespace lexon_private {

namespace {

class Secret {
public:
    Secret() noexcept {
        if (getentropy(bytes.data(), bytes.size()) == 0) return;
        // The load address of the library also differs from process to process.
        XXH3_generateSecret_fromSeed(bytes.data(), reinterpret_cast<std::uintptr_t>(this));
    }
    const unsigned char* Data() const noexcept { return bytes.data(); }
    static constexpr std::size_t kSize = XXH3_SECRET_DEFAULT_SIZE;

private:
    std::array<unsigned char, kSize> bytes;
};

}  // namespace

std::uint32_t KeyHash(const unsigned char* bytes, unsigned long length) noexcept {
    static const Secret secret;
    return static_cast<std::uint32_t>(
        XXH3_64bits_withSecret(bytes, length, secret.Data(), Secret::kSize));
}

}  // namespace lexon_private
