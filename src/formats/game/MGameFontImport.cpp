#include "formats/game/MGameFontImport.h"

#include "document/MKerningTable.h"
#include "document/MSettings.h"
#include "formats/game/MBmFont.h"
#include "foundation/MFile.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"
#include "foundation/MUtf8.h"
#include "imaging/MPixelBudget.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstring>
#include <memory>
#include <utility>

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t longestFile = 32 << 20; // bytes; of our own fonts the largest has 2 MB
constexpr std::int32_t highestLine = 16384;    // rows
constexpr std::int32_t space = 32;
constexpr std::int32_t allChannels = 15;

struct FreePicture {
    void operator()(MPicture* picture) const {
        picture->Free();
        delete picture;
    }
};
using OwnedPage = std::unique_ptr<MPicture, FreePicture>;

// What is left out for one reason: how many, and the first of them.
class Losses {
public:
    void Add(std::string example) {
        if (count++ == 0) first = std::move(example);
    }
    // "12 characters are left out (U+1F600 is the first): ..."
    void Tell(std::vector<std::string>& notes, const std::string& what, const char* why) const {
        if (count == 0) return;
        notes.push_back(std::to_string(count) + " " + what + (count == 1 ? " is" : "s are") + " left out (" +
                        first + (count == 1 ? "): " : " is the first): ") + why);
    }

private:
    std::int32_t count = 0;
    std::string first;
};

std::string CodeText(std::int32_t code) {
    return code < 0 ? std::to_string(code) : CodePointText(static_cast<std::uint32_t>(code));
}

std::string ReadBytes(const MString& path, std::string& reason) {
    std::error_code error;
    const auto existing = FindExisting(path);
    if (!existing) {
        reason = "no such file";
    } else if (fs::is_directory(*existing, error)) {
        reason = "it is a folder";
    } else if (!fs::is_regular_file(*existing, error)) {
        reason = "it is no file that can be read";
    }
    if (!reason.empty()) return {};
    MFile file(path, false, false);
    const std::int64_t size = file.GetSize();
    if (!file.ok || size < 0) {
        reason = "it can't be opened";
    } else if (size > longestFile) {
        reason = "it is larger than any font: " + std::to_string(size) + " bytes";
    }
    if (!reason.empty()) return {};
    std::string bytes(static_cast<std::size_t>(size), '\0');
    bytes.resize(size > 0 ? file.ReadSome(bytes.data(), static_cast<std::uint32_t>(size)) : 0);
    return bytes;
}

// Whether a page's name stays in the folder of the font: no way up, and none from the root or a drive.
bool StaysInFolder(std::string_view name) {
    if (name.find(':') != std::string_view::npos || name.find('\0') != std::string_view::npos) return false;
    while (true) {
        const std::size_t end = name.find_first_of("/\\");
        const std::string_view part = name.substr(0, end);
        if (part.empty() || part == "..") return false;
        if (end == std::string_view::npos) return true;
        name.remove_prefix(end + 1);
    }
}

class Importer {
public:
    Importer(MColourFont& target, MBmFont source, MString fontPath)
        : font(target), file(std::move(source)), path(std::move(fontPath)),
          pixelsLeft(std::min(FontPixels, MemoryLimit() / 2 / sizeof(MColour))) {}

    std::string Run(std::vector<std::string>& notes) {
        Choose(notes);
        if (chosen.empty()) return "none of its characters has a place in a font here";
        if (std::string why = MeasureLine(notes); !why.empty()) return why;
        if (std::string why = FindPages(); !why.empty()) return why;
        for (const fs::path& picture : pictures) {
            if (std::string why = ReadPicture(picture, notes); !why.empty()) return why;
        }
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            if (!glyphs[i])
                return "its character " + CodeText(chosen[i].Id) + " is on page " +
                       std::to_string(chosen[i].Page) + ", which it doesn't name";
        }
        Store(notes);
        return {};
    }

private:
    MColourFont& font;
    MBmFont file;
    MString path;
    std::vector<MBmChar> chosen; // ascending by code
    std::optional<MBmChar> blank;
    std::vector<std::unique_ptr<MGlyph>> glyphs; // of the chosen, one for one
    std::int32_t above = 0;                      // rows that stand out of the line
    std::int32_t height = 0;
    std::int32_t baseline = 0;
    std::int32_t capHeight = 0;
    std::uint64_t pixelsLeft; // for all cells together
    std::vector<fs::path> pictures;
    std::vector<std::pair<const MBmPage*, fs::path>> pages; // those that are needed, and the picture of each

    void Choose(std::vector<std::string>& notes) {
        Losses beyond;
        Losses control;
        Losses repeated;
        Losses tooMany;
        std::ranges::stable_sort(file.Chars, {}, &MBmChar::Id);
        for (const MBmChar& c : file.Chars) {
            if (c.Id > 0xFFFF) {
                beyond.Add(CodeText(c.Id));
            } else if (c.Id < space) {
                control.Add(CodeText(c.Id));
            } else if ((c.Id == space && blank) || (!chosen.empty() && chosen.back().Id == c.Id)) {
                repeated.Add(CodeText(c.Id));
            } else if (c.Id == space) {
                blank = c;
            } else if (chosen.size() == MColourFont::SlotCount) {
                tooMany.Add(CodeText(c.Id));
            } else {
                chosen.push_back(c);
            }
        }
        beyond.Tell(notes, "character", "codes end at U+FFFF here");
        control.Tell(notes, "character", "codes below 32 have no glyph here");
        repeated.Tell(notes, "character", "the font has it twice");
        tooMany.Tell(notes, "character", "a font has 223 at most here");
        glyphs.resize(chosen.size());
    }

    static bool HasArea(const MBmChar& c) { return c.Width > 0 && c.Height > 0; }

    std::string MeasureLine(std::vector<std::string>& notes) {
        std::int32_t top = 0;
        std::int32_t bottom = file.Common.LineHeight;
        Losses standsOut;
        const MBmChar* letterA = nullptr;
        for (const MBmChar& c : chosen) {
            if (c.Id == 'A' && HasArea(c)) letterA = &c;
            if (!HasArea(c)) continue;
            if (c.YOffset < 0 || c.YOffset + c.Height > file.Common.LineHeight) standsOut.Add(CodeText(c.Id));
            top = std::min(top, c.YOffset);
            bottom = std::max(bottom, c.YOffset + c.Height);
        }
        above = -top;
        height = bottom - top;
        if (height < 1 || height > highestLine) return "its lines are " + std::to_string(height) + " rows high";
        if (height != file.Common.LineHeight)
            notes.push_back("the line is " + std::to_string(height) + " rows high instead of " +
                            std::to_string(file.Common.LineHeight) + ": characters stand out of it");
        const bool tellsBase = file.Common.Base > 0 && file.Common.Base < file.Common.LineHeight;
        const std::int32_t base = tellsBase || !letterA ? file.Common.Base : letterA->YOffset + letterA->Height;
        baseline = height - above - base;
        capHeight = letterA ? letterA->Height : 0;
        return {};
    }

    static std::string NameOf(const MBmPage& page) { return "its page " + std::to_string(page.Id); }

    // The pictures of the pages that are needed. Pages that name one file share it, so that it is decoded once.
    std::string FindPages() {
        for (const MBmPage& page : file.Pages) {
            if (std::ranges::find(chosen, page.Id, &MBmChar::Page) == chosen.end()) continue;
            if (!StaysInFolder(page.File)) return NameOf(page) + " has a name that leads out of its folder";
            const MString pageFile = FromSystem(page.File);
            const bool bare = FileNameOf(path).Equals(path);
            std::error_code error;
            const auto existing = FindExisting(bare ? pageFile : JoinPath(FolderOf(path), pageFile));
            if (!existing) return NameOf(page) + " is not there";
            if (!fs::is_regular_file(*existing, error)) return NameOf(page) + " is no file";
            fs::path picture = fs::canonical(*existing, error);
            if (error) picture = *existing;
            if (std::ranges::find(pictures, picture) == pictures.end()) pictures.push_back(picture);
            pages.push_back({&page, std::move(picture)});
        }
        return {};
    }

    std::string ReadPicture(const fs::path& pictureFile, std::vector<std::string>& notes) {
        const OwnedPage picture(new MPicture(FromSystemPath(pictureFile)));
        for (const auto& [page, its] : pages) {
            if (its != pictureFile) continue;
            if (!picture->IsValid()) return NameOf(*page) + " is no picture that can be read";
            if (!HasAlpha(picture->Format) && picture->Format != FormatR8 && file.Common.Packed == 0)
                notes.push_back("page " + std::to_string(page->Id) +
                                " has no transparency: its glyphs are opaque boxes");
            for (std::size_t i = 0; i < chosen.size(); ++i) {
                if (chosen[i].Page != page->Id) continue;
                if (std::string why = CutGlyph(i, *picture); !why.empty()) return why;
            }
        }
        return {};
    }

    std::string CutGlyph(std::size_t i, const MPicture& page) {
        const MBmChar& c = chosen[i];
        const bool inked = HasArea(c);
        if (inked && (static_cast<std::uint32_t>(c.X + c.Width) > page.Width ||
                      static_cast<std::uint32_t>(c.Y + c.Height) > page.Height))
            return "its character " + CodeText(c.Id) + " lies outside of page " + std::to_string(c.Page);
        // What has no picture keeps its place in the line as an empty cell.
        const std::int32_t width = inked ? c.Width : std::max(c.XAdvance, 1);
        const std::int32_t before = inked ? c.XOffset : 0;
        const std::uint64_t pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
        if (pixels > pixelsLeft) return "its characters need more memory than there is";
        pixelsLeft -= pixels;
        auto glyph = std::make_unique<MGlyph>(static_cast<std::uint32_t>(c.Id), width, height, before,
                                              c.XAdvance - before - width, true);
        if (!glyph->Picture.IsValid()) return "its characters need more memory than there is";
        if (inked) CopyPixels(c, page, *glyph);
        glyphs[i] = std::move(glyph);
        return {};
    }

    // A mask becomes white of its strength: that of a channel, where each has glyphs of its own, or that of a
    // page in grey.
    static MColour Mask(std::uint8_t strength) { return MColour(255, 255, 255, strength); }

    void CopyPixels(const MBmChar& c, const MPicture& page, MGlyph& glyph) const {
        const bool packed = file.Common.Packed != 0 && c.Chnl != allChannels;
        for (std::int32_t row = 0; row < c.Height; ++row) {
            const std::int32_t y = above + c.YOffset + row;
            if (!packed && page.Format == FormatRGBA8) {
                std::memcpy(glyph.Picture.PixelAddress(0, y), page.PixelAddress(c.X, c.Y + row),
                            static_cast<std::size_t>(c.Width) * sizeof(MColour));
                continue;
            }
            for (std::int32_t x = 0; x < c.Width; ++x) {
                const MColour pixel = page.GetPixel(c.X + x, c.Y + row);
                if (packed) {
                    const std::uint8_t strength = (c.Chnl & 1) != 0   ? pixel.b
                                                  : (c.Chnl & 2) != 0 ? pixel.g
                                                  : (c.Chnl & 4) != 0 ? pixel.r
                                                                      : pixel.a;
                    glyph.SetPixel(x, y, Mask(strength));
                } else {
                    glyph.SetPixel(x, y, page.Format == FormatR8 ? Mask(pixel.r) : pixel);
                }
            }
        }
    }

    void Store(std::vector<std::string>& notes) {
        font.Clear();
        Settings->GlyphHeight = height;
        font.Baseline = baseline;
        font.CapHeight = capHeight;
        font.SpaceWidth = blank ? blank->XAdvance : height / 2;
        if (!blank) notes.push_back("the font has no space: it is made half as wide as the line is high");
        std::bitset<0x10000> present;
        for (std::size_t i = 0; i < glyphs.size(); ++i) {
            present[glyphs[i]->Character] = true;
            font.Glyphs[i] = std::move(glyphs[i]);
        }
        MKerningTable kerning(font);
        Losses lost;
        const auto exists = [&](std::int32_t code) {
            return code >= 0 && code <= 0xFFFF && present[static_cast<std::size_t>(code)];
        };
        for (const MBmKerning& pair : file.Kernings) {
            if (pair.Amount == 0) continue;
            if (exists(pair.First) && exists(pair.Second)) {
                kerning.Set(pair.First, static_cast<std::uint32_t>(pair.Second), pair.Amount);
            } else {
                lost.Add(CodeText(pair.First) + " " + CodeText(pair.Second));
            }
        }
        lost.Tell(notes, "kerning pair", "one of the two isn't in the font");
        kerning.Store(font);
        font.SortKerningByAmount();
    }
};

} // namespace

bool IsGameFontExtension(const MString& extension) {
    return std::ranges::any_of(std::array{u"FNT", u"XML", u"BIN", u"JSON"},
                               [&](const char16_t* known) { return extension.Equals(known); });
}

MGameFontImport ImportGameFont(MColourFont& font, const MString& path) {
    MGameFontImport result;
    const std::string bytes = ReadBytes(path, result.Reason);
    if (!result.Reason.empty()) return result;
    MBmResult read = ReadBmFont(bytes);
    result.Reason = std::move(read.Reason);
    if (!result.Reason.empty()) return result;
    if (read.Rounded > 0)
        result.Notes.push_back(std::to_string(read.Rounded) + " numbers with a fraction are rounded");
    result.Reason = Importer(font, std::move(read.Font), path).Run(result.Notes);
    return result;
}
