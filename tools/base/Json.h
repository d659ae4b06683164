#pragma once
// JSON as all verbs write it: one object a line, its fields in the given order. docs/json.md names
// the fields.
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "tools/base/Text.h"

namespace tool {

using Json = nlohmann::ordered_json;

// Puts a text into the field. JSON cannot contain an unpaired surrogate: it becomes U+FFFD, and the
// field NAME + "Units" has the UTF-16 units as numbers.
void PutText(Json& object, const std::string& name, Units text);
// The bytes of a key, each as the character with the same number.
void PutKey(Json& object, const std::string& name, std::string_view key);
// A file name. When it is not UTF-8, its invalid bytes become U+FFFD, and the field NAME + "Uri"
// has the whole name as UriOf() writes it.
void PutFile(Json& object, const std::string& name, const std::string& file);

// The name as a relative or absolute reference of RFC 3986: bytes other than letters, digits and
// "-._~/" become "%XX".
std::string UriOf(const std::string& file);

// The object and the line's end. Bytes that are not UTF-8 become U+FFFD.
std::string JsonLine(const Json& object);

}  // namespace tool
