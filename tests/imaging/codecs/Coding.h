// Encoding and decoding in memory, by the name of the form.
#pragma once

#include "imaging/Pictures.h"
#include "imaging/codecs/MCodec.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

inline const MCodec& CodecNamed(std::string_view name) {
    return *std::ranges::find(Codecs(), name, &MCodec::name);
}

inline void Append(Bytes& file, const Bytes& bytes) {
    file.insert(file.end(), bytes.begin(), bytes.end());
}

// Numbers, each with its size in bytes, most significant byte first.
inline void Append(Bytes& file, std::initializer_list<std::pair<std::uint32_t, int>> fields) {
    for (const auto& [value, size] : fields) {
        for (int i = size - 1; i >= 0; --i)
            file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
}

// A file of data/, whose README tells what is in it.
inline Bytes DataFile(const std::string& name) {
    std::ifstream file(LETTRINO_TEST_DATA + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The names of the files in a folder of data/.
inline std::vector<std::string> DataFiles(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(LETTRINO_TEST_DATA + folder))
        names.push_back(entry.path().filename().string());
    return names;
}

// Invalid if the file isn't taken.
inline OwnedPicture Decoded(std::string_view name, std::span<const std::uint8_t> file, std::int32_t frame = 0) {
    MByteSource source(file);
    MPicture picture;
    if (!CodecNamed(name).decode(source, frame, picture)) picture.Free();
    return {picture};
}

// Empty if the picture isn't taken.
inline Bytes Encoded(std::string_view name, const MPicture& picture) {
    MByteSink sink;
    if (!CodecNamed(name).encode(picture, sink) || !sink.Finish()) return {};
    return {sink.Bytes().begin(), sink.Bytes().end()};
}

// A soft gradient, which lossy forms keep closely.
inline OwnedPicture SmoothPicture(std::uint32_t width, std::uint32_t height, MPixelFormat format) {
    OwnedPicture picture = BlankPicture(width, height, format);
    for (const auto& [x, y] : PlacesOf(picture)) {
        const float red = 0.2F + static_cast<float>(x) / 600.0F;
        const float green = 0.2F + static_cast<float>(y) / 600.0F;
        MPixel pixel(MColourHalf(red, green, (red + green) / 2, 1.0F), FormatRGBAHalf);
        if (ChannelClass(format) != 3) pixel.SetFormat(FormatRGBA16);
        picture.SetPixel(x, y, pixel);
    }
    return picture;
}
