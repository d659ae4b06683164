#include "host/vexacore/Locale.h"

#include "host/vexacore/Debug.h"
#include "host/vexacore/Utility.h"

namespace vexacore {

namespace {
UTF16String installedLanguage;
filesupport::Dir installedFolder;
}  // namespace

void Locale::Initialize(const UTF16String& language, const filesupport::Dir& folder) {
    installedLanguage = language;
    installedFolder = folder;
    debug::HostEvents::Append("locale initialized: " + utility::UTF16toStdString(language));
}

UTF16String Locale::GetLanguage() { return installedLanguage; }

filesupport::Dir Locale::GetFolder() { return installedFolder; }

}  // namespace vexacore
