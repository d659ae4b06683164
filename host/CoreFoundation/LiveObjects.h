#pragma once

#include <cstddef>

namespace host::cf {

// The number of CoreFoundation objects that exist now, constant strings not counted: the same
// before and after a piece of work that released all it was given.
std::size_t LiveObjectCount() noexcept;

}  // namespace host::cf
