#pragma once
// Annotations for the command in the comment on a line. docs/authoring.md describes the grammar.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/base/Text.h"

namespace tool {

struct Annotations {
    bool untranslated = false;  // the value is the reference's text
    bool stale = false;         // the reference's text changed after the value was translated
    bool message = false;       // the value is a message pattern
    // ReferenceDigest of the reference's text when `update` last saw the entry, or "".
    std::string from;
    struct Rule {
        std::string name;    // as written, known or not
        std::size_t offset;  // bytes from the start of the comment
    };
    std::vector<Rule> ignored;  // rules that check leaves out for this line
};

// Takes a comment in UTF-8: the text outside the quotation marks of one line. What is not an
// annotation is text for people.
Annotations ParseAnnotations(std::string_view comment);
// The annotations of both comments of a line. Each offset counts in its own comment.
Annotations ParseAnnotations(std::string_view before, std::string_view after);

// The comment's text for people: without the annotations.
std::string ForPeople(std::string_view comment);

// The comment with its marks untranslated, stale and from replaced by those of `marks`. The rest
// stays as it is. A comment that has these marks already is returned unchanged.
std::string WithMarks(std::string_view comment, const Annotations& marks);

// Whether two written values show the same text on every platform, however their escapes are
// written.
bool ShowTheSame(Units a, Units b);
// Six hexadecimal digits for a written value. Values that show the same text have the same digest,
// however their escapes are written. Written to files, never change.
std::string ReferenceDigest(Units written);

}  // namespace tool
