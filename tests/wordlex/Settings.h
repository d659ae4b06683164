#pragma once
#include <cstdint>

#include "tests/wordlex/Text.h"
#include "wordlex/functionality/UnicodeUtil.h"
#include "wordlex/functionality/Wordlex.h"

namespace wordlex_tests {

inline constexpr std::int64_t kParm = 0x5041524D;
inline constexpr std::int64_t kBuff = 0x42554646;

// Restores the process-wide procedures and encodings after a test.
struct SettingsGuard {
    ~SettingsGuard() {
        lexon_private::UnicodeUtil::SetConversionProcs(nullptr, nullptr, nullptr, nullptr);
        lexon_private::UnicodeUtil::SetCompareProc(nullptr);
        lexon_private::UnicodeUtil::SetDefaultEncoding(nullptr);
        lexon_private::Wordlex::SetDefaultApplicationEncoding(0xFFFFFFFF);
    }
};

inline lexon_private::Wordlex Make(std::u16string_view text) {
    return lexon_private::Wordlex(RunOf(text));
}

// The code of the library's exception that `act` throws, or 0 when it returns.
template <class Act>
std::int64_t ThrownCode(Act act) {
    try {
        act();
        return 0;
    } catch (const lexon::ASErrException& error) {
        return error.GetCode();
    }
}

}  // namespace wordlex_tests
