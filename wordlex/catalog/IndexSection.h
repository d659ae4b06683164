#pragma once
#include <string>
#include <string_view>

namespace lexon::detail {

// What stands after a version 2 image so that a catalog can map the file and is ready; described in
// docs/binary-format.md. The image is one without fault, and the section in its byte order. Empty
// when the keys collide too often for an index of bounded cost, which only keys do that were made
// for it.
std::string MakeIndexSection(std::string_view image);

}  // namespace lexon::detail
