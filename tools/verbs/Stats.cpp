#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

#include "tools/base/Content.h"
#include "tools/base/Files.h"
#include "tools/verbs/Verbs.h"
#include "wordlex/functionality/BinUtil.h"

namespace tool {

namespace {

using lexon_private::kHashBucketCount;
using Texts = std::map<std::string, Text>;

template <class... Values>
std::string Formatted(const char* format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

double Ratio(std::size_t part, std::size_t whole) {
    return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

// How many entries lie in each bucket: the mean, the largest, and how many buckets have how many.
std::string Occupancy(const Content& content) {
    std::array<std::size_t, kHashBucketCount> buckets{};
    std::size_t keyed = 0;
    for (const Entry& entry : content.entries) {
        if (!entry.keyed) continue;
        const auto* const key = reinterpret_cast<const unsigned char*>(entry.key.data());
        ++buckets[lexon_private::HashFunc(key, entry.key.size())];
        ++keyed;
    }
    const std::size_t largest = *std::ranges::max_element(buckets);
    std::string text = Formatted("  buckets     %zu, mean %.2f, largest %zu\n", buckets.size(),
                                 Ratio(keyed, buckets.size()), largest);

    constexpr std::size_t kBarLength = 40;
    constexpr std::size_t kClasses = 8;
    const std::size_t width = largest / kClasses + 1;
    for (std::size_t low = 0; low <= largest; low += width) {
        const auto count = static_cast<std::size_t>(std::ranges::count_if(
            buckets, [&](std::size_t size) { return size >= low && size < low + width; }));
        const std::string range = width == 1
                                      ? std::to_string(low)
                                      : std::to_string(low) + '-' + std::to_string(low + width - 1);
        const std::size_t bar = (count * kBarLength + buckets.size() - 1) / buckets.size();
        text += Formatted("  %9s   %5zu ", range.c_str(), count) + std::string(bar, '#') + '\n';
    }
    return text;
}

std::string Translated(const Content& content, const Texts& reference) {
    std::size_t translated = 0;
    std::size_t same = 0;
    for (const Entry& entry : content.entries) {
        const auto there = reference.find(entry.key);
        if (!entry.keyed || there == reference.end()) continue;
        ++(entry.value == there->second ? same : translated);
    }
    return Formatted("  translated  %zu of %zu (%.1f %%), %zu as the reference, %zu missing\n",
                     translated, reference.size(), 100 * Ratio(translated, reference.size()), same,
                     reference.size() - translated - same);
}

std::string Describe(const Content& content) {
    std::size_t keyBytes = 0;
    std::size_t valueBytes = 0;
    for (const Entry& entry : content.entries) {
        keyBytes += entry.key.size();
        valueBytes += 2 * entry.value.GetLength();
    }
    return content.name + "\n  version     " + content.form + "\n  locale      " +
           (content.locale.empty() ? "none" : content.locale) + '\n' +
           (content.idBase == 0 ? "" : Formatted("  id base     %u\n", content.idBase)) +
           Formatted("  entries     %zu\n  bytes       %llu, of keys %zu, of values %zu\n",
                     content.entries.size(), static_cast<unsigned long long>(content.fileSize),
                     keyBytes, valueBytes) +
           Occupancy(content);
}

}  // namespace

int Stats(const Arguments& arguments) {
    const std::string& referenceName = arguments.Get("reference");
    Texts reference;
    if (!referenceName.empty()) {
        for (Entry& entry : Load(referenceName).entries) {
            if (entry.keyed) reference.emplace(std::move(entry.key), std::move(entry.value));
        }
    }
    for (const std::string& name : arguments.operands) {
        const Content content = Load(name);
        std::string text = Describe(content);
        if (!referenceName.empty()) text += Translated(content, reference);
        WriteStandardOutput(text);
    }
    return kSuccess;
}

}  // namespace tool
