// A user whose folders are a test's own.
#pragma once

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

class UserTest : public testing::Test {
protected:
    // The system is asked for the user's folders once only, so that all tests share them.
    static TemporaryFolder& Home() {
        static TemporaryFolder home;
        return home;
    }
    static const char* SettingsFile() { return "config/Northbank Softworks/Lettrino/Lettrino.txt"; }

    UserTest() {
        for (const auto& entry : std::filesystem::directory_iterator(Home().path))
            std::filesystem::remove_all(entry.path());
        setenv("HOME", Home().path.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (Home().path / "config").c_str(), 1);
        // Where the windows of this user count themselves: those of other tests must not.
        const auto run = Home().path / "run";
        std::filesystem::create_directory(run);
        std::filesystem::permissions(run, std::filesystem::perms::owner_all);
        setenv("XDG_RUNTIME_DIR", run.c_str(), 1);
    }
};
