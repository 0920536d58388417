// FlipVertically and DrawLine.
#include "foundation/MMemory.h"
#include "imaging/MPicture.h"

#include <cstdlib>
#include <memory>
#include <utility>

bool MPicture::FlipVertically() {
    if (!IsValid()) return false;
    const std::unique_ptr<std::uint8_t[]> buffer(MGetMemory(Stride));
    if (!buffer) return false;
    for (std::size_t y = 0; y < Height / 2; ++y) {
        std::uint8_t* const upper = Pixels + y * Stride;
        std::uint8_t* const lower = Pixels + (Height - 1 - y) * Stride;
        MCopyMemory(buffer.get(), upper, Stride);
        MCopyMemory(upper, lower, Stride);
        MCopyMemory(lower, buffer.get(), Stride);
    }
    TopDown = !TopDown;
    return true;
}

namespace {

struct Point {
    std::int64_t x, y;
};

// Lines that are neither vertical nor horizontal. The starting error and the test for 1 fix which of two
// equally near pixels is taken, so that a line is the same pixels everywhere.
template<typename Plot>
void WalkSlope(Point start, Point end, Plot plot) {
    if (end.y < start.y) std::swap(start, end);
    const std::int64_t dx = std::abs(end.x - start.x);
    const std::int64_t dy = end.y - start.y;
    const std::int64_t step = end.x > start.x ? 1 : -1;
    if (dx <= dy) {
        std::int64_t error = -(dy / 2);
        for (; start.y <= end.y; ++start.y) {
            plot(start.x, start.y);
            error += dx;
            if (error < 1) continue;
            start.x += step;
            error -= dy;
        }
        return;
    }
    std::int64_t error = -(dx / 2);
    for (; start.x != end.x + step; start.x += step) {
        plot(start.x, start.y);
        error += dy;
        if (error < 1) continue;
        ++start.y;
        error -= dx;
    }
}

} // namespace

void MPicture::DrawLine(std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1,
                        const MColour& colour) {
    if (!IsValid()) return;
    const auto plot = [&](std::int64_t x, std::int64_t y) {
        SetPixel(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y), colour);
    };
    if (x0 != x1 && y0 != y1) return WalkSlope({x0, y0}, {x1, y1}, plot);
    const auto [left, right] = std::minmax({std::int64_t{x0}, std::int64_t{x1}});
    const auto [top, bottom] = std::minmax({std::int64_t{y0}, std::int64_t{y1}});
    for (std::int64_t y = top; y <= bottom; ++y) {
        for (std::int64_t x = left; x <= right; ++x)
            plot(x, y);
    }
}
