#include <exception>

#include "app/frontend/AppMain.h"

namespace {

// A type of the module: it must stay usable after the module has been released.
class Torn final : public std::exception {
public:
    const char* what() const noexcept override { return "the film has torn"; }
};

}  // namespace

extern "C" [[gnu::visibility("default")]] std::int32_t AppMain(std::intptr_t, std::int32_t,
                                                               std::int32_t) {
    throw Torn();
}
