#include "tools/check/Accelerators.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <unordered_map>

#include "tools/check/CheckedFile.h"
#include "tools/check/EscapeCheck.h"
#include "tools/check/Placeholders.h"

namespace tool {

namespace {

bool IsCapital(unsigned short unit) { return u_isupper(unit) != 0 || (unit >= '0' && unit <= '9'); }

// Whether the word with the "&" at `i` is an address.
bool IsInAddress(Units text, std::size_t i) {
    const auto isBlank = [](unsigned short unit) { return unit <= ' '; };
    const auto begin =
        std::find_if(text.rend() - static_cast<std::ptrdiff_t>(i), text.rend(), isBlank).base();
    const auto end =
        std::find_if(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(), isBlank);
    const std::string word = Utf8({begin, end});
    return word.find("://") != word.npos || word.starts_with("www.") ||
           word.starts_with("mailto:") ||
           (word.find('?') < word.find('=') && word.find('=') < word.find('&'));
}

// Upper and lower case of Latin, Greek and Cyrillic letters mark the same key.
unsigned short FoldCase(unsigned short unit) {
    const bool oneBlock = (unit >= 'A' && unit <= 'Z') ||
                          (unit >= 0x00C0 && unit <= 0x00DE && unit != 0x00D7) ||
                          (unit >= 0x0391 && unit <= 0x03A9) || (unit >= 0x0410 && unit <= 0x042F);
    return oneBlock ? unit + 0x20 : unit;
}

}  // namespace

Ampersands FindAmpersands(Units text) {
    static constexpr unsigned short kCut[] = {' ', '\b'};
    const auto cut = std::search(text.begin(), text.end(), std::begin(kCut), std::end(kCut));
    Ampersands found{{}, static_cast<std::size_t>(cut - text.begin()), false};
    text = text.first(found.end);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '&') continue;
        if (i + 1 == text.size()) {
            found.trailing = true;
        } else if (text[i + 1] == '&') {
            ++i;
        } else if (text[i + 1] != ' ') {
            const bool isName = i > 0 && IsCapital(text[i - 1]) && IsCapital(text[i + 1]);
            if (!isName && HtmlEntityAt(text, i) == 0 && !IsInAddress(text, i)) {
                found.marks.push_back(i);
            }
        }
    }
    return found;
}

void CheckAccelerators(const CheckedFile& file, Findings& findings) {
    // Neighbouring entries differ only after the last "/".
    std::unordered_map<std::string, const std::string*> firsts;
    for (const auto* item : file.InOrder()) {
        const std::string& key = item->first;
        const Definition& entry = item->second;
        const Units text = UnitsOf(entry.value);
        if (std::ranges::find(text, u'&') == text.end()) continue;
        const Ampersands found = FindAmpersands(text);
        const auto add = [&](Rule rule, std::size_t at, std::size_t length, std::string what) {
            findings.Add(rule, PlaceInValue(file, entry, at, at + length), std::move(what), key);
        };
        if (found.trailing) {
            add(Rule::kTrailingAmpersand, found.end - 1, 1,
                "\"&\" at the end marks no letter and is dropped; to show one, double it");
        }
        if (found.marks.empty()) continue;
        if (found.marks.size() > 1) {
            add(Rule::kDoubledAccelerator, found.marks[1], 2,
                "a second accelerator, after " + ShowRaw(text.subspan(found.marks[0], 2)) +
                    "; to show \"&\", double it");
        }
        const std::size_t slash = key.rfind('/');
        if (slash == std::string::npos) continue;
        const unsigned short letter = FoldCase(text[found.marks[0] + 1]);
        const auto [first, isNew] =
            firsts.try_emplace(key.substr(0, slash) + '\0' + std::to_string(letter), &key);
        if (isNew) continue;
        add(Rule::kSameAccelerator, found.marks[0], 2,
            "the accelerator " + ShowRaw(Units(&letter, 1)) + " of " + ShowKey(key) +
                " is that of " + ShowKey(*first->second) + " too");
    }
}

}  // namespace tool
