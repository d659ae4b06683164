#include "host/Ovis/PathUtils.h"

#include "host/vexacore/FileSupport.h"

namespace Ovis {

namespace {
constexpr char16_t kSeparator = u'/';
}

vexacore::UTF16String PathUtils::AddTrailingSlash(const vexacore::UTF16String& path) {
    // find_last_not_of returns npos for a path of separators only; npos + 1 is 0.
    return path.substr(0, path.find_last_not_of(kSeparator) + 1) + kSeparator;
}

bool PathUtils::ExistsOnDisk(const vexacore::UTF16String& path, bool) {
    return vexacore::utility::FileUtils::FileExists(path);
}

vexacore::UTF16String PathUtils::GetPathSeparator() { return {kSeparator}; }

}  // namespace Ovis
