#pragma once

#include "host/vexacore/String.h"

namespace Ovis {

// The UI language code, which names the folders of a language. The launcher sets it before it calls
// Run; "en" until then.
//
// Threads:  all calls from any thread.
vexacore::UTF16String GetLanguageString();
void SetLanguageString(const vexacore::UTF16String& language);

}  // namespace Ovis
