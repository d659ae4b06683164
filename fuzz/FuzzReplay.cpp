// Runs a fuzz target once on every file of the folders given: seeds and inputs that once failed.
// Built with any compiler. Exits with status 1 when a folder is empty, so that a run without inputs
// does not pass.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    int status = argc > 1 ? 0 : 1;
    for (int i = 1; i < argc; ++i) {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(argv[i]))
            files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        for (const auto& file : files) {
            std::ifstream in(file, std::ios::binary);
            // A copy of the exact size: the address sanitizer reports a read past its end.
            std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
            bytes.shrink_to_fit();
            // On the error stream, unbuffered: the last name is that of the file that crashes.
            std::fprintf(stderr, "%s\n", file.c_str());
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                   bytes.size());
        }
        std::printf("%s: %zu inputs\n", argv[i], files.size());
        if (files.empty()) status = 1;
    }
    return status;
}
