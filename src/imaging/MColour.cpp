#include "imaging/MColour.h"

#include "imaging/MPixelLayout.h"

#include <array>
#include <limits>

std::uint32_t BytesPerPixel(MPixelFormat format) {
    return pixels::WithFormat(format, std::uint32_t{0}, [](auto constant) {
        return static_cast<std::uint32_t>(pixels::bytesPerPixel<constant()>);
    });
}

int ChannelClass(MPixelFormat format) {
    return pixels::WithFormat(format, 0, [](auto constant) { return pixels::channelClass<constant()>; });
}

bool HasAlpha(MPixelFormat format) {
    return format >= FormatRGBA8 && format <= FormatRGBAHalf;
}

MPixel::MPixel(const std::uint8_t* memory, MPixelFormat valueFormat) : format(valueFormat) {
    if (!memory) return;
    pixels::WithFormat(format, [&](auto constant) {
        constexpr MPixelFormat own = constant();
        const auto value = pixels::Load<pixels::ColourOf<own>, own>(memory);
        if constexpr (pixels::channelClass<own> == 1) colour = value;
        if constexpr (pixels::channelClass<own> == 2) colour16 = value;
        if constexpr (pixels::channelClass<own> == 3) colourHalf = value;
    });
}

namespace {

// 2 to the 24th by each alpha, rounded up: with it a division of 16 bits by an alpha is exact.
constexpr auto reciprocals = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t a = 1; a < 256; ++a)
        table[a] = ((1U << 24) + a - 1) / a;
    return table;
}();

template<typename Target, typename Source>
void ConvertColour(const Source& source, Target& target) {
    using Value = decltype(Target::r);
    target.r = pixels::ConvertChannel(source.r, Value{});
    target.g = pixels::ConvertChannel(source.g, Value{});
    target.b = pixels::ConvertChannel(source.b, Value{});
    target.a = pixels::ConvertChannel(source.a, Value{});
}

} // namespace

void MPixel::SetFormat(MPixelFormat newFormat) {
    const int from = ChannelClass(format);
    const int to = ChannelClass(newFormat);
    format = newFormat;
    if (from == 1 && to == 2) ConvertColour(colour, colour16);
    if (from == 1 && to == 3) ConvertColour(colour, colourHalf);
    if (from == 2 && to == 1) ConvertColour(colour16, colour);
    if (from == 2 && to == 3) ConvertColour(colour16, colourHalf);
    if (from == 3 && to == 1) ConvertColour(colourHalf, colour);
    if (from == 3 && to == 2) ConvertColour(colourHalf, colour16);
}

MColour MColour::Lerp(MColour first, MColour second, float t) {
    const auto channel = [t](std::uint8_t from, std::uint8_t to) {
        if (from == to) return from;
        const float value = static_cast<float>(to) * t + static_cast<float>(from) * (1.0F - t);
        return static_cast<std::uint8_t>(std::clamp(ToInteger(value), 0, 255));
    };
    return {channel(first.r, second.r), channel(first.g, second.g), channel(first.b, second.b),
            channel(first.a, second.a)};
}

MColour Premultiplied(const MColour& straight) {
    if (straight.a == 255) return straight;
    const auto channel = [&](std::uint32_t value) {
        return static_cast<std::uint8_t>(value * straight.a >> 8);
    };
    return {channel(straight.r), channel(straight.g), channel(straight.b), straight.a};
}

MColour Unpremultiplied(const MColour& premultiplied) {
    const std::uint32_t alpha = premultiplied.a;
    if (alpha == 255) return premultiplied;
    if (alpha == 0) return {0, 0, 0, 0};
    const std::uint64_t factor = reciprocals[alpha];
    const auto channel = [&](std::uint32_t value) {
        return static_cast<std::uint8_t>(
            std::min<std::uint64_t>((value * 255 + alpha / 2) * factor >> 24, 255));
    };
    return {channel(premultiplied.r), channel(premultiplied.g), channel(premultiplied.b), premultiplied.a};
}
