#include "host/vexacore/Config.h"

namespace vexacore::config {

namespace {
std::vector<IdentityValue> identity;
}

void SetClientName(const UTF16String& value) { identity.push_back({"ClientName", value}); }
void SetCompanyName(const UTF16String& value) { identity.push_back({"CompanyName", value}); }
void SetClientVersion(const UTF16String& value) { identity.push_back({"ClientVersion", value}); }
void SetClientInternalVersion(const UTF16String& value) {
    identity.push_back({"ClientInternalVersion", value});
}
void SetClientBuildNumber(const UTF16String& value) {
    identity.push_back({"ClientBuildNumber", value});
}
void SetSuiteClientFamily(const UTF16String& value) {
    identity.push_back({"SuiteClientFamily", value});
}
void SetSAPCode(const UTF16String& value) { identity.push_back({"SAPCode", value}); }

std::vector<IdentityValue> GetIdentity() { return identity; }

}  // namespace vexacore::config
