// Pictures as glyphs: scaled so that the picture's height, with its padding, is the glyph height.

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "foundation/MFolders.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <vector>

namespace {

// Rows of the source as they are needed: where they lie, for format 7, else converted.
class SourceRows {
public:
    explicit SourceRows(const MPicture& source) : picture(source) {}

    const MColour* Row(std::int32_t y, std::size_t place) {
        if (picture.Format == FormatRGBA8) return reinterpret_cast<const MColour*>(picture.PixelAddress(0, y));
        std::vector<MColour>& row = converted[place];
        row.resize(picture.Width);
        for (std::uint32_t x = 0; x < picture.Width; ++x)
            row[x] = picture.GetPixel(static_cast<std::int32_t>(x), y);
        return row.data();
    }

private:
    const MPicture& picture;
    std::array<std::vector<MColour>, 6> converted;
};

// The sums of one source column over the rows of a block.
struct Column {
    std::uint16_t r = 0;
    std::uint16_t g = 0;
    std::uint16_t b = 0;
    std::uint16_t a = 0;
    std::uint16_t visible = 0;
};

// Resamples by point sets: each pixel is the mean of a block of n by n source points from its scaled place on,
// as many of them as lie inside the picture. The block is not spread over the source area, so of a large
// picture points are left out. Alpha is the mean of all, colour that of the visible points, so edges don't
// darken.
class PointSampler {
public:
    PointSampler(const MPicture& source, MGlyph& glyph, std::int64_t paddedHeight, std::int64_t paddingTop)
        : picture(source), target(glyph), total(paddedHeight), padding(paddingTop),
          side(std::clamp<std::int64_t>(paddedHeight / glyph.Height + 1, 2, 6)), rows(source),
          columns(source.Width) {}

    void Run() {
        for (std::int32_t y = 0; y < target.Height; ++y) {
            const std::int64_t top = y * total / target.Height - padding;
            const std::int64_t first = std::max<std::int64_t>(top, 0);
            const std::int64_t end = std::min<std::int64_t>(top + side, picture.Height);
            if (first >= end) continue; // padding: stays transparent
            AddUpRows(first, end);
            WriteRow(y, static_cast<std::uint32_t>(end - first));
        }
    }

private:
    const MPicture& picture;
    MGlyph& target;
    std::int64_t total;
    std::int64_t padding;
    std::int64_t side;
    SourceRows rows;
    std::vector<Column> columns;

    void AddUpRows(std::int64_t first, std::int64_t end) {
        std::ranges::fill(columns, Column());
        for (std::int64_t y = first; y < end; ++y) {
            const MColour* const row =
                rows.Row(static_cast<std::int32_t>(y), static_cast<std::size_t>(y - first));
            for (std::size_t x = 0; x < columns.size(); ++x) {
                const MColour pixel = row[x];
                const std::uint16_t mask = pixel.a != 0 ? 0xFF : 0;
                Column& column = columns[x];
                column.r = static_cast<std::uint16_t>(column.r + (pixel.r & mask));
                column.g = static_cast<std::uint16_t>(column.g + (pixel.g & mask));
                column.b = static_cast<std::uint16_t>(column.b + (pixel.b & mask));
                column.a = static_cast<std::uint16_t>(column.a + pixel.a);
                column.visible = static_cast<std::uint16_t>(column.visible + (mask & 1));
            }
        }
    }

    void WriteRow(std::int32_t y, std::uint32_t rowCount) {
        auto* const pixels = reinterpret_cast<MColour*>(target.Picture.PixelAddress(0, y));
        for (std::int32_t x = 0; x < target.Width; ++x) {
            const std::int64_t left = std::int64_t{x} * picture.Width / target.Width;
            const std::int64_t end = std::min<std::int64_t>(left + side, picture.Width);
            std::uint32_t r = 0;
            std::uint32_t g = 0;
            std::uint32_t b = 0;
            std::uint32_t a = 0;
            std::uint32_t visible = 0;
            for (std::int64_t i = left; i < end; ++i) {
                const Column& column = columns[static_cast<std::size_t>(i)];
                r += column.r;
                g += column.g;
                b += column.b;
                a += column.a;
                visible += column.visible;
            }
            if (visible == 0) continue;
            // Whole numbers this small divide as their floats do, truncated.
            const std::uint32_t all = rowCount * static_cast<std::uint32_t>(end - left);
            pixels[x] = MColour(static_cast<std::uint8_t>(r / visible), static_cast<std::uint8_t>(g / visible),
                                static_cast<std::uint8_t>(b / visible), static_cast<std::uint8_t>(a / all));
        }
    }
};

void CopyPixels(const MPicture& picture, MGlyph& glyph) {
    SourceRows rows(picture);
    for (std::int32_t y = 0; y < glyph.Height; ++y) {
        std::memcpy(glyph.Picture.PixelAddress(0, y), rows.Row(y, 0),
                    static_cast<std::size_t>(glyph.Width) * sizeof(MColour));
    }
}

} // namespace

bool MColourFont::AddPictureGlyph(char16_t character, const MString& path, std::int32_t spacingBefore,
                                  std::int32_t spacingAfter, bool trim) {
    if (!FileExists(path)) return false;
    MPicture picture(path);
    const bool added =
        picture.IsValid() && AddPictureGlyph(character, picture, spacingBefore, spacingAfter, trim);
    picture.Free();
    return added;
}

bool MColourFont::AddPictureGlyph(char16_t character, const MPicture& picture, std::int32_t spacingBefore,
                                  std::int32_t spacingAfter, bool trim) {
    const std::int64_t paddingTop = Settings->PaddingTop;
    const std::int64_t paddingBottom = Settings->PaddingBottom;
    if (paddingTop < 0 || paddingBottom < 0 || !picture.IsValid()) return false;
    const std::int32_t slot = ClaimSlot(character);
    if (slot < 0) return false;

    const std::int64_t total = paddingTop + paddingBottom + picture.Height;
    const std::int32_t height = Settings->GlyphHeight;
    const std::int64_t width = std::int64_t{height} * picture.Width / total;
    if (width > std::numeric_limits<std::int32_t>::max()) return false;
    auto& glyph = Glyphs[static_cast<std::size_t>(slot)];
    glyph = std::make_unique<MGlyph>(character, static_cast<std::int32_t>(width), height, spacingBefore,
                                     spacingAfter, true);
    if (glyph->Picture.IsValid()) {
        if (width == picture.Width && static_cast<std::uint32_t>(height) == picture.Height) {
            CopyPixels(picture, *glyph);
        } else {
            PointSampler(picture, *glyph, total, paddingTop).Run();
        }
        if (trim) glyph->Trim();
    }
    if (character == u'A') {
        // Of the source picture, neither scaled nor padded, and whatever the font had: rendered letters differ
        // in both.
        std::uint32_t top = 0;
        std::uint32_t right = 0;
        std::uint32_t bottom = 0;
        std::uint32_t left = 0;
        picture.GetMargins(top, right, bottom, left);
        CapHeight = static_cast<std::int32_t>(picture.Height - top - bottom);
        Baseline = static_cast<std::int32_t>(bottom);
    }
    return true;
}
