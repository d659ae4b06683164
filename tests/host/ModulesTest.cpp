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

}  // namespace
