#pragma once

#include <cstddef>

namespace host::cf {

// The number of CoreFoundation objects that exist now, without constant strings. It is the same
// before and after a piece of work that releases all its references.
std::size_t LiveObjectCount() noexcept;

}  // namespace host::cf
