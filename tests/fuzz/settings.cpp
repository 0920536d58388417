// Any bytes as the settings file. What was read must be written and read again alike, and the window lie on the
// screen.
#include "document/MSettings.h"
#include "foundation/MFolders.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

// The user's folders; of this process alone, and gone with it.
struct Place {
    fs::path folder;

    Place() {
        std::string name = (fs::temp_directory_path() / "lettrino-fuzz-XXXXXX").string();
        folder = mkdtemp(name.data());
        setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() {
        std::error_code error;
        fs::remove_all(folder, error);
    }
};

void Require(bool holds) {
    if (!holds) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Place place;
    static const MString path = MSettings().SettingsFilePath();
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
