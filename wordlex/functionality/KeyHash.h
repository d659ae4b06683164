#pragma once
#include <cstdint>

namespace lexon_private {

// The hash by which both stores find a key: of all its bytes, in memory only. It is keyed with a
// secret that the process draws at the first call, so nobody can prepare keys that collide.
std::uint32_t KeyHash(const unsigned char* bytes, unsigned long length) noexcept;

}  // namespace lexon_private
