#pragma once
#include <sstream>
#include <string>
#include <string_view>

#include "wordlex/functionality/Dictionary.h"

namespace hardening {

inline void Load(lexon_private::Dictionary& dictionary, std::string_view image,
                 bool copyKeys = true) {
    dictionary.Read(image.data(), static_cast<int>(image.size()), copyKeys);
}

inline std::string Saved(const lexon_private::Dictionary& dictionary, lexon::SaveType type) {
    std::ostringstream out;
    dictionary.Serialize(out, type, nullptr, lexon::EndianT::kBig, 0);
    return out.str();
}

// What a dictionary holds, as bytes: equal when nothing differs.
inline std::string Content(const lexon_private::Dictionary& dictionary) {
    return std::to_string(dictionary.NumKeys()) + (dictionary.ValidId(0) ? '+' : '-') +
           Saved(dictionary, lexon::SaveType::kText) + Saved(dictionary, lexon::SaveType::kBinary);
}

// Everything that can be asked of it.
inline std::string Snapshot(const lexon_private::Dictionary& dictionary) {
    return (dictionary.IsValid() ? "valid " : "invalid ") + Content(dictionary);
}

}  // namespace hardening
