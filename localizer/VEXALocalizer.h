#pragma once

#include "host/vexacore/Localizer.h"
#include "host/vexacore/String.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace FE {

// The application's localizer: looks up the host's texts in one dictionary.
//
// Owns:     the dictionary that all files are loaded into. A later text replaces an earlier one
//           with the same key. But a file of version 2 hides every text loaded before it from a
//           text file or a binary file of version 1, for good. So once the computer's shared
//           dictionary is of version 2, such a file of the application is never searched. The other
//           way round they add up.
// Failure:  a look-up without a dictionary or a key returns the default text after "=". Once a file
//           with malformed content was read, a look-up returns the key text itself; for a key in
//           parentheses, the text inside. Exhausted memory throws, as does a text that is too long
//           for a string; the lock is free afterwards.
// Threads:  look-ups and loads from any thread, one after the other. One recursive lock of the
//           process guards the dictionary and everything that it returns.
class Localizer : public vexacore::config::Localizer {
public:
    // Makes UTF-8 the process's default encoding, which 8-bit text dictionaries are read in.
    Localizer();
    ~Localizer() override;

    // The text for "$$$/Path/Name=Default text", or for the same in parentheses. Other text is
    // returned as it is: read as UTF-8 when it has a "=", else one unit a byte.
    vexacore::UTF16String GetLocalizedString(const char* key) const override;

    // Both read the dictionary file below the folder. False when none was found or opened; the
    // content of the file does not change the result. Each file looked for, opened and read is a
    // host event, and so is the file that makes the dictionary invalid.
    bool LoadDictionary(const vexacore::UTF16String& baseFolder) override;
    bool LoadWordlexDictionary(const vexacore::UTF16String& baseFolder);

    // Finds "wdictionary.dat" in the folder's "Dictionaries" folder of the UI language, else in the
    // folder itself. Skips a pipe or a device of that name. False leaves `file` unchanged.
    bool GetWordlexDictionaryFolder(const vexacore::UTF16String& baseFolder,
                                    vexacore::UTF16String& file) const;

private:
    vexacore::UTF16String PerformWordlexLookup(const char* key) const;

    mutable lexon::Dictionary dictionary;  // even its look-ups write; guarded by the lock
};

}  // namespace FE
