// Best fit on a skyline (E. K. Burke, G. Kendall, G. Whitwell, "A New Placement Heuristic for the Orthogonal
// Stock-Cutting Problem", Operations Research 52, 2004): the lowest place is filled next, with the tallest box
// that goes in. Tried over several widths of the page; a width is given up as soon as it can't be the best.
//
// A packer of a library that takes the boxes in one fixed order, whatever place is next, needs four times as
// many widths for less: bench/game.cpp has both.
#include "formats/game/AtlasPacking.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

namespace {

// The widths lie around the side of a square of the boxes' own area. More of them find hardly more.
constexpr int triedWidths = 32;
constexpr double narrowest = 0.72;
constexpr double widest = 1.42;

// A level part of the upper edge of what was placed so far.
struct Ledge {
    std::int32_t x;
    std::int32_t y;
    std::int32_t width;
};

class Skyline {
public:
    // `boxes` are the tallest first; widths and heights include the gap to the right and below.
    Skyline(std::span<const MAtlasBox> source, std::int32_t stripWidth, std::int32_t stripHeight)
        : boxes(source), height(stripHeight), places(source.size()), placed(source.size()),
          waiting(source.size()), ledges{{0, 0, stripWidth}} {
        std::iota(waiting.begin(), waiting.end(), std::uint32_t{0});
    }

    struct Place {
        std::int32_t x = 0;
        std::int32_t y = 0;
    };

    // Until all are placed or nothing more goes in, or more than `waste` pixels stay empty under the skyline.
    // True if all were placed.
    bool Fill(std::int64_t waste) {
        while (!waiting.empty()) {
            const auto lowest = std::ranges::min_element(ledges, {}, &Ledge::y);
            const std::size_t ledge = static_cast<std::size_t>(lowest - ledges.begin());
            if (const auto box = TallestFor(*lowest); box != waiting.end()) {
                Put(*box, ledge);
                waiting.erase(box);
            } else if (ledges.size() == 1) {
                return false;
            } else {
                waste -= Raise(ledge);
                if (waste < 0) return false;
            }
        }
        return true;
    }

    bool IsPlaced(std::size_t box) const { return placed[box] != 0; }
    Place PlaceOf(std::size_t box) const { return places[box]; }
    std::int32_t Bottom() const { return bottom; }
    std::int32_t Right() const { return right; }

private:
    std::span<const MAtlasBox> boxes;
    std::int32_t height;
    std::vector<Place> places;
    std::vector<std::uint8_t> placed;
    std::vector<std::uint32_t> waiting; // the boxes that aren't placed, in their order
    std::vector<Ledge> ledges;          // from the left to the right
    std::int32_t bottom = 0;
    std::int32_t right = 0;

    std::vector<std::uint32_t>::iterator TallestFor(const Ledge& ledge) {
        return std::ranges::find_if(waiting, [&, room = height - ledge.y](std::uint32_t i) {
            return boxes[i].Width <= ledge.width && boxes[i].Height <= room;
        });
    }

    std::int32_t LevelBeside(std::size_t ledge, bool leftSide) const {
        constexpr std::int32_t wall = std::numeric_limits<std::int32_t>::max();
        if (leftSide) return ledge == 0 ? wall : ledges[ledge - 1].y;
        return ledge + 1 == ledges.size() ? wall : ledges[ledge + 1].y;
    }

    // On the side where the skyline is higher, so that the rest stays in one piece.
    void Put(std::size_t box, std::size_t ledge) {
        const MAtlasBox& size = boxes[box];
        Ledge& ground = ledges[ledge];
        const bool atLeft = LevelBeside(ledge, true) >= LevelBeside(ledge, false);
        const std::int32_t x = atLeft ? ground.x : ground.x + ground.width - size.Width;
        places[box] = {x, ground.y};
        placed[box] = 1;
        const Ledge top{x, ground.y + size.Height, size.Width};
        bottom = std::max(bottom, top.y);
        right = std::max(right, x + size.Width);
        ground.width -= size.Width;
        if (atLeft) ground.x += size.Width;
        std::size_t at = atLeft ? ledge : ledge + 1;
        if (ground.width == 0) {
            at = ledge;
            ledges[at] = top;
        } else {
            ledges.insert(ledges.begin() + static_cast<std::ptrdiff_t>(at), top);
        }
        Merge(at);
    }

    // To the lower of its neighbours. The area that nothing will use.
    std::int64_t Raise(std::size_t ledge) {
        const std::int32_t y = std::min(LevelBeside(ledge, true), LevelBeside(ledge, false));
        const std::int64_t lost = std::int64_t{ledges[ledge].width} * (y - ledges[ledge].y);
        ledges[ledge].y = y;
        Merge(ledge);
        return lost;
    }

    // With the neighbours that are on its level.
    void Merge(std::size_t ledge) {
        const auto at = [this](std::size_t i) { return ledges.begin() + static_cast<std::ptrdiff_t>(i); };
        if (ledge + 1 < ledges.size() && ledges[ledge + 1].y == ledges[ledge].y) {
            ledges[ledge].width += ledges[ledge + 1].width;
            ledges.erase(at(ledge + 1));
        }
        if (ledge > 0 && ledges[ledge - 1].y == ledges[ledge].y) {
            ledges[ledge - 1].width += ledges[ledge].width;
            ledges.erase(at(ledge));
        }
    }
};

class Packer {
public:
    Packer(std::span<MAtlasBox> target, const MAtlasOptions& wanted) : boxes(target), options(wanted) {
        options.Gap = std::clamp(options.Gap, 0, LargestPage);
        options.Largest = std::clamp(options.Largest, 4, LargestPage);
        if (options.Size == MPageSize::Four) options.Largest -= options.Largest % 4;
        if (options.Size == MPageSize::PowerOfTwo)
            options.Largest = static_cast<std::int32_t>(std::bit_floor(static_cast<unsigned>(options.Largest)));
        room = options.Largest - options.Gap;
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            boxes[i].X = boxes[i].Y = boxes[i].Page = 0;
            if (boxes[i].Width > 0 && boxes[i].Height > 0) order.push_back(i);
        }
        std::ranges::stable_sort(order, [this](std::size_t a, std::size_t b) {
            return std::pair(boxes[a].Height, boxes[a].Width) > std::pair(boxes[b].Height, boxes[b].Width);
        });
    }

    std::optional<MAtlasPages> Pack() {
        for (const std::size_t i : order) {
            if (boxes[i].Width > room - options.Gap || boxes[i].Height > room - options.Gap)
                return std::nullopt;
            padded.push_back({boxes[i].Width + options.Gap, boxes[i].Height + options.Gap, 0, 0, 0});
            area += std::int64_t{padded.back().Width} * padded.back().Height;
        }
        if (order.empty()) return MAtlasPages{SideFor(1), SideFor(1), 1};
        if (const auto page = SmallestPage()) return page;
        return SeveralPages();
    }

private:
    std::span<MAtlasBox> boxes;
    MAtlasOptions options;
    std::int32_t room = 0;          // of the largest page, for boxes that bring their gap
    std::vector<std::size_t> order; // of the boxes that have an area, the tallest first
    std::vector<MAtlasBox> padded;  // these boxes with their gap
    std::int64_t area = 0;          // of the padded ones

    // The smallest side that a page may have for boxes up to `extent`, which includes the gap behind them.
    std::int32_t SideFor(std::int32_t extent) const {
        const std::int32_t side = extent + options.Gap;
        switch (options.Size) {
        case MPageSize::Free: break;
        case MPageSize::Four: return (side + 3) / 4 * 4;
        case MPageSize::PowerOfTwo:
            return static_cast<std::int32_t>(std::bit_ceil(static_cast<unsigned>(side)));
        }
        return side;
    }

    // Those of the search, each as wide as the page that it leads to allows.
    std::vector<std::int32_t> Widths() const {
        const std::int32_t least = std::ranges::max(padded, {}, &MAtlasBox::Width).Width;
        const double square = std::sqrt(static_cast<double>(area));
        std::vector<std::int32_t> widths;
        if (options.Size == MPageSize::PowerOfTwo) {
            for (std::int32_t side = SideFor(least); side <= options.Largest; side *= 2)
                widths.push_back(side - options.Gap);
            return widths;
        }
        for (int i = 0; i < triedWidths; ++i) {
            const double factor = narrowest + (widest - narrowest) * i / (triedWidths - 1);
            const auto width = static_cast<std::int32_t>(std::min(square * factor, double{LargestPage}));
            widths.push_back(std::min(SideFor(std::max(width, least)) - options.Gap, room));
        }
        // Where the page's height is what bounds it, only the widest will do.
        widths.push_back(room);
        widths.erase(std::unique(widths.begin(), widths.end()), widths.end());
        return widths;
    }

    std::optional<MAtlasPages> SmallestPage() {
        std::optional<MAtlasPages> best;
        std::int64_t bestArea = std::numeric_limits<std::int64_t>::max();
        for (const std::int32_t width : Widths()) {
            // The highest page that would be the best so far.
            const std::int64_t side = SideFor(width);
            const auto limit =
                static_cast<std::int32_t>(std::min<std::int64_t>(room, bestArea / side - options.Gap));
            const std::int64_t waste = std::int64_t{width} * limit - area;
            if (waste < 0) continue;
            Skyline skyline(padded, width, limit);
            if (!skyline.Fill(waste)) continue;
            const MAtlasPages page{SideFor(skyline.Right()), SideFor(skyline.Bottom()), 1};
            const std::int64_t pageArea = std::int64_t{page.Width} * page.Height;
            if (pageArea >= bestArea) continue;
            best = page;
            bestArea = pageArea;
            Store(skyline, order, 0);
        }
        return best;
    }

    MAtlasPages SeveralPages() {
        MAtlasPages pages{options.Largest, 0, 0};
        for (std::vector<std::size_t> waiting = order; !waiting.empty(); ++pages.Count) {
            Skyline skyline(padded, room, room);
            skyline.Fill(std::numeric_limits<std::int64_t>::max());
            pages.Height = std::max(pages.Height, SideFor(skyline.Bottom()));
            Store(skyline, waiting, pages.Count);
            std::size_t kept = 0;
            for (std::size_t i = 0; i < waiting.size(); ++i) {
                if (skyline.IsPlaced(i)) continue;
                waiting[kept] = waiting[i];
                padded[kept++] = padded[i];
            }
            waiting.resize(kept);
            padded.resize(kept);
        }
        return pages;
    }

    void Store(const Skyline& skyline, std::span<const std::size_t> which, std::int32_t page) {
        for (std::size_t i = 0; i < which.size(); ++i) {
            if (!skyline.IsPlaced(i)) continue;
            MAtlasBox& box = boxes[which[i]];
            box.X = skyline.PlaceOf(i).x + options.Gap;
            box.Y = skyline.PlaceOf(i).y + options.Gap;
            box.Page = page;
        }
    }
};

} // namespace

std::optional<MAtlasPages> PackBoxes(std::span<MAtlasBox> boxes, const MAtlasOptions& options) {
    return Packer(boxes, options).Pack();
}
