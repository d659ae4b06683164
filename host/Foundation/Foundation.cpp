#include "host/Foundation/Foundation.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/FWR/Application.h"

namespace {

bool HasApplicationFolder(std::string_view support) {
    std::error_code unreachable;
    return std::filesystem::is_directory(std::filesystem::path(support) / "Norvale" /
                                             FWR::GetApplicationName() /
                                             FWR::GetApplicationVersion(),
                                         unreachable);
}

// Empty when there is none.
std::string_view LocalApplicationSupport() {
    const char* const variable = std::getenv("XDG_DATA_DIRS");
    std::string_view list = variable == nullptr ? "" : variable;
    if (list.empty()) list = "/usr/local/share:/usr/share";
    std::string_view first;
    while (!list.empty()) {
        const std::size_t length = std::min(list.find(':'), list.size());
        const std::string_view folder = list.substr(0, length);
        list.remove_prefix(std::min(length + 1, list.size()));
        if (!folder.starts_with('/')) continue;
        if (HasApplicationFolder(folder)) return folder;
        if (first.empty()) first = folder;
    }
    return first;
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
    if (folder.empty()) return Fail(error, "XDG_DATA_DIRS has no absolute path");
    const CFStringRef path =
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(folder.data()),
                                static_cast<CFIndex>(folder.size()), kCFStringEncodingUTF8, false);
    if (path == nullptr) return Fail(error, "the folder in XDG_DATA_DIRS is not UTF-8");
    std::optional<NSURL> url(std::in_place, path);
    CFRelease(path);
    return url;
}
