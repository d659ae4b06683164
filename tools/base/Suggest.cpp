#include "tools/base/Suggest.h"

#include <algorithm>
#include <numeric>

namespace tool {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c; }

}  // namespace

std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit) {
    while (!a.empty() && !b.empty() && Lower(a.front()) == Lower(b.front())) {
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    if (std::max(a.size(), b.size()) - std::min(a.size(), b.size()) >= limit) return limit;
    // Three rows of the table of distances between the prefixes of both words.
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = Lower(a[i - 1]) == Lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            const bool swapped = i > 1 && j > 1 && Lower(a[i - 1]) == Lower(b[j - 2]) &&
                                 Lower(a[i - 2]) == Lower(b[j - 1]);
            if (swapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        if (*std::ranges::min_element(row) >= limit) return limit;
        std::swap(beforeLast, last);
        std::swap(last, row);
    }
    return std::min(last.back(), limit);
}

std::string Nearest(std::string_view word, std::span<const std::string> known) {
    std::string nearest;
    std::size_t limit = std::min<std::size_t>(2, word.size() / 3) + 1;
    for (const std::string& candidate : known) {
        const std::size_t distance = EditDistance(word, candidate, limit);
        if (distance >= limit) continue;
        limit = distance;
        nearest = candidate;
    }
    return nearest;
}

std::string DidYouMean(std::string_view word, std::span<const std::string> known) {
    const std::string nearest = Nearest(word, known);
    return nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?";
}

}  // namespace tool
