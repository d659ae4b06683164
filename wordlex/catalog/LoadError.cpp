#include "wordlex/catalog/Catalog.h"

namespace lexon {

std::string LoadError::Message() const {
    std::string message = file.string();
    if (line != 0) message += (message.empty() ? "" : ":") + std::to_string(line);
    if (line != 0 && column != 0) message += ":" + std::to_string(column);
    if (!message.empty()) message += ": ";
    if (offset.has_value()) message += "byte " + std::to_string(*offset) + ": ";
    return message + reason;
}

}  // namespace lexon
