#include <algorithm>

#include "tools/base/Files.h"
#include "tools/base/Json.h"
#include "tools/base/Progress.h"
#include "tools/base/Terminal.h"
#include "tools/check/Content.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

// Entries are identified by key, or without keys by id.
bool Before(const Entry* a, const Entry* b) {
    if (a->keyed != b->keyed) return !a->keyed;
    return a->keyed ? a->key < b->key : a->id < b->id;
}

// In the order of their identity; of several entries with the same one, only the first.
std::vector<const Entry*> Sorted(const Content& content) {
    std::vector<const Entry*> list;
    list.reserve(content.entries.size());
    for (const Entry& entry : content.entries)
        list.push_back(&entry);
    std::ranges::stable_sort(list, Before);
    const auto same = [](const Entry* a, const Entry* b) { return !Before(a, b) && !Before(b, a); };
    list.erase(std::unique(list.begin(), list.end(), same), list.end());
    return list;
}

std::string ShowEntry(const Entry& entry) {
    std::string text = Show(UnitsOf(entry.value));
    if (!entry.accelerator.IsEmpty()) text += " & " + Show(UnitsOf(entry.accelerator));
    return text;
}

bool Same(const Entry& a, const Entry& b) {
    return a.value == b.value && a.accelerator == b.accelerator;
}

// One difference, of the entry `named`. Before or after is null when it does not exist.
std::string Line(const Entry& named, const Entry* before, const Entry* after, bool json) {
    const char* const what = before == nullptr ? "added" : after == nullptr ? "removed" : "changed";
    if (!json) {
        std::string line = std::string(what) + ' ' + ShowName(named) + ": ";
        if (before != nullptr) line += ShowEntry(*before);
        if (before != nullptr && after != nullptr) line += " -> ";
        if (after != nullptr) line += ShowEntry(*after);
        return line + '\n';
    }
    Json object{{"change", what}};
    if (named.keyed) {
        PutKey(object, "key", named.key);
    } else {
        object["id"] = named.id;
    }
    const auto put = [&object](const std::string& when, const Entry* entry) {
        if (entry == nullptr) return;
        PutText(object, when, UnitsOf(entry->value));
        if (entry->accelerator.IsEmpty()) return;
        PutText(object, when + "Accelerator", UnitsOf(entry->accelerator));
    };
    put("old", before);
    put("new", after);
    return JsonLine(object);
}

// A line for each difference.
std::string Differences(const Content& before, const Content& after, bool json) {
    const Progress progress("comparing", after.name);
    const std::vector<const Entry*> old = Sorted(before);
    const std::vector<const Entry*> now = Sorted(after);
    std::string lines;
    auto was = old.begin();
    auto is = now.begin();
    while (was != old.end() || is != now.end()) {
        if (is == now.end() || (was != old.end() && Before(*was, *is))) {
            lines += Line(**was, *was, nullptr, json);
            ++was;
        } else if (was == old.end() || Before(*is, *was)) {
            lines += Line(**is, nullptr, *is, json);
            ++is;
        } else {
            if (!Same(**was, **is)) lines += Line(**was, *was, *is, json);
            ++was;
            ++is;
        }
    }
    return lines;
}

}  // namespace

int Compare(const Arguments& arguments) {
    const bool json = arguments.Get("format") == "json";
    const Content before = Load(arguments.operands[0]);
    const Content after = Load(arguments.operands[1]);
    std::string differences = Differences(before, after, json);
    const bool same = differences.empty();
    WriteStandardOutput(
        ForOutput("-", std::move(differences), json ? ControlForm::kJson : ControlForm::kEntry));
    return same ? kSuccess : kDifference;
}

}  // namespace tool
