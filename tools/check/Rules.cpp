#include "tools/check/Rules.h"

#include <algorithm>
#include <iterator>

namespace tool {

namespace {

constexpr auto kError = Severity::kError;
constexpr auto kWarning = Severity::kWarning;
constexpr auto kNote = Severity::kNote;

// Error: the application refuses the file, loses a text or shows another one than was written.
// Warning: probably not intended. Note: worth a look.
constexpr RuleInfo kRules[] = {
    {Rule::kUtf16WithoutMark, "utf16-without-mark", kError,
     "UTF-16 without its byte-order mark, which is read as 8-bit text up to its first zero byte"},
    {Rule::kFalseUtf16Mark, "false-utf16-mark", kError,
     "8-bit text after a UTF-16 mark, which the loader reads as UTF-16"},
    {Rule::kUtf8Mark, "utf8-mark", kWarning, "a UTF-8 mark, which the loader takes for text"},
    {Rule::kZero, "zero", kError, "a zero, which ends the file for the loader"},
    {Rule::kOddByte, "odd-byte", kWarning, "UTF-16 with an odd byte at its end, which is dropped"},
    {Rule::kInvalidText, "invalid-text", kError,
     "bytes that are not text of the encoding: the line is lost"},

    {Rule::kDollarKey, "dollar-key", kError,
     "a key with \"$\" but not \"$$$\": the whole dictionary becomes invalid"},
    {Rule::kConflictMarker, "conflict-marker", kError,
     "a conflict marker of a version control system, which becomes an entry"},
    {Rule::kUnclosedQuote, "unclosed-quote", kError,
     "a quotation mark that is not closed: the value runs to the end of the line"},
    {Rule::kTrailingBackslash, "trailing-backslash", kError,
     "a value that ends in a backslash, which escapes the closing quotation mark"},
    {Rule::kTextAfterMark, "text-after-mark", kError,
     "text after the closing quotation mark that is not a comment and is lost"},
    {Rule::kCommentedEntry, "commented-entry", kError,
     "an entry after a comment sign, which does not switch it off"},
    {Rule::kUnquotedLine, "unquoted-line", kWarning,
     "a line without quotation marks, which becomes an entry as a whole"},
    {Rule::kNoEquals, "no-equals", kWarning, "an entry without \"=\", which has an empty value"},
    {Rule::kBlankAtEquals, "blank-at-equals", kWarning,
     "a blank before or after \"=\", which is part of the key or the value"},
    {Rule::kUnknownRule, "unknown-rule", kWarning,
     "a comment that ignores a rule that does not exist"},

    {Rule::kEmptyKey, "empty-key", kWarning, "an entry without a key"},
    {Rule::kInnerPrefix, "inner-prefix", kWarning,
     "\"$$$\" that does not begin the key and so is part of it"},
    {Rule::kWideKey, "wide-key", kWarning,
     "a character above U+00FF in a key, of which the low byte is kept"},
    {Rule::kKeyCollision, "key-collision", kError,
     "keys that differ as written but are the same bytes: the later one replaces the first"},
    {Rule::kDuplicateKey, "duplicate-key", kError,
     "a key that was defined before: the later text replaces the first"},
    {Rule::kKeyLength, "key-length", kError, "a key of more than 65,535 bytes, which is cut"},
    {Rule::kLongKey, "long-key", kWarning,
     "a key of 1,024 bytes or more, which a merge of binary files does not find"},

    {Rule::kValueLength, "value-length", kError, "a value of more than 65,535 bytes, which is cut"},
    {Rule::kLoneSurrogate, "lone-surrogate", kWarning, "half of a surrogate pair in a value"},
    {Rule::kUnknownEscape, "unknown-escape", kWarning,
     "text that looks like an escape but is not, and stays as it is"},
    {Rule::kDoubledHat, "doubled-hat", kWarning,
     "\"^^\" before a digit, which leaves a marker and no \"^\""},
    {Rule::kDroppedText, "dropped-text", kNote,
     "text that a platform section keeps out of the value"},
    {Rule::kHiddenCharacter, "hidden-character", kWarning,
     "a control, a line separator or a zero-width character that an editor does not "
     "show"},
    {Rule::kUnbalancedDirection, "unbalanced-direction", kWarning,
     "a mark that begins or ends a direction of writing without its other half"},
    {Rule::kReplacementCharacter, "replacement-character", kWarning,
     "U+FFFD, which stands for a character that a conversion lost"},
    {Rule::kDoubleEncoded, "double-encoded", kWarning,
     "UTF-8 that was taken for another encoding and converted again"},
    {Rule::kDecomposed, "decomposed", kWarning,
     "a letter and its accent as two characters, where there is one for both"},
    {Rule::kDoubledAccelerator, "doubled-accelerator", kWarning,
     "a second accelerator in a text, which is dropped"},
    {Rule::kTrailingAmpersand, "trailing-ampersand", kWarning,
     "\"&\" at the end of a text, which is dropped"},
    {Rule::kMessageSyntax, "message-syntax", kError, "a message pattern that cannot be parsed"},
    {Rule::kMessageDefault, "message-default", kError,
     "a plural or select of a message without the form \"other\""},
    {Rule::kMessageCategory, "message-category", kWarning,
     "a plural of a message without a form that the language needs"},
    {Rule::kMessageUnusedForm, "message-unused-form", kWarning,
     "a form of a message that is never used"},

    {Rule::kMalformedBinary, "malformed-binary", kError,
     "a binary file that the loader refuses, whole or in part"},
    {Rule::kUnreachableEntry, "unreachable-entry", kError,
     "an entry of a binary file that no look-up of its key finds"},

    {Rule::kSameAccelerator, "same-accelerator", kWarning,
     "the same accelerator on two neighbouring entries"},
    {Rule::kUntranslated, "untranslated", kWarning, "an entry that is marked as untranslated"},
    {Rule::kStale, "stale", kWarning,
     "a translation of a text that has changed in the reference since"},
    {Rule::kMissingKey, "missing-key", kWarning, "a key of the reference that is missing"},
    {Rule::kObsoleteKey, "obsolete-key", kWarning, "a key that the reference does not have"},
    {Rule::kEmptyText, "empty-text", kError, "an empty text where the reference has one"},
    {Rule::kMissingMarker, "missing-marker", kError, "a marker of the reference that is missing"},
    {Rule::kExtraMarker, "extra-marker", kError, "a marker that the reference does not have"},
    {Rule::kMissingParameter, "missing-parameter", kError,
     "a parameter tag of the reference that is missing"},
    {Rule::kExtraParameter, "extra-parameter", kError,
     "a parameter tag that the reference does not have"},
    {Rule::kMissingArgument, "missing-argument", kError,
     "a message argument of the reference that is missing"},
    {Rule::kExtraArgument, "extra-argument", kError,
     "a message argument that the reference does not have"},
    {Rule::kArgumentType, "argument-type", kError,
     "a message argument that needs another type than in the reference"},
    {Rule::kRepeatedMarker, "repeated-marker", kWarning,
     "a marker that occurs more often than in the reference"},
    {Rule::kForeignPlaceholder, "foreign-placeholder", kWarning,
     "\"{name}\", \"%d\" or \"&amp;\", which the application shows as they are"},
    {Rule::kMissingAccelerator, "missing-accelerator", kWarning,
     "no accelerator where the reference has one"},
    {Rule::kExtraAccelerator, "extra-accelerator", kWarning,
     "an accelerator where the reference has none"},
    {Rule::kMissingShortcut, "missing-shortcut", kWarning,
     "no key combination where the reference has one"},
    {Rule::kMissingSection, "missing-section", kWarning,
     "no section for a platform where the reference has one"},
    {Rule::kOuterBlanks, "outer-blanks", kWarning,
     "blanks around the text that differ from the reference's"},
    {Rule::kLineBreaks, "line-breaks", kWarning, "more or fewer line breaks than in the reference"},
    {Rule::kFinalPunctuation, "final-punctuation", kWarning,
     "a text whose final punctuation differs from the reference's"},
    {Rule::kSameAsReference, "same-as-reference", kNote, "a text that equals the reference's"},

    {Rule::kUnextractedKey, "unextracted-key", kWarning,
     "a key of the sources that the reference does not have"},
    {Rule::kUnusedKey, "unused-key", kWarning, "a key that no source uses"},
    {Rule::kDefaultText, "default-text", kWarning,
     "a default text in the sources that differs from the reference's"},
};
static_assert(std::size(kRules) == static_cast<std::size_t>(Rule::kCount));
static_assert([] {
    for (std::size_t i = 0; i < std::size(kRules); ++i) {
        if (kRules[i].rule != static_cast<Rule>(i)) return false;
    }
    return true;
}());

}  // namespace

const char* Name(Severity severity) {
    static constexpr const char* kNames[] = {"note", "warning", "error"};
    return kNames[static_cast<std::size_t>(severity)];
}

std::span<const RuleInfo> AllRules() { return kRules; }

std::vector<std::string> RuleNames() {
    std::vector<std::string> names;
    std::ranges::transform(kRules, std::back_inserter(names), &RuleInfo::name);
    return names;
}

bool IsFatal(Rule rule) {
    return rule == Rule::kMalformedBinary || rule == Rule::kUtf16WithoutMark ||
           rule == Rule::kFalseUtf16Mark || rule == Rule::kDollarKey;
}

const RuleInfo& Info(Rule rule) { return kRules[static_cast<std::size_t>(rule)]; }

std::optional<Rule> FindRule(std::string_view name) {
    const auto row = std::ranges::find(kRules, name, &RuleInfo::name);
    if (row == std::end(kRules)) return std::nullopt;
    return row->rule;
}

}  // namespace tool
