// The ground of a sheet: finding it, telling ink from it, and taking it away again.
#pragma once

#include "glyphs/SheetCutter.h"

#include <array>
#include <cstdint>
#include <vector>

// The ground of a picture of format 7. False, with the reason, if it has none that is even enough.
bool FindSheetGround(const MPicture& picture, const MSheetWishes& wishes, MSheetGround& ground,
                     std::string& problem);

// The paper's colour at a pixel: blue, green, red, 0 to 255.
std::array<float, 3> PaperAt(const MSheetGround& ground, std::int32_t x, std::int32_t y);

// Tells ink by rows, from the top down.
class MSheetInk {
public:
    MSheetInk(const MSheetGround& sheetGround, std::int32_t width);

    // How far each pixel of a row of format 7 is from the ground: its alpha, or the largest difference of a
    // channel from the paper. `width` bytes, valid until the next call.
    const std::uint8_t* Strength(const std::uint8_t* row, std::int32_t y);

private:
    const MSheetGround& ground;
    std::size_t width;
    std::int32_t step;               // pixels, along both sides, that share one colour of uneven paper
    std::int32_t paperFrom = -1;     // the rows that `paper` stands for
    std::vector<std::uint8_t> paper; // four bytes a pixel, the last one 0
    std::vector<std::uint8_t> strength;
    std::array<std::uint8_t, 16> counts; // 255 for the bytes of four pixels that tell ink, else 0

    void UsePaper(std::int32_t y);
    bool IsClear(const std::uint8_t* pixels, const std::uint8_t* clear) const;
};
