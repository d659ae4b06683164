#pragma once
// The verbs, options and operands of the command line. One table for the parser, --help and the
// completions of shells. To add a verb: a function in verbs/, its declaration in Verbs.h and a row
// in VerbTable.cpp.
#include <string>
#include <string_view>
#include <vector>

#include "tools/base/Arguments.h"

namespace tool {

// The kind of a value, for the parser and for completions.
enum class Takes : std::uint8_t {
    kNothing,  // a flag
    kText,
    kFile,
    kFolder,
    kChoice,   // one of `choices`; case is ignored
    kChoices,  // the same; several may be joined by ","
};

struct OptionInfo {
    std::string name;    // without "--"
    char letter = '\0';  // of the short form, if there is one
    Takes takes = Takes::kNothing;
    std::string value = {};  // the name of the value in --help
    std::string help;
    std::vector<std::string> choices = {};
    std::string fallback = {};  // the value when the option is not given
};

// The part of the project file that replaces missing operands.
enum class Settings : std::uint8_t { kNone, kDictionaries, kLanguages, kSources };

struct OperandInfo {
    std::string name;
    bool optional = false;
    bool repeated = false;
    std::vector<std::string> choices = {};  // empty: a file
    Settings settings = Settings::kNone;
};

struct VerbInfo {
    std::string name;
    std::vector<OperandInfo> operands;
    std::string help;
    std::string example;
    std::vector<OptionInfo> options;  // including --encoding and --help, which all verbs have
    int (*run)(const Arguments&);     // returns the exit code, throws a Failure
    bool readsProject = true;         // completes the command line from the project file
};

const std::vector<VerbInfo>& Verbs();
// Null when there is no such verb.
const VerbInfo* FindVerb(std::string_view name);

}  // namespace tool
