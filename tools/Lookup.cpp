#include <algorithm>

#include "tools/Content.h"
#include "tools/Files.h"
#include "tools/Verbs.h"

namespace tool {

namespace {

using lexon_private::Dictionary;

// One file of the dictionary.
struct Source {
    Kind kind;
    CheckedFile file;
};

Source Add(Dictionary& dictionary, const std::string& name) {
    const std::string bytes = ReadInput(name);
    Findings unused;
    Source source{KindOf(bytes), CheckUsable(name, bytes, unused)};
    Read(dictionary, name, bytes);
    return source;
}

// The key as the localizer hands it on: without the parentheses that it may stand in.
std::string Unwrapped(std::string key) {
    if (!key.starts_with("($$$")) return key;
    key.erase(0, 1);
    if (key.ends_with(')')) key.pop_back();
    return key;
}

std::string KeyPart(const std::string& text) {
    const char* key = nullptr;
    const char* rest = nullptr;
    unsigned long keyLength = 0;
    unsigned long restLength = 0;
    if (!Dictionary::ParseLiteral(text.c_str(), key, keyLength, rest, restLength)) {
        throw Failure("\"" + text +
                      "\" is no key: it is empty, or begins with \"$\" but not \"$$$\"");
    }
    return {key, keyLength};
}

void Replace(Text& text, const Replacement& replacement) {
    const Text value = FromUtf8(replacement.text);
    const std::string& name = replacement.name;
    if (name.size() == 1 && name[0] >= '0' && name[0] <= '9') {
        text.Replace(static_cast<unsigned char>(name[0] - '0'), value);
        return;
    }
    int count = 0;
    for (Text copy = text; copy.BackDoorParamSubstitute(name.c_str(), {}, 1);)
        ++count;
    while (count-- > 0)
        text.BackDoorParamSubstitute(name.c_str(), value, 1);
}

// Whether the dictionary still sees the entries of a file: the first version 2 file hides those of
// other files before it, and old binary files altogether.
bool IsVisible(const std::vector<Source>& sources, std::size_t i) {
    const auto isCompact = [](const Source& source) { return source.kind == Kind::kVersion2; };
    const auto first = std::ranges::find_if(sources, isCompact);
    if (first == sources.end() || isCompact(sources[i])) return true;
    return sources[i].kind == Kind::kText && i > static_cast<std::size_t>(first - sources.begin());
}

// A line for each file that has the key. The last one that is visible gave the answer, and the main
// dictionary is asked only where there was none.
std::string ExplainKey(const std::vector<Source>& sources, const std::string& key, bool isMain,
                       bool& answered) {
    std::string lines;
    for (std::size_t i = sources.size(); i-- != 0;) {
        const auto found = sources[i].file.entries.find(key);
        if (found == sources[i].file.entries.end()) continue;
        const char* const fate = !IsVisible(sources, i) ? "hidden by a version 2 file"
                                 : answered             ? (isMain ? "not asked" : "replaced")
                                                        : "the answer";
        answered |= IsVisible(sources, i);
        std::string line = "  " + Show(found->second.place) + ": ";
        line += Show(UnitsOf(found->second.value)) + (isMain ? " in the main dictionary, " : ", ");
        line += std::string(fate) + '\n';
        lines.insert(0, line);
    }
    return lines;
}

class Query {
public:
    explicit Query(const LookupOptions& lookup) : options(lookup) {
        for (const std::string& name : options.files)
            sources.push_back(Add(dictionary, name));
        if (options.main.empty()) return;
        mainSources.push_back(Add(main, options.main));
        main.SetAsMain();
    }

    int Run() {
        Text answer;
        if (options.id.has_value()) {
            found = dictionary.ValidId(*options.id) || main.ValidId(*options.id);
            answer = dictionary.Lookup(*options.id, nullptr);
        } else {
            const std::string asked = Unwrapped(options.key);
            key = KeyPart(asked);
            found =
                dictionary.HasKey(asked.c_str(), nullptr) || main.HasKey(asked.c_str(), nullptr);
            answer = dictionary.Lookup(asked.c_str(), nullptr);
        }
        for (const Replacement& replacement : options.replacements)
            Replace(answer, replacement);
        std::string output;
        if (found || !answer.IsEmpty()) output = Utf8(UnitsOf(answer)) + '\n';
        if (options.explain) output += Explanation();
        WriteStandardOutput(output);
        return found ? kSuccess : kDifference;
    }

private:
    std::string Explanation() {
        std::string lines;
        if (options.id.has_value()) {
            const Dictionary& holder = dictionary.ValidId(*options.id) ? dictionary : main;
            const std::unique_ptr<char[]> text(holder.GetStringId(*options.id));
            lines = "id " + std::to_string(*options.id) + ": ";
            if (!found) return lines + "no entry has it\n";
            if (text == nullptr) return lines + "an entry without a key\n";
            key = text.get();
            lines += "the key " + ShowKey(key) + '\n';
        } else {
            lines = "key " + ShowKey(key) + '\n';
        }
        bool answered = false;
        lines += ExplainKey(sources, key, false, answered);
        lines += ExplainKey(mainSources, key, true, answered);
        if (!answered) lines += "  in none of the files: the answer is the key's default text\n";
        return lines;
    }

    const LookupOptions& options;
    Dictionary dictionary;
    Dictionary main;
    std::vector<Source> sources;
    std::vector<Source> mainSources;
    std::string key;
    bool found = false;
};

}  // namespace

int Lookup(const LookupOptions& options) { return Query(options).Run(); }

}  // namespace tool
