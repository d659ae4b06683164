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

}  // namespace
