#include "apps/lettrino-cli/Run.h"

Run::Run() {
    Settings = &choices.settings;
}

Run::~Run() {
    font.reset();
    CurrentFont = nullptr;
    Settings = nullptr;
}

MColourFont& Run::FontOrNew() {
    if (!font) font = std::make_unique<MColourFont>(nullptr);
    CurrentFont = font.get();
    return *font;
}
