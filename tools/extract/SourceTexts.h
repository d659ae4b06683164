#pragma once
// The keys and default texts in the sources of a program.
#include <map>
#include <string>
#include <vector>

#include "tools/base/Text.h"
#include "tools/check/Findings.h"

namespace tool {

// A string literal of C, C++ or Objective-C(++) that asks for a text: "$$$/Path=Default text",
// possibly in parentheses.
struct SourceText {
    Place place;  // of the literal's opening mark; of the first one where several are joined
    std::string key;
    bool hasText = false;  // there is a "="
    bool ignored = false;  // a comment says that the reference is not to have the key
    std::vector<unsigned short>
        text;               // as written for the dictionary: its escapes are not resolved
    std::size_t begin = 0;  // of the first opening mark, in the bytes of the source
    std::size_t end = 0;    // after the last closing mark
};

// The files themselves, and the sources in the folders: files with the usual extensions, in the
// order of their names. Hidden folders and links to folders are passed over.
std::vector<std::string> SourceFiles(const std::vector<std::string>& filesAndFolders);
// Whether the name has one of the usual extensions of a source.
bool IsSourceName(const std::string& name);

// The texts of one source file in UTF-8, in their order. It reads the source as the lexer of a
// compiler does: line continuations, comments, prefixes, raw strings, joined literals. Groups of
// #if with a constant that leaves them out are skipped; of other conditions all branches are read.
// Macros are not expanded. Throws a Failure for a text that cannot be read without it.
std::vector<SourceText> FindTexts(const std::string& name, const std::string& bytes);

// What is wrong with a text that differs from the first one of its key.
std::string DescribeConflict(const SourceText& text, const SourceText& first);

// The texts of several sources.
class SourceTexts {
public:
    explicit SourceTexts(const std::vector<std::string>& filesAndFolders);

    // One for each key that has a default text and is not ignored, in the order in which they are
    // met.
    const std::vector<SourceText>& Texts() const { return texts; }
    // One for each key that the sources ask for without a default text, or ignored.
    const std::vector<SourceText>& Bare() const { return bare; }
    // Null for a key that the sources do not ask for. Also finds those without a default text.
    const SourceText* Find(const std::string& key) const;
    // Texts that differ from the one that the key has before.
    const std::vector<SourceText>& Conflicts() const { return conflicts; }
    std::size_t FileCount() const { return fileCount; }

private:
    void Add(SourceText text);

    std::vector<SourceText> texts;
    std::vector<SourceText> bare;
    std::vector<SourceText> conflicts;
    std::map<std::string, std::size_t> byKey;  // in `texts`
    std::map<std::string, std::size_t> bareByKey;
    std::size_t fileCount = 0;
};

}  // namespace tool
