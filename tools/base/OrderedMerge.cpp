#include "tools/base/OrderedMerge.h"

#include <algorithm>

namespace tool {

namespace {

using Line = TextDocument::Line;

struct Insertion {
    std::vector<unsigned short> line;
    bool blankBefore;
};

// Inserts lines between two lines of the document, either of which may be null.
void Insert(TextDocument& document, const std::vector<Insertion>& inserted, const Line* before,
            const Line* after, bool blankBeforeAfter) {
    // The index of the first one that goes before `after`.
    std::size_t ofAfter = before == nullptr && after != nullptr ? 0 : inserted.size();
    if (before != nullptr && after != nullptr && !blankBeforeAfter) {
        const auto last = std::find_if(inserted.rbegin(), inserted.rend(),
                                       [](const Insertion& one) { return one.blankBefore; });
        if (last != inserted.rend()) ofAfter = static_cast<std::size_t>(inserted.rend() - last) - 1;
    }
    for (std::size_t i = 0; i < inserted.size(); ++i) {
        const bool blank = inserted[i].blankBefore && i != ofAfter && (i != 0 || before != nullptr);
        const auto add = [&](Units line) {
            if (after != nullptr && i >= ofAfter) {
                document.InsertBefore(*after, line);
            } else if (before != nullptr) {
                document.InsertAfter(*before, line);
            } else {
                document.Append(line);
            }
        };
        if (blank) add({});
        add(inserted[i].line);
    }
}

}  // namespace

void MergeInOrder(TextDocument& document, const TextDocument& wanted,
                  const std::function<void(const Line&, std::size_t)>& present,
                  const std::function<std::vector<unsigned short>(std::size_t)>& missing) {
    std::vector<Insertion> inserted;  // since the last entry that is present
    const Line* before = nullptr;
    for (std::size_t i = 0; i < wanted.Lines().size(); ++i) {
        const Line& line = wanted.Lines()[i];
        if (wanted.Find(line.key) != i) continue;
        if (const auto at = document.Find(line.key)) {
            const Line& there = document.Lines()[*at];
            Insert(document, inserted, before, &there, line.blankBefore);
            inserted.clear();
            before = &there;
            present(there, i);
        } else if (line.quoted) {
            inserted.push_back({missing(i), line.blankBefore});
        }
    }
    Insert(document, inserted, before, nullptr, true);
}

std::vector<unsigned short> MakeLine(Units before, Units entry, Units after) {
    std::vector<unsigned short> line(before.begin(), before.end());
    line.push_back(u'"');
    line.insert(line.end(), entry.begin(), entry.end());
    line.push_back(u'"');
    line.insert(line.end(), after.begin(), after.end());
    return line;
}

}  // namespace tool
