#pragma once
#include <string>
#include <string_view>

namespace lexon::detail {

// The section after a version 2 image with which a catalog can use the mapped file at once; see
// docs/binary-format.md. The image must be valid; the section has its byte order. Empty when the
// keys collide too often for an index of bounded cost, which happens only for keys made for it.
std::string MakeIndexSection(std::string_view image);

}  // namespace lexon::detail
