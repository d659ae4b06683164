#pragma once
// How one language formats numbers, dates and texts of the other direction.
#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>

#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "wordlex/catalog/Catalog.h"
#include "wordlex/catalog/Message.h"

namespace lexon::detail {

// Threads: all members may be called at once.
class LanguageFormats {
public:
    explicit LanguageFormats(const std::string& language);
    // The one object of the process for a language; made at the first call and kept.
    static const LanguageFormats& For(std::string_view language);

    const icu::Locale& Locale() const { return locale; }
    MessageCache& Messages() const { return messages; }

    void Append(std::u16string& out, const Argument& argument, bool isolate) const;
    // Whether the text contains a letter of the other direction than the language's.
    bool HasOtherDirection(std::u16string_view text) const;

private:
    void AppendText(std::u16string& out, std::u16string_view text, bool isolate) const;
    void AppendNatural(std::u16string& out, std::uint64_t number) const;
    void AppendDate(std::u16string& out, const icu::DateFormat& format, double milliseconds) const;

    icu::Locale locale;
    bool rightToLeft;
    icu::number::LocalizedNumberFormatter numbers;
    // The digit 0, if numbers below 1,000 consist only of their digits, else 0.
    char16_t zeroDigit = 0;
    // Two threads may not use ICU's date formats at once.
    mutable std::mutex dateLock;
    std::unique_ptr<icu::DateFormat> timeFormat;
    std::unique_ptr<icu::DateFormat> dayFormat;  // in UTC
    mutable MessageCache messages;
};

void AppendIsolated(std::u16string& out, std::u16string_view text);
bool IsAscii(std::string_view text);
bool IsSame(std::string_view utf8, std::u16string_view text);

// Throws a FormatError that names the place without an argument, "^3" or "{clips}".
[[noreturn]] void RefuseMissing(std::u16string_view place);
// Throws a FormatError for the first unused argument.
void RefuseUnused(Arguments arguments, const std::vector<bool>& used);

}  // namespace lexon::detail
