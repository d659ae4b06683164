#pragma once
// The keys and default texts in the sources of a program.
#include <map>
#include <string>
#include <vector>

#include "tools/base/Text.h"
#include "tools/check/Findings.h"

namespace tool {

// A string literal of C, C++ or Objective-C(++) that requests a text: "$$$/Path=Default text",
// possibly in parentheses.
struct SourceText {
    Place place;  // of the literal's opening mark; of the first of several joined ones
    std::string key;
    bool hasText = false;  // there is a "="
    bool ignored = false;  // a comment excludes the key from the reference
    std::vector<unsigned short>
        text;               // as written for the dictionary: its escapes are not resolved
    std::size_t begin = 0;  // of the first opening mark, in the bytes of the source
    std::size_t end = 0;    // after the last closing mark
};

// The files themselves, and the sources in the folders: files with the usual extensions, in the
// order of their names. Hidden folders and links to folders are skipped.
std::vector<std::string> SourceFiles(const std::vector<std::string>& filesAndFolders);
// Whether the name has one of the usual extensions of a source.
bool IsSourceName(const std::string& name);

// The texts of one source file in UTF-8, in order. Reads the source like a compiler's lexer: line
// continuations, comments, prefixes, raw strings, joined literals. Skips groups of #if that a
// constant excludes; of other conditions, reads all branches. Does not expand macros. Throws a
// Failure for a text that needs one.
std::vector<SourceText> FindTexts(const std::string& name, const std::string& bytes);

// How a text conflicts with the first one of its key.
std::string DescribeConflict(const SourceText& text, const SourceText& first);

// The texts of several sources.
class SourceTexts {
public:
    explicit SourceTexts(const std::vector<std::string>& filesAndFolders);

    // One for each key that has a default text and is not ignored, in the order of the sources.
    const std::vector<SourceText>& Texts() const { return texts; }
    // One for each key that the sources use without a default text, or ignored.
    const std::vector<SourceText>& Bare() const { return bare; }
    // Null for a key that the sources do not use. Also finds those without a default text.
    const SourceText* Find(const std::string& key) const;
    // Texts that differ from the earlier one of their key.
    const std::vector<SourceText>& Conflicts() const { return conflicts; }

private:
    void Add(SourceText text);

    std::vector<SourceText> texts;
    std::vector<SourceText> bare;
    std::vector<SourceText> conflicts;
    std::map<std::string, std::size_t> byKey;  // in `texts`
    std::map<std::string, std::size_t> bareByKey;
};

}  // namespace tool
