#pragma once
#include <cstdint>
#include <optional>

#include "wordlex/staticlib/Wordlexlib.h"

namespace lexon_private {

// The encoding selector inside the library: 1 is UTF-8, any other value the system's default 8-bit
// encoding. A public selector is copied into one of these, never reinterpreted.
struct EncodingInfo {
    std::uint64_t selector = 0;
};

inline constexpr std::uint64_t kUtf8Selector = 1;

// The private form of a public selector that may be null; pass it on with Selector().
class InwardEncoding {
public:
    explicit InwardEncoding(const lexon::EncodingInfo* encoding) noexcept {
        if (encoding != nullptr) info.emplace(EncodingInfo{encoding->selector});
    }
    EncodingInfo* Selector() noexcept { return info.has_value() ? &*info : nullptr; }

private:
    std::optional<EncodingInfo> info;
};

}  // namespace lexon_private
