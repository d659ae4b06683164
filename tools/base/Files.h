#pragma once
// Files in and out. "-" is standard input and standard output.
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tool {

// Something that keeps the command from doing its work: one line on standard error, exit code 2.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The same for a command line that the verb cannot use.
class UsageFailure : public Failure {
public:
    explicit UsageFailure(const std::string& why) : Failure(why + " (try --help)") {}
};

// The reader of standard output has closed it: the command ends without a word.
class ReaderGone : public std::exception {};

// A file that may not grow is a write that failed. A signal that ends the command, that of a pipe
// without a reader included, leaves no half file.
void HandleSignals();

std::string ReadInput(const std::string& path);
// Writes a file beside its target and renames it, so that the target is the old one or the whole
// new one. The new one has mode and owner of the old one; a read-only one is refused. A target that
// is no plain file (a device, a pipe) is written to.
void WriteOutput(const std::string& path, std::string_view bytes);
void WriteStandardOutput(std::string_view bytes);

}  // namespace tool
