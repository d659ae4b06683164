#include "tools/command/Help.h"

#include <algorithm>
#include <sstream>

namespace tool {

namespace {

constexpr std::size_t kWidth = 80;

// Text in lines of at most 80 columns, indented by `indent`; the first line starts there.
std::string Wrapped(const std::string& text, std::size_t indent) {
    std::istringstream words(text);
    std::string lines;
    std::size_t column = indent;
    for (std::string word; words >> word;) {
        if (column != indent && column + 1 + word.size() > kWidth) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (column != indent) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += word.size();
    }
    return lines + '\n';
}

// Two columns. A text too wide for the left one has a line of its own.
std::string Row(const std::string& left, const std::string& right, std::size_t width) {
    const std::string head = "  " + left;
    const std::size_t indent = width + 4;
    const std::string gap = head.size() + 2 > indent ? '\n' + std::string(indent, ' ')
                                                     : std::string(indent - head.size(), ' ');
    return head + gap + Wrapped(right, indent);
}

std::string Shown(const OptionInfo& option) {
    const std::string letter = option.letter == '\0' ? "" : std::string("-") + option.letter + ", ";
    return letter + "--" + option.name + (option.value.empty() ? "" : '=' + option.value);
}

std::string Described(const OptionInfo& option) {
    std::string text = option.help;
    const bool listed = option.takes == Takes::kChoice;
    for (std::size_t i = 0; listed && i < option.choices.size(); ++i)
        text += (i == 0 ? ": " : ", ") + option.choices[i];
    if (!option.fallback.empty()) text += " [" + option.fallback + ']';
    return text;
}

std::string Shown(const OperandInfo& operand) {
    std::string text = operand.name;
    if (!operand.choices.empty()) {
        text = '{';
        for (const std::string& choice : operand.choices)
            text += (text == "{" ? "" : "|") + choice;
        text += '}';
    }
    if (operand.repeated) text += "...";
    const bool optional = operand.optional || operand.settings != Settings::kNone;
    return optional ? '[' + text + ']' : text;
}

}  // namespace

std::string Help() {
    std::string text =
        "Checks, compiles and inspects Wordlex dictionaries\n\n"
        "Usage: wordlex VERB [OPTION]... [FILE]...\n\nVerbs:\n";
    for (const VerbInfo& verb : Verbs())
        text += Row(verb.name, verb.help, 11);
    return text +
           "\nOptions:\n"
           "  -h, --help     Print this help and exit; after a verb, that of the verb\n"
           "  --version      Print the version and exit\n\n"
           "\"-\" is standard input and standard output. Operands follow \"--\" where they\n"
           "begin with \"-\". Exit codes: 0 clean, found, equal; 1 findings, a difference,\n"
           "an absent key; 2 wrong usage, malformed input, a file that cannot be read or\n"
           "written.\n";
}

std::string HelpOf(const VerbInfo& verb) {
    std::string usage = "Usage: wordlex " + verb.name + " [OPTION]...";
    for (const OperandInfo& operand : verb.operands)
        usage += ' ' + Shown(operand);
    std::string text = verb.help + "\n\n" + usage + "\n\nOptions:\n";
    std::size_t width = 0;
    for (const OptionInfo& option : verb.options)
        width = std::max(width, Shown(option).size());
    for (const OptionInfo& option : verb.options)
        text += Row(Shown(option), Described(option), width);
    return text + "\nExample:\n  " + verb.example + '\n';
}

}  // namespace tool
