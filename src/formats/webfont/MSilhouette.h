// The silhouette of a picture as closed contours: where its alpha reaches half of opacity, or half of its
// highest alpha for a picture that is fainter than that everywhere.
//
// Marching squares over the pixels' centres with the crossings interpolated, which keeps the smoothness of soft
// edges and puts the sides of opaque ink exactly onto the borders of its pixels; then every point that lies
// nearer than a tolerance to the line between its neighbours goes (Douglas and Peucker, "Algorithms for the
// reduction of the number of points", 1973). Our own, since the tracing libraries at hand are under licences
// that would become the program's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

// Units of the picture's pixels, from its upper left corner, y downwards. The inside is on the right of the
// way.
struct MContourPoint {
    double X = 0;
    double Y = 0;
};
using MContour = std::vector<MContourPoint>;

// `alphaRow` fills a span of `width` with a row's alphas, and is asked for each row in turn, twice. The
// contours have at most `mostPoints` points in all, at least four: noise loses its small parts, and in the end
// there are none.
std::vector<MContour>
TraceSilhouette(std::int32_t width, std::int32_t height,
                const std::function<void(std::int32_t, std::span<std::uint8_t>)>& alphaRow,
                std::size_t mostPoints);
