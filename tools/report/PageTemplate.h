#pragma once
#include <string_view>

namespace tool {

// The content of page.html; "{{data}}" stands where the page expects its JSON.
extern const std::string_view kPageTemplate;

}  // namespace tool
