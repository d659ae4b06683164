#pragma once

#include "host/vexacore/String.h"

namespace Ovis {

class PathUtils {
public:
    // The path with exactly one separator at its end. The empty path becomes the root folder, so
    // that a path built on a missing folder never leads into the working folder.
    static vexacore::UTF16String AddTrailingSlash(const vexacore::UTF16String& path);

    // Whether the path names a regular file; see FileUtils::FileExists. The flag is unused.
    static bool ExistsOnDisk(const vexacore::UTF16String& path, bool flag);

    static vexacore::UTF16String GetPathSeparator();
};

}  // namespace Ovis
