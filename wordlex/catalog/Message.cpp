#include "wordlex/catalog/Message.h"

#include <unicode/msgfmt.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <mutex>
#include <new>
#include <span>
#include <utility>

#include "wordlex/catalog/Format.h"

namespace lexon::detail {

namespace {

using Kind = Argument::Kind;

icu::UnicodeString Copied(std::u16string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

std::u16string Copied(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

}  // namespace

// A pattern, parsed once, and those of its ICU formats that no thread uses: two threads may not
// fill one of them at once.
class ParsedMessage {
public:
    using Format = std::unique_ptr<icu::MessageFormat>;

    ParsedMessage(std::u16string_view text, const icu::Locale& language)
        : pattern(text), locale(language), shape(ParseMessage(text)) {}

    std::u16string_view Pattern() const { return pattern; }
    const MessageShape& Shape() const { return shape; }
    bool Selects(std::u16string_view name) const {
        return std::ranges::any_of(shape.places, [name](const MessagePlace& place) {
            return place.type == u"select" && place.name == name;
        });
    }

    // Null when the pattern, or that of a number or a date in it, is malformed.
    Format Take() {
        if (shape.fault) return nullptr;
        {
            const std::lock_guard guard(lock);
            if (!idle.empty()) {
                Format format = std::move(idle.back());
                idle.pop_back();
                return format;
            }
        }
        UErrorCode status = U_ZERO_ERROR;
        UParseError ignored{};
        auto format =
            std::make_unique<icu::MessageFormat>(Copied(pattern), locale, ignored, status);
        if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
        if (U_FAILURE(status)) format.reset();
        return format;
    }
    void Return(Format format) {
        if (format == nullptr) return;
        const std::lock_guard guard(lock);
        idle.push_back(std::move(format));
    }

private:
    std::u16string pattern;
    icu::Locale locale;
    MessageShape shape;
    std::mutex lock;
    std::vector<Format> idle;
};

namespace {

// An argument's name as ICU looks for it: arguments without a name are numbered from 0.
icu::UnicodeString NameOf(const Argument& argument, std::size_t& unnamed) {
    const std::string_view name = argument.Name();
    if (name.empty()) return icu::UnicodeString::fromUTF8(std::to_string(unnamed++));
    std::array<char16_t, 32> units;  // for the usual name, which is short and ASCII
    if (name.size() > units.size() || !IsAscii(name)) {
        return icu::UnicodeString::fromUTF8(
            icu::StringPiece(name.data(), static_cast<std::int32_t>(name.size())));
    }
    std::ranges::copy(name, units.begin());
    return {units.data(), static_cast<std::int32_t>(name.size())};
}

// The names of a call's arguments as ICU wants them, kept for the next call, which mostly has the
// same ones.
class ArgumentNames {
public:
    std::span<const icu::UnicodeString> Of(Arguments arguments) {
        const auto isSame = [](const Argument& argument, const std::string& name) {
            return argument.Name() == name;
        };
        if (!std::ranges::equal(arguments, written, isSame)) {
            written.clear();
            converted.clear();
            std::size_t unnamed = 0;
            for (const Argument& argument : arguments) {
                converted.push_back(NameOf(argument, unnamed));
                written.emplace_back(argument.Name());
            }
        }
        return std::span(converted).first(written.size());
    }

private:
    std::vector<std::string> written;
    std::vector<icu::UnicodeString> converted;
};

// A message that a thread has used lately, with a format of its own.
struct HeldMessage {
    const MessageCache* cache = nullptr;
    std::shared_ptr<ParsedMessage> message;
    ParsedMessage::Format format;
    ArgumentNames names;
    std::vector<icu::Formattable> values;  // room for those of a call
};

// The standard comparison of char16_t compares unit by unit.
bool IsSame(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0;
}

// The pattern's message from the thread's few, usually without a lock. It stays until the thread
// requests another one.
HeldMessage& Hold(MessageCache& cache, std::u16string_view pattern, const icu::Locale& locale) {
    static thread_local std::array<HeldMessage, 16> few;
    std::size_t mixed = pattern.size();
    if (!pattern.empty()) mixed = 31 * mixed + pattern[pattern.size() / 2];
    HeldMessage& held = few[mixed % few.size()];
    if (held.cache != &cache || !IsSame(held.message->Pattern(), pattern)) {
        HeldMessage other{&cache, cache.Get(pattern, locale), nullptr, {}, {}};
        other.format = other.message->Take();
        std::swap(held, other);
        if (other.message != nullptr) other.message->Return(std::move(other.format));
    }
    return held;
}

}  // namespace

std::shared_ptr<ParsedMessage> MessageCache::Get(std::u16string_view pattern,
                                                 const icu::Locale& locale) {
    {
        const std::shared_lock guard(lock);
        const auto found = messages.find(pattern);
        if (found != messages.end()) return found->second;
    }
    auto parsed = std::make_shared<ParsedMessage>(pattern, locale);
    const std::lock_guard guard(lock);
    if (messages.size() >= kMostMessages) messages.clear();
    return messages.try_emplace(std::u16string(pattern), parsed).first->second;
}

namespace {

// ICU shows dates in the system's time zone: the moment at which the day begins there.
UDate StartOfDay(std::int64_t utcMilliseconds) {
    const auto local = static_cast<UDate>(utcMilliseconds);
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
    std::int32_t rawOffset = 0;
    std::int32_t savings = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone->getOffset(local, true, rawOffset, savings, status);
    return local - rawOffset - savings;
}

// `isolates` says whether a text of the other direction is isolated.
template <class Isolates>
void SetText(icu::Formattable& value, const LanguageFormats& formats, std::u16string_view text,
             const Isolates& isolates) {
    if (!formats.HasOtherDirection(text) || !isolates()) {
        value.setString(Copied(text));
        return;
    }
    std::u16string isolated;
    AppendIsolated(isolated, text);
    value.setString(Copied(isolated));
}

template <class Isolates>
void SetValue(icu::Formattable& value, const LanguageFormats& formats, const Argument& argument,
              const Isolates& isolates) {
    switch (argument.GetKind()) {
        case Kind::kUtf16:
            SetText(value, formats, argument.Utf16(), isolates);
            return;
        case Kind::kUtf8:
            SetText(value, formats, ToUtf16(argument.Utf8()), isolates);
            return;
        case Kind::kSigned:
            value.setInt64(argument.Signed());
            return;
        case Kind::kUnsigned:
            if (argument.Unsigned() <= INT64_MAX) {
                value.setInt64(static_cast<std::int64_t>(argument.Unsigned()));
            } else {
                UErrorCode status = U_ZERO_ERROR;
                value.setDecimalNumber(std::to_string(argument.Unsigned()), status);
            }
            return;
        case Kind::kFloating:
            value.setDouble(argument.Floating());
            return;
        case Kind::kTime:
            value.setDate(static_cast<UDate>(argument.Milliseconds()));
            return;
        case Kind::kDay:
            value.setDate(StartOfDay(argument.Milliseconds()));
            return;
    }
}

// Throws a FormatError when the arguments do not match the pattern's places.
void RequireMatch(const MessageShape& shape, Arguments arguments,
                  std::span<const icu::UnicodeString> names) {
    std::vector<bool> used(names.size());
    for (const MessagePlace& place : shape.places) {
        const auto name = std::ranges::find(names, Copied(place.name));
        if (name == names.end()) RefuseMissing(u'{' + place.name + u'}');
        used[static_cast<std::size_t>(name - names.begin())] = true;
    }
    RefuseUnused(arguments, used);
}

}  // namespace

std::u16string FillMessage(const LanguageFormats& formats, std::u16string_view pattern,
                           Arguments arguments, const FormatOptions& options) {
    HeldMessage& held = Hold(formats.Messages(), pattern, formats.Locale());
    const ParsedMessage& message = *held.message;
    const bool throws = options.onMismatch == OnMismatch::kThrow;
    if (const auto& fault = message.Shape().fault) {
        if (!throws) return std::u16string(pattern);
        throw FormatError(FormatError::Code::kMalformedMessage,
                          "the message pattern is malformed at unit " +
                              std::to_string(fault->position + 1) + ": " + fault->reason);
    }
    const std::span<const icu::UnicodeString> names = held.names.Of(arguments);
    std::vector<icu::Formattable>& values = held.values;
    values.clear();
    for (const Argument& argument : arguments) {
        const icu::UnicodeString& name = names[values.size()];
        SetValue(values.emplace_back(), formats, argument,
                 [&] { return options.isolate && !message.Selects(Copied(name)); });
    }
    if (throws) RequireMatch(message.Shape(), arguments, names);
    icu::UnicodeString out;
    if (held.format != nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        held.format->format(names.data(), values.data(), static_cast<std::int32_t>(values.size()),
                            out, status);
        values.clear();  // frees the texts
        if (status == U_MEMORY_ALLOCATION_ERROR || out.isBogus()) throw std::bad_alloc();
        if (U_SUCCESS(status)) return Copied(out);
    }
    if (!throws) return std::u16string(pattern);
    throw FormatError(FormatError::Code::kWrongType,
                      "an argument has another type than the message pattern shows");
}

}  // namespace lexon::detail
