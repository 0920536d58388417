// Any bytes as the settings file. What was read must be written and read again alike, and the window lie on the
// screen.
#include "TemporaryFolder.h"
#include "document/MSettings.h"

#include <cstdint>
#include <cstdlib>

namespace {

// The user's folders.
struct Place : TemporaryFolder {
    Place() { setenv("XDG_CONFIG_HOME", path.c_str(), 1); }
};

void Require(bool holds) {
    if (!holds) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Place place;
    static const MString path = MSettings::SettingsFilePath();
    std::ofstream(ToSystemPath(path), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    MSettings first;
    first.Load();
    first.ClampWindowRect();
    Require(first.WindowRect.Width() >= 320 && first.WindowRect.Height() >= 240);
    first.Save();
    MSettings second;
    second.Load();
    Require(second.GlyphHeight == first.GlyphHeight && second.Selected == first.Selected);
    Require(second.PaddingBottom == first.PaddingBottom && second.Char == first.Char);
    return 0;
}
