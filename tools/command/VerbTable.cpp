#include "tools/command/VerbTable.h"

#include <algorithm>

#include "tools/base/Encodings.h"
#include "tools/check/Rules.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

// Options with the same meaning in every verb.

OptionInfo Format(std::vector<std::string> choices, const std::string& help) {
    return {.name = "format",
            .takes = Takes::kChoice,
            .value = "FORM",
            .help = help,
            .choices = std::move(choices),
            .fallback = "text"};
}

// Without a fallback the option is required.
OptionInfo Output(const std::string& help, const std::string& fallback = {}) {
    return {.name = "output",
            .letter = 'o',
            .takes = Takes::kFile,
            .value = "OUT",
            .help = help,
            .fallback = fallback};
}

OptionInfo Reference() {
    return {.name = "reference",
            .takes = Takes::kFile,
            .value = "FILE",
            .help = "The dictionary that the files translate"};
}

OptionInfo ExchangeFormat(const std::string& help, const std::string& fallback) {
    return {.name = "format",
            .takes = Takes::kChoice,
            .value = "FORM",
            .help = help,
            .choices = {"po", "xliff"},
            .fallback = fallback};
}

OptionInfo FailOn() {
    return {.name = "fail-on",
            .takes = Takes::kChoice,
            .value = "SEVERITY",
            .help = "The lowest severity that makes the exit code 1",
            .choices = {"error", "warning"},
            .fallback = "error"};
}

OptionInfo Disable() {
    return {.name = "disable",
            .takes = Takes::kChoices,
            .value = "RULE,...",
            .help = "Rules of \"check --list-rules\" to leave out; may be given again",
            .choices = RuleNames()};
}

OptionInfo Encoding() {
    return {.name = "encoding",
            .takes = Takes::kChoice,
            .value = "NAME",
            .help = "The encoding of 8-bit files that do not name their own",
            .choices = EncodingNames(),
            .fallback = kDefaultEncoding};
}

const OperandInfo kFiles{.name = "FILE", .repeated = true};

std::vector<VerbInfo> MakeVerbs() {
    std::vector<VerbInfo> verbs = {
        {.name = "check",
         .operands = {{.name = "FILE",
                       .optional = true,
                       .repeated = true,
                       .settings = Settings::kDictionaries}},
         .help = "Find what the loader would reject, lose or silently change",
         .example = "wordlex check --reference=en.txt de.txt fr.txt",
         .options = {Reference(),
                     {.name = "sources",
                      .takes = Takes::kFolder,
                      .value = "DIR",
                      .help = "Compare the reference, or FILE without one, with these sources; may "
                              "be given again"},
                     FailOn(),
                     Disable(),
                     Format({"text", "json", "sarif", "github"},
                            "Findings for people, programs or services that annotate changes"),
                     {.name = "list-rules", .help = "Print the rules and exit"}},
         .run = Check},
        {.name = "compile",
         .operands = {kFiles},
         .help = "Merge dictionaries into a binary one",
         .example = "wordlex compile de.txt -o wdictionary.dat --locale=de",
         .options = {Output("The binary dictionary; required"),
                     {.name = "endian",
                      .takes = Takes::kChoice,
                      .value = "ORDER",
                      .help = "The byte order of the output",
                      .choices = {"little", "big", "host"},
                      .fallback = "little"},
                     {.name = "locale",
                      .takes = Takes::kText,
                      .value = "NAME",
                      .help = "The locale of the output"},
                     {.name = "id-base",
                      .takes = Takes::kText,
                      .value = "N",
                      .help = "The id of the first entry"},
                     {.name = "no-keys", .help = "Leave the keys out"},
                     {.name = "indexed",
                      .help = "Add the index with which a catalog opens the file at once"},
                     Reference(),
                     FailOn(),
                     Disable(),
                     {.name = "quiet", .help = "Report only findings that make the exit code 1"},
                     Format({"text", "json"}, "Findings for people or for programs")},
         .run = Compile},
        {.name = "dump",
         .operands = {{.name = "FILE"}},
         .help = "Write a dictionary as text that compiles back to it",
         .example = "wordlex dump --sort wdictionary.dat -o de.txt",
         .options = {Output("The text", "-"),
                     Format({"text", "json"}, "A text dictionary, or one JSON object a line"),
                     {.name = "header",
                      .help = "Begin with version, locale, id base and number of entries"},
                     {.name = "sort", .help = "Order the entries by key"}},
         .run = Dump},
        {.name = "compare",
         .operands = {{.name = "OLD"}, {.name = "NEW"}},
         .help = "Report the keys added, removed and changed",
         .example = "wordlex compare old.dat de.txt",
         .options = {Format({"text", "json"}, "Differences for people or for programs")},
         .run = Compare},
        {.name = "lookup",
         .operands = {kFiles, {.name = "KEY", .optional = true}},
         .help = "Look up a key as the application would",
         .example = "wordlex lookup de.txt '$$$/Saved' --replace 1=Photos",
         .options = {{.name = "id",
                      .takes = Takes::kText,
                      .value = "N",
                      .help = "Look up this id instead of a KEY"},
                     {.name = "main",
                      .takes = Takes::kFile,
                      .value = "FILE",
                      .help = "The main dictionary, searched when the files lack the key"},
                     {.name = "replace",
                      .takes = Takes::kText,
                      .value = "N=TEXT",
                      .help = "Replace marker ^N, or the parameter named N, by TEXT; may be "
                              "given again"},
                     {.name = "explain", .help = "Report where the text came from"}},
         .run = Lookup},
        {.name = "stats",
         .operands = {{.name = "FILE", .repeated = true, .settings = Settings::kDictionaries}},
         .help = "Count what is translated, stale, missing, and how many words",
         .example = "wordlex stats --reference=en.txt de.txt fr.txt",
         .options = {Reference(),
                     Format({"text", "json", "csv"}, "Counts for people or for programs"),
                     {.name = "buckets",
                      .help = "Describe each file, with the buckets of its look-up table"}},
         .run = Stats},
        {.name = "report",
         .operands = {{.name = "FILE", .repeated = true, .settings = Settings::kLanguages}},
         .help = "Write a page that shows how far translations are and what is left",
         .example = "wordlex report --reference=en.txt de.txt fr.txt -o report.html",
         .options = {Reference(), Output("The page; required")},
         .run = Report},
        {.name = "extract",
         .operands = {{.name = "SRC", .repeated = true, .settings = Settings::kSources}},
         .help = "Write the default texts of sources or folders as a dictionary",
         .example = "wordlex extract src -o en.txt --update",
         .options = {Output("The dictionary; required"),
                     {.name = "update",
                      .help = "Keep the order, comments and further entries of OUT"}},
         .run = Extract},
        {.name = "update",
         .operands = {{.name = "FILE", .repeated = true, .settings = Settings::kLanguages}},
         .help = "Bring translations up to date with their reference",
         .example = "wordlex update --reference=en.txt de.txt fr.txt",
         .options = {Reference(),
                     {.name = "check", .help = "Change nothing; exit with 1 if it would"}},
         .run = Update},
        {.name = "export",
         .operands = {{.name = "FILE"}},
         .help = "Write a translation for translators, as PO or XLIFF",
         .example = "wordlex export --reference=en.txt de.txt -o de.po",
         .options = {{.name = "reference",
                      .takes = Takes::kFile,
                      .value = "FILE",
                      .help = "The dictionary that FILE translates; without it FILE becomes a "
                              "template"},
                     ExchangeFormat("The format of the output", "po"),
                     {.name = "xliff-version",
                      .takes = Takes::kChoice,
                      .value = "VERSION",
                      .help = "The version of XLIFF",
                      .choices = {"1.2", "2.1"},
                      .fallback = "1.2"},
                     Output("The file for translators", "-"),
                     {.name = "language",
                      .takes = Takes::kText,
                      .value = "NAME",
                      .help = "The language of FILE, unless its name says it"},
                     {.name = "source-language",
                      .takes = Takes::kText,
                      .value = "NAME",
                      .help = "The language of the reference, in the same way"}},
         .run = Export},
        {.name = "import",
         .operands = {{.name = "FROM"}, {.name = "FILE"}},
         .help = "Merge a file from translators into a translation",
         .example = "wordlex import --reference=en.txt de.po de.txt",
         .options = {Reference(),
                     ExchangeFormat("The format of FROM, unless its content says it", ""),
                     Output("The translation, if not FILE itself")},
         .run = Import},
        {.name = "pseudo",
         .operands = {{.name = "FILE"}},
         .help = "Write a dictionary that shows what is not localized",
         .example = "wordlex pseudo en.txt -o qps.txt",
         .options = {{.name = "expand",
                      .takes = Takes::kText,
                      .value = "PERCENT",
                      .help = "How much longer the texts become",
                      .fallback = "30"},
                     {.name = "rtl", .help = "Mirror the texts as if read from right to left"},
                     Output("The pseudo dictionary", "-")},
         .run = Pseudo},
        {.name = "completions",
         .operands = {{.name = "SHELL", .choices = {"bash", "zsh", "fish"}}},
         .help = "Write the completions of this command for a shell",
         .example = "wordlex completions fish >~/.config/fish/completions/wordlex.fish",
         .options = {Output("The completions", "-")},
         .run = Completions,
         .readsProject = false},
        {.name = "lsp",
         .operands = {},
         .help = "Serve editors over standard input and output, as a language server",
         .example = "wordlex lsp --encoding=windows-1252",
         .options = {},
         .run = Lsp,
         .readsProject = false},
    };
    for (VerbInfo& verb : verbs) {
        verb.options.push_back(Encoding());
        verb.options.push_back({.name = "help", .letter = 'h', .help = "Print this help and exit"});
    }
    return verbs;
}

}  // namespace

const std::vector<VerbInfo>& Verbs() {
    static const std::vector<VerbInfo> verbs = MakeVerbs();
    return verbs;
}

const VerbInfo* FindVerb(std::string_view name) {
    const auto found = std::ranges::find(Verbs(), name, &VerbInfo::name);
    return found == Verbs().end() ? nullptr : &*found;
}

}  // namespace tool
