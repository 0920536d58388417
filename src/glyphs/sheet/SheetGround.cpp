#include "glyphs/sheet/SheetGround.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <queue>

namespace {

using Colour = std::array<float, 3>; // blue, green, red

constexpr std::int32_t mostCells = 64;     // along one side
constexpr std::int32_t samplesPerSide = 8; // of a cell
constexpr float mostRange = 110;           // levels between the lightest and the darkest paper
constexpr float window = 22;               // levels around the expected paper that may be paper
constexpr std::size_t block = 64;          // pixels that are looked at together

Colour ColourOf(const std::uint8_t* pixel) {
    return {static_cast<float>(pixel[0]), static_cast<float>(pixel[1]), static_cast<float>(pixel[2])};
}

float Distance(const Colour& a, const Colour& b) {
    return std::max({std::abs(a[0] - b[0]), std::abs(a[1] - b[1]), std::abs(a[2] - b[2])});
}

const std::uint8_t* PixelOf(const MPicture& picture, std::int32_t x, std::int32_t y) {
    return picture.Pixels + static_cast<std::size_t>(y) * picture.Stride + static_cast<std::size_t>(x) * 4;
}

struct Cell {
    std::vector<Colour> samples;
    Colour paper{};
    float share = 0; // of the samples that are paper
    bool known = false;
};

// Moves a first guess to the mean of the samples around it.
void Settle(Cell& cell, Colour guess) {
    for (int i = 0; i < 4; ++i) {
        Colour sum{};
        std::size_t count = 0;
        for (const Colour& sample : cell.samples) {
            if (Distance(sample, guess) > window) continue;
            for (std::size_t c = 0; c < 3; ++c)
                sum[c] += sample[c];
            ++count;
        }
        cell.share =
            static_cast<float>(count) / static_cast<float>(std::max<std::size_t>(cell.samples.size(), 1));
        if (count == 0) return;
        for (std::size_t c = 0; c < 3; ++c)
            guess[c] = sum[c] / static_cast<float>(count);
    }
    cell.paper = guess;
}

class Field {
public:
    explicit Field(const MPicture& picture) {
        const auto width = static_cast<std::int32_t>(picture.Width);
        const auto height = static_cast<std::int32_t>(picture.Height);
        size = std::max(16, (std::max(width, height) + mostCells - 1) / mostCells);
        columns = (width + size - 1) / size;
        rows = (height + size - 1) / size;
        cells.resize(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
        const std::int32_t step = std::max(1, size / samplesPerSide);
        for (std::int32_t y = step / 2; y < height; y += step) {
            // Each row begins elsewhere, so that a raster in the picture is not met at one phase only.
            for (std::int32_t x = (y * 7) % step; x < width; x += step)
                At(x / size, y / size).samples.push_back(ColourOf(PixelOf(picture, x, y)));
        }
    }

    std::int32_t size = 0;
    std::int32_t columns = 0;
    std::int32_t rows = 0;
    std::vector<Cell> cells;

    Cell& At(std::int32_t column, std::int32_t row) {
        return cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                     static_cast<std::size_t>(column)];
    }

    // The commonest colour, which is the paper's where nothing else is known.
    Colour Commonest() const {
        std::vector<std::uint32_t> counts(std::size_t{1} << 12);
        const auto bin = [](const Colour& c) {
            const auto part = [](float value) { return static_cast<std::size_t>(value) / 16; };
            return part(c[0]) * 256 + part(c[1]) * 16 + part(c[2]);
        };
        for (const Cell& cell : cells)
            for (const Colour& sample : cell.samples)
                ++counts[bin(sample)];
        const auto most = static_cast<std::size_t>(std::ranges::max_element(counts) - counts.begin());
        return {static_cast<float>(most / 256 * 16 + 8), static_cast<float>(most / 16 % 16 * 16 + 8),
                static_cast<float>(most % 16 * 16 + 8)};
    }

    // From the cells that surely are paper outward, each with its neighbour's paper as the first guess.
    void Spread(const Colour& start) {
        std::size_t best = 0;
        float bestShare = -1;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            Settle(cells[i], start);
            if (cells[i].share > bestShare) {
                bestShare = cells[i].share;
                best = i;
            }
        }
        std::vector<bool> seen(cells.size());
        std::queue<std::size_t> next;
        next.push(best);
        seen[best] = true;
        cells[best].known = true;
        while (!next.empty()) {
            const auto at = static_cast<std::int32_t>(next.front());
            next.pop();
            const Colour guess = cells[static_cast<std::size_t>(at)].paper;
            for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
                const std::int32_t x = at % columns + dx;
                const std::int32_t y = at / columns + dy;
                if (x < 0 || y < 0 || x >= columns || y >= rows) continue;
                const auto place = static_cast<std::size_t>(y * columns + x);
                if (seen[place]) continue;
                seen[place] = true;
                Cell& cell = cells[place];
                Settle(cell, guess);
                cell.known = cell.share >= 0.12F;
                if (!cell.known) cell.paper = guess;
                next.push(place);
            }
        }
    }

    // Cells without paper of their own take the mean of those around them.
    void Fill() {
        for (int pass = 0; pass < 8; ++pass) {
            const std::vector<Cell> before = cells;
            for (std::int32_t y = 0; y < rows; ++y)
                for (std::int32_t x = 0; x < columns; ++x)
                    if (!At(x, y).known || pass == 7) At(x, y).paper = MeanAround(before, x, y);
        }
    }

    float Share() const {
        float sum = 0;
        for (const Cell& cell : cells)
            sum += cell.share;
        return sum / static_cast<float>(cells.size());
    }

private:
    Colour MeanAround(const std::vector<Cell>& from, std::int32_t x, std::int32_t y) const {
        Colour sum{};
        float weight = 0;
        for (std::int32_t j = std::max(0, y - 1); j <= std::min(rows - 1, y + 1); ++j) {
            for (std::int32_t i = std::max(0, x - 1); i <= std::min(columns - 1, x + 1); ++i) {
                // Only what lies opposite, so that a slope at the picture's edge stays one.
                if (2 * x - i < 0 || 2 * x - i >= columns || 2 * y - j < 0 || 2 * y - j >= rows) continue;
                const Cell& cell = from[static_cast<std::size_t>(j * columns + i)];
                for (std::size_t c = 0; c < 3; ++c)
                    sum[c] += cell.paper[c];
                weight += 1;
            }
        }
        for (float& channel : sum)
            channel /= weight;
        return sum;
    }
};

bool IsTransparent(const MPicture& picture) {
    const auto width = static_cast<std::int32_t>(picture.Width);
    const auto height = static_cast<std::int32_t>(picture.Height);
    const std::int32_t step = std::max(1, std::max(width, height) / 512);
    std::int64_t clear = 0;
    std::int64_t all = 0;
    for (std::int32_t y = 0; y < height; y += step) {
        for (std::int32_t x = 0; x < width; x += step) {
            clear += PixelOf(picture, x, y)[3] < 8 ? 1 : 0;
            ++all;
        }
    }
    return clear * 10 >= all;
}

// The median distance from the paper, of what is near it, as that of a bell curve.
float NoiseOf(const Field& field) {
    std::vector<float> distances;
    for (const Cell& cell : field.cells) {
        if (!cell.known) continue;
        for (const Colour& sample : cell.samples) {
            if (Distance(sample, cell.paper) <= window)
                distances.push_back(std::abs(sample[1] - cell.paper[1]));
        }
    }
    if (distances.empty()) return 0;
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::ranges::nth_element(distances, middle);
    return *middle * 1.4826F;
}

} // namespace

bool FindSheetGround(const MPicture& picture, const MSheetWishes& wishes, MSheetGround& ground,
                     std::string& problem) {
    if (wishes.ground == MSheetWishes::Ground::Alpha ||
        (wishes.ground == MSheetWishes::Ground::Auto && IsTransparent(picture))) {
        ground.alpha = true;
        ground.colour = MColour(255, 255, 255, 0);
        ground.threshold = 8;
        return true;
    }
    Field field(picture);
    const bool given = wishes.ground == MSheetWishes::Ground::Colour;
    const Colour start = given ? ColourOf(&wishes.colour.b) : field.Commonest();
    field.Spread(start);
    if (field.Share() < 0.2F) {
        problem = "the sheet has no even ground: only " +
                  std::to_string(static_cast<int>(std::lround(field.Share() * 100))) +
                  " percent of it look like paper";
        return false;
    }
    field.Fill();
    ground.noise = NoiseOf(field);
    ground.threshold =
        static_cast<std::int32_t>(std::lround(std::clamp(5.5F * ground.noise + 4, 10.0F, 64.0F)));
    Colour low{255, 255, 255};
    Colour high{};
    Colour sum{};
    for (const Cell& cell : field.cells) {
        for (std::size_t c = 0; c < 3; ++c) {
            low[c] = std::min(low[c], cell.paper[c]);
            high[c] = std::max(high[c], cell.paper[c]);
            sum[c] += cell.paper[c] / static_cast<float>(field.cells.size());
        }
    }
    // The colours of a photograph run into each other, so that it might pass for one large paper.
    if (const float range = Distance(low, high); range > mostRange) {
        problem = "the sheet has no even ground: what might be paper differs by " +
                  std::to_string(static_cast<int>(range)) + " levels";
        return false;
    }
    const auto byte = [](float value) { return static_cast<std::uint8_t>(std::lround(value)); };
    ground.colour = MColour(byte(sum[2]), byte(sum[1]), byte(sum[0]));
    if (Distance(low, high) < 1) return true;
    ground.cellSize = field.size;
    ground.columns = field.columns;
    ground.rows = field.rows;
    for (const Cell& cell : field.cells)
        ground.field.push_back(cell.paper);
    return true;
}

Colour PaperAt(const MSheetGround& ground, std::int32_t x, std::int32_t y) {
    if (ground.field.empty()) return ColourOf(&ground.colour.b);
    const auto place = [&](std::int32_t pixel, std::int32_t count) {
        const float at = (static_cast<float>(pixel) + 0.5F) / static_cast<float>(ground.cellSize) - 0.5F;
        return std::clamp(at, 0.0F, static_cast<float>(count - 1));
    };
    const float column = place(x, ground.columns);
    const float row = place(y, ground.rows);
    const auto left = static_cast<std::int32_t>(column);
    const auto top = static_cast<std::int32_t>(row);
    const auto at = [&](std::int32_t i, std::int32_t j) -> const Colour& {
        i = std::min(i, ground.columns - 1);
        j = std::min(j, ground.rows - 1);
        return ground.field[static_cast<std::size_t>(j * ground.columns + i)];
    };
    const float across = column - static_cast<float>(left);
    const float down = row - static_cast<float>(top);
    Colour colour;
    for (std::size_t c = 0; c < 3; ++c) {
        const float above = std::lerp(at(left, top)[c], at(left + 1, top)[c], across);
        const float below = std::lerp(at(left, top + 1)[c], at(left + 1, top + 1)[c], across);
        colour[c] = std::lerp(above, below, down);
    }
    return colour;
}

MSheetInk::MSheetInk(const MSheetGround& sheetGround, std::int32_t pictureWidth)
    : ground(sheetGround), width(static_cast<std::size_t>(pictureWidth)),
      step(std::clamp(sheetGround.cellSize / 8, 1, 16)), paper(width * 4), strength(width) {
    for (std::size_t i = 0; i < counts.size(); ++i)
        counts[i] = (i % 4 == 3) == ground.alpha ? 255 : 0;
}

void MSheetInk::UsePaper(std::int32_t y) {
    const std::int32_t from = ground.field.empty() ? 0 : y / step * step;
    if (paperFrom == from || ground.alpha) return;
    paperFrom = from;
    const std::size_t across = ground.field.empty() ? width : static_cast<std::size_t>(step);
    for (std::size_t x = 0; x < width; x += across) {
        const Colour colour = PaperAt(ground, static_cast<std::int32_t>(x) + step / 2, from + step / 2);
        const std::array<std::uint8_t, 4> pixel{static_cast<std::uint8_t>(colour[0] + 0.5F),
                                                static_cast<std::uint8_t>(colour[1] + 0.5F),
                                                static_cast<std::uint8_t>(colour[2] + 0.5F), 0};
        for (std::size_t i = x; i < std::min(x + across, width); ++i)
            std::memcpy(paper.data() + i * 4, pixel.data(), 4);
    }
}

const std::uint8_t* MSheetInk::Strength(const std::uint8_t* row, std::int32_t y) {
    UsePaper(y);
    for (std::size_t x = 0; x < width; x += block) {
        const std::size_t end = std::min(x + block, width);
        if (end - x == block && IsClear(row + x * 4, paper.data() + x * 4)) {
            std::memset(strength.data() + x, 0, block);
            continue;
        }
        for (std::size_t i = x; i < end; ++i) {
            const auto differ = [&](std::size_t channel) {
                return std::abs(int{row[i * 4 + channel]} - int{paper[i * 4 + channel]});
            };
            strength[i] = ground.alpha ? row[i * 4 + 3]
                                       : static_cast<std::uint8_t>(std::max({differ(0), differ(1), differ(2)}));
        }
    }
    return strength.data();
}

// Most of a sheet is ground: 16 bytes at a time, of which those that count are looked at last.
bool MSheetInk::IsClear(const std::uint8_t* pixels, const std::uint8_t* clear) const {
    std::array<std::uint8_t, 16> most{};
    for (std::size_t i = 0; i < block * 4; i += 16) {
        for (std::size_t j = 0; j < 16; ++j) {
            const std::uint8_t a = pixels[i + j];
            const std::uint8_t b = clear[i + j];
            most[j] = std::max(most[j], static_cast<std::uint8_t>(std::max(a, b) - std::min(a, b)));
        }
    }
    std::uint8_t beyond = 0;
    for (std::size_t j = 0; j < 16; ++j)
        beyond = std::max(beyond, static_cast<std::uint8_t>(most[j] & counts[j]));
    return beyond <= ground.threshold;
}
