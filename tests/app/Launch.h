#pragma once
// Runs the real launcher of the build, or a copy of the whole application whose files a test
// changes.

#include <filesystem>
#include <string>

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

// `arguments` and `environment` ("NAME=value ...") are taken as a shell does; nothing else is in
// the environment.
Outcome Launch(const std::string& arguments, const std::string& environment = "",
               const std::filesystem::path& application = FRAMEWRIGHT_APP_DIR);

// A copy of the application.
// Owns:     its folder, deleted with it.
class Staged {
public:
    Staged();
    ~Staged();
    Staged(const Staged&) = delete;
    Staged& operator=(const Staged&) = delete;

    std::filesystem::path Path(const std::string& name = "") const { return folder / name; }
    void Remove(const std::string& name) const { std::filesystem::remove_all(Path(name)); }
    void Write(const std::string& name, const std::string& content) const;
    void Replace(const std::string& name, const std::filesystem::path& file) const;

private:
    std::filesystem::path folder;
};
