#pragma once
// The host's interfaces pass ownership in a std::auto_ptr, taken by reference and left empty. The
// language has deprecated that type; only this header names it.

#include <memory>

namespace vexacore {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
template <class T>
using Owner = std::auto_ptr<T>;
#pragma GCC diagnostic pop

}  // namespace vexacore
