#pragma once
#include <string>

#include "tools/exchange/Exchange.h"

namespace tool {

// A file in gettext's format: msgctxt is the key, msgid the reference's text, msgstr the
// translation; "fuzzy" marks what needs review.
std::string WritePo(const Exchange& exchange);
// Reads only the units. Throws a Failure, with the line, for a file in another format, for plural
// forms and for encodings other than UTF-8.
Exchange ReadPo(const std::string& name, const std::string& bytes);

}  // namespace tool
