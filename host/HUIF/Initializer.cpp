#include "host/HUIF/Initializer.h"

#include <atomic>

#include "host/vexacore/Debug.h"

namespace HUIF {

namespace {
std::atomic<std::size_t> liveCount{0};
}

Initializer::Initializer() {
    ++liveCount;
    vexacore::debug::HostEvents::Append("UI framework up");
}

Initializer::~Initializer() {
    --liveCount;
    vexacore::debug::HostEvents::Append("UI framework down");
}

std::size_t Initializer::LiveCount() noexcept { return liveCount; }

}  // namespace HUIF
