// Runs lettrino-cli as a user would, in a folder of its own.
#pragma once

#include "TemporaryFolder.h"
#include "imaging/MPixelBudget.h"
#include "imaging/Pictures.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <vector>

class Cli : public testing::Test {
public:
    TemporaryFolder folder;
    int status = -1;
    std::string out;
    std::string error;

    // Arguments as typed in a shell, in the folder or one below it. Returns the status.
    int Run(const std::string& arguments, const std::string& below = {}, const char* program = LETTRINO_CLI) {
        const std::string command = "cd '" + (folder.path / below).string() + "' && HOME='" +
                                    folder.path.string() + "/home' '" + program + "' " + arguments + " >'" +
                                    folder.path.string() + "/stdout.txt' 2>'" + folder.path.string() +
                                    "/stderr.txt'";
        const int result = std::system(command.c_str());
        status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
        out = folder.Read("stdout.txt");
        error = folder.Read("stderr.txt");
        return status;
    }

    // The same for what must succeed.
    void Do(const std::string& arguments, const std::string& below = {}, const char* program = LETTRINO_CLI) {
        EXPECT_EQ(Run(arguments, below, program), 0) << arguments << '\n' << out << error;
    }

    // What --info prints after these steps.
    nlohmann::json Info(const std::string& arguments) {
        Do(arguments + " --info");
        return nlohmann::json::parse(out, nullptr, false);
    }

    OwnedPicture Picture(const char* file) const {
        const MFontPictureScope largeOnesToo;
        return {MPicture(folder.File(file))};
    }

    struct Case {
        std::string arguments;
        int status;
        const char* error; // that its standard error holds
    };
    void ExpectFailures(const std::vector<Case>& cases) {
        for (const auto& [arguments, wanted, words] : cases) {
            EXPECT_EQ(Run(arguments), wanted) << arguments;
            EXPECT_THAT(error, testing::HasSubstr(words)) << arguments;
        }
    }

    bool Has(const char* file) const { return std::filesystem::exists(folder.path / file); }
};
