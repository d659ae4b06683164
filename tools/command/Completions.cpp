// The completions of shells, made from the table of verbs.
#include <string>

#include "tools/base/Files.h"
#include "tools/command/VerbTable.h"
#include "tools/verbs/Verbs.h"

namespace tool {

namespace {

std::string Joined(const std::vector<std::string>& words, const char* between = " ") {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

// In single quotation marks, for a shell that accepts "\" before a quotation mark outside of them.
std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + '\'';
}

std::string Escaped(std::string text, std::string_view special) {
    for (std::size_t at = 0; (at = text.find_first_of(special, at)) != std::string::npos; at += 2)
        text.insert(at, 1, '\\');
    return text;
}

bool IsFile(const OptionInfo& option) {
    return option.takes == Takes::kFile || option.takes == Takes::kFolder;
}

// The operand for a word after the verb; the last one also covers later words.
const OperandInfo* OperandOf(const VerbInfo& verb) {
    return verb.operands.empty() ? nullptr : &verb.operands.front();
}

std::string Bash() {
    std::string verbs;
    std::string values;
    std::string options;
    for (const VerbInfo& verb : Verbs()) {
        verbs += verb.name + ' ';
        std::string names;
        for (const OptionInfo& option : verb.options) {
            names += (names.empty() ? "--" : " --") + option.name;
            if (option.takes == Takes::kNothing) continue;
            std::string pattern = '"' + verb.name + " --" + option.name + '"';
            if (option.letter != '\0') pattern += " | \"" + verb.name + " -" + option.letter + '"';
            values += "        " + pattern + ") words=" + Quoted(Joined(option.choices)) +
                      " files=" + (IsFile(option) ? "yes" : "no") + " ;;\n";
        }
        const OperandInfo* const operand = OperandOf(verb);
        const bool takesFiles = operand != nullptr && operand->choices.empty();
        options += "            " + verb.name + ") options=" + Quoted(names) +
                   " words=" + Quoted(operand == nullptr ? "" : Joined(operand->choices)) +
                   " files=" + (takesFiles ? "yes" : "no") + " ;;\n";
    }
    return R"(# Completions of wordlex for bash, written by "wordlex completions bash".
_wordlex() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local verb=${COMP_WORDS[1]} options= words= files=
    COMPREPLY=()
    [ "$previous" = "=" ] && previous=${COMP_WORDS[COMP_CWORD - 2]}
    [ "$current" = "=" ] && current=
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W ")" +
           verbs + R"(--help --version" -- "$current")
        return
    fi
    case "$verb $previous" in
)" + values +
           R"(    esac
    if [ -z "$files" ]; then
        case $verb in
)" + options +
           R"(        esac
        case $current in
            -*) words=$options files=no ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    if [ "$files" = yes ]; then
        compopt -o filenames 2>/dev/null
        mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -F _wordlex wordlex
)";
}

std::string ZshAction(const OptionInfo& option) {
    switch (option.takes) {
        case Takes::kFile:
            return "_files";
        case Takes::kFolder:
            return "_files -/";
        case Takes::kChoice:
            return '(' + Joined(option.choices) + ')';
        case Takes::kChoices:
            return "_values -s , rule " + Joined(option.choices);
        default:
            return " ";
    }
}

std::string ZshOption(const OptionInfo& option) {
    std::string rest = '[' + Escaped(option.help, "[]:\\") + ']';
    const bool hasValue = option.takes != Takes::kNothing;
    if (hasValue) rest += ':' + Escaped(option.value, ":\\") + ':' + ZshAction(option);
    const std::string name = "--" + option.name + (hasValue ? "=" : "");
    if (option.letter == '\0') {
        return Quoted((hasValue ? "*" : "") + name + rest);
    }
    const std::string letter = std::string("-") + option.letter;
    return Quoted("(" + letter + " --" + option.name + ")") + '{' + letter + ',' + name + '}' +
           Quoted(rest);
}

std::string Zsh() {
    std::string verbs;
    std::string cases;
    for (const VerbInfo& verb : Verbs()) {
        verbs += "            " + Quoted(verb.name + ':' + Escaped(verb.help, ":\\")) + '\n';
        cases += "        " + verb.name + ")\n            _arguments -S";
        for (const OptionInfo& option : verb.options)
            cases += " \\\n                " + ZshOption(option);
        if (const OperandInfo* const operand = OperandOf(verb)) {
            const std::string action =
                operand->choices.empty() ? "_files" : '(' + Joined(operand->choices) + ')';
            cases += " \\\n                " + Quoted("*:" + operand->name + ':' + action);
        }
        cases += "\n            ;;\n";
    }
    return R"(#compdef wordlex
# Completions of wordlex for zsh, written by "wordlex completions zsh".
_wordlex() {
    if (( CURRENT == 2 )); then
        local -a verbs=(
)" + verbs +
           R"(        )
        _describe verb verbs
        _arguments '--help[Print help and exit]' '--version[Print the version and exit]'
        return
    fi
    local verb=$words[2]
    shift words
    (( CURRENT-- ))
    case $verb in
)" + cases +
           R"(    esac
}
if [ "$funcstack[1]" = _wordlex ]; then
    _wordlex "$@"
else
    compdef _wordlex wordlex
fi
)";
}

std::string Fish() {
    const std::string head = "complete -c wordlex ";
    std::string text =
        "# Completions of wordlex for fish, written by \"wordlex completions fish\".\n" + head +
        "-f\n" + head + "-n __fish_use_subcommand -l help -d 'Print help and exit'\n" + head +
        "-n __fish_use_subcommand -l version -d 'Print the version and exit'\n";
    // In fish, "\" also escapes inside single quotation marks.
    const auto quoted = [](const std::string& raw) { return '\'' + Escaped(raw, "\\'") + '\''; };
    for (const VerbInfo& verb : Verbs()) {
        text +=
            head + "-n __fish_use_subcommand -a " + verb.name + " -d " + quoted(verb.help) + '\n';
        const std::string after = head + "-n '__fish_seen_subcommand_from " + verb.name + "' ";
        for (const OptionInfo& option : verb.options) {
            text += after;
            if (option.letter != '\0') text += std::string("-s ") + option.letter + ' ';
            text += "-l " + option.name;
            if (option.takes != Takes::kNothing) text += IsFile(option) ? " -r -F" : " -x";
            if (!option.choices.empty()) text += " -a " + quoted(Joined(option.choices));
            text += " -d " + quoted(option.help) + '\n';
        }
        if (const OperandInfo* const operand = OperandOf(verb)) {
            text += after +
                    (operand->choices.empty() ? "-F" : "-a " + quoted(Joined(operand->choices))) +
                    '\n';
        }
    }
    return text;
}

}  // namespace

int Completions(const Arguments& arguments) {
    const std::string& shell = arguments.operands.front();
    WriteOutput(arguments.Get("output"), shell == "bash"  ? Bash()
                                         : shell == "zsh" ? Zsh()
                                                          : Fish());
    return kSuccess;
}

}  // namespace tool
