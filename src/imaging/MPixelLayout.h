// How each format lies in memory, as templates: the one place that knows the channel order and the conversions.
// Everything that walks over pixels is written once against these and compiled for each format.
#pragma once

#include "imaging/MColour.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace pixels {

static_assert(std::endian::native == std::endian::little, "pixels are little-endian in memory");

template<MPixelFormat Format>
using FormatConstant = std::integral_constant<MPixelFormat, Format>;

template<MPixelFormat Format>
inline constexpr int channelClass = (Format - 1) % 3 + 1;

template<MPixelFormat Format>
inline constexpr int channelCount = Format <= FormatRHalf     ? 1
                                    : Format <= FormatRGBHalf ? 3
                                                              : 4;

template<MPixelFormat Format>
using Channel = std::conditional_t<channelClass<Format> == 1, std::uint8_t,
                                   std::conditional_t<channelClass<Format> == 2, std::uint16_t, Imath::half>>;

// The colour type of the format's class: what its pixels are read into without loss.
template<MPixelFormat Format>
using ColourOf = std::conditional_t<channelClass<Format> == 1, MColour,
                                    std::conditional_t<channelClass<Format> == 2, MColour16, MColourHalf>>;

template<MPixelFormat Format>
inline constexpr std::size_t bytesPerPixel = sizeof(Channel<Format>) * channelCount<Format>;

enum ChannelIndex { Red, Green, Blue, Alpha };

// Where a channel lies within the pixel, in bytes. Bytes lie blue first, wider channels red first.
template<MPixelFormat Format>
constexpr std::size_t ChannelOffset(ChannelIndex index) {
    if (channelCount<Format> == 1) return 0;
    const int place = channelClass<Format> == 1 && index != Alpha ? Blue - index : index;
    return static_cast<std::size_t>(place) * sizeof(Channel<Format>);
}

inline std::uint8_t ConvertChannel(std::uint8_t value, std::uint8_t) {
    return value;
}
inline std::uint8_t ConvertChannel(std::uint16_t value, std::uint8_t) {
    return static_cast<std::uint8_t>(value >> 8);
}
inline std::uint8_t ConvertChannel(Imath::half value, std::uint8_t) {
    return ToByte(value);
}
inline std::uint16_t ConvertChannel(std::uint8_t value, std::uint16_t) {
    return static_cast<std::uint16_t>(value << 8);
}
inline std::uint16_t ConvertChannel(std::uint16_t value, std::uint16_t) {
    return value;
}
inline std::uint16_t ConvertChannel(Imath::half value, std::uint16_t) {
    return ToWord(value);
}
inline Imath::half ConvertChannel(std::uint8_t value, Imath::half) {
    return Imath::half(static_cast<float>(value));
}
inline Imath::half ConvertChannel(std::uint16_t value, Imath::half) {
    return Imath::half(static_cast<float>(value) / 256.0F);
}
inline Imath::half ConvertChannel(Imath::half value, Imath::half) {
    return value;
}

// Reading and changing a pixel's class share the rule above; storing has its own. Bytes fill the high half of a
// word with 255 below, and integers become floats by a division by 256, whatever their width.
inline std::uint8_t StoredChannel(std::uint8_t value, std::uint8_t) {
    return value;
}
inline std::uint16_t StoredChannel(std::uint8_t value, std::uint16_t) {
    return static_cast<std::uint16_t>(value << 8 | 255);
}
inline Imath::half StoredChannel(std::uint8_t value, Imath::half) {
    return Imath::half(static_cast<float>(value) / 256.0F);
}
template<typename Target>
Target StoredChannel(std::uint16_t value, Target target) {
    return ConvertChannel(value, target);
}
template<typename Target>
Target StoredChannel(Imath::half value, Target target) {
    return ConvertChannel(value, target);
}

template<MPixelFormat Format>
Channel<Format> LoadChannel(const std::uint8_t* pixel, ChannelIndex index) {
    Channel<Format> value;
    std::memcpy(&value, pixel + ChannelOffset<Format>(index), sizeof value);
    return value;
}

template<MPixelFormat Format>
void StoreChannel(std::uint8_t* pixel, ChannelIndex index, Channel<Format> value) {
    std::memcpy(pixel + ChannelOffset<Format>(index), &value, sizeof value);
}

// The pixel as a colour of any of the three types. Grey spreads over red, green and blue; where there is no
// alpha the result has its type's opaque default, but for format 3 read as 16 bits, which has always given 255.
template<typename Colour, MPixelFormat Format>
Colour Load(const std::uint8_t* pixel) {
    using Value = decltype(Colour::r);
    const auto channel = [&](ChannelIndex index) {
        return ConvertChannel(LoadChannel<Format>(pixel, index), Value{});
    };
    Colour colour;
    colour.r = channel(Red);
    colour.g = channel(Green);
    colour.b = channel(Blue);
    if constexpr (channelCount<Format> == 4) colour.a = channel(Alpha);
    if constexpr (Format == FormatRHalf && std::is_same_v<Value, std::uint16_t>) colour.a = 255;
    return colour;
}

template<MPixelFormat Format, typename Colour>
void Store(std::uint8_t* pixel, const Colour& colour) {
    using Value = Channel<Format>;
    StoreChannel<Format>(pixel, Red, StoredChannel(colour.r, Value{}));
    if constexpr (channelCount<Format> >= 3) {
        StoreChannel<Format>(pixel, Green, StoredChannel(colour.g, Value{}));
        StoreChannel<Format>(pixel, Blue, StoredChannel(colour.b, Value{}));
    }
    if constexpr (channelCount<Format> == 4)
        StoreChannel<Format>(pixel, Alpha, StoredChannel(colour.a, Value{}));
}

// action(FormatConstant<format>); `fallback` for a number that is no format.
template<typename Result, typename Action>
Result WithFormat(MPixelFormat format, Result fallback, Action action) {
    switch (format) {
    case FormatR8: return action(FormatConstant<FormatR8>{});
    case FormatR16: return action(FormatConstant<FormatR16>{});
    case FormatRHalf: return action(FormatConstant<FormatRHalf>{});
    case FormatRGB8: return action(FormatConstant<FormatRGB8>{});
    case FormatRGB16: return action(FormatConstant<FormatRGB16>{});
    case FormatRGBHalf: return action(FormatConstant<FormatRGBHalf>{});
    case FormatRGBA8: return action(FormatConstant<FormatRGBA8>{});
    case FormatRGBA16: return action(FormatConstant<FormatRGBA16>{});
    case FormatRGBAHalf: return action(FormatConstant<FormatRGBAHalf>{});
    default: return fallback;
    }
}

template<typename Action>
void WithFormat(MPixelFormat format, Action action) {
    WithFormat(format, false, [&](auto constant) {
        action(constant);
        return true;
    });
}

} // namespace pixels
