// Boxes onto as little area as a short search finds, in any order; for pictures that others read, who may
// choose the distance between the boxes and what sizes a page may have.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

struct MAtlasBox {
    std::int32_t Width = 0; // pixels
    std::int32_t Height = 0;
    std::int32_t X = 0; // where it was put, from the left and upper edge of its page
    std::int32_t Y = 0;
    std::int32_t Page = 0; // from 0
};

enum class MPageSize : std::uint8_t {
    Free,
    Four, // both sides are multiples of four, as block compression wants them
    PowerOfTwo,
};

struct MAtlasOptions {
    MPageSize Size = MPageSize::Four;
    std::int32_t Gap = 1;        // clear pixels between boxes, and between boxes and the page's edges
    std::int32_t Largest = 4096; // of a page's side; up to LargestPage
};

struct MAtlasPages {
    std::int32_t Width = 0; // all pages are of one size
    std::int32_t Height = 0;
    std::int32_t Count = 0;
};

// What graphics hardware takes today.
inline constexpr std::int32_t LargestPage = 16384;

// Places every box; boxes without area take no room and lie at 0, 0. One page where all fit one, which is then
// as small as the search over its widths finds; otherwise as few as one pass fills. Nothing if a box alone is
// larger than a page may be. The same boxes give the same places.
std::optional<MAtlasPages> PackBoxes(std::span<MAtlasBox> boxes, const MAtlasOptions& options);
