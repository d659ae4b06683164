#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "host/FWR/Application.h"
#include "host/Foundation/Foundation.h"
#include "host/HUIF/Initializer.h"
#include "host/Ovis/Language.h"
#include "host/Ovis/Module.h"
#include "host/Ovis/PathUtils.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/FileSupport.h"
#include "tests/host/ScopedVariables.h"

using Ovis::Module;
using Ovis::PathUtils;
using vexacore::UTF16String;

namespace {

constexpr auto kFramework = Module::PathType::kApplicationFramework;

std::string LastEvent() { return vexacore::debug::HostEvents::All().back().text; }

TEST(Module, ASoundModuleLoadsAndNamesItsEntries) {
    static_assert(static_cast<int>(kFramework) == 4);
    boost::shared_ptr<Module> module;
    ASSERT_EQ(Module::kLoaded, Module::LoadRelative(u"Sound.framework", kFramework, module));
    EXPECT_EQ("", Module::LastFailure());
    EXPECT_EQ("module loaded: Sound.framework", LastEvent());
    const auto entry = reinterpret_cast<int (*)()>(module->GetProcAddress("SoundEntry"));
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(42, entry());
    EXPECT_EQ(nullptr, module->GetProcAddress("NoEntry"));
    EXPECT_EQ("Sound.framework: the module has no NoEntry", Module::LastFailure());
    module.reset();
    EXPECT_EQ("module released", LastEvent());
    EXPECT_EQ(42, entry()) << "the code stays mapped";
}

TEST(Module, AFailureIsToldApartAndLeavesTheHandle) {
    const struct {
        int line;
        const char16_t* name;
        int pathType;
        int status;
        const char* failure;  // a part of it
    } rows[] = {
        {__LINE__, u"Absent.framework", 4, Module::kMissing, "Absent.framework/Absent: no such"},
        {__LINE__, u"Broken.framework", 4, Module::kNotLoadable, "Broken.framework/Broken"},
        {__LINE__, u"Sound.framework", 3, Module::kUnknownPathType, "Sound.framework: unknown"},
        {__LINE__, u"Sound", 4, Module::kBadName, "Sound: not"},
        {__LINE__, u".framework", 4, Module::kBadName, ".framework: not"},
        {__LINE__, u"../Sound.framework", 4, Module::kBadName, "../Sound.framework: not"},
    };
    boost::shared_ptr<Module> module;
    Module::LoadRelative(u"Sound.framework", kFramework, module);
    const auto handle = module;
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        EXPECT_EQ(row.status, Module::LoadRelative(
                                  row.name, static_cast<Module::PathType>(row.pathType), module));
        EXPECT_LT(row.status, 0);
        EXPECT_NE(std::string::npos, Module::LastFailure().find(row.failure))
            << Module::LastFailure();
        EXPECT_EQ("module not loaded: " + Module::LastFailure(), LastEvent());
        EXPECT_EQ(handle, module);
    }
}

TEST(PathUtils, OneSeparatorEndsAPath) {
    const struct {
        int line;
        const char16_t* path;
        const char16_t* expected;
    } rows[] = {
        {__LINE__, u"/a/b", u"/a/b/"}, {__LINE__, u"/a/b/", u"/a/b/"}, {__LINE__, u"a//", u"a/"},
        {__LINE__, u"/", u"/"},        {__LINE__, u"", u"/"},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        EXPECT_EQ(row.expected, PathUtils::AddTrailingSlash(row.path));
    }
    EXPECT_EQ(u"/", PathUtils::GetPathSeparator());
}

TEST(PathUtils, FilesAndFoldersAreToldApart) {
    const UTF16String folder = vexacore::filesupport::Dir::AppDir().FullPath();
    const UTF16String file = PathUtils::AddTrailingSlash(folder) + u"Broken.framework/Broken";
    EXPECT_TRUE(PathUtils::ExistsOnDisk(file, false));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(file, true));
    EXPECT_TRUE(PathUtils::ExistsOnDisk(folder, true));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(folder, false));
    EXPECT_FALSE(PathUtils::ExistsOnDisk(file + u"x", false));
}

TEST(Language, TheLaunchersChoiceIsTheAnswer) {
    EXPECT_EQ(u"en", Ovis::GetLanguageString());
    Ovis::SetLanguageString(u"pt_BR");
    EXPECT_EQ(u"pt_BR", Ovis::GetLanguageString());
}

TEST(FileManager, TheLocalSupportFolderComesFromTheDataFolders) {
    const struct {
        int line;
        ScopedVariables::Values variables;
        const char16_t* expected;  // null: an error
    } rows[] = {
        {__LINE__, {}, u"/usr/local/share"},
        {__LINE__,
         {{"XDG_DATA_DIRS", "/srv/d\xC3\xA9p\xC3\xB4t:/usr/share"}},
         u"/srv/d\u00E9p\u00F4t"},
        {__LINE__, {{"XDG_DATA_DIRS", "/one"}}, u"/one"},
        {__LINE__, {{"XDG_DATA_DIRS", ""}}, nullptr},
        {__LINE__, {{"XDG_DATA_DIRS", ":/usr/share"}}, nullptr},
        {__LINE__, {{"XDG_DATA_DIRS", "share:/usr/share"}}, nullptr},
        {__LINE__, {{"XDG_DATA_DIRS", "/\xFF"}}, nullptr},
    };
    for (const auto& row : rows) {
        const testing::ScopedTrace trace(__FILE__, row.line, "row");
        const ScopedVariables scope(row.variables);
        std::optional<NSError> error;
        const auto url = NSFileManager::DefaultManager().URLForDirectory(
            NSApplicationSupportDirectory, NSLocalDomainMask, nullptr, false, &error);
        EXPECT_EQ(row.expected == nullptr, error.has_value());
        ASSERT_EQ(row.expected != nullptr, url.has_value());
        if (!url) continue;
        const UniChar* const path = CFStringGetCharactersPtr(url->Path());
        EXPECT_EQ(row.expected, UTF16String(path, path + CFStringGetLength(url->Path())));
    }
    EXPECT_FALSE(NSFileManager::DefaultManager().URLForDirectory(
        NSSearchPathDirectory{5}, NSLocalDomainMask, nullptr, false, nullptr));
}

TEST(Initializer, TheFrameworkIsUpWhileItLives) {
    {
        const HUIF::Initializer initializer;
        EXPECT_EQ(1U, HUIF::Initializer::LiveCount());
        EXPECT_EQ("UI framework up", LastEvent());
    }
    EXPECT_EQ(0U, HUIF::Initializer::LiveCount());
    EXPECT_EQ("UI framework down", LastEvent());
}

}  // namespace
