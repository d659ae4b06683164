#include <algorithm>
#include <memory>
#include <string_view>

#include "host/CoreFoundation/Environment.h"
#include "host/CoreFoundation/Object.h"

namespace {

bool SameText(CFStringRef a, CFStringRef b) {
    return std::equal(a->units, a->units + a->length, b->units, b->units + b->length);
}

// Adds the language of one locale name, if it names one.
void AppendLanguage(std::string_view locale, OpaqueCFArray& languages) {
    const std::string_view language = locale.substr(0, locale.find_first_of(".@"));
    if (language.empty() || language == "C" || language == "POSIX") return;
    languages.values.reserve(languages.values.size() + 1);
    const CFStringRef text = CFStringCreateWithBytes(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(language.data()),
        static_cast<CFIndex>(language.size()), kCFStringEncodingUTF8, false);
    if (text != nullptr) languages.values.push_back(text);
}

}  // namespace

const CFStringRef kCFPreferencesAnyApplication = CFSTR("kCFPreferencesAnyApplication");
const CFStringRef kCFPreferencesCurrentUser = CFSTR("kCFPreferencesCurrentUser");
const CFStringRef kCFPreferencesAnyHost = CFSTR("kCFPreferencesAnyHost");

CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef application, CFStringRef user,
                                         CFStringRef host) {
    if (!SameText(key, CFSTR("AppleLanguages")) ||
        !SameText(application, kCFPreferencesAnyApplication) ||
        !SameText(user, kCFPreferencesCurrentUser) || !SameText(host, kCFPreferencesAnyHost))
        return nullptr;

    auto languages = std::make_unique<OpaqueCFArray>(std::vector<CFTypeRef>());
    std::string_view list = host::cf::FirstSetVariable({"LANGUAGE"});
    while (!list.empty()) {
        const std::size_t length = std::min(list.find(':'), list.size());
        AppendLanguage(list.substr(0, length), *languages);
        list.remove_prefix(std::min(length + 1, list.size()));
    }
    if (languages->values.empty())
        AppendLanguage(host::cf::FirstSetVariable({"LC_ALL", "LC_MESSAGES", "LANG"}), *languages);
    return languages->values.empty() ? nullptr : languages.release();
}
