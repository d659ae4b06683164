#include "tools/command/CommandLine.h"

#include <getopt.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>

#include "tools/base/Encodings.h"
#include "tools/base/Files.h"
#include "tools/base/Suggest.h"
#include "tools/check/Rules.h"
#include "tools/command/Help.h"
#include "tools/verbs/Verbs.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace tool {

namespace {

[[noreturn]] void Refuse(const std::string& why) { throw UsageFailure(why); }

// The choice as spelled in the table.
std::string Chosen(const std::string& name, const std::string& value,
                   const std::vector<std::string>& choices) {
    const auto same = [&](const std::string& choice) {
        return EditDistance(choice, value, 1) == 0;
    };
    const auto found = std::ranges::find_if(choices, same);
    if (found != choices.end()) return *found;
    std::string hint = DidYouMean(value, choices);
    constexpr std::size_t kMostListed = 5;
    if (hint.empty() && choices.size() <= kMostListed) {
        for (const std::string& choice : choices)
            hint += (hint.empty() ? "; it is one of " : ", ") + choice;
    }
    Refuse(name + ": there is no \"" + value + '"' + hint);
}

void AddValue(const OptionInfo& option, const std::string& value, Arguments& arguments) {
    const std::string name = "--" + option.name;
    if (option.takes == Takes::kChoice) {
        arguments.Add(option.name, Chosen(name, value, option.choices));
    } else if (option.takes == Takes::kChoices) {
        for (std::size_t at = 0; at <= value.size();) {
            const std::size_t end = std::min(value.find(',', at), value.size());
            arguments.Add(option.name, Chosen(name, value.substr(at, end - at), option.choices));
            at = end + 1;
        }
    } else {
        const bool isPath =
            option.value == "FILE" || option.value == "DIR" || option.value == "OUT";
        if (isPath && value.empty()) Refuse(name + " needs the name of a file or folder");
        arguments.Add(option.name, value);
    }
}

[[noreturn]] void RefuseUnknown(const VerbInfo& verb, std::string given) {
    given = given.substr(0, given.find('='));
    std::vector<std::string> names;
    for (const OptionInfo& option : verb.options)
        names.push_back("--" + option.name);
    Refuse(verb.name + " has no option " + given + DidYouMean(given, names));
}

// Completes the command line from the project file: that of the first file's folder, or without a
// file that of the working folder.
void TakeSettings(const VerbInfo& verb, Arguments& arguments) {
    namespace fs = std::filesystem;
    if (!verb.readsProject) return;
    std::vector<std::string>& operands = arguments.operands;
    std::string folder;
    if (!operands.empty() && operands.front() != "-") {
        std::error_code absent;
        const fs::path first = operands.front();
        folder = fs::is_directory(first, absent) ? first : first.parent_path();
    }
    const std::string file = FindProjectFile(folder);
    if (file.empty()) return;
    arguments.project = ParseProject(FromWorkingFolder(file), ReadInput(file), RuleNames());
    const Project& project = arguments.project;
    const auto given = [](const std::string& setting) {
        return setting.empty() ? std::vector<std::string>() : std::vector{setting};
    };
    arguments.AddSetting("encoding", given(project.encoding));
    std::error_code absent;
    const bool isReference = !verb.operands.empty() && !verb.operands.front().repeated &&
                             !operands.empty() &&
                             fs::equivalent(operands.front(), project.reference, absent);
    if (!isReference) arguments.AddSetting("reference", given(project.reference));
    arguments.AddSetting("sources", project.sources);
    arguments.AddSetting("disable", project.disabled);
    if (!operands.empty() || verb.operands.empty()) return;
    switch (verb.operands.front().settings) {
        case Settings::kNone:
            break;
        case Settings::kDictionaries:
            operands = project.Dictionaries();
            break;
        case Settings::kLanguages:
            operands = project.languages;
            break;
        case Settings::kSources:
            operands = project.sources;
            break;
    }
}

void TakeOperands(const VerbInfo& verb, Arguments& arguments) {
    std::vector<std::string>& operands = arguments.operands;
    std::size_t required = 0;
    bool repeated = false;
    for (const OperandInfo& operand : verb.operands) {
        repeated = repeated || operand.repeated;
        if (operand.optional) continue;
        if (++required > operands.size()) Refuse(operand.name + " is required");
    }
    if (!repeated && operands.size() > verb.operands.size()) {
        Refuse("\"" + operands[verb.operands.size()] + "\" is one operand too many");
    }
    for (std::size_t i = 0; i < std::min(operands.size(), verb.operands.size()); ++i) {
        const OperandInfo& operand = verb.operands[i];
        if (!operand.choices.empty()) {
            operands[i] = Chosen(operand.name, operands[i], operand.choices);
        }
    }
}

// Parses the arguments after the verb, as GNU programs do: options and operands in any order, "--"
// before the last operands.
Arguments Parse(const VerbInfo& verb, int argc, char** argv) {
    constexpr int kFirstLong = 0x100;  // above all letters
    Arguments arguments;
    std::string letters = ":";  // a missing value is not an unknown option
    std::vector<option> longOptions;
    for (const OptionInfo& info : verb.options) {
        const int hasValue = info.takes == Takes::kNothing ? no_argument : required_argument;
        const int code = kFirstLong + static_cast<int>(longOptions.size());
        longOptions.push_back({info.name.c_str(), hasValue, nullptr, code});
        if (info.letter != '\0') {
            letters += info.letter;
            if (hasValue != no_argument) letters += ':';
        }
        arguments.Declare(info.name, info.fallback);
    }
    longOptions.push_back({});
    opterr = 0;
    optind = 1;
    for (;;) {
        const int code = getopt_long(argc, argv, letters.c_str(), longOptions.data(), nullptr);
        if (code == -1) break;
        const auto of = [&verb](int number) {
            return std::ranges::find_if(verb.options, [&](const OptionInfo& info) {
                return number >= kFirstLong
                           ? &info == &verb.options[static_cast<std::size_t>(number - kFirstLong)]
                           : info.letter == number;
            });
        };
        if (code == '?' && optopt >= kFirstLong) {
            Refuse("--" + of(optopt)->name + " takes no value");
        }
        if (code == '?') {
            RefuseUnknown(verb, optopt == 0 ? argv[optind - 1]
                                            : std::string("-") + static_cast<char>(optopt));
        }
        if (code == ':') Refuse("--" + of(optopt)->name + " needs a value");
        AddValue(*of(code), optarg == nullptr ? "" : optarg, arguments);
    }
    arguments.operands.assign(argv + optind, argv + argc);
    return arguments;
}

int Run(int argc, char** argv) {
    if (argc < 2) Refuse("a verb is required");
    const std::string name = argv[1];
    if (name == "--help" || name == "-h") {
        WriteStandardOutput(Help());
        return kSuccess;
    }
    if (name == "--version") {
        WriteStandardOutput(std::string("wordlex ") + WLLibraryVersion() + '\n');
        return kSuccess;
    }
    const VerbInfo* const verb = FindVerb(name);
    if (verb == nullptr) {
        std::vector<std::string> names;
        std::ranges::transform(Verbs(), std::back_inserter(names), &VerbInfo::name);
        Refuse("there is no verb \"" + name + '"' + DidYouMean(name, names));
    }
    Arguments arguments = Parse(*verb, argc - 1, argv + 1);
    if (arguments.Has("help")) {
        WriteStandardOutput(HelpOf(*verb));
        return kSuccess;
    }
    TakeSettings(*verb, arguments);
    TakeOperands(*verb, arguments);
    UseEncoding(arguments.Get("encoding"));
    return verb->run(arguments);
}

}  // namespace

int RunCommand(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const ReaderGone&) {
        return kFailure;
    } catch (const std::bad_alloc&) {
        std::cerr << "wordlex: out of memory\n";
    } catch (const std::exception& error) {
        std::cerr << "wordlex: " << error.what() << '\n';
    }
    return kFailure;
}

}  // namespace tool
