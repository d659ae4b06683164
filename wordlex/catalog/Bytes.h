#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace lexon::detail {

using Bytes = std::span<const std::byte>;

// A number in host order from any address.
template <class T>
T LoadAt(Bytes bytes, std::size_t at) noexcept {
    T value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

// Item `i` of a table, and the number of items in it.
template <class T>
T ItemAt(Bytes table, std::size_t i) noexcept {
    return LoadAt<T>(table, i * sizeof(T));
}
template <class T>
std::size_t Count(Bytes table) noexcept {
    return table.size() / sizeof(T);
}

// The `length` bytes at `offset`, if they are inside.
inline std::optional<Bytes> Part(Bytes bytes, std::uint64_t offset, std::uint64_t length) noexcept {
    if (offset > bytes.size() || length > bytes.size() - offset) return std::nullopt;
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
}

}  // namespace lexon::detail
