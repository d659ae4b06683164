#pragma once
// What the command does, one function a verb. Each gives the exit code and throws a Failure for
// what makes it 2.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/check/Findings.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace tool {

inline constexpr int kSuccess = 0;     // clean, found, equal
inline constexpr int kDifference = 1;  // findings, a difference, a key that is absent
inline constexpr int kFailure = 2;  // usage, malformed input, a file that cannot be read or written

struct CheckOptions {
    std::vector<std::string> files;
    std::string reference;
    Severity failOn = Severity::kError;
    Findings::Rules disabled;
    bool json = false;
    bool listRules = false;
};
int Check(const CheckOptions& options);

struct CompileOptions {
    std::vector<std::string> files;
    std::string output;
    lexon::EndianT order = lexon::EndianT::kLittle;
    std::string locale;
    std::uint32_t idBase = 0;
    bool noKeys = false;
    Findings::Rules disabled;
    bool json = false;
};
int Compile(const CompileOptions& options);

struct DumpOptions {
    std::string file;
    std::string output = "-";
    bool json = false;
    bool header = false;
    bool sort = false;
};
int Dump(const DumpOptions& options);

struct CompareOptions {
    std::string before;
    std::string after;
    bool json = false;
};
int Compare(const CompareOptions& options);

struct Replacement {
    std::string name;  // a digit, or the name of a parameter tag
    std::string text;
};
struct LookupOptions {
    std::vector<std::string> files;
    std::string key;
    std::optional<std::uint32_t> id;  // in place of the key
    std::string main;
    std::vector<Replacement> replacements;
    bool explain = false;
};
int Lookup(const LookupOptions& options);

struct StatsOptions {
    std::vector<std::string> files;
    std::string reference;
};
int Stats(const StatsOptions& options);

}  // namespace tool
