#include "host/Foundation/Foundation.h"

#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

std::string_view LocalApplicationSupport() {
    const char* const folders = std::getenv("XDG_DATA_DIRS");
    if (folders == nullptr) return "/usr/local/share";
    const std::string_view list(folders);
    return list.substr(0, list.find(':'));
}

std::nullopt_t Fail(std::optional<NSError>* error, std::string description) {
    if (error != nullptr) *error = NSError{std::move(description)};
    return std::nullopt;
}

}  // namespace

NSURL::NSURL(CFStringRef path) : filePath(static_cast<CFStringRef>(CFRetain(path))) {}

CFStringRef NSURL::Path() const noexcept { return filePath.get(); }

NSFileManager& NSFileManager::DefaultManager() {
    static NSFileManager manager;
    return manager;
}

std::optional<NSURL> NSFileManager::URLForDirectory(NSSearchPathDirectory directory,
                                                    NSSearchPathDomainMask inDomain,
                                                    const NSURL* appropriateForURL, bool create,
                                                    std::optional<NSError>* error) const {
    if (directory != NSApplicationSupportDirectory || inDomain != NSLocalDomainMask ||
        appropriateForURL != nullptr || create)
        return Fail(error, "only the local Application Support folder is known");
    const std::string_view folder = LocalApplicationSupport();
    if (!folder.starts_with('/'))
        return Fail(error, "the first entry of XDG_DATA_DIRS is no absolute path");
    const CFStringRef path =
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(folder.data()),
                                static_cast<CFIndex>(folder.size()), kCFStringEncodingUTF8, false);
    if (path == nullptr) return Fail(error, "the first entry of XDG_DATA_DIRS is not UTF-8");
    std::optional<NSURL> url(std::in_place, path);
    CFRelease(path);
    return url;
}
