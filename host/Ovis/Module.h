#pragma once

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>

#include "host/vexacore/String.h"

namespace Ovis {

// A loaded code module.
//
// Owns:     one reference to the module in the system's loader. Its code and data stay mapped after
//           the release: an exception that it threw may still be in flight.
// Failure:  statuses and null. Exhausted memory throws std::bad_alloc. For a module beside the
//           application, what Dir::AppDir() throws.
class Module {
public:
    // Where a module name is looked up. Environment variables have no influence.
    enum class PathType : std::int32_t {
        // A framework beside the executable: "X.framework" is the file X in the folder X.framework
        // in the folder of the running executable.
        kApplicationFramework = 4
    };

    enum Status : std::int32_t {
        kLoaded = 0,
        kUnknownPathType = -1,
        kBadName = -2,  // for a framework: no ".framework" after a name, or a separator in it
        kMissing = -3,
        kNotLoadable = -4
    };

    // Loads a module, or adds a reference to a loaded one, and stores it in `module`. A negative
    // status leaves `module` unchanged.
    static std::int32_t LoadRelative(const vexacore::UTF16String& name, PathType pathType,
                                     boost::shared_ptr<Module>& module);

    // Why the last LoadRelative or GetProcAddress of the process failed: one line for people in
    // UTF-8. Empty when it did not fail.
    static std::string LastFailure();

    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // The address of an exported symbol; null when the module has no such symbol.
    void* GetProcAddress(const char* symbol) const;

private:
    Module(const std::string& filePath, std::string moduleName);

    void* handle;      // null when the file could not be loaded; such a module is never returned
    std::string name;  // UTF-8, as given to LoadRelative
};

}  // namespace Ovis
