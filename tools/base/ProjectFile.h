#pragma once
// The settings of a project of dictionaries, from a file "wordlex.toml". See docs/project-file.md.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/base/Files.h"

namespace tool {

inline constexpr char kProjectFileName[] = "wordlex.toml";

struct Project {
    std::string file;                    // of the settings; empty without one
    std::string reference;               // empty when none is named
    std::vector<std::string> languages;  // the translations, without the reference
    std::vector<std::string> sources;    // files and folders
    std::vector<std::string> disabled;   // names of rules that exist
    std::string encoding;                // one of EncodingNames(), or empty

    // Whether the name is one of the languages, however it is spelled.
    bool HasLanguage(const std::string& name) const;
    // The reference, then the languages.
    std::vector<std::string> Dictionaries() const;
};

// A project file that cannot be used.
class ProjectFailure : public Failure {
public:
    ProjectFailure(const std::string& file, std::uint64_t lineOfFault, const std::string& why)
        : Failure(file + ':' + std::to_string(lineOfFault) + ": " + why), line(lineOfFault) {}
    std::uint64_t Line() const { return line; }  // from 1

private:
    std::uint64_t line;
};

// The project file of a folder or of the nearest folder above it, or "".
std::string FindProjectFile(const std::string& folder);
// Names in the result begin with the folder of the file. Patterns in `languages` are replaced by
// the matching files. `rules` are all names that a list of disabled rules may contain. Throws a
// ProjectFailure.
Project ParseProject(const std::string& file, const std::string& toml,
                     const std::vector<std::string>& rules);

// The name relative to the working folder.
std::string FromWorkingFolder(const std::string& name);

}  // namespace tool
