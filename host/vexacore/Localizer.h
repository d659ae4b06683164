#pragma once

#include <boost/noncopyable.hpp>

#include "host/vexacore/FileSupport.h"
#include "host/vexacore/String.h"

namespace vexacore::config {

// What the host asks for every text that the user sees. The application derives its own.
//
// Owns:     nothing. The host's reference to the installed localizer is borrowed: whoever installs
//           one uninstalls it before deleting it, and deletes it when no thread still asks it.
// Threads:  install and uninstall on the launcher's thread; the installed localizer must answer
//           from any thread.
class Localizer : private boost::noncopyable {
public:
    virtual ~Localizer();

    // `key` is nul-terminated 8-bit text.
    virtual UTF16String GetLocalizedString(const char* key) const = 0;
    // Adds the dictionary found below the folder; false when there is none.
    virtual bool LoadDictionary(const UTF16String& baseFolder) = 0;

    // Null uninstalls. `folder` is where the localizer's own files are; an empty one names none.
    static void Set(Localizer* localizer, const filesupport::Dir& folder);
    static Localizer* Get() noexcept;  // null when none is installed
    static filesupport::Dir GetFolder();
};

}  // namespace vexacore::config
