// A user with empty folders, for tests of what the whole program does.
#pragma once

#include "Text.h"
#include "document/MSettings.h"
#include "foundation/Product.h"
#include "platform/headless/Headless.h"
#include "shell/CurrentFont.h"
#include "shell/Shell.h"
#include "shell/UserFolders.h"

class ShellTest : public UserTest {
protected:
    ShellTest() { Headless::Reset(); }
};

// With settings and a window, as while the program runs.
class RunningTest : public ShellTest {
protected:
    MSettings settings;

    RunningTest() {
        Settings = &settings;
        MainWindow = Desktop::OpenMainWindow(ProductName, {});
        Headless::record = {};
    }
    ~RunningTest() override {
        DestroyCurrentFont();
        MainWindow = nullptr;
        Settings = nullptr;
    }
};
