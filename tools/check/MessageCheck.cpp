#include "tools/check/MessageCheck.h"

#include <algorithm>
#include <map>
#include <set>

#include "tools/base/Language.h"

namespace tool {

namespace {

using lexon::detail::MessageFault;
using lexon::detail::MessagePlace;
using lexon::detail::MessageShape;

std::u16string_view PatternOf(const Text& value) {
    const Units units = UnitsOf(value);
    return {reinterpret_cast<const char16_t*>(units.data()), units.size()};
}

std::string Utf8(std::u16string_view text) {
    const std::vector<unsigned short> units(text.begin(), text.end());
    return tool::Utf8(units);
}

std::string Braced(std::u16string_view name) { return '{' + Utf8(name) + '}'; }

// The kind of argument that a place can show.
enum class Need { kAnything, kNumber, kDate, kText };

Need NeedOf(const MessagePlace& place) {
    if (place.type.empty()) return Need::kAnything;
    if (place.type == u"select") return Need::kText;
    return place.type == u"date" || place.type == u"time" ? Need::kDate : Need::kNumber;
}

const char* Name(Need need) {
    static constexpr const char* kNames[] = {"any argument", "a number", "a date", "a text"};
    return kNames[static_cast<std::size_t>(need)];
}

using Needs = std::map<std::u16string, std::set<Need>>;
Needs NeedsOf(const MessageShape& shape) {
    Needs needs;
    for (const MessagePlace& place : shape.places)
        needs[place.name].insert(NeedOf(place));
    return needs;
}

}  // namespace

MessageCheck::MessageCheck(const CheckedFile& checkedFile)
    : language(LanguageOf(checkedFile.name, checkedFile.locale)),
      cardinals(lexon::detail::PluralCategories(language, false)),
      ordinals(lexon::detail::PluralCategories(language, true)) {}

std::optional<MessageShape> MessageCheck::Check(const std::string& key, const Definition& entry,
                                                const Add& add) const {
    MessageShape shape = lexon::detail::ParseMessage(PatternOf(entry.value));
    if (shape.fault) {
        const bool noOther = shape.fault->kind == MessageFault::Kind::kNoOther;
        add(noOther ? Rule::kMessageDefault : Rule::kMessageSyntax, shape.fault->position,
            "the message of " + ShowKey(key) + " has " + shape.fault->reason);
        return std::nullopt;
    }
    for (const MessagePlace& place : shape.places) {
        if (place.type == u"plural") CheckForms(key, place, cardinals, add);
        if (place.type == u"selectordinal") CheckForms(key, place, ordinals, add);
    }
    return shape;
}

void MessageCheck::CheckForms(const std::string& key, const MessagePlace& place,
                              const Categories& categories, const Add& add) const {
    if (categories.empty()) return;
    std::string argument = Braced(place.name);
    argument += " of " + ShowKey(key);
    const auto has = [&place](const std::string& selector) {
        return std::ranges::any_of(place.selectors, [&selector](const std::u16string& written) {
            return Utf8(written) == selector;
        });
    };
    for (const auto& category : categories) {
        if (has(category.name) || (category.only && has('=' + std::to_string(*category.only)))) {
            continue;
        }
        add(Rule::kMessageCategory, place.position,
            argument + " has no form \"" + category.name + "\", which " + language + " needs");
    }
    for (const std::u16string& written : place.selectors) {
        const std::string selector = Utf8(written);
        if (selector.starts_with('=') ||
            std::ranges::find(categories, selector, &lexon::detail::PluralCategory::name) !=
                categories.end()) {
            continue;
        }
        add(Rule::kMessageUnusedForm, place.position,
            std::string(argument)
                .append(" has a form \"")
                .append(selector)
                .append("\", which ")
                .append(language)
                .append(" does not have"));
    }
}

void MessageCheck::Compare(const std::string& key, const MessageShape& shape,
                           const MessageShape& reference, const Add& add) const {
    const Needs here = NeedsOf(shape);
    const Needs there = NeedsOf(reference);
    const std::string text = "the message of " + ShowKey(key);
    std::set<std::u16string> told;
    for (const auto& item : there) {
        if (here.contains(item.first)) continue;
        const std::string what =
            text + " does not have the reference's argument " + Braced(item.first);
        const auto other = std::ranges::find_if(shape.places, [&](const MessagePlace& place) {
            return !there.contains(place.name) && !told.contains(place.name);
        });
        if (other == shape.places.end()) {
            add(Rule::kMissingArgument, 0, what);
            continue;
        }
        add(Rule::kMissingArgument, other->position,
            what + "; " + Braced(other->name) + " is in its place");
        told.insert(other->name);
    }
    for (const MessagePlace& place : shape.places) {
        const auto known = there.find(place.name);
        const Need need = NeedOf(place);
        if (known == there.end()) {
            if (told.insert(place.name).second) {
                add(Rule::kExtraArgument, place.position,
                    text + " has the argument " + Braced(place.name) +
                        ", which the reference does not have");
            }
        } else if (need != Need::kAnything && !known->second.contains(need)) {
            add(Rule::kArgumentType, place.position,
                text + " needs " + Name(need) + " for " + Braced(place.name) + ", the reference " +
                    Name(*known->second.rbegin()));
        }
    }
}

void CheckMessages(const CheckedFile& file, Findings& findings) {
    const auto isMessage = [](const auto& entry) { return entry.second.isMessage; };
    if (std::ranges::none_of(file.entries, isMessage)) return;
    const MessageCheck messages(file);
    for (const auto& item : file.entries) {
        const std::string& key = item.first;
        const Definition& entry = item.second;
        if (!entry.isMessage) continue;
        messages.Check(key, entry, [&](Rule rule, std::size_t at, std::string text) {
            findings.Add(rule, PlaceInValue(file, entry, at, at + 1), std::move(text), key);
        });
    }
}

}  // namespace tool
