#pragma once
#include <string>

#include "tests/wordlex/Dictionaries.h"

namespace hardening {

using wordlex_tests::Saved;

// The content of a dictionary as bytes: equal when nothing differs.
inline std::string Content(const lexon_private::Dictionary& dictionary) {
    return std::to_string(dictionary.NumKeys()) + (dictionary.ValidId(0) ? '+' : '-') +
           Saved(dictionary, lexon::SaveType::kText) + Saved(dictionary, lexon::SaveType::kBinary);
}

// The results of all its look-ups.
inline std::string Snapshot(const lexon_private::Dictionary& dictionary) {
    return (dictionary.IsValid() ? "valid " : "invalid ") + Content(dictionary);
}

}  // namespace hardening
