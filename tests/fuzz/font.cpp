// Any bytes as a font file beside a good picture: the readers must stay whole, and so must the font that comes
// of it. What was read is written and read again, and must be the same then. The last byte chooses how the text
// of a texture font is stored: as it is, or with each byte as a character of UTF-16 or UTF-8.

#include "TemporaryFolder.h"
#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/MPhotofontImporter.h"
#include "formats/MTextFile.h"
#include "formats/WebFont.h"
#include "formats/game/MBmFont.h"
#include "formats/game/MGameFontImport.h"
#include "imaging/MPixelBudget.h"
#include "imaging/Pictures.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view form = LETTRINO_FORM;

// Where the input is put.
struct InputFolder : TemporaryFolder {
    InputFolder() { FilledPicture(64, 32, MColour(10, 20, 30, 200)).Save(File("f.png")); }
};

// What no reader goes on without stands before every input, so that the fuzzer need not find it.
std::string Header() {
    if (form == "sm") return "Showmarquee TextureFont 1.0\r\n";
    if (form == "js") return ToSystem(ScriptHeader()) + "\r\n";
    return {};
}

std::string Stored(const std::string& text, int encoding) {
    std::string bytes = encoding == 1   ? "\xFF\xFE"
                        : encoding == 2 ? "\xFE\xFF"
                        : encoding == 3 ? "\xEF\xBB\xBF"
                                        : "";
    if (encoding != 1 && encoding != 2) return bytes + text;
    for (const char letter : text) {
        // What is not ASCII becomes a character of another page.
        const char page = letter < 0 ? '\x04' : '\0';
        bytes += encoding == 1 ? letter : page;
        bytes += encoding == 1 ? page : letter;
    }
    return bytes;
}

bool Read(MColourFont& font, const MString& path) {
    if (form == "sm") return font.Load(path);
    if (form == "js") return font.ImportJavascript(path);
    if (form == "fnt") return ImportGameFont(font, path).Reason.empty();
    return MPhotofontImporter(nullptr).Import(path, &font);
}

void Require(bool holds) {
    if (!holds) std::abort();
}

// A saved picture gives the transparent pixels beside an edge the edge's colour.
bool LooksSame(const MColour& first, const MColour& second) {
    return first == second || (first.a == 0 && second.a == 0);
}

bool IsWhole(const MColourFont& font) {
    return std::ranges::all_of(font.Glyphs, [](const auto& slot) {
        return !slot || (slot->Character > 32 && slot->Character != 0xFFFF && slot->RowsMatchPicture());
    });
}

// What is larger takes seconds under the fuzzer, and more memory than it has here.
bool IsQuicklySaved(const MColourFont& font) {
    constexpr std::uint64_t mostPixels = 1 << 21;
    return std::uint64_t{font.Picture.Width} * font.Picture.Height <= mostPixels;
}

void RequireSame(const MColourFont& first, const MColourFont& second) {
    Require(first.Baseline == second.Baseline && first.CapHeight == second.CapHeight);
    Require(first.SpaceWidth == second.SpaceWidth);
    for (const auto& slot : first.Glyphs) {
        if (!slot) continue;
        const MGlyph* const other = second.GetGlyph(static_cast<char16_t>(slot->Character));
        Require(other && other->Width == slot->Width && other->Height == slot->Height);
        Require(other->SpacingBefore == slot->SpacingBefore && other->SpacingAfter == slot->SpacingAfter);
        for (std::int32_t y = 0; y < slot->Height; ++y)
            for (std::int32_t x = 0; x < slot->Width; ++x)
                Require(LooksSame(slot->GetPixel(x, y), other->GetPixel(x, y)));
    }
    for (const MKerningPair& pair : first.Kerning) {
        if (pair.Amount == 0) continue; // such are not written
        const MKerningPair* const other = second.FindKerning(static_cast<char16_t>(pair.Left), pair.Right);
        Require(other && other->Amount == pair.Amount);
    }
}

// A game font is written in each form, but for its names, which others make harmless, and is the same then.
void WriteInEachForm(std::string_view bytes) {
    MBmResult read = ReadBmFont(bytes);
    if (!read.Reason.empty() || !WhyNotBinary(read.Font).empty()) return;
    read.Font.Info.Face = "f";
    std::int32_t id = 0;
    for (MBmPage& page : read.Font.Pages) {
        if (page.Id != id++ || id > 256) return; // which only some forms hold
        page.File = "f.png";
    }
    const auto isCharacter = [](std::int32_t code) { return code >= -1 && code <= 0x10FFFF; };
    for (const MBmKerning& pair : read.Font.Kernings)
        if (!isCharacter(pair.First) || !isCharacter(pair.Second)) return;
    for (const MBmFormat& format : BmFormats()) {
        const MBmResult again = format.Read(format.Write(read.Font));
        Require(again.Reason.empty() && again.Rounded == 0);
        Require(again.Font.Chars == read.Font.Chars && again.Font.Kernings == read.Font.Kernings);
        Require(again.Font.Pages == read.Font.Pages);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const InputFolder place;
    SetMemoryLimit(std::size_t{256} << 20); // beyond what is held now
    RestorePixelBudget();
    MSettings settings;
    Settings = &settings;
    settings.Path(MPathKind::Temporary) = FromSystemPath(place.path);
    if (form == "fnt") WriteInEachForm({reinterpret_cast<const char*>(data), size});
    const int encoding = size > 0 && form == "sm" ? data[size - 1] % 4 : 0;
    const MString file =
        place.Write("f." LETTRINO_FORM,
                    Stored(Header() + std::string(reinterpret_cast<const char*>(data), size), encoding));
    if (form == "sm") MTextFile::ReadWholeFile(file);
    {
        MColourFont font(nullptr);
        if (Read(font, file) && font.Repack()) {
            if (IsWhole(font) && IsQuicklySaved(font) && font.Save(place.File("again.sm"))) {
                MColourFont again(nullptr);
                Require(again.Load(place.File("again.sm")));
                RequireSame(font, again);
            }
            font.GenerateKerning();
            font.Scale(0.5F);
            font.TrimVertically();
            font.Repack();
        }
    }
    Settings = nullptr;
    return 0;
}
