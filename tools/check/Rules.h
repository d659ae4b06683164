#pragma once
// The rules of `wordlex check`: one table, which --list-rules prints and docs/checks.md explains.
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tool {

enum class Severity : std::uint8_t { kNote, kWarning, kError };
const char* Name(Severity severity);

// In the order of the table.
enum class Rule : std::uint8_t {
    // what a text file is made of
    kUtf16WithoutMark,
    kUtf8Mark,
    kZero,
    kOddByte,
    kInvalidText,
    // lines
    kDollarKey,
    kUnclosedQuote,
    kTrailingBackslash,
    kUnquotedLine,
    kNoEquals,
    kBlankAtEquals,
    kUnknownRule,
    // keys
    kEmptyKey,
    kInnerPrefix,
    kWideKey,
    kKeyCollision,
    kDuplicateKey,
    kKeyLength,
    kLongKey,
    // values
    kValueLength,
    kLoneSurrogate,
    kUnknownEscape,
    kDoubledHat,
    kDroppedText,
    kMessageSyntax,
    kMessageDefault,
    kMessageCategory,
    kMessageUnusedForm,
    // binary files
    kMalformedBinary,
    kUnreachableEntry,
    // texts beside each other
    kSameAccelerator,
    kMissingKey,
    kObsoleteKey,
    kMissingMarker,
    kExtraMarker,
    kMissingParameter,
    kExtraParameter,
    kMissingArgument,
    kExtraArgument,
    kArgumentType,
    kSameAsReference,
    // the reference and the sources
    kUnextractedKey,
    kUnusedKey,
    kDefaultText,
    kCount
};

struct RuleInfo {
    Rule rule;
    const char* name;  // part of the command's interface, never change
    Severity severity;
    const char* help;
};

std::span<const RuleInfo> AllRules();
const RuleInfo& Info(Rule rule);
std::optional<Rule> FindRule(std::string_view name);

}  // namespace tool
