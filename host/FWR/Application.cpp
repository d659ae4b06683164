#include "host/FWR/Application.h"

namespace FWR {

const char* GetApplicationName() { return "Framewright Homeline"; }
const char* GetApplicationVersion() { return "5.1"; }
const char* GetApplicationBuild() { return "5.1.0.1"; }

}  // namespace FWR
