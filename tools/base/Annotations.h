#pragma once
// What the comment on a line says to the command. docs/authoring.md describes the grammar.
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

// Takes a comment in UTF-8: what stands outside the quotation marks of one line. Whatever is not an
// annotation is text for people.
Annotations ParseAnnotations(std::string_view comment);
// The annotations of both comments of a line. Offsets count in the comment of their own.
Annotations ParseAnnotations(std::string_view before, std::string_view after);

// What the comment says to people: the text without the annotations.
std::string ForPeople(std::string_view comment);

// The comment with its marks untranslated, stale and from replaced by those of `marks`. All else
// stays as it is; the comment itself is returned when it has these marks already.
std::string WithMarks(std::string_view comment, const Annotations& marks);

// Whether two written values show the same on every platform, however their escapes are written.
bool ShowTheSame(Units a, Units b);
// Six hexadecimal digits for a written value. Texts that show the same have the same digest,
// however their escapes are written. Written to files, never change.
std::string ReferenceDigest(Units written);

}  // namespace tool
