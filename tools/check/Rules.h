#pragma once
// The rules of `wordlex check`: one table, which --list-rules prints and docs/checks.md explains.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum class Severity : std::uint8_t { kNote, kWarning, kError };
const char* Name(Severity severity);

// In the order of the table.
enum class Rule : std::uint8_t {
    // the form of a text file
    kUtf16WithoutMark,
    kFalseUtf16Mark,
    kUtf8Mark,
    kZero,
    kOddByte,
    kInvalidText,
    // lines
    kDollarKey,
    kConflictMarker,
    kUnclosedQuote,
    kTrailingBackslash,
    kTextAfterMark,
    kCommentedEntry,
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
    kHiddenCharacter,
    kUnbalancedDirection,
    kReplacementCharacter,
    kDoubleEncoded,
    kDecomposed,
    kDoubledAccelerator,
    kTrailingAmpersand,
    kMessageSyntax,
    kMessageDefault,
    kMessageCategory,
    kMessageUnusedForm,
    // binary files
    kMalformedBinary,
    kUnreachableEntry,
    // neighbouring texts
    kSameAccelerator,
    kUntranslated,
    kStale,
    kMissingKey,
    kObsoleteKey,
    kEmptyText,
    kMissingMarker,
    kExtraMarker,
    kMissingParameter,
    kExtraParameter,
    kMissingArgument,
    kExtraArgument,
    kArgumentType,
    kRepeatedMarker,
    kForeignPlaceholder,
    kMissingAccelerator,
    kExtraAccelerator,
    kMissingShortcut,
    kMissingSection,
    kOuterBlanks,
    kLineBreaks,
    kFinalPunctuation,
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
std::vector<std::string> RuleNames();
// Whether the application refuses a file for it. Only `check` reads such a file.
bool IsFatal(Rule rule);

}  // namespace tool
