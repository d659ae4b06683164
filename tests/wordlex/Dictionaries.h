#pragma once
#include <sstream>
#include <string>
#include <string_view>

#include "tests/wordlex/Text.h"
#include "wordlex/functionality/Dictionary.h"

namespace wordlex_tests {

inline unsigned long Add(lexon_private::Dictionary& dictionary, const char* key,
                         std::u16string_view value, std::u16string_view accelerator = {}) {
    const auto v = Units(value);
    const auto a = Units(accelerator);
    return dictionary.Add(key, v.data(), v.size(), nullptr, a.data(), a.size());
}

inline void Load(lexon_private::Dictionary& dictionary, std::string_view image,
                 bool copyKeys = true) {
    dictionary.Read(image.data(), static_cast<int>(image.size()), copyKeys);
}

inline std::string Saved(const lexon_private::Dictionary& dictionary, lexon::SaveType type,
                         lexon::EndianT order = lexon::EndianT::kBig) {
    std::ostringstream out;
    dictionary.Serialize(out, type, nullptr, order, 0);
    return out.str();
}

}  // namespace wordlex_tests
