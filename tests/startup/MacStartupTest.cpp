#include "startup/MacStartup.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

std::string OutputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    for (int c = 0; (c = std::fgetc(pipe.get())) != EOF;)
        output += static_cast<char>(c);
    return output;
}

// An application folder of the test's own, with the launcher in it.
class RunTest : public testing::Test {
protected:
    RunTest() {
        fs::create_directory(frontend.parent_path());
        fs::copy_file(TEST_LAUNCHER, folder / "launcher");
    }
    std::string Launch(const std::string& arguments) const {
        return OutputOf("XDG_DATA_DIRS=" + (folder / "share").native() + ' ' +
                        (folder / "launcher").native() + ' ' + arguments);
    }

    const TemporaryFolder folder;
    const fs::path frontend = folder / "Frontend.framework/Frontend";
};

constexpr const char* kHostUp =
    "new-handler installed\nerror manager installed\nparser factory installed\n"
    "localizer installed\nlocale initialized: en\nStartupTime: Starting\n";
constexpr const char* kHostDown =
    "parser factory uninstalled\nerror manager uninstalled\nlocalizer uninstalled\n"
    "new-handler removed\n7 identity values\n";
const std::string kLoaded =
    "module loaded: Frontend.framework\nStartupTime: Framewright DLL load finished\n";
const std::string kClosed = "StartupTime: Application closing\n";

TEST_F(RunTest, NestsFrontendInHostForItsCookieAlone) {
    fs::copy_file(TEST_COMPLETE, frontend);
    for (const char* cookie : {"0xC3A951E6", "0x43A951E7", "0"})
        EXPECT_EQ("0 identity values\nresult 1\n", Launch("5 7 " + std::string(cookie)));
    const auto check = [&](const std::string& arguments, const std::string& during,
                           const std::string& outcome) {
        EXPECT_EQ(kHostUp + kLoaded + "UI framework up\nAppMain " + during +
                      "UI framework down\nmodule released\n" + kHostDown + outcome,
                  Launch(arguments + " 0xC3A951E7"));
    };
    check("-5 7", "-5 7 0 default\n" + kClosed, "result 7\n");
    check("0x123456789AB 0", "1250999896491 0 0 default\n" + kClosed, "result 0\n");
    check("0 -1", "0 -1 0 default\n", "exception front end\n");
}

TEST_F(RunTest, WithoutAFrontendGivesOne) {
    const auto check = [&](const std::string& during) {
        EXPECT_EQ(kHostUp + during + kHostDown + "result 1\n", Launch("5 7 0xC3A951E7"));
    };
    const std::string failed = "module not loaded: " + frontend.native();
    const std::string unloaded = "StartupTime: Framewright DLL load finished\n" + kClosed;
    check(failed + ": no such module\n" + unloaded);
    std::ofstream(frontend) << "no module";
    check(failed + ": file too short\n" + unloaded);
    fs::remove(frontend);
    fs::copy_file(TEST_WITHOUT_ENTRY, frontend);
    check(kLoaded + kClosed + "module released\n");
}

TEST_F(RunTest, ReadsTheApplicationsDictionaryThenTheSharedOne) {
    fs::copy_file(TEST_COMPLETE, frontend);
    const auto check = [&](const std::string& text) {
        const std::string output = Launch("5 7 0xC3A951E7");
        EXPECT_NE(std::string::npos, output.find("AppMain 5 7 0 " + text + '\n')) << output;
    };
    check("default");
    folder.Write("wdictionary.dat", "\"$$$/Text=application\"");
    check("application");
    folder.Write("share/Norvale/Framewright Homeline/5.1/locale/en/Dictionaries/wdictionary.dat",
                 "\"$$$/Text=shared\"");
    check("shared");
}

TEST(StartupLibrary, ExportsRunAlone) {
    EXPECT_EQ("Run\n", OutputOf(TEST_NM " -D --defined-only --format=just-symbols " TEST_STARTUP));
}

}  // namespace
