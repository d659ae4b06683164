#include "tests/app/Launch.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

fs::path NewFolder() {
    static int count = 0;
    auto folder =
        fs::current_path() / ("staged-" + std::to_string(getpid()) + '-' + std::to_string(++count));
    fs::create_directories(folder);
    return folder;
}

std::string Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Outcome Launch(const std::string& arguments, const std::string& environment,
               const fs::path& application) {
    const auto folder = NewFolder();
    const auto out = folder / "out", err = folder / "err";
    const auto command = "env -i " + environment + " '" + (application / "framewright").string() +
                         "' " + arguments + " >'" + out.string() + "' 2>'" + err.string() + "'";
    const int status = std::system(command.c_str());
    Outcome outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, Content(out), Content(err)};
    fs::remove_all(folder);
    return outcome;
}

Staged::Staged() : folder(NewFolder()) {
    fs::copy(FRAMEWRIGHT_APP_DIR, folder,
             fs::copy_options::recursive | fs::copy_options::create_hard_links);
}

Staged::~Staged() { fs::remove_all(folder); }

void Staged::Write(const std::string& name, const std::string& content) const {
    Remove(name);  // a file of the application itself is shared
    std::ofstream(Path(name), std::ios::binary) << content;
}

void Staged::Replace(const std::string& name, const fs::path& file) const {
    Remove(name);
    fs::copy_file(file, Path(name));
}
