#include "document/OpticalKerning.h"

#include "DocumentFixture.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <utility>

namespace {

// The ink of a row, as shares of the glyph's width; the row as a share from the capitals' top to the base line.
using Shape = std::function<std::pair<double, double>(double)>;

const Shape box = [](double) { return std::pair(0.0, 1.0); };
const Shape point = [](double v) { return std::pair(0.5 - v / 2, 0.5 + v / 2); };                  // A
const Shape pointDown = [](double v) { return std::pair(v / 2, 1 - v / 2); };                      // V
const Shape roof = [](double v) { return v < 0.15 ? std::pair(0.0, 1.0) : std::pair(0.4, 0.6); };  // T
const Shape foot = [](double v) { return v > 0.85 ? std::pair(0.0, 1.0) : std::pair(0.0, 0.15); }; // L
const Shape ball = [](double v) {
    const double reach = std::sqrt(std::max(0.0, 0.25 - (v - 0.5) * (v - 0.5)));
    return std::pair(0.5 - reach, 0.5 + reach);
};

const std::map<char16_t, Shape> capitals = {{u'H', box},   {u'I', box},  {u'N', box},  {u'O', ball},
                                            {u'A', point}, {u'T', roof}, {u'L', foot}, {u'V', pointDown}};

// Capitals `size` pixels high with edges as soft as the share of a pixel that they cover.
void Draw(MColourFont& font, const std::map<char16_t, Shape>& shapes, std::int32_t size) {
    const std::int32_t top = size / 4;
    for (const auto& [character, shape] : shapes) {
        MGlyph& glyph = AddGlyph(font, character, size * 4 / 5, size * 3 / 2);
        glyph.SpacingBefore = size / 10;
        glyph.SpacingAfter = size / 10;
        for (std::int32_t row = 0; row < size; ++row) {
            const auto [left, right] = shape((row + 0.5) / size);
            for (std::int32_t x = 0; x < glyph.Width; ++x) {
                const double covered =
                    std::min(right * glyph.Width, x + 1.0) - std::max(left * glyph.Width, double(x));
                if (covered > 0)
                    glyph.SetPixel(x, top + row, {9, 9, 9, static_cast<std::uint8_t>(covered * 255)});
            }
        }
    }
}

std::map<std::pair<char16_t, char16_t>, std::int32_t> AmountsOf(const std::vector<MKerningPair>& pairs) {
    std::map<std::pair<char16_t, char16_t>, std::int32_t> amounts;
    for (const MKerningPair& pair : pairs)
        amounts[{static_cast<char16_t>(pair.Left), static_cast<char16_t>(pair.Right)}] = pair.Amount;
    return amounts;
}

using OpticalKerningTest = DocumentTest;

} // namespace

TEST_F(OpticalKerningTest, TellsWhatItCanNotMeasure) {
    MColourFont font(nullptr);
    EXPECT_EQ(MOpticalKerning(font).state, MOpticalKerning::State::NoInk);
    AddGlyph(font, u'H', 20, 30);
    EXPECT_EQ(MOpticalKerning(font).state, MOpticalKerning::State::NoInk) << "its picture is empty";
    font.Clear();
    Draw(font, {{u'A', point}, {u'V', pointDown}}, 60);
    EXPECT_EQ(MOpticalKerning(font).state, MOpticalKerning::State::NoControlLetters);
    EXPECT_TRUE(MOpticalKerning(font).Pairs({}, {}).empty());
    font.Clear();
    Draw(font, {{u'H', box}, {u'I', box}, {u'A', box}, {u'x', box}, {u'n', box}, {u'.', box}, {u'1', box}}, 60);
    EXPECT_TRUE(MOpticalKerning(font).Pairs({}, {}).empty()) << "boxes";
    // As after a resize that failed: it claims what its picture does not have.
    font.GetGlyph(u'A')->Width = 2'000'000'000;
    font.GetGlyph(u'n')->Height = 2'000'000'000;
    EXPECT_EQ(MOpticalKerning(font).state, MOpticalKerning::State::Ready);
}

TEST_F(OpticalKerningTest, ModelsStandAndTheRestFollowsThem) {
    MColourFont font(nullptr);
    Draw(font, capitals, 200);
    const MOpticalKerning optical(font);
    const auto plain = AmountsOf(optical.Pairs({}, {}));
    const std::vector<MKerningPair> tight = {{u'A', u'V', 2 * plain.at({u'A', u'V'})}, {u'H', u'I', 0}};
    const auto tighter = AmountsOf(optical.Pairs({}, tight));
    EXPECT_EQ(tighter.at({u'A', u'V'}), 2 * plain.at({u'A', u'V'}));
    EXPECT_LT(tighter.at({u'L', u'T'}), plain.at({u'L', u'T'}));
    const auto none = AmountsOf(
        optical.Pairs({}, std::vector<MKerningPair>{{u'A', u'V', 0}, {u'L', u'T', 0}, {u'T', u'A', 5}}));
    EXPECT_FALSE(none.contains({u'A', u'V'})) << "fixed at nothing";
    EXPECT_EQ(none.at({u'T', u'A'}), 5) << "a user's own pair may be positive";
    EXPECT_FALSE(none.contains({u'V', u'A'})) << "so are the others";
    const auto halved = AmountsOf(optical.Pairs({.strength = 0.5F}, {}));
    EXPECT_NEAR(halved.at({u'L', u'T'}), plain.at({u'L', u'T'}) / 2.0, 1);
    EXPECT_TRUE(optical.Pairs({.strength = 0}, {}).empty());
}

TEST_F(OpticalKerningTest, FiguresKeepTheirWidthsUnlessAsked) {
    MColourFont font(nullptr);
    auto shapes = capitals;
    shapes[u'1'] = ball;
    shapes[u'4'] = point;
    shapes[u'7'] = pointDown;
    Draw(font, shapes, 200);
    const MOpticalKerning optical(font);
    EXPECT_FALSE(AmountsOf(optical.Pairs({}, {})).contains({u'7', u'4'}));
    EXPECT_LT(AmountsOf(optical.Pairs({.figures = true}, {})).at({u'7', u'4'}), -5);
    EXPECT_LT(AmountsOf(optical.Pairs({}, {})).at({u'T', u'4'}), -5) << "beside letters";
}

// The measure itself, held against its formula with other steps: every row, and a search by halves.
TEST_F(OpticalKerningTest, LoosenessIsTheDistanceToTheDensityOfControlLetters) {
    MColourFont font(nullptr);
    constexpr std::int32_t size = 64; // no more rows than are measured
    Draw(font, capitals, size);
    const double em = size / 0.7;
    const auto white = [&](char16_t c, std::int32_t row, bool behind) {
        // No row beyond a neighbour by more than one pixel.
        const MGlyph& glyph = *font.GetGlyph(c);
        double least = 1e9;
        for (std::int32_t y = 0; y < glyph.Height; ++y) {
            const auto alpha = [&](std::int32_t x) {
                return glyph.GetPixel(behind ? glyph.Width - 1 - x : x, y).a / 255.0;
            };
            std::int32_t clear = 0; // pixels up to the first ink, which covers a part of its own
            while (clear < glyph.Width && alpha(clear) == 0)
                ++clear;
            if (clear == glyph.Width) continue;
            const double empty = clear + (1 - alpha(clear)) * (2 - alpha(clear + 1));
            least = std::min(least, empty + size / 10 + std::abs(y - row));
        }
        return least;
    };
    const auto density = [&](char16_t l, char16_t r, double moved) {
        double sum = 0;
        for (std::int32_t row = size / 4; row < size / 4 + size; ++row) {
            const double w = std::min((white(l, row, true) + white(r, row, false)) / em, 0.45) + moved + 0.02;
            sum += 1 / (w * w);
        }
        return sum / size;
    };
    double wanted = 0;
    for (const char16_t l : u"HINO") {
        for (const char16_t r : u"HINO")
            if (l && r) wanted += density(l, r, 0) / 16;
    }
    const MOpticalKerning optical(font);
    for (const auto& [l, r] :
         {std::pair(u'A', u'V'), {u'T', u'A'}, {u'L', u'T'}, {u'T', u'L'}, {u'H', u'H'}, {u'O', u'O'}}) {
        double low = -0.1, high = 0.5;
        for (int i = 0; i < 30; ++i) {
            const double middle = (low + high) / 2;
            (density(l, r, -middle) > wanted ? high : low) = middle;
        }
        EXPECT_NEAR(optical.Looseness(l, r), low * em, 0.1) << static_cast<char>(l) << static_cast<char>(r);
    }
}
