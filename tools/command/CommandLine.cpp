#include "tools/command/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iostream>
#include <sstream>

#include "tools/base/Encodings.h"
#include "tools/base/Files.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

// Every value that stands for a choice, by name; the command accepts no other.
template <class T>
using Choices = std::map<std::string, T>;

template <class T>
CLI::Option* AddChoice(CLI::App& verb, const std::string& name, T& value, const Choices<T>& choices,
                       const std::string& help) {
    std::vector<std::string> names;
    for (const auto& [choice, meant] : choices)
        names.push_back(choice);
    return verb
        .add_option_function<std::string>(
            name, [&value, choices](const std::string& chosen) { value = choices.at(chosen); },
            help)
        ->transform(CLI::IsMember(names, CLI::ignore_case));
}

// The parser takes an operand in brackets for a list, and knows none behind "--". So what is no
// option goes through it behind a mark, which each option takes off again.
constexpr char kMark = '\x1F';

// All arguments, those behind the verb marked.
std::vector<std::string> Marked(int argc, char** argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    bool onlyOperands = false;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        std::string& argument = arguments[i];
        const bool isOption = !onlyOperands && argument.size() > 1 && argument[0] == '-';
        if (isOption && argument == "--") {
            onlyOperands = true;
            arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(i--));
        } else if (!isOption) {
            argument.insert(0, 1, kMark);
        }
    }
    return arguments;
}

std::string Unmarked(std::string text) {
    std::erase(text, kMark);
    return text;
}

class CommandLine {
public:
    CommandLine() {
        app.set_version_flag("--version", std::string("wordlex ") + WLLibraryVersion());
        app.set_help_flag("-h,--help", "Print this help and exit");
        app.require_subcommand(1);
        app.footer(
            "Exit codes: 0 clean, found, equal; 1 findings, a difference, an absent key; "
            "2 usage, malformed input, a file that cannot be read or written.\n"
            "\"-\" is standard input and standard output.");
        AddCheck();
        AddCompile();
        AddDump();
        AddCompare();
        AddLookup();
        AddStats();
        for (CLI::App* const verb : app.get_subcommands([](const CLI::App*) { return true; })) {
            for (CLI::Option* const option : verb->get_options())
                option->transform([](const std::string& given) {
                    return given.starts_with(kMark) ? given.substr(1) : given;
                });
        }
    }

    int Run(int argc, char** argv) {
        if (argc > 1 && argv[1][0] != '-' && !IsVerb(argv[1])) {
            throw Failure("there is no verb \"" + std::string(argv[1]) + "\" (try --help)");
        }
        try {
            std::vector<std::string> arguments = Marked(argc, argv);
            std::ranges::reverse(arguments);
            app.parse(std::move(arguments));
        } catch (const CLI::Success& help) {
            std::ostringstream text;
            app.exit(help, text, text);
            WriteStandardOutput(text.view());
            return kSuccess;
        } catch (const CLI::ParseError& error) {
            throw Failure(Unmarked(error.what()) + " (try --help)");
        }
        UseEncoding(encoding);
        return run();
    }

private:
    bool IsVerb(const std::string& name) const {
        const auto verbs = app.get_subcommands([](const CLI::App*) { return true; });
        return std::ranges::find(verbs, name, &CLI::App::get_name) != verbs.end();
    }

    CLI::App& Verb(const std::string& name, const std::string& help,
                   const std::function<int()>& work) {
        CLI::App* const verb = app.add_subcommand(name, help);
        verb->add_option("--encoding", encoding,
                         "Encoding of 8-bit dictionaries that do not tell theirs")
            ->transform(CLI::IsMember(EncodingNames(), CLI::ignore_case))
            ->capture_default_str();
        verb->callback([this, work] { run = work; });
        return *verb;
    }

    static void AddFiles(CLI::App& verb, std::vector<std::string>& files) {
        verb.add_option("FILE", files, "Dictionaries, text or binary")->required();
    }

    static void AddFormat(CLI::App& verb, bool& json, const std::string& help) {
        AddChoice<bool>(verb, "--format", json, {{"text", false}, {"json", true}}, help);
    }

    static void AddDisable(CLI::App& verb, Findings::Rules& disabled) {
        std::vector<std::string> names;
        std::ranges::transform(AllRules(), std::back_inserter(names), &RuleInfo::name);
        verb.add_option_function<std::vector<std::string>>(
                "--disable",
                [&disabled](const std::vector<std::string>& rules) {
                    for (const std::string& rule : rules)
                        disabled.set(static_cast<std::size_t>(*FindRule(rule)));
                },
                "A rule to leave out; may be given again")
            ->allow_extra_args(false)
            ->delimiter(',')
            ->type_name("RULE")
            ->check(CLI::Validator(
                [names](const std::string& name) {
                    const bool known = std::ranges::find(names, name) != names.end();
                    return known ? std::string()
                                 : "there is no rule " + name + " (see --list-rules)";
                },
                ""));
    }

    [[noreturn]] static void Missing(const std::string& argument) {
        throw Failure(argument + " is required (try --help)");
    }

    // The last of the arguments.
    void TakeKey() {
        if (lookup.files.size() < 2) Missing("KEY");
        lookup.key = lookup.files.back();
        lookup.files.pop_back();
    }

    void AddCheck() {
        CLI::App& verb =
            Verb("check", "Find what the loader would trip over or silently change", [this] {
                if (check.files.empty() && !check.listRules) Missing("FILE");
                return Check(check);
            });
        verb.add_option("FILE", check.files, "Dictionaries, text or binary");
        verb.add_option("--reference", check.reference, "Dictionary that the files translate")
            ->type_name("FILE");
        AddChoice<Severity>(verb, "--fail-on", check.failOn,
                            {{"error", Severity::kError}, {"warning", Severity::kWarning}},
                            "The least finding that makes the exit code 1 [error]");
        AddDisable(verb, check.disabled);
        AddFormat(verb, check.json, "Findings as text, or as one JSON object a line");
        verb.add_flag("--list-rules", check.listRules, "Print the rules and exit");
    }

    void AddCompile() {
        CLI::App& verb = Verb("compile", "Merge dictionaries into a binary one",
                              [this] { return Compile(compile); });
        AddFiles(verb, compile.files);
        verb.add_option("-o,--output", compile.output, "The binary dictionary")
            ->type_name("OUT")
            ->required();
        AddChoice<lexon::EndianT>(verb, "--endian", compile.order,
                                  {{"little", lexon::EndianT::kLittle},
                                   {"big", lexon::EndianT::kBig},
                                   {"host", lexon::EndianT::kHost}},
                                  "Byte order of the output [little]");
        verb.add_option("--locale", compile.locale, "Locale of the output")->type_name("NAME");
        verb.add_option("--id-base", compile.idBase, "Id of the first entry")->type_name("N");
        verb.add_flag("--no-keys", compile.noKeys, "Leave the keys out");
        AddDisable(verb, compile.disabled);
        AddFormat(verb, compile.json, "Findings as text, or as one JSON object a line");
    }

    void AddDump() {
        CLI::App& verb = Verb("dump", "Write a dictionary as text that compiles back to it",
                              [this] { return Dump(dump); });
        verb.add_option("FILE", dump.file, "Dictionary, text or binary")->required();
        verb.add_option("-o,--output", dump.output, "The text [-]")->type_name("OUT");
        AddFormat(verb, dump.json, "A text dictionary, or one JSON object a line");
        verb.add_flag("--header", dump.header,
                      "Begin with version, locale, id base and number of entries");
        verb.add_flag("--sort", dump.sort, "Order the entries by key");
    }

    void AddCompare() {
        CLI::App& verb = Verb("compare", "Tell the keys added, removed and changed",
                              [this] { return Compare(compare); });
        verb.add_option("OLD", compare.before, "Dictionary, text or binary")->required();
        verb.add_option("NEW", compare.after, "Dictionary, text or binary")->required();
        AddFormat(verb, compare.json, "Differences as text, or as one JSON object a line");
    }

    void AddLookup() {
        CLI::App& verb = Verb("lookup", "Answer a key as the application would", [this] {
            if (!lookup.id.has_value()) TakeKey();
            return Lookup(lookup);
        });
        verb.add_option("FILE", lookup.files, "Dictionaries, and the key unless there is an --id")
            ->required()
            ->type_name("... KEY");
        verb.add_option("--id", lookup.id, "Look this id up in place of a key")->type_name("N");
        verb.add_option("--main", lookup.main,
                        "The main dictionary, asked when the files do not know")
            ->type_name("FILE");
        verb.add_option_function<std::vector<std::string>>(
                "--replace",
                [this](const std::vector<std::string>& given) {
                    for (const std::string& one : given)
                        lookup.replacements.push_back(
                            {one.substr(0, one.find('=')), one.substr(one.find('=') + 1)});
                },
                "Put TEXT in place of marker ^N or parameter N; may be given again")
            ->allow_extra_args(false)
            ->type_name("N=TEXT")
            ->check(CLI::Validator(
                [](const std::string& one) {
                    const std::size_t equals = one.find('=');
                    return equals == 0 || equals == one.npos ? "N=TEXT is expected, not " + one
                                                             : std::string();
                },
                ""));
        verb.add_flag("--explain", lookup.explain, "Tell where the answer came from");
    }

    void AddStats() {
        CLI::App& verb =
            Verb("stats", "Count entries, bytes and buckets", [this] { return Stats(stats); });
        AddFiles(verb, stats.files);
        verb.add_option("--reference", stats.reference, "Dictionary that the files translate")
            ->type_name("FILE");
    }

    CLI::App app{"Checks, compiles and looks into Wordlex dictionaries", "wordlex"};
    std::function<int()> run;
    std::string encoding = kDefaultEncoding;
    CheckOptions check;
    CompileOptions compile;
    DumpOptions dump;
    CompareOptions compare;
    LookupOptions lookup;
    StatsOptions stats;
};

}  // namespace

int RunCommand(int argc, char** argv) {
    try {
        return CommandLine().Run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "wordlex: out of memory\n";
    } catch (const std::exception& error) {
        std::cerr << "wordlex: " << error.what() << '\n';
    }
    return kFailure;
}

}  // namespace tool
