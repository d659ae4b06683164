#include <algorithm>
#include <iostream>

#include "tools/base/BinaryFile.h"
#include "tools/base/Files.h"
#include "tools/base/Suggest.h"
#include "tools/base/Terminal.h"
#include "tools/check/Content.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

using lexon_private::Dictionary;

struct Replacement {
    std::string name;  // a digit, or the name of a parameter tag
    std::string text;
};

// The dictionary's treatment of a file's entries.
enum class Effect : std::uint8_t {
    kReplaces,  // its texts replace those of earlier files
    kMerged,    // the same, except for long keys
    kAppended,  // the texts of earlier files stay
    kRefused,
};

// A dictionary, and what happened to the files loaded into it.
class Loaded {
public:
    // `asked` is the id to look up, if any. ExplainKey() and ExplainId() need `explained`.
    void Add(const std::string& name, std::optional<std::uint32_t> asked, bool explained);

    Dictionary& Get() { return dictionary; }

    // A line for each file that has the key. `remark` comes after its text; `unasked` means that
    // another dictionary has answered.
    std::string ExplainKey(const std::string& key, const char* remark, bool unasked) const;
    // The same for the requested id, which is in this dictionary.
    std::string ExplainId(std::uint32_t id, const char* remark);

private:
    struct Source {
        Kind kind;
        Effect effect;
        CheckedFile file;  // without entries where nothing is explained
    };

    bool IsVisible(std::size_t i) const;
    std::optional<std::size_t> Answering(const std::string& key) const;

    Dictionary dictionary;
    std::vector<Source> sources;
    std::string broughtId;  // the file with the entry of the id
};

void Loaded::Add(const std::string& name, std::optional<std::uint32_t> asked, bool explained) {
    const std::string bytes = ReadInput(name);
    Source source{KindOf(bytes), Effect::kReplaces, {}};
    if (explained) source.file = CheckUsable(name, bytes);
    const unsigned long count = dictionary.NumKeys();
    const bool hadId = asked.has_value() && dictionary.ValidId(*asked);
    if (explained) {
        Read(dictionary, name, bytes);
    } else {
        ReadUsable(dictionary, name, bytes);
    }
    if (!hadId && asked.has_value() && dictionary.ValidId(*asked)) broughtId = name;
    if (source.kind == Kind::kVersion2) {
        // The first file is loaded into an empty store, which accepts any id base.
        const bool isFirst =
            std::ranges::find(sources, Kind::kVersion2, &Source::kind) == sources.end();
        source.effect = isFirst || BinaryFile(bytes).IdBase() == 0 ? Effect::kMerged
                        : dictionary.NumKeys() == count            ? Effect::kRefused
                                                                   : Effect::kAppended;
    }
    sources.push_back(std::move(source));
}

// Whether the dictionary still sees the entries of a file. The first version 2 file hides those of
// all other files before it, and old binary files altogether.
bool Loaded::IsVisible(std::size_t i) const {
    const auto first = std::ranges::find(sources, Kind::kVersion2, &Source::kind);
    if (first == sources.end() || sources[i].kind == Kind::kVersion2) return true;
    return sources[i].kind == Kind::kText && i > static_cast<std::size_t>(first - sources.begin());
}

// The file whose text of the key is used.
std::optional<std::size_t> Loaded::Answering(const std::string& key) const {
    std::optional<std::size_t> answering;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const Effect effect = sources[i].effect;
        if (!sources[i].file.entries.contains(key) || !IsVisible(i) || effect == Effect::kRefused) {
            continue;
        }
        const bool isAppended = effect == Effect::kAppended ||
                                (effect == Effect::kMerged && key.size() > kMergeableKeyBytes);
        if (!answering.has_value() || !isAppended) answering = i;
    }
    return answering;
}

std::string Loaded::ExplainKey(const std::string& key, const char* remark, bool unasked) const {
    const std::optional<std::size_t> answering = Answering(key);
    std::string lines;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const auto found = sources[i].file.entries.find(key);
        if (found == sources[i].file.entries.end()) continue;
        const char* const fate = !IsVisible(i) ? "hidden by a version 2 file"
                                 : sources[i].effect == Effect::kRefused ? "refused for its id base"
                                 : unasked                               ? "not asked"
                                 : i == answering                        ? "the answer"
                                 : i < answering                         ? "replaced"
                                                 : "appended after the answer";
        lines += "  " + Show(sources[i].file.PlaceOf(found->second)) + ": " +
                 Show(UnitsOf(found->second.value)) + remark + ", " + fate + '\n';
    }
    return lines;
}

std::string Loaded::ExplainId(std::uint32_t id, const char* remark) {
    const std::unique_ptr<char[]> text(dictionary.GetStringId(id));
    const std::string key = text == nullptr ? "" : text.get();
    const std::string head =
        text == nullptr ? "an entry without a key\n" : "the key " + ShowKey(key) + '\n';
    const bool answersKey = text != nullptr && dictionary.GetNumericId(("$$$" + key).c_str()) == id;
    if (answersKey) return head + ExplainKey(key, remark, false);
    // No later file replaces an entry that no key finds.
    return head + "  " + broughtId + ": " + Show(UnitsOf(dictionary.Lookup(id, nullptr))) + remark +
           ", the answer\n";
}

// The key as the localizer passes it on: without surrounding parentheses.
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
                      "\" is not a key: it is empty, or begins with \"$\" but not \"$$$\"");
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
    for (Text copy = text; SubstituteParameter(copy, name, {});)
        ++count;
    while (count-- > 0)
        SubstituteParameter(text, name, value);
}

class Query {
public:
    // `asked` is the id to look up instead of a key, if any.
    Query(const std::vector<std::string>& names, const std::string& nameOfMain,
          std::optional<std::uint32_t> asked, bool explained)
        : id(asked), explain(explained) {
        for (const std::string& name : names)
            files.Add(name, id, explain);
        if (nameOfMain.empty()) return;
        main.Add(nameOfMain, id, explain);
        main.Get().SetAsMain();
    }

    // `key` is ignored when an id is looked up.
    int Run(const std::string& key, const std::vector<Replacement>& replacements) {
        Text answer = id.has_value() ? AnswerId(*id) : AnswerKey(key);
        for (const Replacement& replacement : replacements)
            Replace(answer, replacement);
        std::string output;
        if (found || !answer.IsEmpty()) output = Utf8(UnitsOf(answer)) + '\n';
        if (explain) output += explanation;
        WriteStandardOutput(ForOutput("-", std::move(output), ControlForm::kEntry));
        return found ? kSuccess : kDifference;
    }

private:
    Text AnswerKey(const std::string& written) {
        const std::string asked = Unwrapped(written);
        const std::string key = KeyPart(asked);
        const bool here = files.Get().HasKey(asked.c_str(), nullptr);
        found = here || main.Get().HasKey(asked.c_str(), nullptr);
        explanation = "key " + ShowKey(key) + '\n' + files.ExplainKey(key, "", false) +
                      main.ExplainKey(key, kInMain, here);
        if (!found) {
            const std::string nearest = DidYouMean(key, Keys());
            explanation +=
                "  in none of the files: the answer is the key's default text" + nearest + '\n';
            Tell("no file has the key " + ShowKey(key) + nearest);
        }
        return files.Get().Lookup(asked.c_str(), nullptr);
    }

    Text AnswerId(std::uint32_t asked) {
        const bool here = files.Get().ValidId(asked);
        found = here || main.Get().ValidId(asked);
        explanation = "id " + std::to_string(asked) + ": ";
        explanation += here    ? files.ExplainId(asked, "")
                       : found ? main.ExplainId(asked, kInMain)
                               : "no entry has it\n";
        if (!found) Tell("no entry has the id " + std::to_string(asked));
        return files.Get().Lookup(asked, nullptr);
    }

    // Why there is no answer, unless the explanation says it.
    void Tell(const std::string& why) const {
        if (!explain) std::cerr << "wordlex: " << why << '\n';
    }

    std::vector<std::string> Keys() {
        std::vector<std::string> keys;
        const auto add = [&keys](const lexon_private::EntryView& entry) {
            keys.emplace_back(entry.key.begin(), entry.key.end());
        };
        files.Get().ForEachEntry(add);
        main.Get().ForEachEntry(add);
        return keys;
    }

    static constexpr char kInMain[] = " in the main dictionary";

    std::optional<std::uint32_t> id;
    bool explain;
    Loaded files;
    Loaded main;
    std::string explanation;
    bool found = false;
};

}  // namespace

int Lookup(const Arguments& arguments) {
    const std::optional<std::uint32_t> id = arguments.Number("id");
    std::vector<std::string> files = arguments.operands;
    std::string key;
    if (!id.has_value()) {
        if (files.size() < 2) throw UsageFailure("KEY is required");
        key = files.back();
        files.pop_back();
    }
    std::vector<Replacement> replacements;
    for (const std::string& given : arguments.All("replace")) {
        const std::size_t equals = given.find('=');
        if (equals == 0 || equals == std::string::npos) {
            throw UsageFailure("--replace: N=TEXT is expected, not " + given);
        }
        replacements.push_back({given.substr(0, equals), given.substr(equals + 1)});
    }
    return Query(files, arguments.Get("main"), id, arguments.Has("explain")).Run(key, replacements);
}

}  // namespace tool
