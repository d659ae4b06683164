#pragma once
#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/check/Rules.h"

namespace tool {

// Where something was found: characters of one line, a byte of a binary file, or a whole file.
// Lines and columns count from 1, columns in characters; 0 means none. Units are UTF-16 units of
// the line, from 0. Neither counts a byte-order mark. Ends are exclusive.
struct Place {
    std::string file;
    std::uint64_t line = 0;
    std::uint64_t column = 0;
    std::uint64_t endColumn = 0;
    std::uint64_t unit = 0;
    std::uint64_t endUnit = 0;
    std::optional<std::uint64_t> offset = std::nullopt;  // bytes, in binary files
};
// "file:line:column", "file:@0xOFFSET" or "file"
std::string Show(const Place& place);

struct Finding {
    Rule rule;
    Place place;
    std::string text;
    std::optional<std::string> key = std::nullopt;  // its bytes, if the finding is about one
    std::string missingFrom = {};  // the file that lacks the key, when `place` is in the reference
};

enum class Format : std::uint8_t { kText, kColouredText, kJson };

// The findings of one file.
class Findings {
public:
    using Rules = std::bitset<static_cast<std::size_t>(Rule::kCount)>;

    explicit Findings(const Rules& disabledRules = {}) : disabled(disabledRules) {}

    void Add(Rule rule, Place place, std::string text,
             std::optional<std::string> key = std::nullopt);
    // For what the file lacks; the place is in its reference.
    void AddMissing(Rule rule, Place place, std::string text, std::string key,
                    std::string missingFrom);
    // Removes the findings of the rule that begin at the place, where another one says more.
    void Remove(Rule rule, const Place& place);
    // Drops the findings of these rules on a line from here on.
    void Ignore(std::uint64_t line, const Rules& rules);
    bool Ignores(std::uint64_t line, Rule rule) const;
    // Throws a Failure that names the first finding for which the application refuses the file.
    void ThrowIfFatal() const;
    // Ends the search and returns the findings in the order of their places.
    std::vector<Finding> Take();

private:
    struct Ignored {
        std::uint64_t line;
        Rules rules;
    };

    Rules disabled;
    std::vector<Ignored> ignored;  // lines ascending
    std::vector<Finding> findings;
    std::vector<Finding> missing;
};

bool AnyAtOrAbove(const std::vector<Finding>& findings, Severity severity);
// One line each, in text "PLACE: SEVERITY: TEXT [RULE]".
std::string Print(const std::vector<Finding>& findings, Format format);

// The rules with these names, which exist.
Findings::Rules RulesOf(const std::vector<std::string>& names);
// The format with this name, "text" or "json". Text is coloured when the descriptor is a terminal
// and NO_COLOR is not set.
Format FormatOf(const std::string& name, int descriptor);

}  // namespace tool
