#pragma once
// File input and output. "-" is standard input and standard output.
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// Something that stops the command: one line on standard error, exit code 2.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The same for a command line that the verb cannot use.
class UsageFailure : public Failure {
public:
    explicit UsageFailure(const std::string& why) : Failure(why + " (try --help)") {}
};

// The reader of standard output has closed it: the command ends silently.
class ReaderGone : public std::exception {};

// Turns the limit on file sizes into a failed write. A signal that ends the command, also that of a
// pipe without a reader, leaves no incomplete file.
void HandleSignals();

// Whether both names are of one file that exists.
bool IsSameFile(const std::string& a, const std::string& b);

// Refuses an output that would replace one of the inputs by another kind of file.
void RefuseInput(const std::string& output, const std::vector<std::string>& inputs);
// Refuses a target that exists and that WriteOutput would refuse.
void RequireWritable(const std::string& path);

std::string ReadInput(const std::string& path);
// Writes a file beside its target and renames it, so that the target is either the old file or the
// complete new one. The new file has the mode and owner of the old one. A read-only target is
// refused. A target that is not a plain file (a device, a pipe) is written to.
void WriteOutput(const std::string& path, std::string_view bytes);
void WriteStandardOutput(std::string_view bytes);

}  // namespace tool
