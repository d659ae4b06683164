#include "tools/check/LineCheck.h"

#include <algorithm>

#include "tools/base/Annotations.h"
#include "tools/base/Suggest.h"
#include "tools/check/CharacterCheck.h"
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

bool BeginsWith(Units text, std::string_view ascii) {
    return text.size() >= ascii.size() && std::equal(ascii.begin(), ascii.end(), text.begin());
}

Units WithoutBlanks(Units text) {
    while (!text.empty() && IsBlank(text.front()))
        text = text.subspan(1);
    while (!text.empty() && IsBlank(text.back()))
        text = text.first(text.size() - 1);
    return text;
}

// Whether the text begins like a comment of some programming language.
bool BeginsComment(Units text) {
    constexpr std::string_view kSigns[] = {"#", "//", ";", "--", "/*", "<!--"};
    return std::ranges::any_of(kSigns, [&](auto sign) { return BeginsWith(text, sign); });
}

bool IsWordPart(unsigned short unit) {
    return (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'Z') ||
           (unit >= 'a' && unit <= 'z') || unit > 0x00BF;
}

// Whether a finding explains why a key of the line is missing or unknown.
bool IsAboutKey(Rule rule) {
    return rule == Rule::kDollarKey || rule == Rule::kTextAfterMark ||
           rule == Rule::kUnquotedLine || rule == Rule::kNoEquals || rule == Rule::kEmptyKey ||
           rule == Rule::kInnerPrefix || rule == Rule::kWideKey;
}

}  // namespace

void LineCheck::Add(Rule rule, Units where, std::string text, std::optional<std::string> key) {
    const unsigned short* const begin = where.data();
    const unsigned short* const end = begin + where.size();
    const unsigned short* const line = scanner.Line().data();
    const std::ptrdiff_t mark = scanner.LineNumber() == 1 && *line == 0xFEFF ? 1 : 0;
    Place place{file.name, scanner.LineNumber(), scanner.Column(begin), scanner.Column(end)};
    place.unit = static_cast<std::uint64_t>(std::max(begin - line - mark, std::ptrdiff_t{0}));
    place.endUnit = static_cast<std::uint64_t>(std::max(end - line - mark, std::ptrdiff_t{0}));
    findings.Add(rule, std::move(place), std::move(text), std::move(key));
    isSpoilt = isSpoilt || IsAboutKey(rule);
}

void LineCheck::Check() {
    isSpoilt = false;
    if (scanner.IsLost()) {
        file.spoiltLines.emplace_back(scanner.LineBytes());
        findings.Add(Rule::kInvalidText,
                     {file.name, scanner.LineNumber(), scanner.LostColumn(), scanner.LostColumn()},
                     "these bytes are not text of the encoding; the loader skips the whole line");
        return;
    }
    if (IsOfConflict()) return;
    Parts parts;
    const Units units = scanner.Line();
    const unsigned short* const line = units.data();
    parts.opening = Dictionary::FindQuoteMark(line);
    if (parts.opening != nullptr) parts.closing = Dictionary::FindQuoteMark(parts.opening + 1);
    Definition entry;
    if (parts.opening != nullptr) TakeAnnotations({line, parts.opening}, entry);
    if (parts.closing != nullptr) TakeAnnotations({parts.closing + 1, line + units.size()}, entry);

    const unsigned short* key = nullptr;
    const unsigned short* value = nullptr;
    unsigned long keyLength = 0;
    unsigned long valueLength = 0;
    if (!Dictionary::ParseEntry(line, key, keyLength, value, valueLength)) {
        Add(Rule::kDollarKey, {parts.opening != nullptr ? parts.opening + 1 : line, 1},
            "the key begins with \"$\" but not with \"$$$\": the dictionary becomes invalid and "
            "the application shows all of its keys raw");
        file.spoiltLines.push_back(Utf8(units));
        return;
    }
    parts.key = {key, keyLength};
    parts.value = {value, valueLength};
    parts.hasEquals = value != key + keyLength;
    entry.isWhole = CheckMarks(parts);
    CheckKey(parts);
    if (parts.opening != nullptr) CheckEquals(parts);
    if (isSpoilt) file.spoiltLines.push_back(Utf8(units));
    entry.isSpoilt = isSpoilt;
    if (entry.untranslated) {
        Add(Rule::kUntranslated, parts.value, "marked as untranslated", Narrow(parts.key));
    } else if (entry.stale) {
        Add(Rule::kStale, parts.value, "marked as stale: the reference's text has changed",
            Narrow(parts.key));
    }
    entry.value = CheckValue(parts);
    Define(parts, std::move(entry));
}

// Whether the line belongs to a conflict's marks. A conflict is one finding, at its first line;
// keys on both of its sides are not duplicates.
bool LineCheck::IsOfConflict() {
    constexpr std::size_t kLength = 7;
    Units line = scanner.Line();
    if (scanner.LineNumber() == 1 && line.front() == 0xFEFF) line = line.subspan(1);
    if (line.size() < kLength) return false;
    const unsigned short sign = line.front();
    const bool isMark = (sign == '<' || sign == '=' || sign == '>' || sign == '|') &&
                        std::ranges::count(line.first(kLength), sign) == kLength &&
                        (line.size() == kLength || (sign != '=' && IsBlank(line[kLength])));
    if (!isMark) return false;
    if (sign == '<' || conflict == Conflict::kNone) {
        Add(Rule::kConflictMarker, line,
            "a conflict marker, which becomes an entry; choose one of the sides");
    }
    conflict = sign == '<'                                  ? Conflict::kFirstSide
               : sign == '>' || conflict == Conflict::kNone ? Conflict::kNone
                                                            : Conflict::kOtherSide;
    return true;
}

void LineCheck::TakeAnnotations(Units comment, Definition& entry) {
    if (comment.empty()) return;
    const std::string text = Utf8(comment);
    const Annotations annotations = ParseAnnotations(text);
    Findings::Rules rules;
    for (const Annotations::Rule& ignored : annotations.ignored) {
        if (const auto rule = FindRule(ignored.name)) {
            rules.set(static_cast<std::size_t>(*rule));
            continue;
        }
        const Units before = UnitsOf(FromUtf8(std::string_view(text).substr(0, ignored.offset)));
        Add(Rule::kUnknownRule, comment.subspan(before.size(), ignored.name.size()),
            "there is no rule \"" + ignored.name + '"' + DidYouMean(ignored.name, RuleNames()));
    }
    if (rules.any()) findings.Ignore(scanner.LineNumber(), rules);
    entry.untranslated |= annotations.untranslated;
    entry.stale |= annotations.stale;
    entry.isMessage |= annotations.message;
    if (!annotations.from.empty()) entry.from = annotations.from;
}

bool LineCheck::CheckMarks(const Parts& parts) {
    const Units line = scanner.Line();
    if (parts.opening == nullptr) {
        Add(Rule::kUnquotedLine, line,
            "no quotation marks: the line becomes an entry with the key " +
                ShowKey(Narrow(parts.key)));
        return false;
    }
    if (parts.closing != nullptr) return CheckOutside(parts);
    // The last mark of the line is escaped: was it meant to close?
    const auto last = std::find_if_not(line.rbegin(), line.rend(), IsBlank);
    if (last != line.rend() && *last == u'"' && &*last > parts.opening) {
        Add(Rule::kTrailingBackslash, {&*last - 1, 2},
            "the backslash escapes the closing quotation mark, which becomes part of the value");
    } else if (const TextScanner::End end = scanner.AtEnd();
               !end.byZero || end.line != scanner.LineNumber()) {
        isSpoilt = parts.key.empty();
        Add(Rule::kUnclosedQuote, {parts.opening, 1},
            "the quotation mark is not closed: the entry runs to the end of the line");
    }
    return false;
}

// Checks the text outside the quotation marks of a closed entry.
bool LineCheck::CheckOutside(const Parts& parts) {
    const Units line = scanner.Line();
    const Units before = WithoutBlanks({line.data(), parts.opening});
    if (BeginsComment(before)) {
        Add(Rule::kCommentedEntry, before,
            ShowRaw(before) + " does not switch the entry off: the loader reads it");
    }
    const Units after = WithoutBlanks({parts.closing + 1, line.data() + line.size()});
    if (after.empty() || BeginsComment(after)) return true;
    const bool isLost = std::ranges::find(after, u'"') != after.end() ||
                        (after.data() == parts.closing + 1 && IsWordPart(after.front()));
    if (isLost) {
        Add(Rule::kTextAfterMark, after,
            ShowRaw(after) +
                " after the closing quotation mark is lost; a quotation mark inside "
                "a text is written \\\", and each entry has a line of its own");
    }
    return !isLost || BeginsWith(after, "\"$$$");
}

void LineCheck::CheckKey(const Parts& parts) {
    const Units key = parts.key;
    if (key.empty()) {
        if (!isSpoilt) Add(Rule::kEmptyKey, key, "an entry without a key");
        return;
    }
    const auto wide = std::ranges::find_if(key, [](unsigned short unit) { return unit > 0x00FF; });
    if (wide != key.end()) {
        const auto low = static_cast<char>(static_cast<unsigned char>(*wide));
        Add(Rule::kWideKey, {&*wide, 1},
            CodePoint(*wide) + " in a key: its low byte is kept, " + ShowKey({&low, 1}));
    }
    static constexpr unsigned short kPrefix[] = {'$', '$', '$'};
    const auto prefix = std::search(key.begin(), key.end(), std::begin(kPrefix), std::end(kPrefix));
    if (prefix != key.end()) {
        Add(Rule::kInnerPrefix, {&*prefix, std::size(kPrefix)},
            "\"$$$\" does not begin the key and becomes part of it: " + ShowKey(Narrow(key)));
    }
    const std::string size = "a key of " + Counted(key.size(), "byte");
    if (key.size() > kMostBytes) {
        Add(Rule::kKeyLength, key, size + ": binary files have room for 65,535");
    } else if (key.size() > kMergeableKeyBytes) {
        Add(Rule::kLongKey, key, size + ": a merge of binary files does not find it");
    }
}

void LineCheck::CheckEquals(const Parts& parts) {
    if (parts.key.empty()) return;
    const unsigned short* const keyEnd = parts.key.data() + parts.key.size();
    if (!parts.hasEquals) {
        Add(Rule::kNoEquals, {keyEnd, std::size_t{0}}, "no \"=\": the value is empty");
        return;
    }
    if (IsBlank(parts.key.back())) {
        Add(Rule::kBlankAtEquals, {keyEnd - 1, 1}, "the blank before \"=\" is part of the key");
        isSpoilt = true;
    }
    if (!parts.value.empty() && IsBlank(parts.value.front())) {
        Add(Rule::kBlankAtEquals, parts.value.first(1),
            "the blank after \"=\" is part of the value");
    }
}

Text LineCheck::CheckValue(const Parts& parts) {
    const Units written = parts.value;
    const EscapeSink add = [&](Rule rule, std::size_t position, std::size_t length,
                               std::string text) {
        Add(rule, written.subspan(position, length), std::move(text));
    };
    Text value = CheckEscapes(written, add);
    const Units units = UnitsOf(value);
    if (2 * units.size() > kMostBytes) {
        Add(Rule::kValueLength, written,
            "a value of " + Counted(2 * units.size(), "byte") +
                ": binary files have room for 65,535");
    }
    if (const std::size_t at = FindUnpairedSurrogate(units); at != units.size()) {
        Add(Rule::kLoneSurrogate, written.subspan(OriginsOf(written)[at], 1),
            CodePoint(units[at]) + " is half of a surrogate pair");
    }
    CheckCharacters(written, units, add);
    return value;
}

void LineCheck::Define(const Parts& parts, Definition entry) {
    const Units line = scanner.Line();
    entry.line = scanner.LineNumber();
    entry.lineBegin = file.units.size();
    file.units.insert(file.units.end(), line.begin(), line.end());
    const auto partOf = [&](Units units) {
        const auto begin = entry.lineBegin + static_cast<std::size_t>(units.data() - line.data());
        return Part{begin, begin + units.size()};
    };
    entry.key = partOf(parts.key);
    entry.written = partOf(parts.value);
    entry.firstKey = entry.key;
    entry.firstLine = entry.line;
    entry.firstLineBegin = entry.lineBegin;
    const std::string key = Narrow(parts.key);
    const auto [place, isNew] = file.entries.try_emplace(key);
    if (!isNew) {
        const Definition& before = place->second;
        entry.firstKey = before.firstKey;
        entry.firstLine = before.firstLine;
        entry.firstLineBegin = before.firstLineBegin;
        const bool same = std::ranges::equal(file.UnitsOf(before.firstKey), parts.key);
        if (conflict != Conflict::kOtherSide) {
            Add(same ? Rule::kDuplicateKey : Rule::kKeyCollision, parts.key,
                "the key " + ShowKey(key) +
                    (same ? " is defined first at " : " is the same bytes as the one at ") +
                    Show(file.PlaceOf(before.firstLine, before.firstLineBegin, before.firstKey)) +
                    "; this text replaces that one",
                key);
        }
    }
    place->second = std::move(entry);
}

}  // namespace tool
