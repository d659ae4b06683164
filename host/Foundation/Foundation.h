#pragma once
// The part of Foundation that the system calls, named after Foundation's selectors: the file
// manager's folders by role.

#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include "host/CoreFoundation/CoreFoundation.h"

enum NSSearchPathDirectory : unsigned long { NSApplicationSupportDirectory = 14 };

enum NSSearchPathDomainMask : unsigned long { NSLocalDomainMask = 2 };  // for all users

struct NSError {
    std::string localizedDescription;
};

// A file URL.
// Owns: its path, absolute and in UTF-16.
class NSURL {
public:
    explicit NSURL(CFStringRef path);  // retains the path

    CFStringRef Path() const noexcept;  // borrowed

private:
    struct Release {
        void operator()(CFStringRef text) const noexcept { CFRelease(text); }
    };
    std::unique_ptr<std::remove_pointer_t<CFStringRef>, Release> filePath;
};

// Threads: any thread, as long as none changes the environment.
class NSFileManager {
public:
    static NSFileManager& DefaultManager();

    // Returns the folder for that role. The only one known is the Application Support folder of the
    // local domain. It is the first absolute entry of XDG_DATA_DIRS that has a folder for this
    // version of the application ("Norvale/Framewright Homeline/5.1"), else the first absolute
    // entry. Relative entries are ignored. When the variable is not set or empty, its value is
    // "/usr/local/share:/usr/share". The folder is not created and need not exist.
    // `appropriateForURL` is null and `create` false. Failure: returns nothing and fills `error`
    // unless it is null: for any other folder, when no entry is absolute, and when the folder's
    // name is not UTF-8.
    std::optional<NSURL> URLForDirectory(NSSearchPathDirectory directory,
                                         NSSearchPathDomainMask inDomain,
                                         const NSURL* appropriateForURL, bool create,
                                         std::optional<NSError>* error) const;
};
