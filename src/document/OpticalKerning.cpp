#include "document/OpticalKerning.h"

#include "document/MInkProfile.h"
#include "foundation/MNumbers.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

namespace {

// In em.
constexpr float deepest = 0.45F;  // the white between two glyphs that still counts
constexpr float near = 0.02F;     // keeps touching ink from counting without bound
constexpr float leftOut = 0.004F; // smaller amounts
constexpr float capitalHeight = 0.7F;
constexpr float smallHeight = 0.5F;

constexpr std::u16string_view controlCapitals = u"HINEOU";
constexpr std::u16string_view controlSmalls = u"nohuim";

constexpr std::size_t mostRows = 64; // that a pair is measured in

bool Holds(std::u16string_view letters, char16_t character) {
    return letters.find(character) != std::u16string_view::npos;
}
bool IsCapital(char16_t character) {
    return ToLowerUnit(character) != character;
}
bool IsSmall(char16_t character) {
    return ToUpperUnit(character) != character;
}
bool IsMark(char16_t character) {
    return !IsCapital(character) && !IsSmall(character);
}
bool IsFigure(char16_t character) {
    return character >= u'0' && character <= u'9';
}

// A glyph's white in the rows that are measured, in em.
struct Sides {
    std::array<float, mostRows> before;
    std::array<float, mostRows> behind;
};

// Evenly spaced rows of a zone of the font's line, [top, bottom).
class Zone {
public:
    // The rows of a letter's ink.
    Zone(const MInkProfile& letter, float em) : first(letter.top), unit(em) {
        const auto rows = static_cast<std::size_t>(letter.bottom - letter.top);
        count = std::min(rows, mostRows);
        step = static_cast<float>(rows) / static_cast<float>(count);
    }

    std::size_t Rows() const { return count; }

    Sides Of(const MInkProfile& profile) const {
        Sides sides;
        for (std::size_t i = 0; i < count; ++i) {
            const auto row = static_cast<std::size_t>(first) +
                             static_cast<std::size_t>((static_cast<float>(i) + 0.5F) * step);
            const bool has = row < profile.before.size();
            sides.before[i] = has ? std::min(profile.before[row] / unit, deepest) : deepest;
            sides.behind[i] = has ? std::min(profile.behind[row] / unit, deepest) : deepest;
        }
        return sides;
    }

private:
    std::int32_t first;
    float unit;
    std::size_t count = 1;
    float step = 1;
};

// The pair's white by rows, and what follows from it.
class Pair {
public:
    Pair(const Sides& left, const Sides& right, std::size_t rows) : count(rows) {
        for (std::size_t i = 0; i < count; ++i) {
            white[i] = std::min(left.behind[i] + right.before[i], deepest) + near;
            least = std::min(least, white[i]);
        }
    }

    float Density(float moved) const {
        // In lanes of their own, which the compiler turns into vectors.
        std::array<float, 8> lanes{};
        for (std::size_t i = 0; i < count; ++i) {
            const float w = std::max(white[i] + moved, touching);
            lanes[i % lanes.size()] += 1 / (w * w);
        }
        float sum = 0;
        for (const float lane : lanes)
            sum += lane;
        return sum / static_cast<float>(count);
    }

    // How far the pair has to be moved to be as dense as asked; negative is closer.
    float DistanceTo(float density) const {
        // The density grows without bound where the closest row comes to nothing; and one row of it is never
        // more than `count` times as dense as the mean.
        float low = -least - near;
        float high = 2 * deepest;
        float at = 0;
        for (int i = 0; i < 24 && high - low > precision; ++i) {
            const float here = Density(at);
            (here > density ? low : high) = at;
            // The density's inverse root is nearly as long as the distance.
            const float next = at + 1 / std::sqrt(density) - 1 / std::sqrt(here);
            if (std::abs(next - at) < precision) return next;
            at = next > low && next < high ? next : (low + high) / 2;
        }
        return at;
    }

private:
    static constexpr float touching = 1e-3F;
    static constexpr float precision = 2e-4F; // em: a tenth of a pixel in a glyph 512 rows high

    std::array<float, mostRows> white;
    std::size_t count;
    float least = deepest;
};

// The slack and strength with which strength * x + slack comes closest to the amounts, drawn towards what holds
// without them.
struct Line {
    double strength;
    double slack;
};
struct Point {
    double distance;
    double amount;
};
Line Fitted(std::span<const Point> points, const Line& prior) {
    // In thousandths of an em; as much as one pair that stands 30 apart, and as a slack of 10 that is 3 off.
    constexpr double strengthWeight = 30.0 * 30.0;
    constexpr double slackUnit = 10;
    constexpr double slackWeight = 3.0 * 3.0 / (slackUnit * slackUnit);
    double xx = strengthWeight, x1 = 0, one = slackWeight;
    double xy = strengthWeight * prior.strength, y1 = slackWeight * prior.slack;
    for (const auto& [x, y] : points) {
        xx += x * x;
        x1 += x;
        one += 1;
        xy += x * y;
        y1 += y;
    }
    const double determinant = xx * one - x1 * x1; // positive, since both weights are
    return {(xy * one - y1 * x1) / determinant, (xx * y1 - x1 * xy) / determinant};
}

} // namespace

const MOpticalKerning::Fits MOpticalKerning::designers = {{
    {0.58F, 0.008F}, // capitals
    {0.65F, 0.002F}, // a small letter behind a capital
    {0.25F, 0.025F}, // a capital behind a small letter
    {0.62F, 0.008F}, // small letters
    {0.50F, 0.020F}, // with a mark or figure
    {0.50F, 0.020F}, // figures
}};

// The density that a pair is moved to, by its kind and its mark.
class MOpticalKerning::Target {
public:
    Target(std::span<const char16_t> fontCharacters, const auto& densityOf) : characters(fontCharacters) {
        std::vector<std::size_t> capitals, smalls, figures;
        for (std::size_t i = 0; i < characters.size(); ++i) {
            if (Holds(controlCapitals, characters[i])) capitals.push_back(i);
            if (Holds(controlSmalls, characters[i])) smalls.push_back(i);
            if (IsFigure(characters[i])) figures.push_back(i);
        }
        using Places = std::span<const std::size_t>;
        const auto mean = [&](Places lefts, Places rights) -> std::optional<float> {
            if (lefts.empty() || rights.empty()) return std::nullopt;
            float sum = 0;
            for (const std::size_t left : lefts)
                for (const std::size_t right : rights)
                    sum += densityOf(left, right);
            return sum / static_cast<float>(lefts.size() * rights.size());
        };
        byKind[Capitals] = mean(capitals, capitals);
        byKind[Smalls] = mean(smalls, smalls);
        byKind[Figures] = mean(figures, figures);
        const auto capitalFirst = mean(capitals, smalls);
        const auto smallFirst = mean(smalls, capitals);
        if (capitalFirst) byKind[CapitalSmall] = byKind[SmallCapital] = (*capitalFirst + *smallFirst) / 2;
        marks.resize(characters.size());
        for (std::size_t i = 0; i < characters.size(); ++i) {
            if (!IsMark(characters[i])) continue;
            const std::array mark{i};
            marks[i] = {mean(mark, capitals), mean(mark, smalls), mean(capitals, mark), mean(smalls, mark)};
        }
    }

    // Nothing where the font lacks the letters to tell.
    std::optional<float> Of(std::size_t left, std::size_t right, Kind kind) const {
        if (kind == Unkerned) return std::nullopt;
        if (kind != Marks) return byKind[kind];
        const bool markFirst = IsMark(characters[left]);
        const bool small = IsSmall(characters[markFirst ? right : left]);
        return marks[markFirst ? left : right][(markFirst ? 0U : 2U) + (small ? 1U : 0U)];
    }

private:
    std::span<const char16_t> characters;
    std::array<std::optional<float>, Unkerned> byKind{};
    // In front of capitals and of small letters, and behind them.
    std::vector<std::array<std::optional<float>, 4>> marks;
};

MOpticalKerning::MOpticalKerning(const MColourFont& font) {
    // What lies deeper counts as this, far enough for any em that a glyph of the font could have.
    const auto far = static_cast<float>(std::max(font.MaxGlyphHeight(), 1));
    std::vector<MInkProfile> profiles;
    for (const auto& slot : font.Glyphs) {
        if (!slot || slot->Character < FirstCharacter) continue;
        MInkProfile profile(*slot, far);
        if (profile.top == profile.bottom) continue;
        profile.Smooth();
        characters.push_back(slot->Character);
        profiles.push_back(std::move(profile));
    }
    if (characters.empty()) return;

    const auto firstOf = [&](std::u16string_view letters) -> const MInkProfile* {
        for (const char16_t letter : letters)
            if (const std::size_t place = IndexOf(letter); place < characters.size()) return &profiles[place];
        return nullptr;
    };
    const MInkProfile* const capital = firstOf(controlCapitals);
    const MInkProfile* const small = firstOf(controlSmalls);
    state = capital || small ? State::Ready : State::NoControlLetters;
    if (state != State::Ready) return;
    em = capital ? static_cast<float>(capital->bottom - capital->top) / capitalHeight
                 : static_cast<float>(small->bottom - small->top) / smallHeight;

    const Zone zone(*(capital ? capital : small), em);
    const Zone smallZone(*(small ? small : capital), em);
    std::vector<Sides> sides, smallSides;
    for (const MInkProfile& profile : profiles) {
        sides.push_back(zone.Of(profile));
        smallSides.push_back(smallZone.Of(profile));
    }
    const auto pairOf = [&](std::size_t left, std::size_t right) {
        return KindOf(characters[left], characters[right]) == Smalls
                   ? Pair(smallSides[left], smallSides[right], smallZone.Rows())
                   : Pair(sides[left], sides[right], zone.Rows());
    };
    const Target target(characters,
                        [&](std::size_t left, std::size_t right) { return pairOf(left, right).Density(0); });
    const std::size_t count = characters.size();
    distances.assign(count * count, 0);
    for (std::size_t left = 0; left < count; ++left) {
        for (std::size_t right = 0; right < count; ++right) {
            if (const auto density = target.Of(left, right, KindOf(characters[left], characters[right])))
                distances[left * count + right] = pairOf(left, right).DistanceTo(*density);
        }
    }
}

std::vector<MKerningPair> MOpticalKerning::Pairs(const MOpticalOptions& options,
                                                 std::span<const MKerningPair> models) const {
    std::vector<MKerningPair> pairs;
    const auto isModel = [&](char16_t left, char16_t right) {
        return std::ranges::any_of(
            models, [&](const MKerningPair& model) { return model.Left == left && model.Right == right; });
    };
    const Fits fits = FitTo(models);
    const std::size_t count = characters.size();
    for (std::size_t place = 0; place < distances.size(); ++place) {
        const char16_t left = characters[place / count];
        const char16_t right = characters[place % count];
        const Kind kind = KindOf(left, right);
        if (kind == Unkerned || (kind == Figures && !options.figures)) continue;
        const float amount = (fits[kind].strength * distances[place] + fits[kind].slack) * options.strength;
        if (!(amount < -leftOut)) continue;
        const std::int32_t pixels = ToInteger(std::floor(amount * em + 0.5F));
        if (pixels != 0 && !isModel(left, right)) pairs.push_back({left, right, pixels});
    }
    std::ranges::copy_if(models, std::back_inserter(pairs),
                         [](const MKerningPair& model) { return model.Amount != 0; });
    return pairs;
}

float MOpticalKerning::Looseness(char16_t left, char16_t right) const {
    const std::size_t first = IndexOf(left);
    const std::size_t second = IndexOf(right);
    if (distances.empty() || first == characters.size() || second == characters.size()) return 0;
    return -distances[first * characters.size() + second] * em;
}

MOpticalKerning::Kind MOpticalKerning::KindOf(char16_t left, char16_t right) {
    if (IsFigure(left) && IsFigure(right)) return Figures;
    // Two marks have no letter to be measured by.
    if (IsMark(left) || IsMark(right)) return IsMark(left) && IsMark(right) ? Unkerned : Marks;
    if (IsCapital(left)) return IsCapital(right) ? Capitals : CapitalSmall;
    return IsCapital(right) ? SmallCapital : Smalls;
}

std::size_t MOpticalKerning::IndexOf(char16_t character) const {
    return static_cast<std::size_t>(std::ranges::find(characters, character) - characters.begin());
}

MOpticalKerning::Fits MOpticalKerning::FitTo(std::span<const MKerningPair> models) const {
    Fits fits = designers;
    if (state != State::Ready) return fits;
    constexpr float thousand = 1000;
    for (std::size_t kind = 0; kind < fits.size(); ++kind) {
        Fit& fit = fits[kind];
        std::vector<Point> points;
        for (const MKerningPair& model : models) {
            const auto left = static_cast<char16_t>(model.Left);
            const auto right = static_cast<char16_t>(model.Right);
            const float distance = -Looseness(left, right) / em;
            // A pair that is left alone and would be anyway tells nothing of the others.
            const bool isSilent = fit.strength * distance + fit.slack >= 0 && model.Amount >= 0;
            if (KindOf(left, right) != kind || isSilent) continue;
            points.push_back({distance * thousand, static_cast<float>(model.Amount) / em * thousand});
        }
        if (points.empty()) continue;
        const Line line = Fitted(points, {fit.strength, fit.slack * thousand});
        fit.strength = std::clamp(static_cast<float>(line.strength), 0.0F, 1.5F);
        fit.slack = std::clamp(static_cast<float>(line.slack) / thousand, -0.02F, 0.06F);
    }
    return fits;
}
