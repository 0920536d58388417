// Any bytes as a font file beside a good picture: the readers must stay whole, and so must the font that comes
// of it.

#include "TemporaryFolder.h"
#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/MPhotofontImporter.h"
#include "formats/WebFont.h"
#include "imaging/MPixelBudget.h"
#include "formats/game/MGameFontImport.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view form = LETTRINO_FORM;

// Where the input is put.
struct Place : TemporaryFolder {
    Place() {
        MPicture picture(64, 32, FormatRGBA8);
        picture.Fill(MColour(10, 20, 30, 200));
        picture.Save(File("f.png"));
        picture.Free();
    }
};

// What no reader goes on without stands before every input, so that the fuzzer need not find it.
std::string Header() {
    if (form == "sm") return "Showmarquee TextureFont 1.0\r\n";
    if (form == "js") return ToSystem(ScriptHeader()) + "\r\n";
    return {};
}

bool Read(MColourFont& font, const MString& path) {
    if (form == "sm") return font.Load(path);
    if (form == "js") return font.ImportJavascript(path);
    if (form == "fnt") return ImportGameFont(font, path).Reason.empty();
    return MPhotofontImporter(nullptr).Import(path, &font);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Place place;
    SetMemoryLimit(std::size_t{64} << 20); // beyond what is held now
    RestorePixelBudget();
    MSettings settings;
    Settings = &settings;
    settings.Path(MPathKind::Temporary) = FromSystemPath(place.path);
    const MString file =
        place.Write("f." LETTRINO_FORM, Header() + std::string(reinterpret_cast<const char*>(data), size));
    {
        MColourFont font(nullptr);
        if (Read(font, file) && font.Repack()) {
            font.GenerateKerning();
            font.Scale(0.5F);
            font.TrimVertically();
            font.Repack();
        }
    }
    Settings = nullptr;
    return 0;
}
