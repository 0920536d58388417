#include "formats/MGlyphCutter.h"

#include "foundation/MNumbers.h"
#include "imaging/MPixelBudget.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint64_t fewPixels = std::uint64_t{1} << 24;

// As many as the picture has, since the glyphs of a picture rarely overlap, counted with those that are spare.
std::uint64_t PixelsOf(const MPicture& source) {
    const std::uint64_t pixels = std::uint64_t{source.Width} * source.Height;
    return std::max(pixels - std::min(pixels, SparePixels), fewPixels);
}

std::int32_t Scaled(std::int32_t value, float factor) {
    return ToInteger(static_cast<float>(value) * factor);
}

} // namespace

// A file can claim any number of huge glyphs, each small enough to be allocated. Together they may take half of
// what a single block may have.
MGlyphCutter::MGlyphCutter(const MPicture& source)
    : picture(source), bytesLeft(MemoryLimit() / 2), pixelsLeft(PixelsOf(source)) {}

bool MGlyphCutter::TakePixels(std::uint64_t count) {
    const bool free = count <= pixelsLeft;
    if (free) pixelsLeft -= count;
    return free || TakeSparePixels(count);
}

void MGlyphCutter::Cut(MColourFont& font, MGlyphRecord record) {
    if (horizontalScale != 1.0F || verticalScale != 1.0F) {
        record.x = Scaled(record.x, horizontalScale);
        record.y = Scaled(record.y, verticalScale);
        record.width = Scaled(record.width, horizontalScale);
        record.height = Scaled(record.height, verticalScale);
        record.spacingBefore = Scaled(record.spacingBefore, horizontalScale);
        record.spacingAfter = Scaled(record.spacingAfter, horizontalScale);
    }
    const std::int32_t slot = font.ClaimSlot(static_cast<char16_t>(record.character));
    if (slot < 0) return;

    const bool hasArea = record.width > 0 && record.height > 0;
    const std::uint64_t bytes = hasArea ? static_cast<std::uint64_t>(record.width) *
                                              static_cast<std::uint64_t>(record.height) * sizeof(MColour)
                                        : 0;
    const bool affordable = bytes <= bytesLeft && TakePixels(bytes / sizeof(MColour));
    auto glyph = std::make_unique<MGlyph>(record.character, affordable ? record.width : 0,
                                          affordable ? record.height : 0, record.spacingBefore,
                                          record.spacingAfter, true);
    glyph->Width = record.width;
    glyph->Height = record.height;
    if (glyph->Picture.IsValid()) {
        bytesLeft -= bytes;
        CopyPixels(*glyph, record.x, record.y);
    }
    font.Glyphs[static_cast<std::size_t>(slot)] = std::move(glyph);
}

void MGlyphCutter::CopyPixels(MGlyph& glyph, std::int32_t left, std::int32_t top) const {
    const std::int64_t pictureWidth = picture.Width;
    for (std::int32_t row = 0; row < glyph.Height; ++row) {
        const auto y = static_cast<std::int32_t>(Wrap(std::int64_t{top} + row, picture.Height));
        for (std::int64_t column = 0; column < glyph.Width;) {
            const std::uint32_t x = Wrap(left + column, picture.Width);
            const std::int64_t run = std::min<std::int64_t>(glyph.Width - column, pictureWidth - x);
            const auto target = static_cast<std::int32_t>(column);
            if (picture.Format == FormatRGBA8) {
                std::memcpy(glyph.Picture.PixelAddress(target, row),
                            picture.PixelAddress(static_cast<std::int32_t>(x), y),
                            static_cast<std::size_t>(run) * sizeof(MColour));
            } else {
                for (std::int32_t i = 0; i < run; ++i) {
                    glyph.SetPixel(target + i, row, picture.GetPixel(static_cast<std::int32_t>(x) + i, y));
                }
            }
            column += run;
        }
    }
}
