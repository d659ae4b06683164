#include "wordlex/catalog/MessagePattern.h"

#include <unicode/locid.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>
#include <unicode/plurrule.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <utility>

#include "wordlex/catalog/Message.h"

namespace lexon::detail {

namespace {

using icu::MessagePattern;

icu::UnicodeString Copied(std::u16string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

std::u16string Copied(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

const char16_t* TypeName(UMessagePatternArgType type) {
    switch (type) {
        case UMSGPAT_ARG_TYPE_CHOICE:
            return u"choice";
        case UMSGPAT_ARG_TYPE_PLURAL:
            return u"plural";
        case UMSGPAT_ARG_TYPE_SELECT:
            return u"select";
        case UMSGPAT_ARG_TYPE_SELECTORDINAL:
            return u"selectordinal";
        case UMSGPAT_ARG_TYPE_NONE:
        case UMSGPAT_ARG_TYPE_SIMPLE:
            break;
    }
    return u"";
}

// Collects the places of a pattern, also of one whose parse ended early. `open` is set to the part
// that begins the innermost argument without an end.
std::vector<MessagePlace> Places(const MessagePattern& pattern, std::int32_t& open) {
    std::vector<MessagePlace> places;
    std::vector<std::pair<std::size_t, std::int32_t>> around;  // place and part of its beginning
    const auto text = [&](const MessagePattern::Part& part) {
        return Copied(pattern.getSubstring(part));
    };
    for (std::int32_t i = 0; i < pattern.countParts(); ++i) {
        const MessagePattern::Part& part = pattern.getPart(i);
        switch (part.getType()) {
            case UMSGPAT_PART_TYPE_ARG_START:
                around.emplace_back(places.size(), i);
                places.push_back(
                    {.name = {}, .type = TypeName(part.getArgType()), .selectors = {}});
                break;
            case UMSGPAT_PART_TYPE_ARG_NAME:
            case UMSGPAT_PART_TYPE_ARG_NUMBER:
                places[around.back().first].name = text(part);
                places[around.back().first].position = static_cast<std::size_t>(part.getIndex());
                break;
            case UMSGPAT_PART_TYPE_ARG_TYPE:
                places[around.back().first].type = text(part);
                break;
            case UMSGPAT_PART_TYPE_ARG_SELECTOR:
                places[around.back().first].selectors.push_back(text(part));
                break;
            case UMSGPAT_PART_TYPE_ARG_LIMIT:
                around.pop_back();
                break;
            default:
                break;
        }
    }
    open = around.empty() ? -1 : around.back().second;
    return places;
}

// The pattern of one argument that ICU cannot format: it does not know the type, or its style.
std::optional<MessageFault> UnknownType(const MessagePattern& pattern) {
    const auto canFormat = [](const icu::UnicodeString& argument) {
        UErrorCode status = U_ZERO_ERROR;
        UParseError ignored{};
        const icu::MessageFormat format(argument, icu::Locale::getRoot(), ignored, status);
        if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
        return U_SUCCESS(status);
    };
    std::int32_t begin = 0;
    for (std::int32_t i = 0; i < pattern.countParts(); ++i) {
        const MessagePattern::Part& part = pattern.getPart(i);
        if (part.getType() == UMSGPAT_PART_TYPE_ARG_START) begin = i;
        if (part.getType() != UMSGPAT_PART_TYPE_ARG_TYPE) continue;
        const icu::UnicodeString& text = pattern.getPatternString();
        const std::int32_t from = pattern.getPart(begin).getIndex();
        const std::int32_t end = pattern.getPart(pattern.getLimitPartIndex(begin)).getLimit();
        if (canFormat(text.tempSubStringBetween(from, end))) continue;
        const icu::UnicodeString type = pattern.getSubstring(part);
        std::string name;
        type.toUTF8String(name);
        const bool isKnown = canFormat(u"{0," + type + u"}");
        return MessageFault{
            .position = static_cast<std::size_t>(part.getIndex()),
            .reason =
                (isKnown ? "an invalid style of the type \"" : "the unknown type \"") + name + '"'};
    }
    return std::nullopt;
}

const char* Reason(UErrorCode status) {
    switch (status) {
        case U_UNMATCHED_BRACES:
            return "unmatched braces";
        case U_DEFAULT_KEYWORD_MISSING:
            return "no \"other\" form";
        case U_INDEX_OUTOFBOUNDS_ERROR:
            return "a part that is too long";
        case U_ARGUMENT_TYPE_MISMATCH:
            return "an invalid argument name or number";
        default:
            return "invalid syntax";
    }
}

}  // namespace

MessageShape ParseMessage(std::u16string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError error{};
    MessagePattern parsed(status);
    parsed.parse(Copied(pattern), &error, status);
    MessageShape shape;
    std::int32_t open = -1;
    shape.places = Places(parsed, open);
    if (U_SUCCESS(status)) {
        shape.fault = UnknownType(parsed);
        return shape;
    }
    // When the end of an argument lacks something, ICU reports no place: use the argument's
    // beginning.
    const bool atEnd = status == U_DEFAULT_KEYWORD_MISSING || status == U_UNMATCHED_BRACES;
    const std::int32_t position =
        atEnd && open >= 0 ? parsed.getPart(open).getIndex() : std::max(error.offset, 0);
    MessageFault fault{.kind = status == U_DEFAULT_KEYWORD_MISSING ? MessageFault::Kind::kNoOther
                                                                   : MessageFault::Kind::kSyntax,
                       .position = static_cast<std::size_t>(position),
                       .reason = Reason(status)};
    shape.fault = std::move(fault);
    return shape;
}

bool IsKnownLanguage(const icu::Locale& locale) {
    for (std::int32_t i = 0; i < uloc_countAvailable(); ++i) {
        const std::string_view known = uloc_getAvailable(i);
        if (known.substr(0, known.find('_')) == locale.getLanguage()) return true;
    }
    return false;
}

std::vector<PluralCategory> PluralCategories(const std::string& language, bool ordinal) {
    const icu::Locale locale = icu::Locale::createCanonical(language.c_str());
    if (!IsKnownLanguage(locale)) return {};
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::PluralRules> rules(icu::PluralRules::forLocale(
        locale, ordinal ? UPLURAL_TYPE_ORDINAL : UPLURAL_TYPE_CARDINAL, status));
    if (U_FAILURE(status)) return {};
    std::vector<PluralCategory> categories;
    for (const char* const name : {"zero", "one", "two", "few", "many", "other"}) {
        const auto keyword = icu::UnicodeString::fromUTF8(name);
        if (!rules->isKeyword(keyword)) continue;
        std::array<double, 8> samples{};
        const std::int32_t count = rules->getSamples(
            keyword, samples.data(), static_cast<std::int32_t>(samples.size()), status);
        const auto all = std::span(samples).first(static_cast<std::size_t>(std::max(count, 0)));
        const bool same =
            !all.empty() && std::ranges::all_of(all, [&](double n) { return n == all.front(); });
        categories.push_back(
            {name, same ? std::optional(static_cast<int>(all.front())) : std::nullopt});
    }
    return categories;
}

}  // namespace lexon::detail
