#include "formats/MFontDescription.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

constexpr char16_t space = u' ';

std::int32_t Narrow(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

// The part of the picture that the glyph shows. They differ only after a failed resize.
MPicture Shown(const MGlyph& glyph) {
    MPicture view = glyph.Picture;
    view.Width = std::min(view.Width, static_cast<std::uint32_t>(std::max(glyph.Width, 0)));
    view.Height = static_cast<std::uint32_t>(glyph.PictureRows());
    return view;
}

MInkBox InkOf(const MGlyph& glyph) {
    const MPicture view = Shown(glyph);
    if (!view.IsValid()) return {};
    std::uint32_t top = 0;
    std::uint32_t right = 0;
    std::uint32_t bottom = 0;
    std::uint32_t left = 0;
    view.GetMargins(top, right, bottom, left);
    // Margins of 0 are also what a picture without ink has.
    const bool full = top + right + bottom + left == 0;
    const auto inked = [&](std::uint32_t y) {
        for (std::uint32_t x = 0; x < view.Width; ++x) {
            if (view.GetPixel(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)).a != 0) return true;
        }
        return false;
    };
    if (full && !inked(0)) return {};
    return {static_cast<std::int32_t>(left), static_cast<std::int32_t>(top),
            static_cast<std::int32_t>(view.Width - left - right),
            static_cast<std::int32_t>(view.Height - top - bottom)};
}

MGlyphDescription Describe(const MGlyph& glyph) {
    return {glyph.Character,     &glyph,
            InkOf(glyph),        glyph.Width,
            glyph.SpacingBefore, Narrow(std::int64_t{glyph.SpacingBefore} + glyph.Width + glyph.SpacingAfter)};
}

std::uint64_t Sides(std::uint32_t left, std::uint32_t right) {
    return std::uint64_t{left} << 32 | right;
}

std::uint64_t SidesOf(const MKerningPair& pair) {
    return Sides(pair.Left, pair.Right);
}

// Fonts have tens of thousands of pairs of a few hundred characters, so both sides are told by the places of
// their glyphs, and sorted by counting: by the right one, then, keeping that order, by the left one.
void SortPairs(const MColourFont& font, MFontDescription& description) {
    constexpr std::uint16_t none = 0xFFFF;
    std::vector<std::uint16_t> places(0x10000, none);
    for (std::size_t i = 0; i < description.Glyphs.size(); ++i) {
        if (description.Glyphs[i].Glyph)
            places[description.Glyphs[i].Character] = static_cast<std::uint16_t>(i);
    }
    const auto placeOf = [&](std::uint32_t character) {
        return character < places.size() ? places[character] : none;
    };
    std::vector<MKerningPair> pairs;
    pairs.reserve(static_cast<std::size_t>(font.KerningCount()));
    for (const MKerningPair& pair : font.Kerning) {
        if (pair.Amount == 0) continue;
        const bool whole = placeOf(pair.Left) != none && placeOf(pair.Right) != none;
        (whole ? pairs : description.LostPairs).push_back(pair);
    }
    description.Pairs.resize(pairs.size());
    for (std::uint32_t MKerningPair::*const side : {&MKerningPair::Right, &MKerningPair::Left}) {
        std::vector<std::size_t> starts(description.Glyphs.size() + 1);
        for (const MKerningPair& pair : pairs)
            ++starts[placeOf(pair.*side) + std::size_t{1}];
        std::partial_sum(starts.begin(), starts.end(), starts.begin());
        for (const MKerningPair& pair : pairs)
            description.Pairs[starts[placeOf(pair.*side)]++] = pair;
        pairs.swap(description.Pairs);
    }
    pairs.swap(description.Pairs);
}

} // namespace

const MGlyphDescription* MFontDescription::Find(std::uint32_t character) const {
    const auto found = std::ranges::lower_bound(Glyphs, character, {}, &MGlyphDescription::Character);
    return found != Glyphs.end() && found->Character == character ? &*found : nullptr;
}

std::int32_t MFontDescription::AmountOf(std::uint32_t left, std::uint32_t right) const {
    const auto found = std::ranges::lower_bound(Pairs, Sides(left, right), {}, SidesOf);
    return found != Pairs.end() && SidesOf(*found) == Sides(left, right) ? found->Amount : 0;
}

MFontDescription DescribeFont(const MColourFont& font, std::int32_t glyphHeight) {
    MFontDescription description;
    description.Height = glyphHeight;
    description.Baseline = font.Baseline;
    description.CapHeight = font.CapHeight;
    for (const auto& slot : font.Glyphs) {
        if (slot) description.Glyphs.push_back(Describe(*slot));
    }
    // A file may bring a glyph for the space, which is then drawn like any other.
    if (!font.GetGlyph(space)) {
        MGlyphDescription blank;
        blank.Character = space;
        blank.Advance = font.SpaceWidth;
        description.Glyphs.push_back(blank);
    }
    std::ranges::sort(description.Glyphs, {}, &MGlyphDescription::Character);

    SortPairs(font, description);
    return description;
}
