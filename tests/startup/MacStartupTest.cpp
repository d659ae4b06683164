#include "startup/MacStartup.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

namespace {

namespace fs = std::filesystem;

std::string OutputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 4096> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe.get()))
        output.append(block.data(), count);
    return output;
}

// An application folder of the test's own, with the launcher in it.
class RunTest : public testing::Test {
protected:
    RunTest() {
        fs::create_directories(framework);
        fs::copy_file(TEST_LAUNCHER, folder / "launcher");
    }
    ~RunTest() override { fs::remove_all(folder); }

    void SetFrontend(const char* module) const { fs::copy_file(module, framework / "Frontend"); }
    std::string Launch(const std::string& arguments) const {
        return OutputOf("XDG_DATA_DIRS=" + (folder / "share").native() + ' ' +
                        (folder / "launcher").native() + ' ' + arguments);
    }

    fs::path folder = fs::temp_directory_path() / ("startup-" + std::to_string(getpid()));
    fs::path framework = folder / "Frontend.framework";
};

constexpr const char* kHostUp =
    "new-handler installed\nerror manager installed\nparser factory installed\n"
    "localizer installed\nlocale initialized: en\nStartupTime: Starting\n";
constexpr const char* kHostDown =
    "parser factory uninstalled\nerror manager uninstalled\nlocalizer uninstalled\n"
    "new-handler removed\n7 identity values\n";
const std::string kLoaded =
    "module loaded: Frontend.framework\nStartupTime: Framewright DLL load finished\n";

TEST_F(RunTest, WithAnotherCookieDoesNothing) {
    SetFrontend(TEST_COMPLETE);
    for (const char* cookie : {"0xC3A951E6", "0x43A951E7", "0"})
        EXPECT_EQ("0 identity values\nresult 1\n", Launch("5 7 " + std::string(cookie)));
}

TEST_F(RunTest, NestsFrontendInHost) {
    SetFrontend(TEST_COMPLETE);
    const struct {
        int line;
        std::string arguments;
        std::string during;
        std::string outcome;
    } rows[] = {
        {__LINE__, "-5 7", "AppMain -5 7 0 default\nStartupTime: Application closing\n",
         "result 7\n"},
        {__LINE__, "0x123456789AB 0",
         "AppMain 1250999896491 0 0 default\nStartupTime: Application closing\n", "result 0\n"},
        {__LINE__, "0 -1", "AppMain 0 -1 0 default\n", "exception front end\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(kHostUp + kLoaded + "UI framework up\n" + row.during +
                      "UI framework down\nmodule released\n" + kHostDown + row.outcome,
                  Launch(row.arguments + " 0xC3A951E7"));
    }
}

TEST_F(RunTest, WithoutAFrontendGivesOne) {
    const std::string closed = "StartupTime: Application closing\n";
    const std::string path = (framework / "Frontend").native();
    const std::string unloaded = "StartupTime: Framewright DLL load finished\n" + closed;
    EXPECT_EQ(kHostUp + ("module not loaded: " + path + ": no such module\n") + unloaded +
                  kHostDown + "result 1\n",
              Launch("5 7 0xC3A951E7"));
    std::ofstream(path) << "no module";
    EXPECT_EQ(kHostUp + ("module not loaded: " + path + ": file too short\n") + unloaded +
                  kHostDown + "result 1\n",
              Launch("5 7 0xC3A951E7"));
    fs::remove(path);
    SetFrontend(TEST_WITHOUT_ENTRY);
    EXPECT_EQ(kHostUp + kLoaded + closed + "module released\n" + kHostDown + "result 1\n",
              Launch("5 7 0xC3A951E7"));
}

TEST_F(RunTest, ReadsTheApplicationsDictionaryThenTheSharedOne) {
    SetFrontend(TEST_COMPLETE);
    const auto textOf = [&] {
        const std::string output = Launch("5 7 0xC3A951E7");
        const auto begin = output.find("AppMain 5 7 0 ") + 14;
        return output.substr(begin, output.find('\n', begin) - begin);
    };
    EXPECT_EQ("default", textOf());
    std::ofstream(folder / "wdictionary.dat") << "\"$$$/Text=application\"";
    EXPECT_EQ("application", textOf());
    const fs::path shared =
        folder / "share/Norvale/Framewright Homeline/5.1/locale/en/Dictionaries";
    fs::create_directories(shared);
    std::ofstream(shared / "wdictionary.dat") << "\"$$$/Text=shared\"";
    EXPECT_EQ("shared", textOf());
}

TEST(StartupLibrary, ExportsRunAlone) {
    const std::string symbols =
        OutputOf(TEST_NM " -D --defined-only --format=just-symbols " TEST_STARTUP);
    EXPECT_EQ("Run\n", symbols);
}

}  // namespace
