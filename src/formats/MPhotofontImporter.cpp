#include "formats/MPhotofontImporter.h"

#include "document/MSettings.h"
#include "formats/Base64.h"
#include "foundation/MDebug.h"
#include "foundation/MFile.h"
#include "foundation/MFolders.h"
#include "imaging/MPixelBudget.h"
#include "platform/MProgressDialog.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint64_t fewPixels = std::uint64_t{1} << 26; // of all pictures of a small file
constexpr std::int32_t space = 32;                          // the first code that a glyph may have

bool Has(std::u16string_view line, std::u16string_view tag) {
    return line.find(tag) != std::u16string_view::npos;
}

bool Has(const MString& line, std::u16string_view tag) {
    return Has(line.View(), tag);
}

// The value after a blank, the name and ="; up to the next quotation mark. Empty if there is none.
MString Attribute(const MString& line, std::u16string_view name) {
    std::u16string start(1, u' ');
    start += name;
    start += u"=\"";
    const std::u16string_view text = line.View();
    const std::size_t at = text.find(start);
    if (at == std::u16string_view::npos) return {};
    const std::u16string_view value = text.substr(at + start.size());
    return MString(value.substr(0, value.find(u'"')));
}

std::int32_t Number(const MString& line, std::u16string_view name) {
    return Attribute(line, name).ToInt();
}

std::int32_t Narrow(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

void ClearPadding() {
    Settings->PaddingTop = 0;
    Settings->PaddingBottom = 0;
    Settings->SpacingBefore = 0;
    Settings->SpacingAfter = 0;
}

bool WriteFile(const MString& path, std::string_view base64) {
    const auto bytes = DecodeBase64(base64);
    if (!bytes || bytes->empty()) return false;
    MFile file(path, true, false);
    return file.Write(bytes->data(), bytes->size());
}

bool HasBoxSize(const MPicture& picture, const MPhotofontGlyph& glyph) {
    return picture.Width == static_cast<std::uint32_t>(glyph.BoxWidth) &&
           picture.Height == static_cast<std::uint32_t>(glyph.BoxHeight);
}

} // namespace

MPhotofontImporter::MPhotofontImporter(Desktop::WindowHandle owner) : Owner(owner) {}

std::int32_t MPhotofontImporter::FindUnicode(const MString& id) const {
    const auto found = mapped.find(std::u16string(id.View()));
    return found == mapped.end() ? 0 : Mapping[found->second].Unicode;
}

bool MPhotofontImporter::Import(const MString& path, MColourFont* target) {
    if (!FileExists(path) || !target) return false;
    font = target;
    font->Clear();
    MTextFile file(path, false, false, MTextEncoding::Ansi);
    if (!file.ok) return false;
    kerning.emplace(*font);
    const auto bytes = static_cast<std::uint64_t>(std::max<std::int64_t>(GetFileSize(path), 0));
    pixelsLeft = std::min(std::max(fewPixels, bytes * FreePixelsPerByte), MemoryLimit() / 2 / sizeof(MColour));
    ProgressDialog.Configure(Owner);
    ProgressDialog.Open();
    while (file.NextLine()) {
        // Most lines by far are data, which holds no escapes.
        const bool isData = !MTextFile::MayHoldEscapes(file.RawLine()) && TakeData(file.RawLine());
        if (!isData) ReadLine(file.GetLine());
    }
    kerning->Store(*font);
    font->SortGlyphs();
    font->SortKerningByAmount();
    ClearPadding();
    font->TrimVertically();
    ProgressDialog.Close();
    return true;
}

void MPhotofontImporter::ReadLine(const MString& line) {
    if (section == Section::Image) {
        if (Has(line, u"base64")) {
            inData = true;
        } else if (TakeData(line.View())) {
            return;
        } else if (Has(line, u"</image>") && imageGlyph) {
            section = Section::None;
            ProcessImage(Glyphs[*imageGlyph]);
        }
        // The end of an image that no glyph names doesn't end it: all images after it are passed over.
        return;
    }
    // The parts of the mapping don't use up their line.
    if (section == Section::None && Has(line, u"<unicode_mapping")) section = Section::Mapping;
    if (section == Section::Mapping && Has(line, u"<map")) AddMapping(line);
    if (section == Section::Mapping && Has(line, u"</unicode_mapping>")) section = Section::None;

    if (section == Section::None && Has(line, u"<kerning")) {
        section = Section::Kerning;
    } else if (section == Section::Kerning && Has(line, u"<pair")) {
        AddPair(line);
    } else if (section == Section::Kerning && Has(line, u"</kerning>")) {
        section = Section::None;
    } else if (section == Section::None && Has(line, u"<glyph ")) {
        StartGlyph(line);
    } else if (section == Section::Glyph && glyphIsCurrent && ReadGlyphLine(line)) {
        return;
    } else if (section == Section::Glyph && Has(line, u"</glyph>")) {
        section = Section::None;
    } else if (section == Section::None && Has(line, u"</glyphs>")) {
        SetMetrics();
    } else if (section == Section::None && Has(line, u"<image")) {
        StartImage(line);
    }
}

// True if the line is one of an image's data; a line with a blank is taken as such, but not kept. The bytes are
// searched where they go, since bytes are searched faster than units.
bool MPhotofontImporter::TakeData(std::u16string_view line) {
    if (section != Section::Image || !inData) return false;
    char16_t allBits = 0;
    for (const char16_t unit : line)
        allBits |= unit;
    if (allBits > 0xFF && (Has(line, u"base64") || Has(line, u"</image>"))) return false;
    const std::size_t size = base64.size();
    base64.resize(size + line.size());
    std::ranges::transform(line, base64.begin() + static_cast<std::ptrdiff_t>(size),
                           [](char16_t unit) { return static_cast<char>(unit); });
    const std::string_view bytes = std::string_view(base64).substr(size);
    const bool isTag = allBits <= 0xFF && (bytes.find("base64") != std::string_view::npos ||
                                           bytes.find("</image>") != std::string_view::npos);
    const bool hasBlank = allBits > 0xFF ? line.find(u' ') != std::u16string_view::npos
                                         : bytes.find(' ') != std::string_view::npos;
    if (isTag || hasBlank) base64.resize(size);
    return !isTag;
}

// An id that is mapped twice keeps its first character, but a small ASCII letter gives way to its capital.
void MPhotofontImporter::AddMapping(const MString& line) {
    const MString id = Attribute(line, u"id");
    const std::int32_t unicode = Number(line, u"unc");
    if (id.IsEmpty() || unicode < space) return;
    const auto [place, isNew] = mapped.try_emplace(std::u16string(id.View()), Mapping.size());
    if (isNew) {
        Mapping.push_back({id, unicode});
        return;
    }
    std::int32_t& known = Mapping[place->second].Unicode;
    if (known >= 'a' && known <= 'z' && unicode == known - 32) known = unicode;
}

void MPhotofontImporter::AddPair(const MString& line) {
    const std::int32_t left = FindUnicode(Attribute(line, u"left"));
    const std::int32_t right = FindUnicode(Attribute(line, u"right"));
    const std::int32_t amount = Number(line, u"x");
    if (left >= 1 && right >= 1 && amount != 0) kerning->Set(left, static_cast<std::uint32_t>(right), amount);
}

void MPhotofontImporter::StartGlyph(const MString& line) {
    section = Section::Glyph;
    const std::int32_t unicode = FindUnicode(Attribute(line, u"id"));
    glyphIsCurrent = unicode >= space;
    if (!glyphIsCurrent) return;
    Glyphs.emplace_back();
    Glyphs.back().Unicode = unicode;
    imageUsers[u""].insert(Glyphs.size() - 1);
}

bool MPhotofontImporter::ReadGlyphLine(const MString& line) {
    MPhotofontGlyph& glyph = Glyphs.back();
    if (Has(line, u"<shape ")) {
        SetImageId(Glyphs.size() - 1, Attribute(line, u"embedded"));
    } else if (Has(line, u"<bbox ")) {
        glyph.BoxX = Number(line, u"x");
        glyph.BoxY = Number(line, u"y");
        glyph.BoxWidth = Number(line, u"width");
        glyph.BoxHeight = Number(line, u"height");
    } else if (Has(line, u"<base ")) {
        glyph.BaseX = Number(line, u"x");
        glyph.BaseY = Number(line, u"y");
    } else if (Has(line, u"<delta ")) {
        glyph.DeltaX = Number(line, u"x");
        glyph.DeltaY = Number(line, u"y");
        if (glyph.Unicode == space) spaceWidth = glyph.DeltaX;
    } else {
        return false;
    }
    return true;
}

void MPhotofontImporter::SetImageId(std::size_t glyph, const MString& id) {
    MString& own = Glyphs[glyph].ImageId;
    imageUsers[std::u16string(own.View())].erase(glyph);
    imageUsers[std::u16string(id.View())].insert(glyph);
    own = id;
}

void MPhotofontImporter::SetMetrics() {
    MaxAscent = 0;
    MaxDescent = 0;
    for (const MPhotofontGlyph& glyph : Glyphs) {
        MaxAscent = std::max(MaxAscent, glyph.BaseY);
        MaxDescent = std::max(MaxDescent, Narrow(std::int64_t{glyph.BoxHeight} - glyph.BaseY));
    }
    font->Baseline = MaxDescent;
    font->SetGlyphHeight(Narrow(std::int64_t{MaxAscent} + MaxDescent));
    if (spaceWidth >= 0) font->SpaceWidth = spaceWidth;
    ClearPadding();
}

void MPhotofontImporter::StartImage(const MString& line) {
    section = Section::Image;
    const auto users = imageUsers.find(std::u16string(Attribute(line, u"id").View()));
    const bool used = users != imageUsers.end() && !users->second.empty();
    imageGlyph = used ? std::optional(*users->second.begin()) : std::nullopt;
    base64.clear();
    inData = false;
}

// Boxes from a file can claim any number of huge pictures.
bool MPhotofontImporter::TakePixels(std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1) return false;
    const std::uint64_t area = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    if (area > pixelsLeft) return false;
    pixelsLeft -= area;
    return true;
}

void MPhotofontImporter::ProcessImage(const MPhotofontGlyph& glyph) {
    if (glyph.Unicode <= space || !inData || base64.empty()) return;
    std::optional<MPicture> picture = DecodeImage(glyph);
    if (!picture) return;
    if (!HasBoxSize(*picture, glyph)) {
        const auto number = [](std::int64_t value) { return MString(Narrow(value)); };
        DebugOutput((MString("ERROR: resolution bitmap (") + number(picture->Width) + "," +
                     number(picture->Height) + ") unicode " + number(glyph.Unicode) + " does not match box (" +
                     number(glyph.BoxWidth) + "," + number(glyph.BoxHeight) + ")\n")
                        .View());
        if (TakePixels(glyph.BoxWidth, glyph.BoxHeight)) {
            const MPicture boxed(*picture, static_cast<std::uint32_t>(glyph.BoxWidth),
                                 static_cast<std::uint32_t>(glyph.BoxHeight), picture->Format, false, false);
            if (boxed.IsValid()) {
                picture->Free();
                *picture = boxed;
            }
        }
    }
    if (HasBoxSize(*picture, glyph)) AddGlyph(glyph, *picture);
    picture->Free();
}

// Through a temporary file, which is gone afterwards. The picture is the caller's, and valid.
std::optional<MPicture> MPhotofontImporter::DecodeImage(const MPhotofontGlyph& glyph) {
    const MString path = JoinPath(Settings->Path(MPathKind::Temporary), "temp.png");
    std::optional<MPicture> picture;
    if (pixelsLeft > 0 && WriteFile(path, base64)) {
        picture = MPicture(path);
        if (!picture->IsValid()) picture.reset();
        if (picture) pixelsLeft -= std::min(pixelsLeft, std::uint64_t{picture->Width} * picture->Height);
    } else {
        DebugOutput((MString("ERROR: Could not decode ") + MString(glyph.Unicode) + "\n").View());
    }
    DeleteFile(path, false, false);
    return picture;
}

// Cuts the picture to its ink, and places it in a cell of the font's height so that all baselines fall on one
// row.
void MPhotofontImporter::AddGlyph(const MPhotofontGlyph& glyph, const MPicture& picture) {
    std::uint32_t top = 0;
    std::uint32_t right = 0;
    std::uint32_t bottom = 0;
    std::uint32_t left = 0;
    picture.GetMargins(top, right, bottom, left);
    const std::int64_t width = std::int64_t{glyph.BoxWidth} - left - right;
    const std::int64_t height = std::int64_t{MaxAscent} + MaxDescent;
    if (!TakePixels(width, height)) return;
    MPicture cell(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), FormatRGBA8);
    if (!cell.IsValid()) return;
    cell.Fill(MColour(0, 0, 0, 0));
    const std::int64_t shift = std::int64_t{glyph.BaseY} - MaxAscent;
    const std::int64_t firstRow = std::max<std::int64_t>(0, -shift);
    const std::int64_t endRow = std::min(height, std::int64_t{picture.Height} - shift);
    for (std::int64_t row = firstRow; row < endRow; ++row) {
        const auto target = static_cast<std::int32_t>(row);
        const auto source = static_cast<std::int32_t>(row + shift);
        const auto firstColumn = static_cast<std::int32_t>(left);
        if (picture.Format == FormatRGBA8) {
            std::memcpy(cell.PixelAddress(0, target), picture.PixelAddress(firstColumn, source), cell.Stride);
            continue;
        }
        for (std::int32_t x = 0; x < width; ++x)
            cell.SetPixel(x, target, picture.GetPixel(firstColumn + x, source));
    }
    font->AddPictureGlyph(static_cast<char16_t>(glyph.Unicode), cell, Narrow(std::int64_t{left} - glyph.BaseX),
                          Narrow(std::int64_t{glyph.DeltaX} - glyph.BoxWidth + right + glyph.BaseX), false);
    cell.Free();
    ++imagesDone;
    ProgressDialog.Update(static_cast<float>(imagesDone) / static_cast<float>(Glyphs.size()),
                          "Importing Glyphs...");
}
