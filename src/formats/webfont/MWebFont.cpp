#include "formats/webfont/MWebFont.h"

#include "formats/webfont/MSilhouette.h"
#include "foundation/MUtf8.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr std::int64_t smallestEm = 16; // OpenType 1.9, "head"
constexpr std::int64_t largestEm = 16384;
constexpr std::int64_t mostSigned = std::numeric_limits<std::int16_t>::max();
constexpr std::int64_t mostUnsigned = std::numeric_limits<std::uint16_t>::max();

bool IsMappable(char16_t character) {
    return (character < 0xD800 || character > 0xDFFF) && character < 0xFFFE;
}

std::string CodeText(std::uint32_t code) {
    return "the glyph of code " + std::to_string(code);
}

std::string PixelText(std::int64_t count) {
    return std::to_string(count) + " pixels";
}

// A length that the tables can't hold at some scale, and how the sentence about it begins.
struct Limit {
    std::int64_t pixels;
    std::int64_t most;
    std::string what;
};

std::vector<Limit> LimitsOf(const MFontDescription& font) {
    const std::int64_t ascent = std::int64_t{font.Height} - font.Baseline;
    std::vector<Limit> limits{
        {font.Height, largestEm, "the font is " + PixelText(font.Height) + " high"},
        {font.Baseline, mostSigned, "the baseline is at " + PixelText(font.Baseline)},
        {ascent, mostSigned, "the baseline is at " + PixelText(font.Baseline)},
        {font.CapHeight, mostSigned, "capitals are " + PixelText(font.CapHeight) + " high"}};
    for (const MGlyphDescription& glyph : font.Glyphs) {
        const std::int64_t left = std::int64_t{glyph.Before} + glyph.Ink.Left;
        const std::int64_t top = ascent - glyph.Ink.Top;
        const std::string code = CodeText(glyph.Character);
        limits.push_back({glyph.Advance, mostUnsigned, code + " advances by " + PixelText(glyph.Advance)});
        if (glyph.Ink.IsEmpty()) continue;
        for (const std::int64_t x : {left - 1, left + glyph.Ink.Width + 1})
            limits.push_back({x, mostSigned, code + " reaches to " + PixelText(x) + " beside its place"});
        for (const std::int64_t y : {top + 1, top - glyph.Ink.Height - 1})
            limits.push_back({y, mostSigned, code + " reaches to " + PixelText(y) + " from the baseline"});
    }
    const auto size = [](const MKerningPair& pair) { return std::abs(std::int64_t{pair.Amount}); };
    if (const auto widest = std::ranges::max_element(font.Pairs, {}, size); widest != font.Pairs.end()) {
        limits.push_back({widest->Amount, mostSigned,
                          "the pair of codes " + std::to_string(widest->Left) + " and " +
                              std::to_string(widest->Right) + " moves by " + PixelText(widest->Amount)});
    }
    return limits;
}

// Sixteen units for a pixel, less where the tables couldn't hold the font otherwise.
std::int32_t ChooseScale(const MFontDescription& font, std::string& reason) {
    const std::vector<Limit> limits = LimitsOf(font);
    for (std::int32_t scale = 16; scale >= 1; scale /= 2) {
        const auto broken = std::ranges::find_if(
            limits, [scale](const Limit& limit) { return std::abs(limit.pixels) * scale > limit.most; });
        const bool tooFine = std::int64_t{font.Height} * scale < smallestEm;
        if (broken == limits.end() && !tooFine) return scale;
        if (broken == limits.end()) continue;
        reason = broken->what + ", which is more than a font file of this height can hold";
    }
    return 0;
}

std::string WhyImpossible(const MFontDescription& font) {
    if (font.Height < 1) return "the font's glyph height is below 1";
    const auto drawn = [](const MGlyphDescription& glyph) {
        return glyph.Glyph && IsMappable(glyph.Character);
    };
    if (std::ranges::none_of(font.Glyphs, drawn)) return "the font has no glyphs";
    const auto back = std::ranges::find_if(font.Glyphs, [](const auto& glyph) { return glyph.Advance < 0; });
    if (back == font.Glyphs.end()) return {};
    return CodeText(back->Character) + " moves the pen back by " + PixelText(-std::int64_t{back->Advance}) +
           ", which a font file can't say";
}

MInkBox PictureOf(const MGlyphDescription& glyph) {
    if (glyph.Ink.IsEmpty()) return {};
    const auto width = std::min(static_cast<std::int32_t>(glyph.Glyph->Picture.Width), glyph.Width);
    const std::int32_t left = std::max(glyph.Ink.Left - 1, 0);
    const std::int32_t top = std::max(glyph.Ink.Top - 1, 0);
    return {left, top, std::min(glyph.Ink.Left + glyph.Ink.Width + 1, width) - left,
            std::min(glyph.Ink.Top + glyph.Ink.Height + 1, glyph.Glyph->PictureRows()) - top};
}

MGlyphBox BoxOf(const MFontDescription& font, const MGlyphDescription& glyph, const MInkBox& picture) {
    if (picture.IsEmpty()) return {};
    const std::int32_t top = font.Height - font.Baseline - picture.Top;
    return {glyph.Before + picture.Left, top - picture.Height, picture.Width, picture.Height};
}

struct Corners {
    MOutlinePoint low;
    MOutlinePoint high;
};

Corners CornersOf(const MGlyphBox& box, std::int32_t scale) {
    return {{box.Left * scale, box.Bottom * scale},
            {(box.Left + box.Width) * scale, (box.Bottom + box.Height) * scale}};
}

// Points of their own in two corners of the box, which nothing draws, make it the outline's where the
// silhouette is smaller.
void GiveBox(MOutline& outline, const Corners& corners) {
    MOutlinePoint low = corners.high;
    MOutlinePoint high = corners.low;
    for (const auto& contour : outline) {
        for (const MOutlinePoint& point : contour) {
            low = {std::min(low.X, point.X), std::min(low.Y, point.Y)};
            high = {std::max(high.X, point.X), std::max(high.Y, point.Y)};
        }
    }
    if (low.X > corners.low.X || low.Y > corners.low.Y) outline.push_back({corners.low});
    if (high.X < corners.high.X || high.Y < corners.high.Y) outline.push_back({corners.high});
}

MOutline OutlineOf(const MGlyphDescription& glyph, const MInkBox& part, const MGlyphBox& box,
                   std::int32_t scale) {
    constexpr std::size_t mostPoints = 4000; // more than any letter has; the tables count them in 16 bits
    const MPicture& picture = glyph.Glyph->Picture;
    const auto alphaRow = [&](std::int32_t y, std::span<std::uint8_t> alphas) {
        const std::uint8_t* pixel = picture.PixelAddress(part.Left, part.Top + y);
        for (std::uint8_t& alpha : alphas) {
            alpha = pixel[3];
            pixel += sizeof(MColour);
        }
    };
    const Corners corners = CornersOf(box, scale);
    MOutline outline;
    for (const MContour& contour : TraceSilhouette(box.Width, box.Height, alphaRow, mostPoints)) {
        std::vector<MOutlinePoint> points;
        for (const MContourPoint& point : contour) {
            const MOutlinePoint next{corners.low.X + static_cast<std::int32_t>(std::lround(point.X * scale)),
                                     corners.high.Y - static_cast<std::int32_t>(std::lround(point.Y * scale))};
            const bool same = !points.empty() && points.back().X == next.X && points.back().Y == next.Y;
            if (!same) points.push_back(next);
        }
        if (points.size() > 2) outline.push_back(std::move(points));
    }
    GiveBox(outline, corners);
    return outline;
}

// A frame as wide as half the height, as other fonts have it.
MWebFontGlyph MissingGlyph(const MWebFont& font) {
    MWebFontGlyph glyph;
    glyph.Advance = std::max(font.Height / 2, 1);
    const std::int32_t unit = font.Scale;
    const std::int32_t right = glyph.Advance * unit;
    const std::int32_t top = std::max(font.CapHeight, font.Height / 2) * unit;
    const std::int32_t line = std::max(right / 10, 1);
    glyph.Outline = {{{0, 0}, {0, top}, {right, top}, {right, 0}},
                     {{line, line}, {right - line, line}, {right - line, top - line}, {line, top - line}}};
    return glyph;
}

void AddGlyphs(MWebFont& plan, const MFontDescription& font) {
    plan.Glyphs.push_back(MissingGlyph(plan));
    for (const MGlyphDescription& source : font.Glyphs) {
        if (!IsMappable(source.Character)) {
            plan.LostCharacters.push_back(source.Character);
            continue;
        }
        MWebFontGlyph glyph;
        glyph.Character = source.Character;
        glyph.Advance = source.Advance;
        glyph.Source = &source;
        glyph.Picture = PictureOf(source);
        glyph.Box = BoxOf(font, source, glyph.Picture);
        if (!glyph.Picture.IsEmpty()) glyph.Outline = OutlineOf(source, glyph.Picture, glyph.Box, plan.Scale);
        plan.Glyphs.push_back(std::move(glyph));
    }
}

void AddPairs(MWebFont& plan, const MFontDescription& font) {
    std::vector<std::uint16_t> glyphOf(0x10000);
    for (std::size_t i = 1; i < plan.Glyphs.size(); ++i)
        glyphOf[plan.Glyphs[i].Character] = static_cast<std::uint16_t>(i);
    plan.Pairs.reserve(font.Pairs.size());
    for (const MKerningPair& pair : font.Pairs) {
        const MWebFontPair kept{glyphOf[pair.Left], glyphOf[pair.Right], pair.Amount};
        if (kept.Left != 0 && kept.Right != 0) plan.Pairs.push_back(kept);
    }
}

} // namespace

std::u16string CleanFamilyName(const MString& name) {
    constexpr std::size_t longest = 1000;
    std::u16string text =
        DecodeUtf8(EncodeUtf8(name.View(), MLoneSurrogates::Replace), MLoneSurrogates::Replace);
    const auto isControl = [](char16_t c) { return c < u' ' || (c >= 0x7F && c < 0xA0) || c >= 0xFFFE; };
    std::ranges::replace_if(text, isControl, u' ');
    if (text.size() > longest)
        text.resize(text[longest - 1] >= 0xD800 && text[longest - 1] < 0xDC00 ? longest - 1 : longest);
    const auto isBlank = [](char16_t c) { return c == u' '; };
    text.erase(text.begin(), std::ranges::find_if_not(text, isBlank));
    while (!text.empty() && isBlank(text.back()))
        text.pop_back();
    return text.empty() ? u"Lettrino" : text;
}

MWebFont PlanWebFont(const MFontDescription& font, const MString& family, std::vector<std::int32_t> strikes) {
    MWebFont plan;
    plan.Reason = WhyImpossible(font);
    if (!plan.Reason.empty()) return plan;
    plan.Scale = ChooseScale(font, plan.Reason);
    if (plan.Scale == 0) return plan;
    plan.Reason.clear();
    plan.Family = CleanFamilyName(family);
    plan.Height = font.Height;
    plan.Ascent = font.Height - font.Baseline;
    plan.Descent = font.Baseline;
    plan.CapHeight = font.CapHeight;
    AddGlyphs(plan, font);
    const MGlyphDescription* const x = font.Find(u'x');
    if (x && !x->Ink.IsEmpty()) plan.XHeight = plan.Ascent - x->Ink.Top;
    AddPairs(plan, font);
    strikes.push_back(font.Height);
    std::ranges::sort(strikes);
    strikes.erase(std::unique(strikes.begin(), strikes.end()), strikes.end());
    plan.Strikes = std::move(strikes);
    return plan;
}
