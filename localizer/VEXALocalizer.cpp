#include "localizer/VEXALocalizer.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "host/Ovis/Language.h"
#include "host/Ovis/PathUtils.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/Threads.h"
#include "host/vexacore/Utility.h"

namespace FE {

using vexacore::UTF16String;
using vexacore::debug::HostEvents;

namespace {

constexpr char16_t kDictionaryFileName[] = u"wdictionary.dat";

vexacore::threads::RecursiveMutex sCriticalSection;

class ScopedLock {
public:
    ScopedLock() { sCriticalSection.Lock(nullptr); }
    ~ScopedLock() { sCriticalSection.Unlock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;
};

UTF16String Copied(const unsigned short* units, unsigned long length) {
    return UTF16String(reinterpret_cast<const char16_t*>(units), length);
}

}  // namespace

// The application's 8-bit dictionaries are UTF-8, whatever the environment's locale says.
Localizer::Localizer() { lexon::Wordlex::SetDefaultApplicationEncoding(lexon::encodings::kUtf8); }
Localizer::~Localizer() = default;

UTF16String Localizer::GetLocalizedString(const char* key) const {
    if (std::strchr(key, '=') == nullptr) return vexacore::utility::AsciiToUTF16(key);
    if (std::strncmp(key, "$$$", 3) == 0) return PerformWordlexLookup(key);
    const std::string_view text(key);
    if (!text.starts_with("($$$")) return vexacore::utility::UTF8to16(text);
    if (!text.ends_with(')')) return PerformWordlexLookup(key + 1);
    return PerformWordlexLookup(std::string(text.substr(1, text.size() - 2)).c_str());
}

UTF16String Localizer::PerformWordlexLookup(const char* key) const {
    // Locked to the end: the units belong to the dictionary.
    const ScopedLock lock;
    if (!dictionary.IsValid()) return vexacore::utility::AsciiToUTF16(key);
    const unsigned short* units = nullptr;
    unsigned long length = 0;
    if (dictionary.LookupReturnUTF16Ptr(key, units, length)) return Copied(units, length);
    const lexon::Wordlex defaultText = dictionary.Lookup(key, nullptr);
    defaultText.GetInternalData(&units, &length);
    return Copied(units, length);
}

bool Localizer::LoadDictionary(const UTF16String& baseFolder) {
    return LoadWordlexDictionary(baseFolder);
}

bool Localizer::LoadWordlexDictionary(const UTF16String& baseFolder) {
    UTF16String path;
    if (!GetWordlexDictionaryFolder(baseFolder, path)) return false;
    const std::string name = vexacore::utility::UTF16toStdString(path);
    std::ifstream file(name);
    if (!file) {
        HostEvents::Append("dictionary not opened: " + name + ": " +
                           std::generic_category().message(errno));
        return false;
    }
    HostEvents::Append("dictionary opened: " + name);
    const ScopedLock lock;
    const bool wasValid = dictionary.IsValid();
    dictionary.Read(&file);
    HostEvents::Append(
        (!wasValid || dictionary.IsValid() ? "dictionary read: " : "dictionary made invalid by: ") +
        name);
    return true;
}

bool Localizer::GetWordlexDictionaryFolder(const UTF16String& baseFolder, UTF16String& file) const {
    using Ovis::PathUtils;
    const UTF16String folder = PathUtils::AddTrailingSlash(baseFolder);
    const UTF16String languages = PathUtils::AddTrailingSlash(folder + u"Dictionaries");
    const UTF16String language = PathUtils::AddTrailingSlash(languages + Ovis::GetLanguageString());
    for (const UTF16String& candidate :
         {language + kDictionaryFileName, folder + kDictionaryFileName}) {
        if (PathUtils::ExistsOnDisk(candidate, false)) {
            file = candidate;
            return true;
        }
        HostEvents::Append("no dictionary: " + vexacore::utility::UTF16toStdString(candidate));
    }
    return false;
}

}  // namespace FE
