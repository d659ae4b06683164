#pragma once
#include <string>

#include "tools/exchange/Exchange.h"

namespace tool {

// A file as gettext writes it: msgctxt is the key, msgid the reference's text, msgstr the
// translation; "fuzzy" is what needs review.
std::string WritePo(const Exchange& exchange);
// Throws a Failure, with the line, for what is no such file, for plural forms and for another
// encoding than UTF-8. Reads the units alone.
Exchange ReadPo(const std::string& name, const std::string& bytes);

}  // namespace tool
