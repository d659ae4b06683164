#include "host/Ovis/Language.h"

#include <mutex>

namespace Ovis {

namespace {

std::mutex languageMutex;

// Made on first use, so that a static initializer of another module can ask.
vexacore::UTF16String& Current() {
    static vexacore::UTF16String language = u"en";
    return language;
}

}  // namespace

vexacore::UTF16String GetLanguageString() {
    const std::lock_guard lock(languageMutex);
    return Current();
}

void SetLanguageString(const vexacore::UTF16String& language) {
    const std::lock_guard lock(languageMutex);
    Current() = language;
}

}  // namespace Ovis
