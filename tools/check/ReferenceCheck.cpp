#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_set>

#include "tools/base/Annotations.h"
#include "tools/base/Suggest.h"
#include "tools/check/Accelerators.h"
#include "tools/check/CheckedFile.h"
#include "tools/check/MessageCheck.h"
#include "tools/check/Placeholders.h"
#include "tools/check/Punctuation.h"

namespace tool {

namespace {

// An entry and the reference entry that it translates.
class Comparison {
public:
    Comparison(const CheckedFile& checkedFile, const CheckedFile& referenceFile,
               const MessageCheck& messagesOfFile, const Findings& ofReference,
               Findings& findingsOfFile, const std::string& keyOfBoth, const Definition& entry,
               const Definition& entryOfReference)
        : file(checkedFile),
          referenceOf(referenceFile),
          messages(messagesOfFile),
          ignored(ofReference),
          findings(findingsOfFile),
          key(keyOfBoth),
          here(entry),
          there(entryOfReference),
          text(UnitsOf(entry.value)),
          original(UnitsOf(entryOfReference.value)) {}

    void Run() {
        if (here.untranslated || !here.isWhole || IsWithoutEquals()) return;
        const bool isStale = IsStale();
        if (text.empty()) {
            if (!original.empty()) {
                Add(Rule::kEmptyText, "the text of " + ShowKey(key) +
                                          " is empty, the reference's is " + Show(original));
            }
            return;
        }
        if (there.isMessage) CompareMessages();
        if (here.value == there.value) {
            if (!HasLetters(original)) return;
            Add(Rule::kSameAsReference, "the text of " + ShowKey(key) + " equals the reference's");
            return;
        }
        ComparePlaceholders();
        if (isStale) return;  // the rest is translated again
        CompareAccelerators();
        CompareSections();
        CompareBlanks();
        CompareEnds();
    }

private:
    void Add(Rule rule, Place place, std::string what) {
        if (ignored.Ignores(there.line, rule)) return;
        findings.Add(rule, std::move(place), std::move(what), key);
    }
    void Add(Rule rule, std::string what) {
        Add(rule, file.PlaceOf(here, here.written), std::move(what));
    }
    void Add(Rule rule, const Placeholder& at, std::string what) {
        Add(rule, PlaceInValue(file, here, at.begin, at.end), std::move(what));
    }

    // That has a finding of its own.
    bool IsWithoutEquals() const { return here.line != 0 && here.written.begin == here.key.end; }

    // By its mark, which is already a finding, or by the digest of the reference's text.
    bool IsStale() {
        if (here.stale || here.from.empty() || there.line == 0) return here.stale;
        if (ReferenceDigest(referenceOf.UnitsOf(there.written)) == here.from) return false;
        Add(Rule::kStale, "the text of " + ShowKey(key) +
                              " translates a text that has changed in the reference since");
        return true;
    }

    // The comment on the reference's line also applies to its translations.
    void CompareMessages() {
        const MessageCheck::Add drop = [](Rule, std::size_t, const std::string&) {};
        const MessageCheck::Add add = [&](Rule rule, std::size_t at, std::string what) {
            Add(rule, Placeholder{"", at, at + 1}, std::move(what));
        };
        // An entry with the comment on its own line was checked by itself.
        const auto own = messages.Check(key, here, here.isMessage ? drop : add);
        const auto wanted = messages.Check(key, there, drop);
        if (own && wanted) messages.Compare(key, *own, *wanted, add);
    }

    void ComparePlaceholders() {
        std::vector<Placeholder> foreign;
        if (!here.isMessage && !there.isMessage) {
            foreign = ForeignPlaceholders(text);
            for (const Placeholder& meant : ForeignPlaceholders(original)) {
                const auto same = std::ranges::find(foreign, meant.name, &Placeholder::name);
                if (same != foreign.end()) foreign.erase(same);
            }
        }
        CompareNames(Markers(text), Markers(original), foreign,
                     {Rule::kMissingMarker, Rule::kExtraMarker, "marker "});
        CompareNames(Parameters(here.value), Parameters(there.value), foreign,
                     {Rule::kMissingParameter, Rule::kExtraParameter, "parameter tag "});
        std::set<std::string> told;
        for (const Placeholder& other : foreign) {
            if (!told.insert(other.name).second) continue;
            Add(Rule::kForeignPlaceholder, other,
                ShowRaw(UnitsOf(FromUtf8(other.name))) +
                    " is not replaced by the application, which shows it as it is");
        }
    }

    struct Kind {
        Rule missing;
        Rule extra;
        const char* what;
    };
    // A name that replaces a missing one, also one of another system, is one finding with it.
    void CompareNames(const std::vector<Placeholder>& names,
                      const std::vector<Placeholder>& originals, std::vector<Placeholder>& foreign,
                      const Kind& kind) {
        const auto shown = [](const Placeholder& one) {
            return ShowRaw(UnitsOf(FromUtf8(one.name)));
        };
        std::map<std::string, std::size_t> left;
        for (const Placeholder& one : originals)
            ++left[one.name];
        std::vector<Placeholder> extra;
        std::set<std::string> found;
        for (const Placeholder& one : names) {
            const auto wanted = left.find(one.name);
            if (wanted == left.end()) {
                extra.push_back(one);
            } else if (wanted->second == 0) {
                Add(Rule::kRepeatedMarker, one,
                    std::string("the ") + kind.what + shown(one) +
                        " occurs more often than in the reference");
            } else {
                --wanted->second;
            }
            found.insert(one.name);
        }
        for (const Placeholder& one : originals) {
            if (!found.insert(one.name).second) continue;
            const std::string what =
                "the text of " + ShowKey(key) + " lacks the reference's " + kind.what + shown(one);
            std::optional<Placeholder> other;
            if (kind.missing == Rule::kMissingMarker) other = MisspeltMarker(text, one.name);
            std::vector<Placeholder>& others = extra.empty() ? foreign : extra;
            if (!other.has_value() && !others.empty()) {
                other = others.front();
                others.erase(others.begin());
            }
            if (!other.has_value()) {
                Add(kind.missing, what);
                continue;
            }
            findings.Remove(Rule::kUnknownEscape,
                            PlaceInValue(file, here, other->begin, other->end));
            Add(kind.missing, *other, what + "; " + shown(*other) + " is in its place");
        }
        for (const Placeholder& one : extra) {
            Add(kind.extra, one,
                "the text of " + ShowKey(key) + " has, unlike the reference, the " + kind.what +
                    shown(one));
        }
    }

    void CompareAccelerators() {
        const Ampersands found = FindAmpersands(text);
        const Ampersands wanted = FindAmpersands(original);
        if (found.marks.empty() && !wanted.marks.empty() && !found.trailing) {
            Add(Rule::kMissingAccelerator, "no accelerator; the reference marks " +
                                               ShowRaw(original.subspan(wanted.marks[0], 2)));
        } else if (!found.marks.empty() && wanted.marks.empty()) {
            Add(Rule::kExtraAccelerator, Placeholder{"", found.marks[0], found.marks[0] + 2},
                "an accelerator, which the reference does not have; to show \"&\", double it");
        }
        if (found.end == text.size() && wanted.end != original.size()) {
            Add(Rule::kMissingShortcut,
                "no key combination; the reference has " + Show(original.subspan(wanted.end)));
        }
    }

    void CompareSections() {
        if (here.line == 0 || there.line == 0) return;
        const Units wanted = referenceOf.UnitsOf(there.written);
        if (std::ranges::find(wanted, u'#') == wanted.end()) return;
        const Units written = file.UnitsOf(here.written);
        // A misspelt section has a finding of its own.
        constexpr std::string_view kEscape = "#{";
        const auto unknown = std::search(text.begin(), text.end(), kEscape.begin(), kEscape.end());
        if (unknown != text.end()) return;
        for (const std::string_view begin : {"#{macos}", "#{mswindows}", "#{ios}", "#{android}"}) {
            const auto has = [&begin](Units units) {
                return std::search(units.begin(), units.end(), begin.begin(), begin.end()) !=
                       units.end();
            };
            if (!has(wanted) || has(written)) continue;
            Add(Rule::kMissingSection,
                "no section " + std::string(begin) + ", which the reference has");
        }
    }

    void CompareBlanks() {
        const OuterBlanks found = BlanksAround(text.first(FindAmpersands(text).end));
        const OuterBlanks wanted = BlanksAround(original.first(FindAmpersands(original).end));
        // A blank after "=" has a finding of its own.
        const bool told =
            here.written.begin != here.written.end && file.units[here.written.begin] == ' ';
        if ((found.before != wanted.before && !told) ||
            (found.after != wanted.after && !found.wideEnd)) {
            Add(Rule::kOuterBlanks,
                Counted(found.before, "blank") + " before and " + std::to_string(found.after) +
                    " after the text; the reference has " + std::to_string(wanted.before) +
                    " and " + std::to_string(wanted.after));
        }
        const std::size_t breaks = LineBreaks(text);
        const std::size_t wantedBreaks = LineBreaks(original);
        if (breaks != wantedBreaks) {
            Add(Rule::kLineBreaks, Counted(breaks, "line break") + "; the reference has " +
                                       std::to_string(wantedBreaks));
        }
    }

    void CompareEnds() {
        const FinalMark found = FinalPunctuation(text.first(FindAmpersands(text).end));
        const FinalMark wanted = FinalPunctuation(original.first(FindAmpersands(original).end));
        if (found.kind == wanted.kind || (found.mayLackStop && wanted.kind == "a full stop"))
            return;
        const std::size_t at = std::min(found.at, text.size() - 1);
        Add(Rule::kFinalPunctuation, Placeholder{"", at, at + 1},
            "the text ends in " + std::string(found.kind) + ", the reference's in " +
                std::string(wanted.kind));
    }

    const CheckedFile& file;
    const CheckedFile& referenceOf;
    const MessageCheck& messages;
    const Findings& ignored;
    Findings& findings;
    const std::string& key;
    const Definition& here;
    const Definition& there;
    Units text;
    Units original;
};

// Whether two keys are members of a numbered series: "Text1" is not a misspelt "Text2".
bool DifferInDigits(std::string_view a, std::string_view b) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return std::ranges::equal(a, b,
                              [&](char x, char y) { return x == y || (isDigit(x) && isDigit(y)); });
}

// Whether the line has the key, as a whole.
bool HasKey(std::string_view line, std::string_view key) {
    constexpr std::string_view kBefore = "\"$ \t";
    constexpr std::string_view kAfter = "\"= \t";
    for (std::size_t at = line.find(key); at != line.npos && !key.empty();
         at = line.find(key, at + 1)) {
        const std::size_t end = at + key.size();
        const bool begins = at == 0 || kBefore.find(line[at - 1]) != kBefore.npos;
        if (begins && (end == line.size() || kAfter.find(line[end]) != kAfter.npos)) return true;
    }
    return false;
}

}  // namespace

void CheckAgainst(const CheckedFile& file, const CheckedFile& reference,
                  const Findings& ofReference, Findings& findings) {
    std::vector<const CheckedFile::Entries::value_type*> missing;
    std::vector<std::string> missingKeys;
    const MessageCheck messages(file);
    for (const auto* item : reference.InOrder()) {
        const auto here = file.entries.find(item->first);
        if (here != file.entries.end()) {
            Comparison(file, reference, messages, ofReference, findings, item->first, here->second,
                       item->second)
                .Run();
        } else if (!ofReference.Ignores(item->second.line, Rule::kMissingKey)) {
            missing.push_back(item);
            missingKeys.push_back(item->first);
        }
    }
    std::vector<const CheckedFile::Entries::value_type*> obsolete;
    for (const auto* item : file.InOrder()) {
        if (!reference.entries.contains(item->first)) obsolete.push_back(item);
    }
    // A misspelt key is one finding. Whole groups that were renamed are not misspelt.
    constexpr std::size_t kMostCompared = 1'000'000;
    const bool isFew = obsolete.size() * missing.size() <= kMostCompared;
    std::unordered_set<std::string> misspelt;
    for (const auto* item : obsolete) {
        std::string nearest = isFew ? Nearest(item->first, missingKeys) : "";
        if (DifferInDigits(nearest, item->first)) nearest.clear();
        std::string what = "the reference does not have the key " + ShowKey(item->first);
        if (!nearest.empty()) what += "; did you mean " + ShowKey(nearest) + '?';
        if (!item->second.isSpoilt) {
            findings.Add(Rule::kObsoleteKey, file.PlaceOf(item->second), std::move(what),
                         item->first);
        }
        misspelt.insert(std::move(nearest));
    }
    if (file.endsEarly) return;  // that explains all of them
    const bool areFewLines = file.spoiltLines.size() * missing.size() <= kMostCompared;
    for (const auto* item : missing) {
        const auto hasKey = [item](const std::string& line) { return HasKey(line, item->first); };
        if (misspelt.contains(item->first)) continue;
        if (areFewLines && std::ranges::any_of(file.spoiltLines, hasKey)) continue;
        findings.AddMissing(Rule::kMissingKey, reference.PlaceOf(item->second),
                            file.name + " lacks the key " + ShowKey(item->first), item->first,
                            file.name);
    }
}

}  // namespace tool
