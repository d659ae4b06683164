#include "tools/base/ProjectFile.h"

#include <glob.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <toml.hpp>

#include "tools/base/Encodings.h"
#include "tools/base/Suggest.h"
#include "tools/base/TextDocument.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

// The matching files, by name, or the pattern itself when it has no wildcard.
std::vector<std::string> Matching(const fs::path& folder, const std::string& pattern) {
    if (pattern.find_first_of("*?[") == pattern.npos) return {(folder / pattern).string()};
    std::string escaped;
    for (const char c : (folder / "").string()) {
        if (std::string_view("*?[\\").find(c) != std::string_view::npos) escaped += '\\';
        escaped += c;
    }
    glob_t found{};
    std::vector<std::string> names;
    if (glob((escaped + pattern).c_str(), 0, nullptr, &found) == 0) {
        for (std::size_t i = 0; i < found.gl_pathc; ++i) {
            const std::string name = found.gl_pathv[i];
            std::error_code absent;
            if (fs::is_regular_file(name, absent)) names.push_back(name);
        }
    }
    globfree(&found);
    return names;
}

class Reader {
public:
    Reader(const std::string& file, const std::vector<std::string>& namesOfRules)
        : folder(fs::path(file).parent_path()), ruleNames(namesOfRules) {
        project.file = file;
    }

    Project Read(const toml::value& settings) {
        for (const auto& [name, value] : settings.as_table()) {
            if (name == "reference") {
                project.reference = Name(TextOf(value, name));
            } else if (name == "languages") {
                patterns = TextsOf(value, name);
            } else if (name == "sources") {
                for (const std::string& source : TextsOf(value, name))
                    project.sources.push_back(Name(source));
            } else if (name == "encoding") {
                project.encoding = Known(value, TextOf(value, name), EncodingNames(), "encoding");
            } else if (name == "rules") {
                ReadRules(value);
            } else {
                RefuseName(value, name, {"reference", "languages", "sources", "encoding", "rules"});
            }
        }
        FindLanguages();
        return std::move(project);
    }

private:
    [[noreturn]] void Refuse(const toml::value& at, const std::string& why) const {
        throw ProjectFailure(project.file, at.location().line(), why);
    }
    [[noreturn]] void RefuseName(const toml::value& at, const std::string& name,
                                 const std::vector<std::string>& known) const {
        Refuse(at, "there is no setting \"" + name + '"' + DidYouMean(name, known));
    }

    std::string TextOf(const toml::value& value, const std::string& name) const {
        if (!value.is_string()) Refuse(value, "\"" + name + "\" must be a text in quotation marks");
        std::string text = value.as_string().str;
        if (text.empty()) Refuse(value, "\"" + name + "\" is empty");
        return text;
    }
    std::vector<std::string> TextsOf(const toml::value& value, const std::string& name) const {
        if (!value.is_array()) Refuse(value, "\"" + name + "\" must be a list of texts: [\"...\"]");
        std::vector<std::string> texts;
        for (const toml::value& item : value.as_array())
            texts.push_back(TextOf(item, name));
        return texts;
    }
    std::string Known(const toml::value& at, std::string name,
                      const std::vector<std::string>& names, const char* thing) const {
        if (std::ranges::find(names, name) == names.end()) {
            Refuse(at, std::string("there is no ") + thing + " \"" + name + '"' +
                           DidYouMean(name, names));
        }
        return name;
    }

    void ReadRules(const toml::value& rules) {
        if (!rules.is_table()) Refuse(rules, "\"rules\" is a table: [rules]");
        for (const auto& [name, value] : rules.as_table()) {
            if (name != "disabled") RefuseName(value, name, {"disabled"});
            for (std::string& rule : TextsOf(value, name))
                project.disabled.push_back(Known(value, std::move(rule), ruleNames, "rule"));
        }
    }

    std::string Name(const std::string& written) const {
        return (folder / written).lexically_normal().string();
    }

    void FindLanguages() {
        std::set<std::string> seen{project.reference};
        for (const std::string& pattern : patterns) {
            for (const std::string& name : Matching(folder, pattern)) {
                std::string normal = fs::path(name).lexically_normal().string();
                if (IsObsoleteName(normal) || !seen.insert(normal).second) continue;
                project.languages.push_back(std::move(normal));
            }
        }
    }

    fs::path folder;
    const std::vector<std::string>& ruleNames;
    Project project;
    std::vector<std::string> patterns;
};

}  // namespace

bool Project::HasLanguage(const std::string& name) const {
    return std::ranges::any_of(languages, [&](const std::string& language) {
        std::error_code absent;
        return language == name || fs::equivalent(language, name, absent);
    });
}

std::vector<std::string> Project::Dictionaries() const {
    std::vector<std::string> names = languages;
    if (!reference.empty()) names.insert(names.begin(), reference);
    return names;
}

std::string FindProjectFile(const std::string& folder) {
    std::error_code error;
    fs::path at = fs::absolute(folder.empty() ? "." : folder, error).lexically_normal();
    for (;;) {
        const fs::path file = at / kProjectFileName;
        if (fs::is_regular_file(file, error)) return file.string();
        if (!at.has_relative_path()) return {};
        at = at.parent_path();
    }
}

Project ParseProject(const std::string& file, const std::string& toml,
                     const std::vector<std::string>& rules) {
    std::istringstream stream(toml);
    try {
        return Reader(file, rules).Read(toml::parse(stream, file));
    } catch (const toml::exception& fault) {
        // The first line of the library's text: "[error] toml::parse_table: WHY".
        std::string why = fault.what();
        why.resize(std::min(why.find('\n'), why.size()));
        const std::size_t from = why.rfind("toml::");
        const std::size_t end = from == why.npos ? why.npos : why.find(": ", from);
        if (end != why.npos) why.erase(0, end + 2);
        throw ProjectFailure(file, fault.location().line(), why);
    }
}

std::string FromWorkingFolder(const std::string& name) {
    std::error_code error;
    const fs::path near = fs::path(name).lexically_proximate(fs::current_path(error));
    return near.empty() ? name : near.string();
}

}  // namespace tool
