#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "host/Foundation/Foundation.h"
#include "host/Ovis/Module.h"
#include "host/Ovis/PathUtils.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/FileSupport.h"
#include "tests/Environment.h"

using Ovis::Module;
using Ovis::PathUtils;
using vexacore::UTF16String;

namespace {

constexpr auto kFramework = Module::PathType::kApplicationFramework;

std::string LastEvent() { return vexacore::debug::HostEvents::All().back().text; }

TEST(Module, ASoundModuleLoadsAndNamesItsEntries) {
    boost::shared_ptr<Module> module;
    ASSERT_EQ(Module::kLoaded, Module::LoadRelative(u"Sound.framework", kFramework, module));
    EXPECT_EQ("", Module::LastFailure());
    EXPECT_EQ("module loaded: Sound.framework", LastEvent());
    const auto entry = reinterpret_cast<int (*)()>(module->GetProcAddress("SoundEntry"));
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(nullptr, module->GetProcAddress("NoEntry"));
    EXPECT_EQ("Sound.framework: the module has no NoEntry", Module::LastFailure());
    module.reset();
    EXPECT_EQ("module released", LastEvent());
    EXPECT_EQ(42, entry()) << "the code stays mapped";
}

TEST(Module, AFailureIsToldApartAndLeavesTheHandle) {
    boost::shared_ptr<Module> module;
    Module::LoadRelative(u"Sound.framework", kFramework, module);
    const auto check = [&](const char16_t* name, int type, int status, const char* failure) {
        const auto handle = module;
        EXPECT_EQ(status, Module::LoadRelative(name, static_cast<Module::PathType>(type), module));
        EXPECT_LT(status, 0);
        EXPECT_NE(std::string::npos, Module::LastFailure().find(failure)) << Module::LastFailure();
        EXPECT_EQ("module not loaded: " + Module::LastFailure(), LastEvent());
        EXPECT_EQ(handle, module);
    };
    check(u"Absent.framework", 4, Module::kMissing, "Absent.framework/Absent: no such");
    check(u"Broken.framework", 4, Module::kNotLoadable, "Broken.framework/Broken");
    check(u"Sound.framework", 3, Module::kUnknownPathType, "Sound.framework: unknown");
    check(u"Sound", 4, Module::kBadName, "Sound: not");
    check(u".framework", 4, Module::kBadName, ".framework: not");
    check(u"../Sound.framework", 4, Module::kBadName, "../Sound.framework: not");
}

TEST(PathUtils, OneSeparatorEndsAPathAndFoldersAreNoFiles) {
    for (const auto& [path, expected] : {std::pair(u"/a/b", u"/a/b/"),
                                         {u"/a/b/", u"/a/b/"},
                                         {u"a//", u"a/"},
                                         {u"/", u"/"},
                                         {u"", u"/"}})
        EXPECT_EQ(UTF16String(expected), PathUtils::AddTrailingSlash(path));
    const UTF16String folder = vexacore::filesupport::Dir::AppDir().FullPath();
    const UTF16String file = PathUtils::AddTrailingSlash(folder) + u"Broken.framework/Broken";
    EXPECT_TRUE(PathUtils::ExistsOnDisk(file, false) && PathUtils::ExistsOnDisk(folder, true));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(file, true) || PathUtils::ExistsOnDisk(folder, false));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(file + u"x", false));
}

TEST(FileManager, TheLocalSupportFolderComesFromTheDataFolders) {
    const auto find = [](const char* environment,
                         unsigned long directory = NSApplicationSupportDirectory) {
        SetEnvironment(environment);
        std::optional<NSError> error;
        const auto url = NSFileManager::DefaultManager().URLForDirectory(
            static_cast<NSSearchPathDirectory>(directory), NSLocalDomainMask, nullptr, false,
            &error);
        EXPECT_NE(error.has_value(), url.has_value());
        if (!url) return UTF16String(u"none");
        const UniChar* const path = CFStringGetCharactersPtr(url->Path());
        return UTF16String(path, path + CFStringGetLength(url->Path()));
    };
    EXPECT_EQ(u"/usr/local/share", find(""));
    EXPECT_EQ(u"/srv/d\u00E9", find("XDG_DATA_DIRS=/srv/d\xC3\xA9:/usr/share"));
    EXPECT_EQ(u"/one", find("XDG_DATA_DIRS=/one"));
    EXPECT_EQ(u"none", find("", 5));
    for (const char* bad : {"", ":/usr/share", "share:/usr/share", "/\xFF"})
        EXPECT_EQ(u"none", find(("XDG_DATA_DIRS=" + std::string(bad)).c_str())) << bad;
}

}  // namespace
