// The packing of all glyphs into one picture: shelves in slot order, in the smallest picture of a fixed
// sequence.

#include "document/GlyphPixels.h"
#include "document/MColourFont.h"
#include "foundation/MNumbers.h"
#include "platform/MLongWork.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr std::int32_t startSize = 128;
constexpr std::int64_t gap = 16; // around every glyph; at the right and bottom edge one pixel more

struct Size {
    std::int32_t width;
    std::int32_t height;
};

struct Place {
    std::int64_t x;
    std::int64_t y;
};

// The shelf layout in a picture of one size. A glyph that doesn't fit the row breaks it, also an empty one, and
// is not tested against the width again, so a glyph wider than the picture stands alone and wraps around. A
// break moves down by the height of the glyph that didn't fit, since all glyphs of a font have one height.
class Shelf {
public:
    explicit Shelf(Size pictureSize) : size(pictureSize) {}

    // Places the next glyph; false if it lies below the picture.
    bool Add(const MGlyph& glyph, Place& place) {
        if (next.x + gap + glyph.Width >= size.width) {
            next.y += gap + glyph.Height;
            next.x = gap;
        }
        if (next.y + gap + glyph.Height >= size.height) return false;
        place = next;
        next.x += gap + glyph.Width;
        return true;
    }

private:
    Size size;
    Place next{gap, gap};
};

bool HasArea(const std::unique_ptr<MGlyph>& slot) {
    return slot && slot->Width >= 1 && slot->Height >= 1;
}

bool Fits(const MColourFont& font, Size size) {
    Shelf shelf(size);
    Place place{};
    return std::ranges::all_of(font.Glyphs,
                               [&](const auto& slot) { return !HasArea(slot) || shelf.Add(*slot, place); });
}

// From a square: first twice as wide, then twice as tall, then the next square. False when a side would not fit
// 32 bits any more.
bool Grow(Size& size) {
    const std::int64_t doubledWidth = 2 * std::int64_t{size.width};
    const std::int64_t doubledHeight = 2 * std::int64_t{size.height};
    if (doubledWidth > std::numeric_limits<std::int32_t>::max()) return false;
    if (doubledWidth <= doubledHeight) {
        size.width = static_cast<std::int32_t>(doubledWidth);
    } else {
        size = {size.height, static_cast<std::int32_t>(doubledHeight)};
    }
    return true;
}

// Copies a glyph whose rows lie as its numbers say. Columns beyond the right edge wrap around onto the same
// rows; of those that meet in one place the last one stays, so only the last picture width of columns is
// copied.
void CopyRows(MPicture& picture, const MGlyph& glyph) {
    const std::int64_t pictureWidth = picture.Width;
    for (std::int32_t row = 0; row < glyph.Height; ++row) {
        const std::uint8_t* const source = glyph.Picture.PixelAddress(0, row);
        std::int64_t column = std::max<std::int64_t>(0, glyph.Width - pictureWidth);
        while (column < glyph.Width) {
            const std::uint32_t x = Wrap(glyph.X + column, picture.Width);
            const std::int64_t run = std::min<std::int64_t>(glyph.Width - column, pictureWidth - x);
            std::memcpy(picture.PixelAddress(static_cast<std::int32_t>(x), glyph.Y + row),
                        source + column * std::int64_t{sizeof(MColour)},
                        static_cast<std::size_t>(run) * sizeof(MColour));
            column += run;
        }
    }
}

// The same for a glyph whose numbers and picture differ: what GetPixel gives, transparent without a picture.
void CopyPixelByPixel(MPicture& picture, const MGlyph& glyph) {
    const std::int32_t first = std::max(0, glyph.Width - static_cast<std::int32_t>(picture.Width));
    for (std::int32_t row = 0; row < glyph.Height; ++row) {
        for (std::int32_t column = first; column < glyph.Width; ++column) {
            const std::uint32_t x = Wrap(std::int64_t{glyph.X} + column, picture.Width);
            picture.SetPixel(static_cast<std::int32_t>(x), glyph.Y + row, glyph.GetPixel(column, row));
        }
    }
}

// Glyphs can claim any size without having so many pixels, when a file told it or when memory was short; nobody
// needs a picture of such.
bool IsJustified(const MColourFont& font, const Size& size) {
    constexpr std::uint64_t always = std::uint64_t{1} << 25;
    constexpr std::uint64_t mostWaste = 16; // shelves of uneven glyphs, in a picture whose sides double
    const std::uint64_t pixels = GlyphPixels(font);
    const std::uint64_t area = static_cast<std::uint64_t>(size.width) * static_cast<std::uint64_t>(size.height);
    // Half a gigabyte and more must be filled by a third: as a smaller picture did not do, all but the oddest
    // shapes do so.
    constexpr std::uint64_t large = std::uint64_t{1} << 27;
    if (area > large && area / 3 > pixels) return false;
    return area <= std::max(always, pixels * mostWaste);
}

} // namespace

bool MColourFont::Repack() {
    static std::uint64_t repacks = 0;
    PictureRevision = ++repacks;
    Picture.Free();
    Size size{startSize, startSize};
    bool fits = Fits(*this, size);
    while (!fits && Grow(size))
        fits = Fits(*this, size);
    PictureWidth = size.width;
    PictureHeight = size.height;
    if (!fits || !IsJustified(*this, size)) return false;

    Picture =
        MPicture(static_cast<std::uint32_t>(size.width), static_cast<std::uint32_t>(size.height), FormatRGBA8);
    if (!Picture.IsValid()) return false;
    MLongWork work(Owner, "Packing characters...", std::uint64_t{Picture.Width} * Picture.Height);
    std::memset(Picture.Pixels, 0, std::size_t{Picture.Stride} * Picture.Height);
    Shelf shelf(size);
    for (std::size_t number = 0; number < SlotCount; ++number) {
        work.At(number, SlotCount);
        const auto& slot = Glyphs[number];
        Place place{};
        if (!HasArea(slot)) continue;
        if (!shelf.Add(*slot, place)) break;
        slot->X = static_cast<std::int32_t>(place.x);
        slot->Y = static_cast<std::int32_t>(place.y);
        if (slot->RowsMatchPicture()) {
            CopyRows(Picture, *slot);
        } else {
            CopyPixelByPixel(Picture, *slot);
        }
    }
    return true;
}
