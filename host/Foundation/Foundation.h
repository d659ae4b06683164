#pragma once
// The part of Foundation that the system calls, shaped as Foundation's selectors are: the file
// manager's folders by their role.

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
// Owns: its path, an absolute one in UTF-16.
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

// Threads: all calls from any thread, as long as none changes the environment.
class NSFileManager {
public:
    static NSFileManager& DefaultManager();

    // The folder of that role. The one that is known is the Application Support folder of the local
    // domain: of the absolute entries of XDG_DATA_DIRS the first with a folder of this version
    // of the application ("Norvale/Framewright Homeline/5.1"), else the first; relative entries do
    // not count. Where the variable is not set or empty it stands for
    // "/usr/local/share:/usr/share". Folders are not created and need not exist, nor is any other
    // URL taken into account: `appropriateForURL` is null and `create` false. Failure: returns
    // nothing and fills `error`, when it is not null, for everything that is not known, when no
    // entry is absolute, and when the folder's name is not UTF-8.
    std::optional<NSURL> URLForDirectory(NSSearchPathDirectory directory,
                                         NSSearchPathDomainMask inDomain,
                                         const NSURL* appropriateForURL, bool create,
                                         std::optional<NSError>* error) const;
};
