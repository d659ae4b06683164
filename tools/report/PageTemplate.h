#pragma once
#include <string_view>

namespace tool {

// The content of page.html; "{{data}}" marks the place of the page's JSON.
extern const std::string_view kPageTemplate;

}  // namespace tool
