#include "host/vexacore/Localizer.h"

#include <atomic>

#include "host/vexacore/Debug.h"

namespace vexacore::config {

namespace {
std::atomic<Localizer*> installedLocalizer;
UTF16String installedFolder;
}  // namespace

Localizer::~Localizer() = default;

void Localizer::Set(Localizer* localizer, const filesupport::Dir& folder) {
    UTF16String path = folder.FullPath();
    installedFolder.swap(path);
    installedLocalizer = localizer;
    debug::HostEvents::Append(localizer ? "localizer installed" : "localizer uninstalled");
}

Localizer* Localizer::Get() noexcept { return installedLocalizer; }

filesupport::Dir Localizer::GetFolder() { return filesupport::Dir(installedFolder); }

}  // namespace vexacore::config
