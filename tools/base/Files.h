#pragma once
// Files in and out. "-" is standard input and standard output.
#include <stdexcept>
#include <string>
#include <string_view>

namespace tool {

// Something that keeps the command from doing its work: one line on standard error, exit code 2.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A reader that went away and a file that may not grow are writes that failed; a signal that ends
// the command leaves no half file.
void HandleSignals();

std::string ReadInput(const std::string& path);
// Writes a file beside its target and renames it, so that the target is the old one or the whole
// new one. A target that is no plain file (a device, a pipe) is written to.
void WriteOutput(const std::string& path, std::string_view bytes);
void WriteStandardOutput(std::string_view bytes);

}  // namespace tool
