// The localizer as one more peer of a harness that compares localization catalogs: a source to put
// beside its harness.hpp, compiled with the project's root on the include path and linked with the
// target localizer. Keys are written $$$/key=default text. The lock of a request is part of it.
//  project_localizer      text.dat, the hash table; the host's string
//  project_localizer_v2   v2.dat, the compact store; the host's string
#include <filesystem>
#include <thread>

#include "harness.hpp"
#include "host/vexacore/Utility.h"
#include "localizer/VEXALocalizer.h"

namespace peers {
namespace {

template <bool kCompact>
struct Localizer : NoPrepare {
    static constexpr const char* kName = kCompact ? "project_localizer_v2" : "project_localizer";
    static constexpr const char* kHands = "host string copy, locked";
    static constexpr const char* kLoadOf = nullptr;
    static constexpr bool kDecorated = true;
    static constexpr bool kThreadSafe = true;

    FE::Localizer localizer;

    static std::string file(const Dir& dir) {
        return dir.path + (kCompact ? "/v2.dat" : "/text.dat");
    }
    // The localizer looks for a file of its own name in a folder.
    static std::unique_ptr<Localizer> open(const Dir& dir, unsigned) {
        namespace fs = std::filesystem;
        const fs::path folder = fs::path(dir.scratch) / kName;
        fs::create_directories(folder);
        const fs::path link = folder / "wdictionary.dat";
        fs::remove(link);
        fs::create_symlink(fs::absolute(file(dir)), link);
        auto made = std::make_unique<Localizer>();
        made->localizer.LoadDictionary(vexacore::utility::StdToUTF16String(folder.native()));
        return made;
    }
    // A miss returns the default text; the harness's keys all have one.
    std::size_t get(const char* key) {
        const auto text = localizer.GetLocalizedString(key);
        benchmark::DoNotOptimize(text.data());
        return text.size();
    }
    std::u16string text(const char* key) {
        const auto found = localizer.GetLocalizedString(key);
        return std::u16string(found.begin(), found.end());
    }
};

}  // namespace

void registerLocalizer() {
    registerVariant<Localizer<false>>();
    registerVariant<Localizer<true>>();
}

}  // namespace peers
