#include "formats/game/AtlasPacking.h"

#define STBRP_STATIC
#define STB_RECT_PACK_IMPLEMENTATION
#include <stb_rect_pack.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <vector>

namespace {

// The widths that are tried lie around the side of a square of the boxes' own area. More of them find hardly
// more: with 128 for the 222 glyphs of a text font the boxes fill nine tenths of the page.
constexpr int triedWidths = 128;
constexpr double narrowest = 0.72;
constexpr double widest = 1.42;


class Packer {
public:
    Packer(std::span<MAtlasBox> source, const MAtlasOptions& wanted)
        : boxes(source), options(wanted), rects(source.size()) {
        options.Gap = std::clamp(options.Gap, 0, LargestPage);
        options.Largest = std::clamp(options.Largest, 1, LargestPage);
        if (options.Size == MPageSize::Four) options.Largest -= options.Largest % 4;
        if (options.Size == MPageSize::PowerOfTwo)
            options.Largest = static_cast<std::int32_t>(std::bit_floor(static_cast<unsigned>(options.Largest)));
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            boxes[i].X = boxes[i].Y = boxes[i].Page = 0;
            if (boxes[i].Width > 0 && boxes[i].Height > 0) filled.push_back(i);
        }
    }

    std::optional<MAtlasPages> Pack() {
        const std::int32_t room = options.Largest - options.Gap;
        std::int64_t area = 0;
        for (const std::size_t i : filled) {
            if (boxes[i].Width > room - options.Gap || boxes[i].Height > room - options.Gap) return std::nullopt;
            area += std::int64_t{boxes[i].Width + options.Gap} * (boxes[i].Height + options.Gap);
        }
        if (filled.empty()) return MAtlasPages{SideFor(1), SideFor(1), 1};
        if (const auto page = SmallestPage(area)) return page;
        return SeveralPages();
    }

private:
    std::span<MAtlasBox> boxes;
    MAtlasOptions options;
    std::vector<std::size_t> filled; // the boxes that have an area
    std::vector<stbrp_rect> rects;   // of one pass; the pass sorts them
    std::vector<stbrp_node> nodes;

    // The smallest side that a page may have for boxes up to `extent`, which includes the gap behind them.
    std::int32_t SideFor(std::int32_t extent) const {
        const std::int32_t side = extent + options.Gap;
        switch (options.Size) {
        case MPageSize::Free: return side;
        case MPageSize::Four: return (side + 3) / 4 * 4;
        case MPageSize::PowerOfTwo:
            return static_cast<std::int32_t>(std::bit_ceil(static_cast<unsigned>(side)));
        }
        return side;
    }

    // One pass of these boxes over a strip. The lowest edge of what was placed; what wasn't is told in the rects.
    std::int32_t Pass(std::span<const std::size_t> which, std::int32_t width, std::int32_t height) {
        rects.resize(which.size());
        std::ranges::transform(which, rects.begin(), [this](std::size_t i) {
            return stbrp_rect{static_cast<int>(i), boxes[i].Width + options.Gap, boxes[i].Height + options.Gap,
                              0, 0, 0};
        });
        // With as many nodes as columns the library doesn't coarsen its places.
        nodes.resize(static_cast<std::size_t>(width));
        stbrp_context context;
        stbrp_init_target(&context, width, height, nodes.data(), width);
        stbrp_pack_rects(&context, rects.data(), static_cast<int>(rects.size()));
        std::int32_t bottom = 0;
        for (const stbrp_rect& rect : rects)
            if (rect.was_packed) bottom = std::max(bottom, rect.y + rect.h);
        return bottom;
    }

    bool AllPlaced() const {
        return std::ranges::all_of(rects, [](const stbrp_rect& rect) { return rect.was_packed != 0; });
    }

    // The widths of the search, each as wide as the page that it leads to allows.
    std::vector<std::int32_t> Widths(std::int64_t area) const {
        std::int32_t least = 0;
        for (const std::size_t i : filled)
            least = std::max(least, boxes[i].Width + options.Gap);
        const std::int32_t most = options.Largest - options.Gap;
        const double square = std::sqrt(static_cast<double>(area));
        std::vector<std::int32_t> widths{most};
        if (options.Size == MPageSize::PowerOfTwo) {
            for (std::int32_t side = SideFor(least); side < options.Largest; side *= 2)
                widths.push_back(side - options.Gap);
        } else {
            for (int i = 0; i < triedWidths; ++i) {
                const double factor = narrowest + (widest - narrowest) * i / (triedWidths - 1);
                const auto width = static_cast<std::int32_t>(std::min(square * factor, double{LargestPage}));
                widths.push_back(std::clamp(SideFor(std::max(width, least)) - options.Gap, least, most));
            }
        }
        std::ranges::sort(widths);
        const auto repeated = std::ranges::unique(widths);
        widths.erase(repeated.begin(), repeated.end());
        return widths;
    }

    std::optional<MAtlasPages> SmallestPage(std::int64_t area) {
        std::optional<MAtlasPages> best;
        std::int32_t bestWidth = 0;
        for (const std::int32_t width : Widths(area)) {
            const std::int32_t bottom = Pass(filled, width, options.Largest - options.Gap);
            if (!AllPlaced()) continue;
            std::int32_t right = 0;
            for (const stbrp_rect& rect : rects)
                right = std::max(right, rect.x + rect.w);
            const MAtlasPages page{SideFor(right), SideFor(bottom), 1};
            if (best && Area(page) >= Area(*best)) continue;
            best = page;
            bestWidth = width;
        }
        if (best) {
            Pass(filled, bestWidth, options.Largest - options.Gap);
            Store(0);
        }
        return best;
    }

    static std::int64_t Area(const MAtlasPages& page) { return std::int64_t{page.Width} * page.Height; }

    MAtlasPages SeveralPages() {
        const std::int32_t room = options.Largest - options.Gap;
        MAtlasPages pages;
        std::vector<std::size_t> left = filled;
        for (; !left.empty(); ++pages.Count) {
            pages.Height = std::max(pages.Height, SideFor(Pass(left, room, room)));
            Store(pages.Count);
            left.clear();
            for (const stbrp_rect& rect : rects)
                if (!rect.was_packed) left.push_back(static_cast<std::size_t>(rect.id));
        }
        pages.Width = options.Largest;
        return pages;
    }

    void Store(std::int32_t page) {
        for (const stbrp_rect& rect : rects) {
            if (!rect.was_packed) continue;
            MAtlasBox& box = boxes[static_cast<std::size_t>(rect.id)];
            box.X = rect.x + options.Gap;
            box.Y = rect.y + options.Gap;
            box.Page = page;
        }
    }
};

} // namespace

std::optional<MAtlasPages> PackBoxes(std::span<MAtlasBox> boxes, const MAtlasOptions& options) {
    return Packer(boxes, options).Pack();
}
