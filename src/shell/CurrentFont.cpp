#include "shell/CurrentFont.h"

#include "shell/Shell.h"

#include <memory>

namespace {

std::unique_ptr<MColourFont> owned; // what CurrentFont points to

} // namespace

MColourFont& CurrentOrNewFont() {
    return CurrentFont ? *CurrentFont : ReplaceCurrentFont();
}

MColourFont& ReplaceCurrentFont() {
    DestroyCurrentFont();
    owned = std::make_unique<MColourFont>(MainWindow);
    CurrentFont = owned.get();
    return *owned;
}

void DestroyCurrentFont() {
    CurrentFont = nullptr;
    owned.reset();
}

void RepackAndDraw(MColourFont& font) {
    font.Repack();
    font.Draw();
}
