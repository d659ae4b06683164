#pragma once

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>

#include "host/vexacore/String.h"

namespace Ovis {

// A loaded code module.
//
// Owns:     one reference to the module in the system's loader. Its code and data stay mapped after
//           the release: an exception that it threw may still be on its way.
// Threads:  all calls from any thread.
// Failure:  statuses and null; std::bad_alloc when memory is exhausted, and what Dir::AppDir()
//           throws where a module beside the application is asked for.
class Module {
public:
    // Where a module name is looked up. No environment variable takes part in it.
    enum class PathType : std::int32_t {
        // A framework beside the executable: "X.framework" is the file X in the folder X.framework
        // in the folder of the running executable.
        kApplicationFramework = 4
    };

    enum Status : std::int32_t {
        kLoaded = 0,
        kUnknownPathType = -1,
        kBadName = -2,  // for a framework: no ".framework" behind a name, or a separator in it
        kMissing = -3,
        kNotLoadable = -4
    };

    // Loads a module, or refers to it once more, and puts it into `module`, which stays as it was
    // when the status is negative.
    static std::int32_t LoadRelative(const vexacore::UTF16String& name, PathType pathType,
                                     boost::shared_ptr<Module>& module);

    // Why the last LoadRelative or GetProcAddress of the process failed, as one line for people in
    // UTF-8; empty when it did not fail.
    static std::string LastFailure();

    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // The address of an exported symbol; null when the module has none of that name.
    void* GetProcAddress(const char* symbol) const;

private:
    Module(const std::string& filePath, std::string moduleName);

    void* handle;      // null when the file could not be loaded: no such module is handed out
    std::string name;  // UTF-8, as given to LoadRelative
};

}  // namespace Ovis
