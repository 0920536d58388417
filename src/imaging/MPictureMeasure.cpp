// GetMargins, read off the alpha channel row by row.
#include "imaging/MPicture.h"
#include "imaging/MPixelLayout.h"

namespace {

// Alpha as GetPixel gives it: of wide channels only the upper byte counts.
template<MPixelFormat Format>
std::uint8_t AlphaAt(const std::uint8_t* row, std::size_t x) {
    const std::uint8_t* pixel = row + x * pixels::bytesPerPixel<Format>;
    return pixels::ConvertChannel(pixels::LoadChannel<Format>(pixel, pixels::Alpha), std::uint8_t{});
}

// Whether `matches` holds for any alpha of the row. Looked at in runs without a branch, which the compiler
// widens.
template<MPixelFormat Format, typename Matches>
bool AnyAlpha(const std::uint8_t* row, std::size_t width, Matches matches) {
    constexpr std::size_t run = 64;
    for (std::size_t start = 0; start < width; start += run) {
        const std::size_t end = std::min(start + run, width);
        std::uint32_t found = 0;
        for (std::size_t x = start; x < end; ++x)
            found |= matches(AlphaAt<Format>(row, x)) ? 1U : 0U;
        if (found != 0) return true;
    }
    return false;
}

struct Ink {
    std::size_t top, right, bottom, left;
};

// The first and last row and column with ink; false without any.
template<MPixelFormat Format>
bool FindInk(const MPicture& picture, Ink& ink) {
    const auto row = [&](std::size_t y) { return picture.Pixels + y * picture.Stride; };
    const auto inked = [&](std::size_t y) {
        return AnyAlpha<Format>(row(y), picture.Width, [](std::uint8_t alpha) { return alpha != 0; });
    };
    ink.top = 0;
    while (ink.top < picture.Height && !inked(ink.top))
        ++ink.top;
    if (ink.top == picture.Height) return false;
    ink.bottom = picture.Height - 1;
    while (!inked(ink.bottom))
        --ink.bottom;

    ink.left = picture.Width;
    ink.right = 0;
    for (std::size_t y = ink.top; y <= ink.bottom; ++y) {
        std::size_t left = 0;
        while (left < ink.left && AlphaAt<Format>(row(y), left) == 0)
            ++left;
        ink.left = left;
        std::size_t right = picture.Width - 1;
        while (right > ink.right && AlphaAt<Format>(row(y), right) == 0)
            --right;
        ink.right = right;
    }
    return true;
}

} // namespace

void MPicture::GetMargins(std::uint32_t& top, std::uint32_t& right, std::uint32_t& bottom,
                          std::uint32_t& left) const {
    top = right = bottom = left = 0;
    if (!IsValid()) return;
    pixels::WithFormat(Format, [&](auto constant) {
        if constexpr (pixels::channelCount<constant()> == 4) {
            Ink ink{};
            if (!FindInk<constant()>(*this, ink)) return;
            top = static_cast<std::uint32_t>(ink.top);
            right = static_cast<std::uint32_t>(Width - 1 - ink.right);
            bottom = static_cast<std::uint32_t>(Height - 1 - ink.bottom);
            left = static_cast<std::uint32_t>(ink.left);
        }
    });
}
