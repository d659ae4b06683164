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

// "form "few"", "forms "few" and "many""
std::string Forms(const std::vector<std::string>& names) {
    std::string list = names.size() == 1 ? "form " : "forms ";
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i != 0) list += i + 1 == names.size() ? " and " : ", ";
        list += '"' + names[i] + '"';
    }
    return list;
}

// The names that are in the first list but not in the second one.
std::vector<std::string> Without(const std::vector<std::u16string>& names,
                                 const std::vector<std::u16string>& others) {
    std::vector<std::string> left;
    for (const std::u16string& name : names) {
        if (std::ranges::find(others, name) == others.end()) left.push_back(Utf8(name));
    }
    return left;
}

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

// The program passes the names of the reference's forms. A language may need fewer or more of them,
// but a form in place of one of the reference is misspelt or translated.
void CompareSelect(const std::string& key, const MessagePlace& place, const MessageShape& reference,
                   const MessageCheck::Add& add) {
    std::vector<std::u16string> wanted;
    for (const MessagePlace& other : reference.places) {
        if (other.type == u"select" && other.name == place.name)
            wanted.insert(wanted.end(), other.selectors.begin(), other.selectors.end());
    }
    const std::vector<std::string> missing = Without(wanted, place.selectors);
    const std::vector<std::string> unknown = Without(place.selectors, wanted);
    if (missing.empty() || unknown.empty()) return;
    add(Rule::kMessageUnusedForm, place.position,
        Braced(place.name) + " of " + ShowKey(key) + " has the " + Forms(unknown) +
            " where the reference has the " + Forms(missing));
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
    const auto has = [&place](const std::string& selector) {
        return std::ranges::any_of(place.selectors, [&selector](const std::u16string& written) {
            return Utf8(written) == selector;
        });
    };
    std::vector<std::string> missing;
    for (const auto& category : categories) {
        if (!has(category.name) && !(category.only && has('=' + std::to_string(*category.only)))) {
            missing.push_back(category.name);
        }
    }
    std::vector<std::string> unused;
    for (const std::u16string& written : place.selectors) {
        std::string selector = Utf8(written);
        if (!selector.starts_with('=') &&
            std::ranges::find(categories, selector, &lexon::detail::PluralCategory::name) ==
                categories.end()) {
            unused.push_back(std::move(selector));
        }
    }
    const std::string argument = Braced(place.name) + " of " + ShowKey(key);
    if (!missing.empty()) {
        std::string what =
            argument + " has no " + Forms(missing) + ", which " + language + " needs";
        if (!unused.empty()) what += "; " + language + " does not have its " + Forms(unused);
        add(Rule::kMessageCategory, place.position, std::move(what));
    } else if (!unused.empty()) {
        add(Rule::kMessageUnusedForm, place.position,
            argument + " has the " + Forms(unused) + ", which " + language + " does not have");
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
        } else if (place.type == u"select") {
            CompareSelect(key, place, reference, add);
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
