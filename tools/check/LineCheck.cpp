#include "tools/check/LineCheck.h"

#include <algorithm>

#include "tools/base/Annotations.h"
#include "tools/check/EscapeCheck.h"
#include "wordlex/functionality/Dictionary.h"

namespace tool {

namespace {

using lexon_private::Dictionary;

bool IsBlank(unsigned short unit) { return unit == ' ' || unit == '\t' || unit == 0x00A0; }

// The bytes that the loader keeps of a key.
std::string Narrow(Units key) {
    std::string bytes(key.size(), '\0');
    std::ranges::transform(key, bytes.begin(), [](unsigned short unit) {
        return static_cast<char>(static_cast<unsigned char>(unit));
    });
    return bytes;
}

std::string Counted(std::size_t count, const char* thing) {
    return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

}  // namespace

void LineCheck::Add(Rule rule, const unsigned short* position, std::string text) {
    findings.Add(rule, {file.name, scanner.LineNumber(), scanner.Column(position)},
                 std::move(text));
}

void LineCheck::Check() {
    if (scanner.IsLost()) {
        findings.Add(Rule::kInvalidText, {file.name, scanner.LineNumber(), scanner.LostColumn()},
                     "these bytes are no text of the encoding; the loader skips the whole line");
        return;
    }
    Parts parts;
    const unsigned short* const line = scanner.Line().data();
    parts.opening = Dictionary::FindQuoteMark(line);
    if (parts.opening != nullptr) parts.closing = Dictionary::FindQuoteMark(parts.opening + 1);
    Annotate(parts);

    const unsigned short* key = nullptr;
    const unsigned short* value = nullptr;
    unsigned long keyLength = 0;
    unsigned long valueLength = 0;
    if (!Dictionary::ParseEntry(line, key, keyLength, value, valueLength)) {
        const unsigned short* const entry = parts.opening != nullptr ? parts.opening + 1 : line;
        malformedKeys.push_back({file.name, scanner.LineNumber(), scanner.Column(entry)});
        return;
    }
    parts.key = {key, keyLength};
    parts.value = {value, valueLength};
    parts.hasEquals = value != key + keyLength;
    CheckMarks(parts);
    CheckKey(parts);
    if (parts.opening != nullptr) CheckEquals(parts);
    Define(parts, CheckValue(parts));
}

// Does what the comments on the line say.
void LineCheck::Annotate(Parts& parts) {
    if (parts.opening == nullptr) return;
    const unsigned short* const begin = scanner.Line().data();
    const Units outside[] = {{begin, parts.opening},
                             parts.closing == nullptr
                                 ? Units()
                                 : Units(parts.closing + 1, begin + scanner.Line().size())};
    Findings::Rules rules;
    for (const Units part : outside) {
        if (part.empty()) continue;
        const Annotations annotations = ParseAnnotations(Utf8(part));
        parts.isMessage |= annotations.message;
        for (const Annotations::Rule& named : annotations.ignored) {
            if (const auto rule = FindRule(named.name)) {
                rules.set(static_cast<std::size_t>(*rule));
            } else {
                Add(Rule::kUnknownRule, part.data(), "there is no rule \"" + named.name + '"');
            }
        }
    }
    if (rules.any()) findings.Ignore(scanner.LineNumber(), rules);
}

void LineCheck::CheckMarks(const Parts& parts) {
    if (parts.opening == nullptr) {
        Add(Rule::kUnquotedLine, scanner.Line().data(),
            "no quotation marks: the line becomes an entry with the key " +
                ShowKey(Narrow(parts.key)));
        return;
    }
    if (parts.closing != nullptr) return;
    // The last mark of the line is an escaped one: was it meant to close?
    const Units line = scanner.Line();
    const auto last = std::find_if_not(line.rbegin(), line.rend(), IsBlank);
    if (last != line.rend() && *last == u'"' && &*last > parts.opening) {
        Add(Rule::kTrailingBackslash, &*last - 1,
            "the backslash escapes the closing quotation mark, which becomes part of the value");
    } else {
        Add(Rule::kUnclosedQuote, parts.opening,
            "the quotation mark is not closed: the entry runs to the end of the line");
    }
}

void LineCheck::CheckKey(const Parts& parts) {
    const Units key = parts.key;
    if (key.empty()) {
        Add(Rule::kEmptyKey, key.data(), "an entry without a key");
        return;
    }
    const auto wide = std::ranges::find_if(key, [](unsigned short unit) { return unit > 0x00FF; });
    if (wide != key.end()) {
        const auto low = static_cast<char>(static_cast<unsigned char>(*wide));
        Add(Rule::kWideKey, &*wide,
            CodePoint(*wide) + " in a key: its low byte is kept, " + ShowKey({&low, 1}));
    }
    static constexpr unsigned short kPrefix[] = {'$', '$', '$'};
    const auto prefix = std::search(key.begin(), key.end(), std::begin(kPrefix), std::end(kPrefix));
    if (prefix != key.end()) {
        Add(Rule::kInnerPrefix, &*prefix,
            "\"$$$\" does not begin the key and becomes part of it: " + ShowKey(Narrow(key)));
    }
    const std::string size = "a key of " + Counted(key.size(), "byte");
    if (key.size() > kMostBytes) {
        Add(Rule::kKeyLength, key.data(), size + ": binary files have room for 65,535");
    } else if (key.size() > kMergeableKeyBytes) {
        Add(Rule::kLongKey, key.data(), size + ": a merge of binary files does not find it");
    }
}

void LineCheck::CheckEquals(const Parts& parts) {
    if (parts.key.empty()) return;
    const unsigned short* const keyEnd = parts.key.data() + parts.key.size();
    if (!parts.hasEquals) {
        Add(Rule::kNoEquals, keyEnd, "no \"=\": the value is empty");
        return;
    }
    if (IsBlank(parts.key.back())) {
        Add(Rule::kBlankAtEquals, keyEnd - 1, "the blank before \"=\" is part of the key");
    }
    if (!parts.value.empty() && IsBlank(parts.value.front())) {
        Add(Rule::kBlankAtEquals, parts.value.data(),
            "the blank behind \"=\" is part of the value");
    }
}

Text LineCheck::CheckValue(const Parts& parts) {
    const Units written = parts.value;
    Text value = CheckEscapes(written, [&](Rule rule, std::size_t position, std::string text) {
        Add(rule, written.data() + position, std::move(text));
    });
    const Units units = UnitsOf(value);
    if (2 * units.size() > kMostBytes) {
        Add(Rule::kValueLength, written.data(),
            "a value of " + Counted(2 * units.size(), "byte") +
                ": binary files have room for 65,535");
    }
    if (const std::size_t at = FindUnpairedSurrogate(units); at != units.size()) {
        const std::size_t raw = FindUnpairedSurrogate(written);
        Add(Rule::kLoneSurrogate, written.data() + (raw == written.size() ? 0 : raw),
            CodePoint(units[at]) + " is half of a surrogate pair");
    }
    return value;
}

void LineCheck::Define(const Parts& parts, Text value) {
    const std::string key = Narrow(parts.key);
    const Place place{file.name, scanner.LineNumber(), scanner.Column(parts.key.data())};
    const First written{{parts.key.begin(), parts.key.end()}, place};
    const auto [entry, isNew] = firsts.try_emplace(key, written);
    if (!isNew) {
        const First& first = entry->second;
        const bool same = first.key == written.key;
        findings.Add(same ? Rule::kDuplicateKey : Rule::kKeyCollision, place,
                     "the key " + ShowKey(key) +
                         (same ? " is defined first at " : " is the same bytes as the one at ") +
                         Show(first.place) + "; this text replaces that one");
    }
    Definition definition{place, std::move(value)};
    definition.isMessage = parts.isMessage;
    // Only a message pattern has places inside its value, and none is one without a brace.
    if (std::ranges::find(parts.value, u'{') != parts.value.end() &&
        !std::ranges::equal(UnitsOf(definition.value), parts.value)) {
        definition.written.assign(parts.value.begin(), parts.value.end());
    }
    definition.valueColumn = scanner.Column(parts.value.data());
    file.entries.insert_or_assign(key, std::move(definition));
}

void LineCheck::Finish() {
    for (const Place& place : malformedKeys) {
        findings.Add(Rule::kDollarKey, place,
                     "the key begins with \"$\" but not with \"$$$\": the dictionary becomes "
                     "invalid and the application shows all of its keys raw, the " +
                         Counted(file.entries.size(), "good key") + " of this file included");
    }
}

}  // namespace tool
