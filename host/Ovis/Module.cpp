#include "host/Ovis/Module.h"

#include <dlfcn.h>

#include <mutex>
#include <string_view>
#include <utility>

#include "host/Ovis/PathUtils.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Utility.h"

namespace Ovis {

namespace {

constexpr std::u16string_view kFrameworkSuffix = u".framework";

std::mutex failureMutex;
std::string lastFailure;

void Note(std::string failure) {
    const std::lock_guard lock(failureMutex);
    lastFailure = std::move(failure);
}

std::int32_t Fail(Module::Status status, std::string failure) {
    vexacore::debug::HostEvents::Append("module not loaded: " + failure);
    Note(std::move(failure));
    return status;
}

// The loader's message for its last failure on this thread. Reading it clears it.
std::string LoaderError() {
    const char* const text = dlerror();
    return text == nullptr ? std::string() : text;
}

}  // namespace

// Never unmapped: see the class comment.
Module::Module(const std::string& filePath, std::string moduleName)
    : handle(dlopen(filePath.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)),
      name(std::move(moduleName)) {}

Module::~Module() {
    if (handle == nullptr) return;
    dlclose(handle);
    vexacore::debug::HostEvents::Append("module released");
}

std::int32_t Module::LoadRelative(const vexacore::UTF16String& name, PathType pathType,
                                  boost::shared_ptr<Module>& module) {
    const std::string shownName = vexacore::utility::UTF16toStdString(name);
    if (pathType != PathType::kApplicationFramework)
        return Fail(kUnknownPathType, shownName + ": unknown path type");
    if (!name.ends_with(kFrameworkSuffix) || name.size() == kFrameworkSuffix.size() ||
        name.find(PathUtils::GetPathSeparator()) != name.npos || name.find(u'\0') != name.npos)
        return Fail(kBadName, shownName + ": not the name of a framework");

    const auto appFolder = vexacore::filesupport::Dir::AppDir().FullPath();
    const auto path = PathUtils::AddTrailingSlash(PathUtils::AddTrailingSlash(appFolder) + name) +
                      name.substr(0, name.size() - kFrameworkSuffix.size());
    const std::string filePath = vexacore::utility::UTF16toStdString(path);
    if (const auto cause = vexacore::utility::FileUtils::WhyUnreadable(filePath); !cause.empty())
        return Fail(kMissing, filePath + ": " + cause);
    const boost::shared_ptr<Module> loaded(new Module(filePath, shownName));
    if (loaded->handle == nullptr) return Fail(kNotLoadable, LoaderError());
    vexacore::debug::HostEvents::Append("module loaded: " + shownName);
    module = loaded;
    Note({});
    return kLoaded;
}

std::string Module::LastFailure() {
    const std::lock_guard lock(failureMutex);
    return lastFailure;
}

void* Module::GetProcAddress(const char* symbol) const {
    void* const address = dlsym(handle, symbol);
    Note(address == nullptr ? name + ": the module has no " + symbol : std::string());
    return address;
}

}  // namespace Ovis
