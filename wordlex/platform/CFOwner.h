#pragma once
#include <memory>
#include <type_traits>

#include "host/CoreFoundation/CoreFoundation.h"

namespace lexon_private {

struct CFReleaser {
    void operator()(CFTypeRef object) const noexcept { CFRelease(object); }
};

// Owns one reference to a string of the platform; null when it could not be made.
using CFStringOwner = std::unique_ptr<std::remove_pointer_t<CFStringRef>, CFReleaser>;

}  // namespace lexon_private
