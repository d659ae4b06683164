#include "wordlex/catalog/Format.h"

#include <unicode/timezone.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <map>
#include <new>
#include <optional>
#include <utility>

namespace lexon::detail {

namespace {

using Kind = Argument::Kind;

constexpr char16_t kFirstStrongIsolate = 0x2068;
constexpr char16_t kPopDirectionalIsolate = 0x2069;
// Every letter below this one is written from left to right.
constexpr char16_t kFirstRightToLeft = 0x0590;
constexpr char16_t kReplacement = 0xFFFD;

void Append(std::u16string& out, const icu::UnicodeString& text) {
    out.append(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

void AppendAscii(std::u16string& out, std::string_view text) {
    const std::size_t at = out.size();
    out.resize(at + text.size());
    std::ranges::copy(text, out.begin() + static_cast<std::ptrdiff_t>(at));
}

// U+0030 of the language's digits when 0 to 999 are written with these digits alone.
char16_t FindZeroDigit(const icu::number::LocalizedNumberFormatter& numbers) {
    const auto written = [&](std::int64_t number) {
        UErrorCode status = U_ZERO_ERROR;
        return numbers.formatInt(number, status).toString(status);
    };
    const icu::UnicodeString zero = written(0);
    if (zero.length() != 1) return 0;
    for (int digit = 1; digit <= 9; ++digit) {
        const icu::UnicodeString three = written(std::int64_t{111} * digit);
        if (three.length() != 3) return 0;
        for (int i = 0; i < 3; ++i) {
            if (three[i] != zero[0] + digit) return 0;
        }
    }
    return zero[0];
}

icu::Locale LocaleOf(const std::string& language) {
    icu::Locale locale = icu::Locale::createCanonical(language.c_str());
    return IsKnownLanguage(locale) ? locale : icu::Locale::getRoot();
}

}  // namespace

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void AppendIsolated(std::u16string& out, std::u16string_view text) {
    out += kFirstStrongIsolate;
    out += text;
    out += kPopDirectionalIsolate;
}

LanguageFormats::LanguageFormats(const std::string& language)
    : locale(LocaleOf(language)),
      rightToLeft(locale.isRightToLeft() != 0),
      numbers(icu::number::NumberFormatter::withLocale(locale)),
      zeroDigit(FindZeroDigit(numbers)),
      timeFormat(icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium,
                                                         icu::DateFormat::kShort, locale)),
      dayFormat(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, locale)) {
    if (timeFormat == nullptr || dayFormat == nullptr) throw std::bad_alloc();
    dayFormat->setTimeZone(*icu::TimeZone::getGMT());
}

const LanguageFormats& LanguageFormats::For(std::string_view language) {
    struct Known {
        std::mutex lock;
        std::map<std::string, LanguageFormats> formats;
    };
    // Never freed: formatters may be in use in threads that outlive the static objects.
    static Known& known = *new Known;
    // A thread mostly uses the language that it used last.
    static thread_local std::pair<std::string, const LanguageFormats*> last;
    if (last.second != nullptr && last.first == language) return *last.second;
    const std::string name(language);
    const std::lock_guard guard(known.lock);
    const LanguageFormats& formats = known.formats.try_emplace(name, name).first->second;
    last = {name, &formats};
    return formats;
}

bool LanguageFormats::HasOtherDirection(std::u16string_view text) const {
    if (!rightToLeft &&
        std::ranges::all_of(text, [](char16_t unit) { return unit < kFirstRightToLeft; })) {
        return false;
    }
    for (std::size_t i = 0; i < text.size();) {
        const char16_t unit = text[i++];
        UChar32 character = unit;
        if (U16_IS_LEAD(unit) && i < text.size() && U16_IS_TRAIL(text[i])) {
            character = U16_GET_SUPPLEMENTARY(unit, text[i++]);
        }
        const UCharDirection direction = u_charDirection(character);
        const bool isOther =
            rightToLeft ? direction == U_LEFT_TO_RIGHT
                        : direction == U_RIGHT_TO_LEFT || direction == U_RIGHT_TO_LEFT_ARABIC;
        if (isOther) return true;
    }
    return false;
}

void LanguageFormats::AppendText(std::u16string& out, std::u16string_view text,
                                 bool isolate) const {
    if (isolate && HasOtherDirection(text)) {
        AppendIsolated(out, text);
    } else {
        out += text;
    }
}

void LanguageFormats::AppendNatural(std::u16string& out, std::uint64_t number) const {
    if (number < 1000 && zeroDigit != 0) {
        const auto digit = [&](std::uint64_t value) {
            out += static_cast<char16_t>(zeroDigit + value);
        };
        if (number >= 100) digit(number / 100);
        if (number >= 10) digit(number / 10 % 10);
        digit(number % 10);
        return;
    }
    UErrorCode status = U_ZERO_ERROR;
    detail::Append(
        out, number <= INT64_MAX
                 ? numbers.formatInt(static_cast<std::int64_t>(number), status).toString(status)
                 : numbers.formatDecimal(std::to_string(number), status).toString(status));
}

void LanguageFormats::AppendDate(std::u16string& out, const icu::DateFormat& format,
                                 double milliseconds) const {
    icu::UnicodeString text;
    {
        const std::lock_guard guard(dateLock);
        format.format(milliseconds, text);
    }
    detail::Append(out, text);
}

void LanguageFormats::Append(std::u16string& out, const Argument& argument, bool isolate) const {
    UErrorCode status = U_ZERO_ERROR;
    switch (argument.GetKind()) {
        case Kind::kUtf16:
            AppendText(out, argument.Utf16(), isolate);
            return;
        case Kind::kUtf8:
            if (!rightToLeft && IsAscii(argument.Utf8())) {
                AppendAscii(out, argument.Utf8());
            } else {
                AppendText(out, ToUtf16(argument.Utf8()), isolate);
            }
            return;
        case Kind::kSigned:
            if (argument.Signed() >= 0) {
                AppendNatural(out, static_cast<std::uint64_t>(argument.Signed()));
            } else {
                detail::Append(out, numbers.formatInt(argument.Signed(), status).toString(status));
            }
            return;
        case Kind::kUnsigned:
            AppendNatural(out, argument.Unsigned());
            return;
        case Kind::kFloating:
            detail::Append(out, numbers.formatDouble(argument.Floating(), status).toString(status));
            return;
        case Kind::kTime:
            AppendDate(out, *timeFormat, static_cast<double>(argument.Milliseconds()));
            return;
        case Kind::kDay:
            AppendDate(out, *dayFormat, static_cast<double>(argument.Milliseconds()));
            return;
    }
}

namespace {

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Finds parameter tags: <param name="NAME"/>, with spaces wherever the engine's substitution allows
// them. As there, a character that breaks a tag is consumed and does not begin another one.
class TagScanner {
public:
    TagScanner(std::u16string_view scannedText, Arguments givenArguments)
        : text(scannedText), arguments(givenArguments) {}

    // Matches the complete tag that begins with the "<" at `at`; false when there is none.
    bool Match(std::size_t at) {
        if (at < searchedTo) return false;
        argument = nullptr;
        std::size_t i = at + 1;
        if (!Skip(i, u"param") || !Skip(i, u"name") || !Skip(i, u"=") || !Skip(i, u"\"")) {
            searchedTo = i + 1;
            return false;
        }
        searchedTo = i;
        const std::size_t quote = text.find(u'"', i);
        if (quote == text.npos) return false;
        name = text.substr(i, quote - i);
        i = quote + 1;
        argument = Find(name);
        const bool complete = Skip(i, u"/>");
        end = i;
        if (argument != nullptr) searchedTo = complete ? i : i + 1;
        return complete;
    }
    // Of the last matching tag.
    std::u16string_view Name() const { return name; }
    const Argument* GivenArgument() const { return argument; }
    std::size_t End() const { return end; }

private:
    // Skips spaces and then the word.
    bool Skip(std::size_t& i, std::u16string_view word) const {
        while (i < text.size() && text[i] == u' ')
            ++i;
        if (!text.substr(std::min(i, text.size())).starts_with(word)) return false;
        i += word.size();
        return true;
    }
    const Argument* Find(std::u16string_view wanted) const {
        const auto found = std::ranges::find_if(arguments, [wanted](const Argument& given) {
            return !given.Name().empty() && IsSame(given.Name(), wanted);
        });
        return found == arguments.end() ? nullptr : &*found;
    }

    std::u16string_view text;
    Arguments arguments;
    std::size_t searchedTo = 0;
    std::u16string_view name;
    const Argument* argument = nullptr;
    std::size_t end = 0;
};

// The arguments of the markers "^0" to "^9".
std::array<const Argument*, 10> Markers(Arguments arguments) {
    std::array<const Argument*, 10> markers{};
    std::size_t unnamed = 0;
    for (const Argument& argument : arguments) {
        const std::string_view name = argument.Name();
        if (name.empty()) {
            if (unnamed < markers.size()) markers[(unnamed + 1) % markers.size()] = &argument;
            ++unnamed;
        } else if (name.size() == 1 && name[0] >= '0' && name[0] <= '9') {
            markers[static_cast<std::size_t>(name[0] - '0')] = &argument;
        }
    }
    return markers;
}

// Enough for most results, so that the text grows once.
std::size_t LikelySize(std::u16string_view text, Arguments arguments) {
    constexpr std::size_t kNumberSize = 8;
    std::size_t size = text.size();
    for (const Argument& argument : arguments) {
        size += argument.GetKind() == Kind::kUtf16  ? argument.Utf16().size()
                : argument.GetKind() == Kind::kUtf8 ? argument.Utf8().size()
                                                    : kNumberSize;
    }
    return size;
}

class TextFiller {
public:
    TextFiller(const LanguageFormats& languageFormats, std::u16string_view text,
               Arguments givenArguments, const FormatOptions& givenOptions)
        : formats(languageFormats),
          pattern(text),
          arguments(givenArguments),
          options(givenOptions),
          markers(Markers(arguments)),
          tags(text, arguments),
          throws(options.onMismatch == OnMismatch::kThrow) {
        if (throws) used.resize(arguments.size());
    }

    std::u16string Fill() {
        out.reserve(LikelySize(pattern, arguments));
        std::size_t copied = 0;
        std::size_t i = 0;
        while (i < pattern.size()) {
            const std::size_t end = FillAt(i, copied);
            if (end != 0) {
                i = copied = end;
            } else {
                ++i;
            }
        }
        out += pattern.substr(copied);
        if (throws) RefuseUnused(arguments, used);
        return std::move(out);
    }

private:
    // Fills the place that begins at `i`, and appends the text since `copied` before it. Returns
    // its end, or 0 when there is no place.
    std::size_t FillAt(std::size_t i, std::size_t copied) {
        const Argument* argument = nullptr;
        std::size_t end = 0;
        if (pattern[i] == u'^') {
            if (i + 1 == pattern.size() || !IsDigit(pattern[i + 1])) return 0;
            argument = markers[pattern[i + 1] - u'0'];
            end = i + 2;
        } else if (pattern[i] == u'<') {
            if (!tags.Match(i)) return 0;
            argument = tags.GivenArgument();
            end = tags.End();
        } else {
            return 0;
        }
        if (argument == nullptr) {
            if (throws) RefuseMissing(pattern.substr(i, end - i));
            return 0;
        }
        if (throws) used[static_cast<std::size_t>(argument - &*arguments.begin())] = true;
        out += pattern.substr(copied, i - copied);
        formats.Append(out, *argument, options.isolate);
        return end;
    }

    const LanguageFormats& formats;
    std::u16string_view pattern;
    Arguments arguments;
    const FormatOptions& options;
    std::array<const Argument*, 10> markers;
    TagScanner tags;
    bool throws;
    std::vector<bool> used;
    std::u16string out;
};

}  // namespace

bool IsSame(std::string_view utf8, std::u16string_view text) {
    if (!IsAscii(utf8)) return ToUtf16(utf8) == text;
    return std::ranges::equal(utf8, text, {}, [](char c) { return static_cast<char16_t>(c); });
}

void RefuseMissing(std::u16string_view place) {
    throw FormatError(FormatError::Code::kMissingArgument,
                      "no argument is given for " + ToUtf8(place));
}

void RefuseUnused(Arguments arguments, const std::vector<bool>& used) {
    const auto unused = std::ranges::find(used, false);
    if (unused == used.end()) return;
    const auto index = static_cast<std::size_t>(unused - used.begin());
    const std::string name((arguments.begin() + static_cast<std::ptrdiff_t>(index))->Name());
    throw FormatError(FormatError::Code::kSuperfluousArgument,
                      "the text has no place for argument " +
                          (name.empty() ? std::to_string(index + 1) : '"' + name + '"'));
}

}  // namespace lexon::detail

namespace lexon {

std::string ToUtf8(std::u16string_view text) {
    std::string bytes;
    return icu::UnicodeString(false, text.data(), static_cast<std::int32_t>(text.size()))
        .toUTF8String(bytes);
}

std::u16string ToUtf16(std::string_view utf8) {
    std::u16string text;
    if (detail::IsAscii(utf8)) {
        detail::AppendAscii(text, utf8);
        return text;
    }
    text.resize(utf8.size());  // no character has more UTF-16 units than UTF-8 bytes
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(text.data(), static_cast<std::int32_t>(text.size()), &length, utf8.data(),
                         static_cast<std::int32_t>(utf8.size()), detail::kReplacement, nullptr,
                         &status);
    text.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return text;
}

Formatter::Formatter(std::string_view language)
    : formats(&detail::LanguageFormats::For(language)) {}

std::u16string Formatter::Format(std::u16string_view text, Arguments arguments,
                                 const FormatOptions& options) const {
    return detail::TextFiller(*formats, text, arguments, options).Fill();
}

std::u16string Formatter::FormatMessage(std::u16string_view pattern, Arguments arguments,
                                        const FormatOptions& options) const {
    return detail::FillMessage(*formats, pattern, arguments, options);
}

std::u16string Catalog::Format(std::string_view key, Arguments arguments,
                               const FormatOptions& options) const {
    return Formatter(Locale()).Format(Text(key), arguments, options);
}

std::u16string Catalog::FormatMessage(std::string_view key, Arguments arguments,
                                      const FormatOptions& options) const {
    return Formatter(Locale()).FormatMessage(Text(key), arguments, options);
}

Formatter Chain::FormatterOf(const std::optional<Answer>& answer) const {
    if (answer) return Formatter(answer->link->language);
    return Formatter(links.empty() ? std::string_view() : links.back().language);
}

std::u16string Chain::Format(std::string_view key, Arguments arguments,
                             const FormatOptions& options) const {
    const auto answer = Find(key);
    const Formatter formatter = FormatterOf(answer);
    return answer ? formatter.Format(answer->text, arguments, options)
                  : formatter.Format(Text(key), arguments, options);
}

std::u16string Chain::FormatMessage(std::string_view key, Arguments arguments,
                                    const FormatOptions& options) const {
    const auto answer = Find(key);
    const Formatter formatter = FormatterOf(answer);
    return answer ? formatter.FormatMessage(answer->text, arguments, options)
                  : formatter.FormatMessage(Text(key), arguments, options);
}

}  // namespace lexon
