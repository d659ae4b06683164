#include <cstdint>
#include <stdexcept>
#include <string>

#include "host/vexacore/Debug.h"
#include "host/vexacore/Localizer.h"
#include "host/vexacore/Utility.h"

// Records its arguments and the text of one key as a host event. Throws for a negative `second`,
// else returns it.
extern "C" [[gnu::visibility("default")]] std::int32_t AppMain(std::intptr_t first,
                                                               std::int32_t second,
                                                               std::int32_t third) {
    const auto text = vexacore::config::Localizer::Get()->GetLocalizedString("$$$/Text=default");
    vexacore::debug::HostEvents::Append("AppMain " + std::to_string(first) + ' ' +
                                        std::to_string(second) + ' ' + std::to_string(third) + ' ' +
                                        vexacore::utility::UTF16toStdString(text));
    if (second < 0) throw std::runtime_error("front end");
    return second;
}
