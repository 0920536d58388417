// Colour values and the nine pixel formats.
#pragma once

#include "foundation/MNumbers.h"

#include <Imath/half.h>

#include <cstdint>

// 0 is no format at all. The numbers are stored nowhere but are the ones the program speaks of.
using MPixelFormat = std::int32_t;

inline constexpr MPixelFormat FormatNone = 0;
inline constexpr MPixelFormat FormatR8 = 1;       // one byte
inline constexpr MPixelFormat FormatR16 = 2;      // one 16-bit value
inline constexpr MPixelFormat FormatRHalf = 3;    // one binary16 value
inline constexpr MPixelFormat FormatRGB8 = 4;     // blue, green, red
inline constexpr MPixelFormat FormatRGB16 = 5;    // red, green, blue, 16 bits each
inline constexpr MPixelFormat FormatRGBHalf = 6;  // red, green, blue, binary16 each
inline constexpr MPixelFormat FormatRGBA8 = 7;    // blue, green, red, alpha: the working format of all glyphs
inline constexpr MPixelFormat FormatRGBA16 = 8;   // red, green, blue, alpha, 16 bits each
inline constexpr MPixelFormat FormatRGBAHalf = 9; // red, green, blue, alpha, binary16 each

// 0 for any number outside 1 to 9.
std::uint32_t BytesPerPixel(MPixelFormat format);
// 1: 8-bit, 2: 16-bit, 3: binary16 channels; 0 for any number outside 1 to 9.
int ChannelClass(MPixelFormat format);
bool HasAlpha(MPixelFormat format);

// Laid out as a pixel of format 7. Alpha is straight everywhere.
struct MColour {
    std::uint8_t b = 0;
    std::uint8_t g = 0;
    std::uint8_t r = 0;
    std::uint8_t a = 255;

    constexpr MColour() = default;
    constexpr MColour(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha = 255)
        : b(blue), g(green), r(red), a(alpha) {}
    friend constexpr bool operator==(const MColour&, const MColour&) = default;

    // Each channel second * t + first * (1 - t) in floats, truncated; equal channels stay. `t` from 0 to 1.
    static MColour Lerp(MColour first, MColour second, float t);
};
static_assert(sizeof(MColour) == 4);

struct MColour16 {
    std::uint16_t r = 0;
    std::uint16_t g = 0;
    std::uint16_t b = 0;
    std::uint16_t a = 65535;

    friend constexpr bool operator==(const MColour16&, const MColour16&) = default;
};

// The default alpha is 255, not 1: colours made from bytes stay on the 0 to 255 scale here.
struct MColourHalf {
    Imath::half r = 0.0F;
    Imath::half g = 0.0F;
    Imath::half b = 0.0F;
    Imath::half a = 255.0F;

    MColourHalf() = default;
    MColourHalf(float red, float green, float blue, float alpha) : r(red), g(green), b(blue), a(alpha) {}
    friend bool operator==(const MColourHalf&, const MColourHalf&) = default;
};

// One value in the channel class of `format`; only the member of that class is live.
struct MPixel {
    MPixelFormat format = FormatNone;
    MColour colour;
    MColour16 colour16;
    MColourHalf colourHalf;

    MPixel() = default;
    MPixel(const MColour& value, MPixelFormat valueFormat) : format(valueFormat), colour(value) {}
    MPixel(const MColour16& value, MPixelFormat valueFormat) : format(valueFormat), colour16(value) {}
    MPixel(const MColourHalf& value, MPixelFormat valueFormat) : format(valueFormat), colourHalf(value) {}
    // The pixel at `memory`, which holds BytesPerPixel(valueFormat) bytes; nothing is live for a null pointer.
    MPixel(const std::uint8_t* memory, MPixelFormat valueFormat);

    // Fills the member of the new format's class from the live one. Within a class, and from format 0, only
    // `format` changes. Integers become floats on the scale of bytes, unscaled: 255 is 255.0. Floats become
    // integers through ToByte and ToWord, so 1.0 is 255 and 65535.
    void SetFormat(MPixelFormat newFormat);
};

// value * 255 (65535), truncated toward zero and clamped; 0 for what is not a number.
inline std::uint8_t ToByte(float value) {
    const float scaled = value * 255.0F;
    return static_cast<std::uint8_t>(scaled > 0.0F ? ToInteger(std::min(scaled, 255.0F)) : 0);
}
inline std::uint8_t ToByte(Imath::half value) {
    return ToByte(static_cast<float>(value));
}

inline std::uint16_t ToWord(Imath::half value) {
    const float scaled = static_cast<float>(value) * 65535.0F;
    return static_cast<std::uint16_t>(scaled > 0.0F ? ToInteger(std::min(scaled, 65535.0F)) : 0);
}

// For drawing, where colours are multiplied by their alpha: channel * a >> 8, which a drawn picture has always
// shown; opaque colours stay.
MColour Premultiplied(const MColour& straight);
// And back, rounded to nearest; 255 for a channel above its alpha. Transparent colours become black.
MColour Unpremultiplied(const MColour& premultiplied);
