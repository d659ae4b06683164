#pragma once
#include <functional>
#include <vector>

#include "tools/base/TextDocument.h"

namespace tool {

// Visits the entries of `wanted` that a look-up finds, in order. For those that `document` has too,
// calls `present` with the document's line and the entry's index. For those it lacks, inserts the
// line that `missing` returns for the index: after the entry that precedes it in `wanted`, with the
// same empty lines between them. An entry that an empty line separates from the entry before it but
// not from the one after goes directly before the latter. Lines of `wanted` without both quotation
// marks are probably not meant as entries and are not inserted.
void MergeInOrder(TextDocument& document, const TextDocument& wanted,
                  const std::function<void(const TextDocument::Line&, std::size_t)>& present,
                  const std::function<std::vector<unsigned short>(std::size_t)>& missing);

// A line without its end: comment, entry in quotation marks, comment.
std::vector<unsigned short> MakeLine(Units before, Units entry, Units after);

}  // namespace tool
