#pragma once
// What the command line may hold. One table, which the parser, --help and the completions of shells
// read. To add a verb: a function in verbs/, its declaration in Verbs.h and a row in VerbTable.cpp.
#include <string>
#include <string_view>
#include <vector>

#include "tools/base/Arguments.h"

namespace tool {

// What a value is, for the parser and for completions.
enum class Takes : std::uint8_t {
    kNothing,  // a flag
    kText,
    kFile,
    kFolder,
    kChoice,   // one of `choices`, whatever the case of its letters
    kChoices,  // the same; several stand in one value with "," between them
};

struct OptionInfo {
    std::string name;    // without "--"
    char letter = '\0';  // of the short form, if there is one
    Takes takes = Takes::kNothing;
    std::string value = {};  // what --help calls the value
    std::string help;
    std::vector<std::string> choices = {};
    std::string fallback = {};  // the value when the option is not given
};

// What of the project file stands for operands that are not given.
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
    std::vector<OptionInfo> options;  // --encoding and --help, which all verbs have, included
    int (*run)(const Arguments&);     // gives the exit code, throws a Failure
    bool readsProject = true;         // takes what is not given from the project file
};

const std::vector<VerbInfo>& Verbs();
// Null when there is no verb of that name.
const VerbInfo* FindVerb(std::string_view name);

}  // namespace tool
