#include "host/vexacore/Localizer.h"

#include <atomic>
#include <utility>

#include "host/vexacore/Debug.h"

namespace vexacore::config {

namespace {
std::atomic<Localizer*> installed;
filesupport::Dir installedFolder;
}  // namespace

Localizer::~Localizer() = default;

void Localizer::Set(Localizer* localizer, filesupport::Dir folder) noexcept {
    installedFolder = std::move(folder);
    installed = localizer;
    debug::HostEvents::Append(localizer ? "localizer installed" : "localizer uninstalled");
}

Localizer* Localizer::Get() noexcept { return installed; }

filesupport::Dir Localizer::GetFolder() { return installedFolder; }

}  // namespace vexacore::config
