#include <memory>
#include <type_traits>

#include "host/CoreFoundation/CoreFoundation.h"
#include "localeid/MuiLib.h"
#include "localeid/MuiLibImpl.h"

namespace localeid {

namespace {

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
using ScopedArray = std::unique_ptr<std::remove_pointer_t<CFArrayRef>, Release>;

}  // namespace

void GetMacOsLang(std::string& result) {
    result.clear();
    const ScopedArray languages(static_cast<CFArrayRef>(
        CFPreferencesCopyValue(CFSTR("AppleLanguages"), kCFPreferencesAnyApplication,
                               kCFPreferencesCurrentUser, kCFPreferencesAnyHost)));
    if (languages == nullptr) return;
    const CFIndex count = CFArrayGetCount(languages.get());
    for (CFIndex i = 0; i < count; ++i) {
        const auto language = static_cast<CFStringRef>(CFArrayGetValueAtIndex(languages.get(), i));
        std::string name(static_cast<std::size_t>(CFStringGetLength(language)) + 1, '\0');
        if (!CFStringGetCString(language, name.data(), static_cast<CFIndex>(name.size()),
                                kCFStringEncodingASCII)) {
            continue;
        }
        if (!result.empty()) result += ';';
        result.append(name, 0, name.find('\0'));
    }
}

std::string getBaseLanguage(const std::string& /*locale*/) { return {}; }

}  // namespace localeid

void MuiForceOsAnsiCP() {}

void MuiRemoveUnsupportedLocales() {}
