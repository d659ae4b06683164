#include <gtest/gtest.h>

#include <string>

#include "host/Ovis/Module.h"
#include "host/vexacore/Debug.h"

using Ovis::Module;

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

TEST(Module, WhatCannotBeLoadedIsNamedAndLeavesTheHandle) {
    boost::shared_ptr<Module> sound;
    ASSERT_EQ(Module::kLoaded, Module::LoadRelative(u"Sound.framework", kFramework, sound));
    const struct {
        vexacore::UTF16String name;
        Module::PathType type;
        Module::Status expected;
        const char* failure;  // a part of it
    } rows[] = {
        {u"Sound.framework", Module::PathType{3}, Module::kUnknownPathType, "unknown path type"},
        {u"Sound", kFramework, Module::kBadName, "Sound: not the name of a framework"},
        {u".framework", kFramework, Module::kBadName, ".framework: not the name"},
        {u"", kFramework, Module::kBadName, ": not the name of a framework"},
        {u"../Sound.framework", kFramework, Module::kBadName, "../Sound.framework: not the name"},
        {{u"Sound.framework\0.framework", 26}, kFramework, Module::kBadName, "not the name"},
        {u"Missing.framework", kFramework, Module::kMissing, "Missing: No such file or directory"},
        {u"Broken.framework", kFramework, Module::kNotLoadable, "Broken: "},
    };
    for (const auto& [name, type, expected, failure] : rows) {
        SCOPED_TRACE(failure);
        boost::shared_ptr<Module> module = sound;
        EXPECT_EQ(expected, Module::LoadRelative(name, type, module));
        EXPECT_EQ(sound, module);
        EXPECT_NE(std::string::npos, Module::LastFailure().find(failure)) << Module::LastFailure();
        EXPECT_EQ("module not loaded: " + Module::LastFailure(), LastEvent());
    }
}

}  // namespace
