#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>

#include "tools/base/Files.h"
#include "tools/base/Json.h"
#include "tools/report/Coverage.h"
#include "tools/verbs/Verbs.h"
#include "wordlex/functionality/BinUtil.h"

namespace tool {

namespace {

using lexon_private::kHashBucketCount;

constexpr std::string_view kNoValue = "-";

template <class... Values>
std::string Formatted(const char* format, Values... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

// How the keys of a file spread over the buckets of a compiled dictionary.
struct Occupancy {
    double mean = 0;
    std::vector<std::size_t> bucketsOfSize;  // by size, up to the largest
};

Occupancy OccupancyOf(const TextSet& texts) {
    std::array<std::size_t, kHashBucketCount> sizes{};
    for (const TextSet::Item& item : texts.items) {
        const auto* const key = reinterpret_cast<const unsigned char*>(item.key.data());
        ++sizes[lexon_private::HashFunc(key, item.key.size())];
    }
    Occupancy occupancy;
    occupancy.mean = static_cast<double>(texts.items.size()) / static_cast<double>(sizes.size());
    occupancy.bucketsOfSize.resize(*std::ranges::max_element(sizes) + 1);
    for (const std::size_t size : sizes)
        ++occupancy.bucketsOfSize[size];
    return occupancy;
}

std::string Show(const Occupancy& occupancy) {
    constexpr std::size_t kBarLength = 40;
    constexpr std::size_t kClasses = 8;
    const std::size_t largest = occupancy.bucketsOfSize.size() - 1;
    std::string text = Formatted("  buckets     %zu, mean %.2f, largest %zu\n",
                                 std::size_t{kHashBucketCount}, occupancy.mean, largest);
    const std::size_t width = largest / kClasses + 1;
    for (std::size_t low = 0; low <= largest; low += width) {
        std::size_t count = 0;
        for (std::size_t size = low; size < std::min(low + width, largest + 1); ++size)
            count += occupancy.bucketsOfSize[size];
        const std::string range = width == 1
                                      ? std::to_string(low)
                                      : std::to_string(low) + '-' + std::to_string(low + width - 1);
        const std::size_t bar = (count * kBarLength + kHashBucketCount - 1) / kHashBucketCount;
        text += Formatted("  %9s   %5zu ", range.c_str(), count) + std::string(bar, '#') + '\n';
    }
    return text;
}

// The facts about a file. Without a reference there is no coverage, but the marks count.
struct Facts {
    const TextSet& texts;
    std::size_t words = CountWords(texts);
    std::optional<Coverage> coverage = {};

    std::size_t Marked(bool Annotations::*mark) const {
        return static_cast<std::size_t>(std::ranges::count_if(
            texts.items, [mark](const TextSet::Item& item) { return item.marks.*mark; }));
    }
};

std::string Describe(const Facts& facts) {
    const TextSet& texts = facts.texts;
    std::size_t keyBytes = 0;
    std::size_t valueBytes = 0;
    for (const TextSet::Item& item : texts.items) {
        keyBytes += item.key.size();
        valueBytes += 2 * item.text.GetLength();
    }
    return texts.name + "\n  version     " + texts.form + "\n  locale      " +
           (texts.locale.empty() ? "none" : texts.locale) + '\n' +
           (texts.idBase == 0 ? "" : Formatted("  id base     %u\n", texts.idBase)) +
           Formatted(
               "  entries     %zu\n  bytes       %zu, of keys %zu, of values %zu\n"
               "  words       %zu\n  marked      %zu untranslated, %zu stale\n",
               texts.entryCount, texts.fileSize, keyBytes, valueBytes, facts.words,
               facts.Marked(&Annotations::untranslated), facts.Marked(&Annotations::stale));
}

Json AsJson(const Facts& facts, bool buckets) {
    const TextSet& texts = facts.texts;
    Json object;
    PutFile(object, "file", texts.name);
    object["form"] = texts.form;
    object["locale"] = texts.locale;
    object["idBase"] = texts.idBase;
    object["entries"] = texts.entryCount;
    object["bytes"] = texts.fileSize;
    object["words"] = facts.words;
    if (const auto& coverage = facts.coverage) {
        object["keys"] = coverage->keys;
        if (coverage->keys != 0) {
            object["share"] = static_cast<double>(Permille(coverage->Done(), coverage->keys)) / 10;
        }
        for (std::size_t i = 0; i < kStateNames.size(); ++i)
            object[kStateNames[i]] = coverage->counts[i];
        object["wordsLeft"] = coverage->wordsLeft;
    } else {
        object["untranslated"] = facts.Marked(&Annotations::untranslated);
        object["stale"] = facts.Marked(&Annotations::stale);
    }
    if (buckets) {
        const Occupancy occupancy = OccupancyOf(texts);
        object["buckets"] = occupancy.bucketsOfSize;
    }
    return object;
}

// Rows with the same number of cells; the first one is the head. The first column contains text,
// the others numbers.
using Rows = std::vector<std::vector<std::string>>;

std::string Share(std::size_t done, std::size_t keys, const char* format) {
    const std::size_t permille = Permille(done, keys);
    return Formatted(format, permille / 10, permille % 10);
}

Rows Head() {
    Rows rows{{"file", "done"}};
    rows[0].insert(rows[0].end(), kStateNames.begin(), kStateNames.end());
    rows[0].insert(rows[0].end(), {"words", "left"});
    return rows;
}

void AddRow(Rows& rows, const std::string& name, const Coverage& coverage, std::size_t words) {
    std::string share(kNoValue);
    if (coverage.keys != 0) {
        const bool complete = coverage.Done() == coverage.keys;
        share = complete ? "100 %" : Share(coverage.Done(), coverage.keys, "%zu.%zu %%");
    }
    std::vector<std::string> row{name, share};
    for (const std::size_t count : coverage.counts)
        row.push_back(std::to_string(count));
    row.push_back(std::to_string(words));
    row.push_back(std::to_string(coverage.wordsLeft));
    rows.push_back(std::move(row));
}

void Add(Coverage& sum, const Coverage& coverage) {
    sum.keys += coverage.keys;
    sum.wordsLeft += coverage.wordsLeft;
    for (std::size_t i = 0; i < sum.counts.size(); ++i)
        sum.counts[i] += coverage.counts[i];
}

// The number of characters: exact for a UTF-8 name with one character a column.
std::size_t WidthOf(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Aligned(const Rows& rows) {
    std::vector<std::size_t> widths(rows[0].size());
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], WidthOf(row[i]));
    }
    std::string text;
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string room(widths[i] - WidthOf(row[i]), ' ');
            text += i == 0 ? row[i] + room : "  " + room + row[i];
        }
        text += '\n';
    }
    return text;
}

// A field, quoted as in RFC 4180.
std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

std::string CsvLine(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields)
        line += (line.empty() ? "" : ",") + CsvField(field);
    return line + '\n';
}

std::string CsvHead() {
    std::vector<std::string> fields{"file", "share"};
    fields.insert(fields.end(), kStateNames.begin(), kStateNames.end());
    fields.insert(fields.end(),
                  {"words", "wordsLeft", "keys", "entries", "bytes", "form", "locale"});
    return CsvLine(fields);
}

// Without a reference, the fields that need one are empty.
std::string CsvRow(const Facts& facts) {
    std::vector<std::string> fields(2 + kStateNames.size());
    fields[0] = facts.texts.name;
    std::string wordsLeft;
    std::string keys;
    if (const auto& coverage = facts.coverage) {
        if (coverage->keys != 0) fields[1] = Share(coverage->Done(), coverage->keys, "%zu.%zu");
        for (std::size_t i = 0; i < coverage->counts.size(); ++i)
            fields[2 + i] = std::to_string(coverage->counts[i]);
        wordsLeft = std::to_string(coverage->wordsLeft);
        keys = std::to_string(coverage->keys);
    } else {
        fields[2 + static_cast<std::size_t>(State::kUntranslated)] =
            std::to_string(facts.Marked(&Annotations::untranslated));
        fields[2 + static_cast<std::size_t>(State::kStale)] =
            std::to_string(facts.Marked(&Annotations::stale));
    }
    fields.insert(
        fields.end(),
        {std::to_string(facts.words), wordsLeft, keys, std::to_string(facts.texts.entryCount),
         std::to_string(facts.texts.fileSize), facts.texts.form, facts.texts.locale});
    return CsvLine(fields);
}

}  // namespace

int Stats(const Arguments& arguments) {
    const std::string& format = arguments.Get("format");
    const std::string& referenceName = arguments.Get("reference");
    const bool buckets = arguments.Has("buckets");
    if (buckets && format == "csv") throw UsageFailure("--format=csv has no room for --buckets");
    std::optional<TextSet> reference;
    std::vector<std::string> names = arguments.operands;
    if (!referenceName.empty()) {
        reference.emplace(referenceName, TextSet::Role::kReference);
        names = Translations(names, referenceName);
    }
    if (format == "csv") WriteStandardOutput(CsvHead());
    Rows rows = Head();
    Coverage sum;
    std::size_t words = 0;
    for (const std::string& name : names) {
        const TextSet texts(name, TextSet::Role::kTranslation);
        Facts facts{texts};
        if (reference) facts.coverage = Compare(*reference, texts);
        if (format == "json") {
            WriteStandardOutput(JsonLine(AsJson(facts, buckets)));
        } else if (format == "csv") {
            WriteStandardOutput(CsvRow(facts));
        } else {
            if (!reference || buckets) WriteStandardOutput(Describe(facts));
            if (buckets) WriteStandardOutput(Show(OccupancyOf(texts)));
            if (!facts.coverage) continue;
            AddRow(rows, name, *facts.coverage, facts.words);
            Add(sum, *facts.coverage);
            words += facts.words;
        }
    }
    constexpr std::size_t kHeadAndOneFile = 2;
    if (rows.size() > kHeadAndOneFile) AddRow(rows, "all", sum, words);
    if (rows.size() > 1) WriteStandardOutput(Aligned(rows));
    return kSuccess;
}

}  // namespace tool
