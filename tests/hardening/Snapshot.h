#pragma once
#include <sstream>
#include <string>

#include "wordlex/functionality/Dictionary.h"

namespace hardening {

// Everything that can be asked of a dictionary, as bytes: equal when nothing differs.
inline std::string Snapshot(const lexon_private::Dictionary& dictionary) {
    std::ostringstream out;
    out << dictionary.IsValid() << dictionary.NumKeys() << dictionary.ValidId(0);
    for (const lexon::SaveType type : {lexon::SaveType::kText, lexon::SaveType::kBinary})
        dictionary.Serialize(out, type, nullptr, lexon::EndianT::kBig, 0);
    return out.str();
}

}  // namespace hardening
