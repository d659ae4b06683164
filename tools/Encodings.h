#pragma once
#include <string>
#include <vector>

namespace tool {

// Makes the encoding the library's default for 8-bit text. Takes a name from EncodingNames().
void UseEncoding(const std::string& name);
std::vector<std::string> EncodingNames();

inline constexpr char kDefaultEncoding[] = "utf-8";

}  // namespace tool
