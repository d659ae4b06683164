#include "tools/report/Coverage.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "tools/base/Files.h"
#include "tools/base/Progress.h"
#include "tools/base/TextDocument.h"
#include "tools/check/Content.h"
#include "tools/check/Placeholders.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

bool IsWrittenWithoutBlanks(UChar32 c) {
    constexpr UChar32 kFirst = 0x2E80;
    if (c < kFirst) return false;
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(c, &error);
    return script == USCRIPT_HAN || script == USCRIPT_HIRAGANA || script == USCRIPT_KATAKANA;
}

bool IsMeantToBeSame(const Annotations& marks) {
    return std::ranges::any_of(marks.ignored,
                               [](const auto& rule) { return rule.name == "same-as-reference"; });
}

State StateOf(const TextSet::Item& there, const TextSet::Item& here) {
    const bool emptied = here.text.IsEmpty() && !there.text.IsEmpty();
    if (here.marks.untranslated || emptied) return State::kUntranslated;
    const bool changed =
        !here.marks.from.empty() && !there.digest.empty() && here.marks.from != there.digest;
    if (here.marks.stale || changed) return State::kStale;
    if (here.text != there.text) return State::kTranslated;
    const bool onPurpose = IsMeantToBeSame(here.marks) || IsMeantToBeSame(there.marks) ||
                           !HasLetters(UnitsOf(there.text));
    return onPurpose ? State::kIdentical : State::kUntranslated;
}

bool IsDone(State state) { return state == State::kTranslated || state == State::kIdentical; }

}  // namespace

TextSet::TextSet(std::string fileName, Role role) : name(std::move(fileName)) {
    const std::string bytes = ReadInput(name);
    const Progress progress("loading", name);
    fileSize = bytes.size();
    if (KindOf(bytes) == Kind::kText) {
        AddText(bytes, role);
    } else {
        AddBinary(bytes);
    }
    byKey.reserve(items.size());
    for (const Item& item : items)
        byKey.emplace(item.key, &item);
}

void TextSet::AddText(const std::string& bytes, Role role) {
    const TextDocument document = ParseTextDocument(name, bytes);
    form = FormOf(bytes);
    items.reserve(document.Lines().size());
    for (std::size_t i = 0; i < document.Lines().size(); ++i) {
        const TextDocument::Line& line = document.Lines()[i];
        if (document.Find(line.key) != i) continue;
        Item item{line.key, document.Converted(line), {}, {}};
        if (line.before.length + line.after.length != 0) {
            item.marks = ParseAnnotations(document.Comment(line, line.before),
                                          document.Comment(line, line.after));
        }
        if (role == Role::kReference) item.digest = ReferenceDigest(document.Value(line));
        items.push_back(std::move(item));
    }
    entryCount = items.size();
}

void TextSet::AddBinary(const std::string& bytes) {
    Content content = Load(name, bytes);
    form = std::move(content.form);
    locale = std::move(content.locale);
    idBase = content.idBase;
    entryCount = content.entries.size();
    for (Entry& entry : content.entries) {
        if (entry.keyed) items.push_back({std::move(entry.key), std::move(entry.value), {}, {}});
    }
}

const TextSet::Item* TextSet::Find(std::string_view key) const {
    const auto found = byKey.find(key);
    return found == byKey.end() ? nullptr : found->second;
}

Coverage Compare(const TextSet& reference, const TextSet& translation) {
    const Progress progress("counting", translation.name);
    Coverage coverage;
    coverage.keys = reference.items.size();
    coverage.states.reserve(coverage.keys);
    for (const TextSet::Item& there : reference.items) {
        const TextSet::Item* const here = translation.Find(there.key);
        const State state = here == nullptr ? State::kMissing : StateOf(there, *here);
        coverage.states.push_back(state);
        ++coverage.counts[static_cast<std::size_t>(state)];
        if (!IsDone(state)) coverage.wordsLeft += CountWords(UnitsOf(there.text));
    }
    for (const TextSet::Item& here : translation.items) {
        if (reference.Find(here.key) == nullptr) coverage.obsolete.push_back(&here);
    }
    coverage.counts[static_cast<std::size_t>(State::kObsolete)] = coverage.obsolete.size();
    return coverage;
}

std::size_t Permille(std::size_t part, std::size_t whole) {
    constexpr std::size_t kWhole = 1000;
    return part * kWhole / whole;
}

std::size_t CountWords(Units text) {
    std::size_t count = 0;
    bool inWord = false;
    for (std::size_t i = 0; i < text.size();) {
        if (PassPlaceholder(text, i)) continue;
        const auto c = static_cast<UChar32>(NextCharacter(text, i));
        if (IsWrittenWithoutBlanks(c)) {
            ++count;
            inWord = false;
        } else if (u_isUWhiteSpace(c)) {
            inWord = false;
        } else if (!inWord && u_isalnum(c)) {
            ++count;
            inWord = true;
        }
    }
    return count;
}

std::size_t CountWords(const TextSet& texts) {
    std::size_t count = 0;
    for (const TextSet::Item& item : texts.items)
        count += CountWords(UnitsOf(item.text));
    return count;
}

std::vector<std::string> Translations(const std::vector<std::string>& files,
                                      const std::string& reference) {
    std::vector<std::string> translations;
    std::ranges::copy_if(files, std::back_inserter(translations), [&](const fs::path& file) {
        std::error_code absent;
        return !IsObsoleteName(file) && !fs::equivalent(file, reference, absent);
    });
    return translations;
}

}  // namespace tool
