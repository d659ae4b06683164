#pragma once

#include "host/vexacore/String.h"

namespace Ovis {

// The UI language code, which names a language's folders. "en" until the launcher sets it, which it
// does before it calls Run.
//
// Threads:  all calls from any thread.
vexacore::UTF16String GetLanguageString();
void SetLanguageString(const vexacore::UTF16String& language);

}  // namespace Ovis
