#pragma once
#include <string>
#include <vector>

namespace tool {

// Makes this the encoding of all 8-bit text that does not name its own, whatever the environment
// says, so that the same input gives the same output on every machine. Takes a name from
// EncodingNames().
void UseEncoding(const std::string& name);
std::vector<std::string> EncodingNames();

inline constexpr char kDefaultEncoding[] = "utf-8";

}  // namespace tool
