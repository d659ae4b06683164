#pragma once

#include <boost/noncopyable.hpp>

#include "host/vexacore/FileSupport.h"
#include "host/vexacore/String.h"

namespace vexacore::config {

// Every text that the user sees comes from here. The application derives its own.
//
// Owns:     nothing. The host borrows the installed localizer: whoever installs one uninstalls it
//           before deleting it, and deletes it when no thread uses it any more.
// Threads:  install and uninstall on the launcher's thread. Any thread may call the installed
//           localizer.
class Localizer : private boost::noncopyable {
public:
    virtual ~Localizer();

    // `key` is nul-terminated 8-bit text.
    virtual UTF16String GetLocalizedString(const char* key) const = 0;
    // Adds the dictionary found below the folder; false when none is found.
    virtual bool LoadDictionary(const UTF16String& baseFolder) = 0;

    // Null uninstalls. `folder` contains the localizer's own files; an empty one names none.
    static void Set(Localizer* localizer, const filesupport::Dir& folder);
    static Localizer* Get() noexcept;  // null when none is installed
    static filesupport::Dir GetFolder();
};

}  // namespace vexacore::config
