#include "glyphs/MGdiSurface.h"

#include "foundation/MNumbers.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

std::int32_t SideOf(bool empty, std::int64_t side) {
    return empty || side > INT32_MAX ? 0 : static_cast<std::int32_t>(side);
}

// Where text is blended in.
struct Ground {
    MSurfaceBitmap& bitmap;
    MPixelRect region;
    MColour colour;
};

void Blend(std::uint8_t* pixel, const MColour& colour, int coverage) {
    const auto mix = [coverage](std::uint8_t under, std::uint8_t over) {
        return static_cast<std::uint8_t>((under * (255 - coverage) + over * coverage + 127) / 255);
    };
    const MColour mixed(mix(pixel[2], colour.r), mix(pixel[1], colour.g), mix(pixel[0], colour.b));
    std::memcpy(pixel, &mixed, sizeof mixed);
}

void BlendSpans(std::int32_t row, std::span<const MSpan> spans, void* context) {
    const auto& ground = *static_cast<const Ground*>(context);
    std::uint8_t* const start = ground.bitmap.pixels +
                                (ground.region.top + row) * std::int64_t{ground.bitmap.stride} +
                                ground.region.left * 4;
    for (const MSpan& span : spans) {
        std::uint8_t* pixel = start + std::ptrdiff_t{span.x} * 4;
        for (std::uint16_t i = 0; i < span.length; ++i, pixel += 4)
            Blend(pixel, ground.colour, span.coverage);
    }
}

MPixelRect Widened(const Desktop::Rect& rectangle) {
    return {rectangle.left, rectangle.top, rectangle.right, rectangle.bottom};
}

} // namespace

MGdiSurface::MGdiSurface(Desktop::WindowHandle owner, const Desktop::Rect& rectangle)
    : window(owner), area(rectangle),
      bitmap(std::make_unique<MSurfaceBitmap>(
          SideOf(rectangle.IsEmpty(), std::int64_t{rectangle.right} - rectangle.left),
          SideOf(rectangle.IsEmpty(), std::int64_t{rectangle.bottom} - rectangle.top))) {
    valid = bitmap->IsValid();
}

void MGdiSurface::FillRectangle(const Desktop::Rect& rectangle, const MColour& colour) {
    if (!valid) return;
    const MPixelRect filled = Intersect(Widened(rectangle), {0, 0, bitmap->width, bitmap->height});
    const MColour opaque(colour.r, colour.g, colour.b);
    for (std::int64_t y = filled.top; y < filled.bottom; ++y) {
        std::uint8_t* const row = bitmap->pixels + y * bitmap->stride;
        for (std::int64_t x = filled.left; x < filled.right; ++x)
            std::memcpy(row + x * 4, &opaque, sizeof opaque);
    }
}

bool MGdiSurface::TakeFont(MGdiFontKey key) {
    const bool same = font && key.family.Equals(fontKey.family) && key.size == fontKey.size &&
                      key.weight == fontKey.weight && key.italic == fontKey.italic;
    if (!same) {
        fontKey = std::move(key);
        font = std::make_unique<MSizedFont>(fontKey.family, fontKey.weight, fontKey.italic);
        font->SetHeight(fontKey.size);
    }
    return font->valid;
}

void MGdiSurface::DrawText(const Desktop::Rect& rectangle, const MString& text, const MString& family,
                           float size, std::int32_t weight, bool italic, const MColour& colour,
                           std::int32_t alignment) {
    if (!valid) return;
    if (!(size > 0)) size = 12.0F;
    if (weight <= 0) weight = 400;
    if (!TakeFont({family.IsEmpty() ? MString("MS Shell Dlg") : family, ToInteger(size), weight, italic}))
        return;
    std::u16string_view rest = text.View();
    std::int64_t top = rectangle.top;
    if (rest.find(u'\n') == std::u16string_view::npos) {
        const std::int64_t room = std::int64_t{rectangle.bottom} - rectangle.top - fontKey.size;
        if (alignment == 0) top += room / 2;
        if (alignment == 1) top += room;
    }
    for (bool more = true; more; top += fontKey.size) {
        const std::size_t end = rest.find(u'\n');
        more = end != std::u16string_view::npos;
        DrawLine(rest.substr(0, end), rectangle, top, colour, alignment);
        if (more) rest.remove_prefix(end + 1);
    }
}

void MGdiSurface::DrawLine(std::u16string_view line, const Desktop::Rect& rectangle, std::int64_t top,
                           const MColour& colour, std::int32_t alignment) {
    const auto advance = [this](char16_t character) -> std::int64_t {
        MInk ink;
        return font->GetInk(character, ink) ? std::int64_t{ink.a} + ink.b + ink.c : 0;
    };
    std::int64_t width = 0;
    for (const char16_t character : line)
        width += advance(character);
    const std::int64_t room = std::int64_t{rectangle.right} - rectangle.left - width;
    std::int64_t pen = rectangle.left;
    if (alignment == 0) pen += room / 2;
    if (alignment == 1) pen += room;

    Ground ground{*bitmap, Intersect(Widened(rectangle), {0, 0, bitmap->width, bitmap->height}), colour};
    for (const char16_t character : line) {
        font->Draw(character, pen, top + font->ascent, ground.region, BlendSpans, &ground);
        pen += advance(character);
    }
}

void MGdiSurface::Present() const {
    if (valid) Desktop::Present(window, area, {bitmap->width, bitmap->height, bitmap->stride, bitmap->pixels});
}
