// Pictures for the tests: random ones of every format, and comparison.
#pragma once

#include "imaging/MPicture.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>
#include <random>
#include <vector>

// A seeded generator of 32-bit numbers.
class Random {
public:
    explicit Random(std::uint32_t seed) : engine(seed) {}
    std::uint32_t operator()() { return static_cast<std::uint32_t>(engine()); }
    bool Chance(double share) { return (*this)() < share * 4294967296.0; }

private:
    std::mt19937 engine;
};

// Owns the block of a picture for the length of a test.
struct OwnedPicture : MPicture {
    OwnedPicture() = default;
    OwnedPicture(const MPicture& picture) : MPicture(picture) {}
    OwnedPicture(OwnedPicture&& other) noexcept : MPicture(other) { other.Pixels = nullptr; }
    OwnedPicture(const OwnedPicture&) = delete;
    OwnedPicture& operator=(const OwnedPicture&) = delete;
    OwnedPicture& operator=(OwnedPicture&& other) noexcept {
        std::swap(static_cast<MPicture&>(*this), static_cast<MPicture&>(other));
        return *this;
    }
    ~OwnedPicture() { Free(); }
};

inline OwnedPicture BlankPicture(std::uint32_t width, std::uint32_t height, MPixelFormat format) {
    OwnedPicture picture(MPicture(width, height, format));
    std::memset(picture.Pixels, 0, std::size_t{picture.Stride} * height);
    return picture;
}

inline OwnedPicture DeepCopy(const MPicture& picture) {
    OwnedPicture copy(picture);
    const std::size_t size = std::size_t{picture.Stride} * picture.Height;
    copy.Pixels = new std::uint8_t[size];
    std::memcpy(copy.Pixels, picture.Pixels, size);
    return copy;
}

// Noise in all channels. `visible` is the share of pixels whose alpha isn't 0; half of those are opaque. Floats
// lie between 0 and 1, with now and then one above.
inline OwnedPicture RandomPicture(std::uint32_t width, std::uint32_t height, MPixelFormat format,
                                  std::uint32_t seed, double visible = 0.6) {
    OwnedPicture picture = BlankPicture(width, height, format);
    Random random(seed);
    for (std::int32_t y = 0; y < static_cast<std::int32_t>(height); ++y) {
        for (std::int32_t x = 0; x < static_cast<std::int32_t>(width); ++x) {
            const bool shown = random.Chance(visible);
            const bool full = random.Chance(0.5);
            std::uint32_t channels[4];
            for (auto& channel : channels)
                channel = random() & 65535;
            channels[3] = !shown ? 0 : full ? 65535 : channels[3];
            if (ChannelClass(format) == 3) {
                const auto unit = [](std::uint32_t value) { return static_cast<float>(value) / 60000.0F; };
                picture.SetPixel(x, y,
                                 MPixel(MColourHalf(unit(channels[0]), unit(channels[1]), unit(channels[2]),
                                                    unit(channels[3])),
                                        FormatRGBAHalf));
            } else {
                const auto part = [](std::uint32_t value) { return static_cast<std::uint16_t>(value); };
                picture.SetPixel(x, y,
                                 MPixel(MColour16{part(channels[0]), part(channels[1]), part(channels[2]),
                                                  part(channels[3])},
                                        FormatRGBA16));
            }
        }
    }
    return picture;
}

// A picture of format 7 whose rows divide the buffer, which stays the caller's.
inline MPicture ViewOf(std::vector<std::uint8_t>& buffer, std::uint32_t width, std::uint32_t height) {
    MPicture view;
    view.Width = width;
    view.Height = height;
    view.Format = FormatRGBA8;
    view.Stride = static_cast<std::uint32_t>(buffer.size() / height);
    view.Pixels = buffer.data();
    return view;
}

// Size, format and every byte of the rows.
inline bool SamePicture(const MPicture& a, const MPicture& b) {
    if (a.Width != b.Width || a.Height != b.Height || a.Format != b.Format || !a.IsValid() || !b.IsValid())
        return false;
    const std::size_t rowBytes = std::size_t{a.Width} * BytesPerPixel(a.Format);
    for (std::size_t y = 0; y < a.Height; ++y) {
        if (std::memcmp(a.Pixels + y * a.Stride, b.Pixels + y * b.Stride, rowBytes) != 0) return false;
    }
    return true;
}
