#pragma once
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>

#include "tests/TemporaryFolder.h"

// Runs the built command through a shell, in a temporary folder.
class CommandTest : public testing::Test {
protected:
    struct Outcome {
        int exitCode;
        std::string out;
        std::string err = {};
        bool operator==(const Outcome&) const = default;
        friend std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
            return stream << "exit code " << outcome.exitCode << "\nout: " << outcome.out
                          << "\nerr: " << outcome.err;
        }
    };

    CommandTest() { std::filesystem::create_directory(folder / "work"); }

    // A line for the shell, in which "wordlex" is the command under test.
    Outcome Run(const std::string& line) const {
        const std::string script = "cd '" + (folder / "work").string() +
                                   "' || exit 99\nwordlex() { " WORDLEX_COMMAND " \"$@\"; }\n( " +
                                   line + " ) >../out 2>../err";
        const int status = std::system(script.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Read("../out"), Read("../err")};
    }
    void Write(const std::string& name, const std::string& bytes) const {
        folder.Write("work/" + name, bytes);
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(folder / "work" / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TemporaryFolder folder;
};
