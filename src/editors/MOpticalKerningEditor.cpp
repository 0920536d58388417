#include "editors/MOpticalKerningEditor.h"

#include "document/MSettings.h"
#include "editors/FieldText.h"
#include "foundation/MNumbers.h"

#include <algorithm>
#include <cmath>
#include <ranges>

namespace {

constexpr float stripHeight = 10;
constexpr float captionHeight = 16;
constexpr float captionSize = 12;

std::span<const MKerningPair> PairsOf(const MColourFont& font) {
    return {font.Kerning.data, static_cast<std::size_t>(font.Kerning.count)};
}

bool IsPair(const MKerningPair& first, const MKerningPair& second) {
    return first.Left == second.Left && first.Right == second.Right;
}

// From blue, too tight, over the ground's grey to red, too loose; `white` is a share of what counts as very
// loose.
MColour WhiteColour(float white) {
    const float share = std::clamp(white, -1.0F, 1.0F);
    const auto mix = [&](int from, int to) {
        return static_cast<std::uint8_t>(static_cast<float>(from) +
                                         static_cast<float>(to - from) * std::abs(share));
    };
    return share < 0 ? MColour(mix(205, 30), mix(205, 90), mix(205, 220))
                     : MColour(mix(205, 220), mix(205, 50), mix(205, 30));
}

MString Signed(std::int32_t number) {
    return number > 0 ? "+" + MString(number) : MString(number);
}

} // namespace

MOpticalKerningEditor::MOpticalKerningEditor(MColourFont& font)
    : Font(font), Text(Settings->KerningText), Strength(std::clamp(Settings->KerningStrength, 0, Strongest)),
      optical(font) {
    Follow();
}

MString MOpticalKerningEditor::Notice() const {
    switch (optical.state) {
    case MOpticalKerning::State::NoInk: return "No glyph has ink that could be measured.";
    case MOpticalKerning::State::NoControlLetters:
        return "Spacing is measured by the letters H I N E O U and n o h u i m, of which the font has none.";
    case MOpticalKerning::State::Ready: break;
    }
    return {};
}

MString MOpticalKerningEditor::PairCount() const {
    return MString(static_cast<std::int32_t>(Pairs.size())) + (Pairs.size() == 1 ? " pair" : " pairs");
}

MString MOpticalKerningEditor::GapText() const {
    const auto pair = PairAt(Gap);
    if (!pair) return {};
    return CharacterText(static_cast<char16_t>(pair->Left)) + " " +
           CharacterText(static_cast<char16_t>(pair->Right)) + ": kerning " + Signed(pair->Amount) +
           ", white " + Signed(ToInteger(std::round(WhiteAt(Gap)))) + " beside upright letters";
}

MString MOpticalKerningEditor::ModelText(std::size_t index) const {
    const MKerningPair& pair = Models[index];
    return CharacterText(static_cast<char16_t>(pair.Left)) + "    " +
           CharacterText(static_cast<char16_t>(pair.Right)) + "    " + Signed(pair.Amount);
}

// The pairs follow the models and the strength.
void MOpticalKerningEditor::Follow() {
    Pairs = optical.Pairs({.strength = static_cast<float>(Strength) / 100.0F}, Models);
    std::ranges::stable_sort(Pairs, {}, &MKerningPair::Amount);
    LayOut();
}

void MOpticalKerningEditor::LayOut() {
    line = LayOutText(Font, Text, Pairs);
    if (!PairAt(Gap)) Gap = -1;
}

std::optional<MKerningPair> MOpticalKerningEditor::PairAt(std::int32_t gap) const {
    if (gap < 1 || gap >= static_cast<std::int32_t>(line.glyphs.size())) return std::nullopt;
    const auto right = line.glyphs.begin() + gap;
    if (!right->joined) return std::nullopt;
    MKerningPair pair{(right - 1)->glyph->Character, right->glyph->Character, 0};
    const auto found =
        std::ranges::find_if(Pairs, [&](const MKerningPair& each) { return IsPair(each, pair); });
    if (found != Pairs.end()) pair.Amount = found->Amount;
    return pair;
}

float MOpticalKerningEditor::WhiteAt(std::int32_t gap) const {
    const auto pair = PairAt(gap);
    if (!pair) return 0;
    return optical.Looseness(static_cast<char16_t>(pair->Left), static_cast<char16_t>(pair->Right)) +
           static_cast<float>(pair->Amount);
}

void MOpticalKerningEditor::TextChanged(const MString& text) {
    Text = text;
    LayOut();
}

void MOpticalKerningEditor::StrengthChanged(std::int32_t percent) {
    Strength = std::clamp(percent, 0, Strongest);
    Follow();
}

void MOpticalKerningEditor::ShowWhiteChanged(bool show) {
    ShowWhite = show;
}

float MOpticalKerningEditor::GapX(std::int32_t gap) const {
    const auto& right = line.glyphs[static_cast<std::size_t>(gap)];
    const auto& left = line.glyphs[static_cast<std::size_t>(gap) - 1];
    const auto middle = static_cast<float>(left.x + left.glyph->Width + right.x) / 2;
    return origin + (middle - static_cast<float>(line.left)) * scale;
}

void MOpticalKerningEditor::Clicked(MPoint point) {
    std::int32_t nearest = -1;
    float nearestWay = 0;
    for (std::int32_t gap = 1; gap < static_cast<std::int32_t>(line.glyphs.size()); ++gap) {
        if (!PairAt(gap)) continue;
        const float way = std::abs(GapX(gap) - static_cast<float>(point.x));
        if (nearest >= 0 && way >= nearestWay) continue;
        nearest = gap;
        nearestWay = way;
    }
    Gap = nearest;
}

void MOpticalKerningEditor::MoveGap(std::int32_t places) {
    const std::int32_t step = places < 0 ? -1 : 1;
    const auto count = static_cast<std::int32_t>(line.glyphs.size());
    for (std::int32_t gap = Gap < 0 && step < 0 ? count - 1 : std::max(Gap, 0) + step; gap > 0 && gap < count;
         gap += step) {
        if (!PairAt(gap)) continue;
        Gap = gap;
        return;
    }
}

void MOpticalKerningEditor::Nudge(std::int32_t pixels) {
    auto pair = PairAt(Gap);
    if (!pair || !IsReady()) return;
    pair->Amount += pixels;
    const auto known =
        std::ranges::find_if(Models, [&](const MKerningPair& model) { return IsPair(model, *pair); });
    if (known == Models.end()) {
        Models.push_back(*pair);
    } else {
        *known = *pair;
    }
    Follow();
}

void MOpticalKerningEditor::Release() {
    const auto pair = PairAt(Gap);
    if (!pair) return;
    std::erase_if(Models, [&](const MKerningPair& model) { return IsPair(model, *pair); });
    Follow();
}

void MOpticalKerningEditor::RemoveModel(std::size_t index) {
    if (index >= Models.size()) return;
    Models.erase(Models.begin() + static_cast<std::ptrdiff_t>(index));
    Follow();
}

void MOpticalKerningEditor::SelectModel(std::size_t index) {
    if (index >= Models.size()) return;
    for (std::int32_t gap = 1; gap < static_cast<std::int32_t>(line.glyphs.size()); ++gap) {
        const auto pair = PairAt(gap);
        if (!pair || !IsPair(*pair, Models[index])) continue;
        Gap = gap;
        return;
    }
}

std::int32_t MOpticalKerningEditor::Scaled(float size) const {
    return ToInteger(size * Density + 0.5F);
}

Desktop::Rect MOpticalKerningEditor::Half(bool lower) const {
    const std::int32_t middle = Area.top + (Area.Height() - Scaled(stripHeight) - Scaled(captionHeight)) / 2;
    const Desktop::Rect place = lower ? Desktop::Rect{Area.left, middle, Area.right,
                                                      Area.bottom - Scaled(stripHeight) - Scaled(captionHeight)}
                                      : Desktop::Rect{Area.left, Area.top, Area.right, middle};
    return {place.left + Scaled(8), place.top + Scaled(captionHeight), place.right - Scaled(8),
            place.bottom - Scaled(2)};
}

MTextLine MOpticalKerningEditor::Reduced(const MTextLine& whole) {
    constexpr float kept = 3;
    const std::int32_t wanted = std::max(ToInteger(1 / (scale * kept)), 1);
    if (wanted != reduction) {
        reduced.clear();
        reduction = wanted;
    }
    if (reduction == 1) return whole;
    const auto shrunk = [&](std::int64_t size) {
        return static_cast<std::int32_t>((size + reduction - 1) / reduction);
    };
    MTextLine small{{}, whole.left / reduction, whole.right / reduction, shrunk(whole.height)};
    for (const MPlacedGlyph& placed : whole.glyphs) {
        std::unique_ptr<MGlyph>& glyph = reduced[placed.glyph];
        if (!glyph) {
            glyph = std::make_unique<MGlyph>(placed.glyph->Character, 0, 0, 0, 0, false);
            glyph->Width = shrunk(placed.glyph->Width);
            glyph->Height = shrunk(placed.glyph->PictureRows());
            if (IsVisible(placed.glyph)) {
                glyph->Picture = MPicture(placed.glyph->Picture, static_cast<std::uint32_t>(glyph->Width),
                                          static_cast<std::uint32_t>(glyph->Height), FormatRGBA8, true, false);
            }
        }
        const std::int64_t x = std::max(placed.x / reduction, small.left);
        small.glyphs.push_back({glyph.get(), x, placed.joined});
        small.right = std::max(small.right, x + glyph->Width);
    }
    return small;
}

// From the left edge, shrunk by the scale that both lines share.
void MOpticalKerningEditor::DrawLine(MDirect2DSurface& surface, const MPicture& picture,
                                     const Desktop::Rect& place) {
    if (!picture.IsValid()) return;
    const auto scaled = [&](std::uint32_t size) {
        const float shown = static_cast<float>(size) * scale * static_cast<float>(reduction);
        return static_cast<std::uint32_t>(std::max(ToInteger(shown + 0.5F), 1));
    };
    const std::int32_t top =
        place.top + (place.Height() - static_cast<std::int32_t>(scaled(picture.Height))) / 2;
    if (scale >= 1) {
        surface.DrawPictureAt(picture, place.left, top, true);
        return;
    }
    MPicture shrunk(picture, scaled(picture.Width), scaled(picture.Height), FormatRGBA8, true, false);
    surface.DrawPictureAt(shrunk, place.left, top, true);
    shrunk.Free();
}

// Each piece reaches from the middle of one letter to that of the next.
void MOpticalKerningEditor::DrawWhite(MDirect2DSurface& surface, std::int32_t top) {
    // A sixth of the capitals' height more or less is very loose or very tight.
    const auto extreme = static_cast<float>(std::max(line.height, 1)) / 12;
    const auto middleOf = [&](const MPlacedGlyph& placed) {
        const auto middle =
            static_cast<float>(placed.x - line.left) + static_cast<float>(placed.glyph->Width) / 2;
        return ToInteger(origin + middle * scale);
    };
    std::int32_t tightest = -1;
    std::int32_t widest = -1;
    for (std::int32_t gap = 1; gap < static_cast<std::int32_t>(line.glyphs.size()); ++gap) {
        if (!PairAt(gap)) continue;
        const auto place = static_cast<std::size_t>(gap);
        surface.DrawRectangle({middleOf(line.glyphs[place - 1]) + 1, top, middleOf(line.glyphs[place]) - 1,
                               top + Scaled(stripHeight)},
                              WhiteColour(WhiteAt(gap) / extreme), true, 1, true);
        if (tightest < 0 || WhiteAt(gap) < WhiteAt(tightest)) tightest = gap;
        if (widest < 0 || WhiteAt(gap) > WhiteAt(widest)) widest = gap;
    }
    if (tightest < 0 || tightest == widest) return;
    for (const auto& [gap, text] : {std::pair(tightest, "tightest"), std::pair(widest, "widest")}) {
        const std::int32_t x = ToInteger(GapX(gap));
        const std::int32_t reach = Scaled(60);
        surface.DrawText({x - reach, top + Scaled(stripHeight), x + reach,
                          top + Scaled(stripHeight) + Scaled(captionHeight)},
                         text, MString(), captionSize * Density, 0, false,
                         WhiteColour(gap == tightest ? -1.0F : 1.0F), 0, 0, false, false, true, false);
    }
}

void MOpticalKerningEditor::DrawGap(MDirect2DSurface& surface, const Desktop::Rect& place) {
    if (!PairAt(Gap)) return;
    const float x = GapX(Gap);
    surface.DrawLine({x, static_cast<float>(place.top)}, {x, static_cast<float>(place.bottom)}, 1.0F,
                     GuideColour, true);
}

void MOpticalKerningEditor::Paint() {
    if (!Surface.Bind(Window, Area) || !Surface.surface->Begin()) return;
    MDirect2DSurface& surface = *Surface.surface;
    surface.Clear(Settings->BackgroundColour);
    const MColour ground = Settings->BackgroundColour;
    const bool bright = ground.r + ground.g + ground.b > 3 * 127;
    const MColour caption = bright ? MColour(90, 90, 90) : MColour(200, 200, 200);
    const Desktop::Rect upper = Half(false);
    const Desktop::Rect lower = Half(true);
    const auto tell = [&](const Desktop::Rect& place, const MString& text) {
        surface.DrawText({place.left, place.top - Scaled(captionHeight), place.right, place.top}, text,
                         MString(), captionSize * Density, 0, false, caption, -1, 0, false, true, true, false);
    };
    const MTextLine now = LayOutText(Font, Text, PairsOf(Font));
    const auto longest = static_cast<float>(std::max({now.Width(), line.Width(), std::int64_t{1}}));
    scale = std::min({1.0F, static_cast<float>(upper.Width()) / longest,
                      static_cast<float>(upper.Height()) / static_cast<float>(std::max(line.height, 1))});
    origin = static_cast<float>(lower.left);
    if (scale > 0) {
        const MTextLine after = Reduced(line);
        MPicture afterPicture = DrawTextLine(after, ground);
        MPicture beforePicture = DrawTextLine(Reduced(now), ground);
        tell(upper, "Before");
        DrawLine(surface, beforePicture, upper);
        tell(lower, "After");
        DrawLine(surface, afterPicture, lower);
        beforePicture.Free();
        afterPicture.Free();
        DrawGap(surface, lower);
        if (ShowWhite && IsReady()) DrawWhite(surface, lower.bottom + Scaled(2));
    }
    if (!IsReady()) {
        surface.DrawText(
            {Area.left, Area.bottom - Scaled(stripHeight) - Scaled(captionHeight), Area.right, Area.bottom},
            Notice(), MString(), captionSize * Density, 0, false, caption, 0, 0, false, true, true, true);
    }
    surface.End();
}

bool MOpticalKerningEditor::Ok() {
    Surface.Release();
    Settings->KerningText = Text;
    Settings->KerningStrength = Strength;
    if (!IsReady()) return true;
    if (!Font.Kerning.Resize(static_cast<std::int32_t>(Pairs.size()), false)) return false;
    std::ranges::copy(Pairs, Font.Kerning.data);
    return true;
}
