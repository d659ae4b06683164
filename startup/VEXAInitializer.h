#pragma once

#include <memory>

#include "host/vexacore/ErrorManager.h"
#include "host/vexacore/String.h"
#include "localizer/VEXALocalizer.h"

namespace Startup {

// Prepares the host for the application: identity, error manager, XML parser factory, localizer
// with its dictionaries, locale. The destructor undoes it.
//
// Owns:     the error manager, the new-handler initializer and the localizer. The host refers to
//           them only while this object lives. The host itself owns the parser factory.
// Failure:  the constructor passes on any exception of the host. The host then refers to nothing
//           that dies with this object. The identity stays, and so do the factory, if it was
//           installed, and whatever others had installed and the start had not yet replaced.
// Threads:  made and destroyed on the launcher's thread.
class VEXAInitializer {
public:
    VEXAInitializer();
    ~VEXAInitializer();
    VEXAInitializer(const VEXAInitializer&) = delete;
    VEXAInitializer& operator=(const VEXAInitializer&) = delete;

private:
    // Deleted in reverse: the localizer first.
    std::unique_ptr<vexacore::config::ErrorManager> errorManager;
    std::unique_ptr<vexacore::config::ErrorManager::NewHandlerInitializer> newHandlerInitializer;
    std::unique_ptr<FE::Localizer> localizer;
};

}  // namespace Startup
