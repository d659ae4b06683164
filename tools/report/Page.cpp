#include "tools/report/Page.h"

#include <algorithm>
#include <unordered_map>

#include "tools/base/Json.h"
#include "tools/base/Language.h"
#include "tools/base/Progress.h"
#include "tools/report/PageTemplate.h"

namespace tool {

namespace {

constexpr std::string_view kPlaceOfData = "{{data}}";

// "pt-BR": from a binary file itself, else from the name of the file or its folder. Or "".
std::string LanguageTagOf(const TextSet& texts) {
    std::string tag = LanguageOf(texts.name, texts.locale);
    std::ranges::replace(tag, '_', '-');
    return tag;
}

// "<" could begin a tag that ends the script. It occurs only in strings.
std::string InScript(const std::string& json) {
    std::string safe;
    safe.reserve(json.size());
    for (const char c : json) {
        if (c == '<') {
            safe += "\\u003c";
        } else {
            safe += c;
        }
    }
    return safe;
}

bool NeedsWork(State state) { return state != State::kTranslated && state != State::kIdentical; }

Json Cell(State state, const TextSet::Item* item) {
    Json cell = Json::array({static_cast<int>(state)});
    if (item != nullptr) cell.push_back(Utf8(UnitsOf(item->text)));
    return cell;
}

Json Column(const TextSet& texts, const Coverage& coverage) {
    Json column;
    column["file"] = texts.name;
    column["language"] = LanguageTagOf(texts);
    column["counts"] = coverage.counts;
    column["share"] =
        coverage.keys == 0 ? 0 : static_cast<double>(Permille(coverage.Done(), coverage.keys)) / 10;
    column["words"] = CountWords(texts);
    column["wordsLeft"] = coverage.wordsLeft;
    return column;
}

class Rows {
public:
    explicit Rows(std::size_t columnCount) : columns(columnCount) {}

    // The text of the reference is null for an obsolete key.
    void Add(const std::string& key, const Text* text, Json cells) {
        Json row;
        PutKey(row, "key", key);
        if (text != nullptr) row["text"] = Utf8(UnitsOf(*text));
        row["cells"] = std::move(cells);
        json += (json.empty() ? "" : ",") + JsonLine(row);
    }

    void AddReference(const TextSet& reference,
                      const std::vector<std::unique_ptr<TextSet>>& translations,
                      const std::vector<Coverage>& coverages) {
        for (std::size_t i = 0; i < reference.items.size(); ++i) {
            const auto needsWork = [i](const Coverage& c) { return NeedsWork(c.states[i]); };
            if (std::ranges::none_of(coverages, needsWork)) continue;
            const TextSet::Item& there = reference.items[i];
            Json cells = Json::array();
            for (std::size_t c = 0; c < columns; ++c)
                cells.push_back(Cell(coverages[c].states[i], translations[c]->Find(there.key)));
            Add(there.key, &there.text, std::move(cells));
        }
    }

    // Adds one row for a key, however many translations still have it.
    void AddObsolete(const std::vector<Coverage>& coverages) {
        std::vector<std::string_view> order;
        std::unordered_map<std::string_view, Json> cellsOf;
        for (std::size_t c = 0; c < columns; ++c) {
            for (const TextSet::Item* const item : coverages[c].obsolete) {
                const auto [found, isNew] = cellsOf.try_emplace(item->key, Json::array());
                if (isNew) {
                    order.push_back(item->key);
                    found->second = std::vector<Json>(columns);
                }
                found->second[c] = Cell(State::kObsolete, item);
            }
        }
        for (const std::string_view key : order)
            Add(std::string(key), nullptr, std::move(cellsOf[key]));
    }

    const std::string& Joined() const { return json; }

private:
    std::size_t columns;
    std::string json;  // the rows, separated by ","
};

}  // namespace

std::string ReportPage(const TextSet& reference,
                       const std::vector<std::unique_ptr<TextSet>>& translations) {
    const Progress progress("reporting", reference.name);
    std::vector<Coverage> coverages;
    Json head;
    head["reference"]["file"] = reference.name;
    head["reference"]["language"] = LanguageTagOf(reference);
    head["reference"]["keys"] = reference.items.size();
    head["reference"]["words"] = CountWords(reference);
    head["states"] = kStateNames;
    head["columns"] = Json::array();
    for (const auto& translation : translations) {
        coverages.push_back(Compare(reference, *translation));
        head["columns"].push_back(Column(*translation, coverages.back()));
    }
    Rows rows(translations.size());
    rows.AddReference(reference, translations, coverages);
    rows.AddObsolete(coverages);

    const std::size_t place = kPageTemplate.find(kPlaceOfData);
    std::string data = JsonLine(head);
    data.erase(data.rfind('}'));
    return std::string(kPageTemplate.substr(0, place)) +
           InScript(data + ",\"rows\":[" + rows.Joined() + "]}") +
           std::string(kPageTemplate.substr(place + kPlaceOfData.size()));
}

}  // namespace tool
