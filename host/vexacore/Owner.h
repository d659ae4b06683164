#pragma once
// The host's interfaces hand owners over by std::auto_ptr, taken by reference and left empty. The
// language has deprecated that type; this header is the one place that names it.

#include <memory>

namespace vexacore {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
template <class T>
using Owner = std::auto_ptr<T>;
#pragma GCC diagnostic pop

}  // namespace vexacore
