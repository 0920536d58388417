// Pictures for the tests: random ones of every format, and comparison.
#pragma once

#include "imaging/MPicture.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
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

struct Place {
    std::int32_t x, y;
};

// All pixels, row by row.
inline std::vector<Place> PlacesOf(const MPicture& picture) {
    std::vector<Place> places;
    for (std::uint32_t y = 0; y < picture.Height; ++y) {
        for (std::uint32_t x = 0; x < picture.Width; ++x)
            places.push_back({static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)});
    }
    return places;
}

// The largest difference of a channel.
inline int Difference(const MColour& a, const MColour& b) {
    return std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b), std::abs(a.a - b.a)});
}

inline OwnedPicture BlankPicture(std::uint32_t width, std::uint32_t height, MPixelFormat format) {
    OwnedPicture picture(MPicture(width, height, format));
    std::memset(picture.Pixels, 0, std::size_t{picture.Stride} * height);
    return picture;
}

inline OwnedPicture FilledPicture(std::uint32_t width, std::uint32_t height, const MColour& colour) {
    OwnedPicture picture(MPicture(width, height, FormatRGBA8));
    picture.Fill(colour);
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
    for (const auto& [x, y] : PlacesOf(picture)) {
        const bool shown = random.Chance(visible);
        const bool full = random.Chance(0.5);
        std::array<std::uint16_t, 4> words;
        for (auto& word : words)
            word = static_cast<std::uint16_t>(random());
        if (!shown || full) words[3] = shown ? 65535 : 0;
        const MColour16 colour{words[0], words[1], words[2], words[3]};
        MPixel pixel(colour, FormatRGBA16);
        const auto unit = [](std::uint16_t word) { return static_cast<float>(word) / 60000.0F; };
        if (ChannelClass(format) == 3)
            pixel = {MColourHalf(unit(colour.r), unit(colour.g), unit(colour.b), unit(colour.a)),
                     FormatRGBAHalf};
        picture.SetPixel(x, y, pixel);
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
    bool same =
        a.IsValid() && b.IsValid() && a.Width == b.Width && a.Height == b.Height && a.Format == b.Format;
    const std::size_t rowBytes = std::size_t{a.Width} * BytesPerPixel(a.Format);
    for (std::size_t y = 0; same && y < a.Height; ++y)
        same = std::memcmp(a.Pixels + y * a.Stride, b.Pixels + y * b.Stride, rowBytes) == 0;
    return same;
}
