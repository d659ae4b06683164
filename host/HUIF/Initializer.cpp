#include "host/HUIF/Initializer.h"

#include "host/vexacore/Debug.h"

namespace HUIF {

Initializer::Initializer() { vexacore::debug::HostEvents::Append("UI framework up"); }

Initializer::~Initializer() { vexacore::debug::HostEvents::Append("UI framework down"); }

}  // namespace HUIF
