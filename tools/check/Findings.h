#pragma once
#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/check/Rules.h"

namespace tool {

// Where something was found. Lines and columns count from 1, columns in characters; 0 is none.
struct Place {
    std::string file;
    std::uint64_t line = 0;
    std::uint64_t column = 0;
    std::optional<std::uint64_t> offset = std::nullopt;  // bytes, in binary files
};
// "file:line:column", "file:line", "file:@0xOFFSET" or "file"
std::string Show(const Place& place);

struct Finding {
    Rule rule;
    Place place;
    std::string text;
};

enum class Format : std::uint8_t { kText, kColouredText, kJson };

// What was found in one file.
class Findings {
public:
    using Rules = std::bitset<static_cast<std::size_t>(Rule::kCount)>;

    explicit Findings(const Rules& disabledRules = {}) : disabled(disabledRules) {}

    void Add(Rule rule, Place place, std::string text);
    // Drops what these rules find on a line from here on.
    void Ignore(std::uint64_t line, const Rules& rules);
    bool Ignores(std::uint64_t line, Rule rule) const;
    // Ends the search: the findings in the order of their places.
    std::vector<Finding> Take();

private:
    struct Ignored {
        std::uint64_t line;
        Rules rules;
    };

    Rules disabled;
    std::vector<Ignored> ignored;  // lines ascending
    std::vector<Finding> findings;
};

bool AnyAtOrAbove(const std::vector<Finding>& findings, Severity severity);
// One line each, in text "PLACE: SEVERITY: TEXT [RULE]".
std::string Print(const std::vector<Finding>& findings, Format format);

// The rules of these names, which exist.
Findings::Rules RulesOf(const std::vector<std::string>& names);
// The form of this name, "text" or "json". Text is coloured where the descriptor is a terminal and
// NO_COLOR is not set.
Format FormatOf(const std::string& name, int descriptor);

}  // namespace tool
