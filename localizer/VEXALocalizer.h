#pragma once

#include "host/vexacore/Localizer.h"
#include "host/vexacore/String.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace FE {

// The application's localizer: answers the host's requests for texts from one dictionary.
//
// Owns:     the dictionary that all loaded files go into. A text that comes later takes the place
//           of an earlier one with the same key. But a binary file of version 2 hides every text
//           that a text file brought before it, for good. So a text dictionary of the application
//           is not asked once the computer's shared one is binary; the other way round they add up.
// Failure:  a look-up without a dictionary or a key gives the default text behind "="; once a file
//           with malformed content was read, the key text itself, of one in parentheses what is
//           inside. Exhausted memory throws, as does a text that no string can hold; the lock is
//           free afterwards.
// Threads:  look-ups and loads from any thread, one after the other: all access to the dictionary
//           and to what comes out of it is under one recursive lock of the process.
class Localizer : public vexacore::config::Localizer {
public:
    // Makes UTF-8 the process's default encoding, which 8-bit text dictionaries are read in.
    Localizer();
    ~Localizer() override;

    // The text for "$$$/Path/Name=Default text", or for the same in parentheses. Other text comes
    // back as it is: read as UTF-8 when it has a "=", else byte per unit.
    vexacore::UTF16String GetLocalizedString(const char* key) const override;

    // Both read the dictionary file below the folder; false when none was found or opened. What the
    // file holds does not change the result. Each file that was looked for, opened and read is a
    // host event, and so is the one that makes the dictionary invalid.
    bool LoadDictionary(const vexacore::UTF16String& baseFolder) override;
    bool LoadWordlexDictionary(const vexacore::UTF16String& baseFolder);

    // Finds "wdictionary.dat" in the folder's "Dictionaries" folder of the UI language, else in the
    // folder itself; a pipe or a device of that name is passed over. False leaves `file` as it was.
    bool GetWordlexDictionaryFolder(const vexacore::UTF16String& baseFolder,
                                    vexacore::UTF16String& file) const;

private:
    vexacore::UTF16String PerformWordlexLookup(const char* key) const;

    mutable lexon::Dictionary dictionary;  // even its look-ups write; guarded by the lock
};

}  // namespace FE
