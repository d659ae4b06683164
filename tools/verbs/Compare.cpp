#include <map>

#include "tools/base/Content.h"
#include "tools/base/Files.h"
#include "tools/base/Json.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

// Entries are the same by their key, and by their id where they have none.
using Identity = std::pair<std::string, std::uint32_t>;
using Index = std::map<Identity, const Entry*>;

Index IndexOf(const Content& content) {
    Index index;
    for (const Entry& entry : content.entries)
        index.emplace(Identity(entry.key, entry.keyed ? 0 : entry.id + 1), &entry);
    return index;
}

std::string ShowEntry(const Entry& entry) {
    std::string text = Show(UnitsOf(entry.value));
    if (!entry.accelerator.IsEmpty()) text += " & " + Show(UnitsOf(entry.accelerator));
    return text;
}

bool Same(const Entry& a, const Entry& b) {
    return a.value == b.value && a.accelerator == b.accelerator;
}

// One difference; what was not there is null.
std::string Line(const Entry* before, const Entry* after, bool json) {
    const char* const what = before == nullptr ? "added" : after == nullptr ? "removed" : "changed";
    const Entry& named = before == nullptr ? *after : *before;
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

using Differences = std::map<Identity, std::pair<const Entry*, const Entry*>>;

Differences Differ(const Content& before, const Content& after) {
    const Progress progress("comparing", after.name);
    const Index old = IndexOf(before);
    const Index now = IndexOf(after);
    Differences differences;
    for (const auto& [name, entry] : old) {
        const auto other = now.find(name);
        const Entry* const counterpart = other == now.end() ? nullptr : other->second;
        if (counterpart == nullptr || !Same(*entry, *counterpart)) {
            differences[name] = {entry, counterpart};
        }
    }
    for (const auto& [name, entry] : now) {
        if (!old.contains(name)) differences[name] = {nullptr, entry};
    }
    return differences;
}

}  // namespace

int Compare(const Arguments& arguments) {
    const bool json = arguments.Get("format") == "json";
    const Content before = Load(arguments.operands[0]);
    const Content after = Load(arguments.operands[1]);
    const Differences differences = Differ(before, after);
    std::string output;
    for (const auto& [name, entries] : differences)
        output += Line(entries.first, entries.second, json);
    WriteStandardOutput(output);
    return differences.empty() ? kSuccess : kDifference;
}

}  // namespace tool
