#include "document/MGlyph.h"

#include "foundation/MDebug.h"
#include "foundation/MNumbers.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr MColour transparent{0, 0, 0, 0};
constexpr std::size_t pixelBytes = sizeof(MColour);

MString TrimMessage(std::int32_t before, std::int32_t after) {
    return MString("Trim: ") + MString(before) + " - " + MString(after) + " = " + MString(before - after) +
           " pixels\n";
}

} // namespace

MGlyph::MGlyph(std::uint32_t character, std::int32_t width, std::int32_t height, std::int32_t spacingBefore,
               std::int32_t spacingAfter, bool fromPicture)
    : Character(static_cast<char16_t>(character)), Width(width), Height(height), SpacingBefore(spacingBefore),
      SpacingAfter(spacingAfter), FromPicture(fromPicture) {
    if (width < 1 || height < 1) return;
    Picture = MPicture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), FormatRGBA8);
    if (Picture.IsValid()) std::memset(Picture.Pixels, 0, std::size_t{Picture.Stride} * Picture.Height);
}

MColour MGlyph::GetPixel(std::int32_t x, std::int32_t y) const {
    if (x < 0 || x >= Width || y < 0 || y >= Height || !Picture.IsValid()) return transparent;
    return Picture.GetPixel(x, y);
}

void MGlyph::SetPixel(std::int32_t x, std::int32_t y, const MColour& colour) {
    Picture.SetPixel(x, y, colour);
}

std::int32_t MGlyph::PictureRows() const {
    if (!Picture.IsValid() || Height < 1) return 0;
    return static_cast<std::int32_t>(std::min(static_cast<std::uint32_t>(Height), Picture.Height));
}

bool MGlyph::RowsMatchPicture() const {
    return Picture.IsValid() && Picture.Format == FormatRGBA8 && Width > 0 && Height > 0 &&
           Picture.Width == static_cast<std::uint32_t>(Width) &&
           Picture.Height == static_cast<std::uint32_t>(Height);
}

void MGlyph::GetVerticalMargins(std::uint32_t& top, std::uint32_t& bottom) const {
    std::uint32_t right = 0;
    std::uint32_t left = 0;
    Picture.GetMargins(top, right, bottom, left);
}

void MGlyph::Trim() {
    if (!Picture.IsValid()) return;
    std::uint32_t top = 0;
    std::uint32_t right = 0;
    std::uint32_t bottom = 0;
    std::uint32_t left = 0;
    Picture.GetMargins(top, right, bottom, left);
    const auto newWidth = static_cast<std::int32_t>(Picture.Width - right - left + 1);
    if (newWidth < 1 || newWidth >= Width || Height < 1) return;
    DebugOutput(TrimMessage(Width, newWidth).View());

    const MPicture trimmed(static_cast<std::uint32_t>(newWidth), static_cast<std::uint32_t>(Height),
                           FormatRGBA8);
    if (!trimmed.IsValid()) return;
    const auto firstColumn = static_cast<std::int32_t>(left);
    for (std::int32_t y = 0; y < Height; ++y) {
        std::uint8_t* const row = trimmed.PixelAddress(0, y);
        const auto inked = static_cast<std::size_t>(newWidth - 1) * pixelBytes;
        std::memcpy(row, Picture.PixelAddress(firstColumn, y), inked);
        // The column just right of the ink. Where the ink reaches the edge this wraps around to column 0, which
        // is empty too: the glyph would not get narrower without a left margin of at least 2.
        std::memcpy(row + inked, Picture.PixelAddress(firstColumn + newWidth - 1, y), pixelBytes);
    }
    ReplacePicture(trimmed);
    Width = newWidth;
}

void MGlyph::TrimRows(std::uint32_t top, std::uint32_t bottom) {
    if (!Picture.IsValid()) return;
    const std::int64_t newHeight = std::int64_t{Picture.Height} - top - bottom;
    if (newHeight < 1) return;
    const MPicture trimmed(Picture.Width, static_cast<std::uint32_t>(newHeight), FormatRGBA8);
    if (!trimmed.IsValid()) return;
    std::memcpy(trimmed.Pixels, Picture.Pixels + std::size_t{top} * Picture.Stride,
                std::size_t{trimmed.Stride} * trimmed.Height);
    ReplacePicture(trimmed);
    Height = static_cast<std::int32_t>(newHeight);
}

void MGlyph::Scale(float factor) {
    const auto scaled = [factor](std::int32_t value) { return ToInteger(static_cast<float>(value) * factor); };
    const std::int32_t newWidth = scaled(Width);
    const std::int32_t newHeight = scaled(Height);
    if (newWidth > 0 && newHeight > 0) {
        const MPicture resized(Picture, static_cast<std::uint32_t>(newWidth),
                               static_cast<std::uint32_t>(newHeight), FormatRGBA8, true, false);
        if (resized.IsValid()) ReplacePicture(resized);
    }
    Width = newWidth;
    Height = newHeight;
    SpacingBefore = scaled(SpacingBefore);
    SpacingAfter = scaled(SpacingAfter);
}

void MGlyph::ReplacePicture(const MPicture& picture) {
    Picture.Free();
    Picture = picture;
}
