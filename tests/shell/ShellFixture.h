// A user with empty folders, for tests of what the whole program does.
#pragma once

#include "Text.h"
#include "document/MSettings.h"
#include "foundation/Product.h"
#include "platform/headless/Headless.h"
#include "shell/CurrentFont.h"
#include "shell/Shell.h"
#include "shell/UserFolders.h"

#include <memory>

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

    // A glyph of one opaque colour.
    static MGlyph& AddBlock(MColourFont& font, char16_t character, std::int32_t width, std::int32_t height) {
        const auto slot = static_cast<std::size_t>(font.ClaimSlot(character));
        font.Glyphs[slot] = std::make_unique<MGlyph>(character, width, height, 0, 0, false);
        font.Glyphs[slot]->Picture.Fill(MColour(0, 0, 255));
        return *font.Glyphs[slot];
    }
};
