#pragma once
#include <cstdint>
#include <string>

#include "tools/exchange/Exchange.h"

namespace tool {

enum class XliffVersion : std::uint8_t { k12, k21 };

// Codes of the texts become inline elements, which translation programs protect. Codes of the
// target have the ids of the source's codes.
std::string WriteXliff(const Exchange& exchange, XliffVersion version);

// Whether the file is XML rather than PO.
bool LooksLikeXml(const std::string& bytes);
// Reads only the units of XLIFF 1.2 and 2.0 or later. Throws a Failure, with the line, for a file
// in another format. A document type declaration is refused, and so is a tag with so many
// attributes that libxml2's time would grow with their square. libxml2 limits text and nesting.
Exchange ReadXliff(const std::string& name, const std::string& bytes);

}  // namespace tool
