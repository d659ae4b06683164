#pragma once
// The application's identity, as the host knows it.
//
// Owns:     copies of the values, in the order they were set. Setting a value again records it
//           again.
// Threads:  none. Set at start-up on the launcher's thread, before others ask.

#include <string_view>
#include <vector>

#include "host/vexacore/String.h"

namespace vexacore::config {

void SetClientName(const UTF16String& value);
void SetCompanyName(const UTF16String& value);
void SetClientVersion(const UTF16String& value);
void SetClientInternalVersion(const UTF16String& value);
void SetClientBuildNumber(const UTF16String& value);
void SetSuiteClientFamily(const UTF16String& value);
void SetSAPCode(const UTF16String& value);

struct IdentityValue {
    std::string_view setting;  // "ClientName" for SetClientName; static storage
    UTF16String value;
};

// Every call of the setters so far, oldest first.
std::vector<IdentityValue> GetIdentity();

}  // namespace vexacore::config
