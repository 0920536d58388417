// The constructor that makes a picture of another size or format from an old one. Smooth scaling is a box
// filter over a square of n by n source pixels, in which transparent pixels lower the alpha but do not darken
// the colour: that keeps the smooth edges of glyphs clean.
#include "imaging/MPictureResample.h"

#include "imaging/MPixelLayout.h"

#include <cmath>

namespace {

float Ratio(std::uint32_t dividend, std::uint32_t divisor) {
    return static_cast<float>(dividend) / static_cast<float>(divisor);
}

std::uint32_t SamplesPerSide(const MPicture& source, const MPicture& target) {
    const float reduction = std::max(Ratio(source.Width, target.Width), Ratio(source.Height, target.Height));
    const float samples = std::ceil(reduction);
    return static_cast<std::uint32_t>(ToInteger(std::max(2.0F, std::min(samples, float{mostSamples}))));
}

void FitInto(const MPicture& source, std::uint32_t& width, std::uint32_t& height) {
    const float scale = std::min(Ratio(width, source.Width), Ratio(height, source.Height));
    const auto scaled = [scale](std::uint32_t size) {
        return static_cast<std::uint32_t>(std::max(ToInteger(std::round(static_cast<float>(size) * scale)), 0));
    };
    width = scaled(source.Width);
    height = scaled(source.Height);
}

template<typename Colour>
using StoreFunction = void (*)(std::uint8_t*, const Colour&);

template<typename Colour>
StoreFunction<Colour> Storer(MPixelFormat format) {
    return pixels::WithFormat(format, StoreFunction<Colour>{nullptr}, [](auto constant) {
        return StoreFunction<Colour>{pixels::Store<constant(), Colour>};
    });
}

std::uint8_t FromMean(float mean, std::uint8_t) {
    return static_cast<std::uint8_t>(ToInteger(mean));
}
std::uint16_t FromMean(float mean, std::uint16_t) {
    return static_cast<std::uint16_t>(ToInteger(mean));
}
Imath::half FromMean(float mean, Imath::half) {
    return Imath::half(mean);
}

// The mean of one square, for any source format; false if nothing in it is visible. The sums are floats and
// depend on the order in which they are made: row by row, left to right.
template<MPixelFormat From, bool ToAlpha>
bool MeanOf(const MPicture& source, const SampleSpan& columns, const SampleSpan& rows,
            pixels::ColourOf<From>& mean) {
    using Colour = pixels::ColourOf<From>;
    using Value = decltype(Colour::r);
    float r = 0, g = 0, b = 0, a = 0;
    std::uint32_t colourCount = 0;
    for (std::size_t j = 0; j < rows.count; ++j) {
        const std::uint8_t* pixel = source.Pixels + (rows.first + j * rows.step) * source.Stride +
                                    columns.first * pixels::bytesPerPixel<From>;
        for (std::size_t i = 0; i < columns.count; ++i, pixel += columns.step * pixels::bytesPerPixel<From>) {
            const Colour sample = pixels::Load<Colour, From>(pixel);
            if constexpr (ToAlpha) {
                const auto alpha = static_cast<float>(sample.a);
                a += alpha;
                if (!(alpha > 0.0F)) continue;
            }
            r += static_cast<float>(sample.r);
            g += static_cast<float>(sample.g);
            b += static_cast<float>(sample.b);
            ++colourCount;
        }
    }
    if (colourCount == 0) return false;
    const auto divisor = static_cast<float>(colourCount);
    mean.r = FromMean(r / divisor, Value{});
    mean.g = FromMean(g / divisor, Value{});
    mean.b = FromMean(b / divisor, Value{});
    if constexpr (ToAlpha) mean.a = FromMean(a / static_cast<float>(columns.count * rows.count), Value{});
    return true;
}

template<MPixelFormat From, bool ToAlpha>
void ScaleAny(const MPicture& source, MPicture& target, std::uint32_t samples) {
    using Colour = pixels::ColourOf<From>;
    const auto store = Storer<Colour>(target.Format);
    const auto storeBlank = Storer<MColour>(target.Format);
    const std::size_t pixelBytes = BytesPerPixel(target.Format);
    for (std::uint32_t y = 0; y < target.Height; ++y) {
        const SampleSpan rows = SpanOf(y, source.Height, target.Height, samples);
        std::uint8_t* pixel = target.Pixels + std::size_t{y} * target.Stride;
        for (std::uint32_t x = 0; x < target.Width; ++x, pixel += pixelBytes) {
            Colour mean;
            if (MeanOf<From, ToAlpha>(source, SpanOf(x, source.Width, target.Width, samples), rows, mean)) {
                store(pixel, mean);
            } else {
                storeBlank(pixel, MColour(0, 0, 0, 0));
            }
        }
    }
}

void Scale(const MPicture& source, MPicture& target) {
    const std::uint32_t samples = SamplesPerSide(source, target);
    const bool toAlpha = HasAlpha(target.Format);
    pixels::WithFormat(source.Format, [&](auto constant) {
        constexpr MPixelFormat from = constant();
        if constexpr (from == FormatRGBA8) {
            ScaleBytes(source, target, samples);
        } else {
            toAlpha ? ScaleAny<from, true>(source, target, samples)
                    : ScaleAny<from, false>(source, target, samples);
        }
    });
}

// The source stays at the top left; what lies beyond it is transparent black.
template<MPixelFormat From, MPixelFormat To>
void CropOrPad(const MPicture& source, MPicture& target) {
    const std::size_t columns = std::min(source.Width, target.Width);
    for (std::size_t y = 0; y < target.Height; ++y) {
        std::uint8_t* to = target.Pixels + y * target.Stride;
        std::size_t x = 0;
        if (y < source.Height) {
            const std::uint8_t* const from = source.Pixels + y * source.Stride;
            for (; x < columns; ++x, to += pixels::bytesPerPixel<To>) {
                pixels::Store<To>(
                    to, pixels::Load<pixels::ColourOf<From>, From>(from + x * pixels::bytesPerPixel<From>));
            }
        }
        for (; x < target.Width; ++x, to += pixels::bytesPerPixel<To>) {
            pixels::Store<To>(to, MColour(0, 0, 0, 0));
        }
    }
}

void CropOrPad(const MPicture& source, MPicture& target) {
    pixels::WithFormat(source.Format, [&](auto from) {
        pixels::WithFormat(target.Format, [&](auto to) { CropOrPad<from(), to()>(source, target); });
    });
}

} // namespace

MPicture::MPicture(const MPicture& source, std::uint32_t width, std::uint32_t height, MPixelFormat format,
                   bool smooth, bool keepAspect)
    : MPicture() {
    if (!source.IsValid()) return;
    if (keepAspect) FitInto(source, width, height);
    *this = MPicture(width, height, format);
    if (!IsValid()) return;
    if (Width == source.Width && Height == source.Height) {
        CopyPixels(source);
    } else if (smooth) {
        Scale(source, *this);
    } else {
        CropOrPad(source, *this);
    }
}
