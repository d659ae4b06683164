#include <algorithm>
#include <functional>
#include <map>
#include <set>

#include "tools/check/CheckedFile.h"
#include "tools/check/MessageCheck.h"

namespace tool {

namespace {

std::set<std::string> Markers(const Text& text) {
    std::set<std::string> markers;
    for (unsigned char n = 0; n <= 9; ++n) {
        if (text.WillReplace(n)) markers.insert("^" + std::to_string(n));
    }
    return markers;
}

// The names of the parameter tags: of all that stands in quotation marks, what the string class
// finds as one.
std::set<std::string> Parameters(const Text& text) {
    std::set<std::string> tried;
    std::set<std::string> names;
    const Units units = UnitsOf(text);
    auto opening = std::ranges::find(units, u'"');
    while (opening != units.end()) {
        const auto closing = std::find(opening + 1, units.end(), u'"');
        if (closing == units.end()) break;
        const std::string name = Utf8(Units(opening + 1, closing));
        Text copy = text;
        if (tried.insert(name).second && SubstituteParameter(copy, name, {})) {
            names.insert(name);
        }
        opening = closing;
    }
    return names;
}

using Names = std::set<std::string> (*)(const Text&);

struct PlaceholderKind {
    Names names;
    Rule missing;
    Rule extra;
    const char* what;
};
constexpr PlaceholderKind kPlaceholderKinds[] = {
    {Markers, Rule::kMissingMarker, Rule::kExtraMarker, "marker "},
    {Parameters, Rule::kMissingParameter, Rule::kExtraParameter, "parameter tag "},
};

using Add = std::function<void(Rule, std::string text)>;

void ComparePlaceholders(const std::string& key, const Text& text, const Text& reference,
                         const Add& add) {
    for (const PlaceholderKind& kind : kPlaceholderKinds) {
        const auto here = kind.names(text);
        const auto there = kind.names(reference);
        const auto tell = [&](Rule rule, const std::string& name, const char* how) {
            add(rule,
                "the text of " + ShowKey(key) + how + kind.what + ShowRaw(UnitsOf(FromUtf8(name))));
        };
        for (const std::string& name : there) {
            if (!here.contains(name)) tell(kind.missing, name, " lacks the reference's ");
        }
        for (const std::string& name : here) {
            if (!there.contains(name)) tell(kind.extra, name, " has, unlike the reference, the ");
        }
    }
}

// The comment on the reference's line counts for its translations.
void CheckTranslatedMessage(const std::string& key, const Definition& entry,
                            const Definition& reference, const MessageCheck& messages,
                            const MessageCheck::Add& add) {
    const MessageCheck::Add drop = [](Rule, const Place&, const std::string&) {};
    // An entry whose own line has the comment was checked by itself.
    const auto here = messages.Check(key, entry, entry.isMessage ? drop : add);
    const auto there = messages.Check(key, reference, drop);
    if (here && there) messages.Compare(key, entry, *here, *there, add);
}

// Upper and lower case of Latin, Greek and Cyrillic letters mark the same key.
unsigned short FoldCase(unsigned short unit) {
    const bool oneBlock = (unit >= 'A' && unit <= 'Z') ||
                          (unit >= 0x00C0 && unit <= 0x00DE && unit != 0x00D7) ||
                          (unit >= 0x0391 && unit <= 0x03A9) || (unit >= 0x0410 && unit <= 0x042F);
    return oneBlock ? unit + 0x20 : unit;
}

}  // namespace

void CheckAccelerators(const CheckedFile& file, Findings& findings) {
    // Entries beside each other differ behind the last "/" alone.
    std::map<std::pair<std::string, unsigned short>, const std::string*> marked;
    std::vector<const std::pair<const std::string, Definition>*> inOrder;
    for (const auto& entry : file.entries)
        inOrder.push_back(&entry);
    std::ranges::stable_sort(inOrder, {},
                             [](const auto* entry) { return entry->second.place.line; });
    for (const auto* item : inOrder) {
        const auto& [key, entry] = *item;
        const unsigned short accelerator = FoldCase(entry.value.GetAccelerator());
        const std::size_t slash = key.rfind('/');
        if (accelerator == 0 || slash == std::string::npos) continue;
        const auto [first, isNew] = marked.try_emplace({key.substr(0, slash), accelerator}, &key);
        if (isNew) continue;
        findings.Add(Rule::kSameAccelerator, entry.place,
                     "the accelerator " + ShowRaw(Units(&accelerator, 1)) + " of " + ShowKey(key) +
                         " is that of " + ShowKey(*first->second) + " too");
    }
}

void CheckAgainst(const CheckedFile& file, const CheckedFile& reference,
                  const Findings& ofReference, Findings& findings) {
    const MessageCheck messages(file);
    for (const auto& entry : reference.entries) {
        const std::string& key = entry.first;
        const Definition& there = entry.second;
        const auto here = file.entries.find(key);
        const bool missing = here == file.entries.end();
        const Add add = [&](Rule rule, std::string text) {
            if (ofReference.Ignores(there.place.line, rule)) return;
            findings.Add(rule, missing ? Place{file.name} : here->second.place, std::move(text));
        };
        if (missing) {
            add(Rule::kMissingKey, "the key " + ShowKey(key) + " of the reference (" +
                                       Show(there.place) + ") is missing");
            continue;
        }
        const Text& text = here->second.value;
        ComparePlaceholders(key, text, there.value, add);
        if (there.isMessage) {
            CheckTranslatedMessage(key, here->second, there, messages,
                                   [&](Rule rule, Place place, std::string what) {
                                       if (ofReference.Ignores(there.place.line, rule)) return;
                                       findings.Add(rule, std::move(place), std::move(what));
                                   });
        }
        if (text == there.value && !text.IsEmpty()) {
            add(Rule::kSameAsReference, "the text of " + ShowKey(key) + " equals the reference's");
        }
    }
    for (const auto& [key, entry] : file.entries) {
        if (reference.entries.contains(key)) continue;
        findings.Add(Rule::kObsoleteKey, entry.place,
                     "the reference does not have the key " + ShowKey(key));
    }
}

}  // namespace tool
