// One character of a colour font: its code, its place in the packed picture, its spacing and its own picture.
#pragma once

#include "foundation/MString.h"
#include "imaging/MPicture.h"

#include <cstdint>

class MGlyph {
public:
    char16_t Character = 0; // the one key of a glyph
    // Left and top edge in the packed picture, in pixels. Set only by MColourFont::Repack; meaningless before.
    std::int32_t X = 0;
    std::int32_t Y = 0;
    std::int32_t Width = 0;  // pixels
    std::int32_t Height = 0; // pixels; as a rule the glyph height of the settings
    // Pixels between the pen and the picture's left edge, and between its right edge and the next pen position.
    // The pen advances by SpacingBefore + Width + SpacingAfter, and by the pair's kerning between two glyphs.
    std::int32_t SpacingBefore = 0;
    std::int32_t SpacingAfter = 0;
    bool FromPicture = false; // made from a picture or read from a file; decides nothing
    // Format 7, owned. Width and Height normally equal the fields above; after a failed resize they differ.
    MPicture Picture;

    MGlyph() = default;
    // The picture is fully transparent black; there is none if the width or height is below 1 or memory is
    // exhausted, but the numbers stay as given.
    MGlyph(std::uint32_t character, std::int32_t width, std::int32_t height, std::int32_t spacingBefore,
           std::int32_t spacingAfter, bool fromPicture);
    MGlyph(const MGlyph&) = delete;
    MGlyph& operator=(const MGlyph&) = delete;
    ~MGlyph() { Release(); }

    void Release() { Picture.Free(); }

    // Fully transparent black outside Width x Height; a glyph doesn't wrap around like its picture.
    MColour GetPixel(std::int32_t x, std::int32_t y) const;
    // Not checked: coordinates outside the picture wrap around.
    void SetPixel(std::int32_t x, std::int32_t y, const MColour& colour);

    // True if the picture is valid and exactly Width x Height, so that its rows can be read as they lie.
    bool RowsMatchPicture() const;

    // The rows of Height that the picture has: fewer after a failed resize, and 0 without a picture.
    std::int32_t PictureRows() const;

    void GetVerticalMargins(std::uint32_t& top, std::uint32_t& bottom) const;
    // Removes the empty columns at both sides but one, which stays at the right. Nothing happens where that
    // would not make the glyph narrower. The spacings stay.
    void Trim();
    // Removes rows from both ends; nothing happens if none would be left.
    void TrimRows(std::uint32_t top, std::uint32_t bottom);
    // Resizes the picture and multiplies the spacings, truncated toward zero. If the new picture can't be made
    // the old one stays, but the numbers change all the same.
    void Scale(float factor);

private:
    void ReplacePicture(const MPicture& picture);
};
