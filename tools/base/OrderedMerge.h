#pragma once
#include <functional>
#include <vector>

#include "tools/base/TextDocument.h"

namespace tool {

// Goes through the entries of `wanted` that a look-up finds, in their order. Calls `present` with
// those that `document` has too, its line and the index of theirs. Where it lacks one, inserts the
// line that `missing` returns for the index: after the entry that precedes it in `wanted`, with the
// empty lines that stand between them there. What an empty line separates from the entry before it
// but not from the one after it goes directly before that one. Lines of `wanted` without both
// quotation marks are hardly meant as entries and are not inserted.
void MergeInOrder(TextDocument& document, const TextDocument& wanted,
                  const std::function<void(const TextDocument::Line&, std::size_t)>& present,
                  const std::function<std::vector<unsigned short>(std::size_t)>& missing);

// A line without its end: comment, entry in quotation marks, comment.
std::vector<unsigned short> MakeLine(Units before, Units entry, Units after);

}  // namespace tool
