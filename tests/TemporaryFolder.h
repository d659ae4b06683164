#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

// An empty folder for the process, with a name that is not ASCII; one at a time.
// Owns: the folder and its content, deleted with this.
class TemporaryFolder {
public:
    TemporaryFolder() { std::filesystem::create_directory(path); }
    ~TemporaryFolder() { std::filesystem::remove_all(path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path / name; }
    // Writes the file `name`, and the folders on the way to it; returns its path.
    std::filesystem::path Write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories((path / name).parent_path());
        std::ofstream(path / name) << content;
        return path / name;
    }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("test-\xC3\xA9-" + std::to_string(getpid()));
};
