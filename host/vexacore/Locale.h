#pragma once

#include "host/vexacore/FileSupport.h"
#include "host/vexacore/String.h"

namespace vexacore {

// The host's UI locale.
//
// Threads:  none. Initialized at start-up on the launcher's thread.
class Locale {
public:
    // `folder` contains the application's own locale files; an empty one names none.
    static void Initialize(const UTF16String& language, const filesupport::Dir& folder);

    static UTF16String GetLanguage();  // empty before Initialize
    static filesupport::Dir GetFolder();
};

}  // namespace vexacore
