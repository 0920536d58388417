#include "glyphs/sheet/SheetPhoto.h"

#include "foundation/MFile.h"
#include "imaging/MPixelBudget.h"

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr int upright = 1;

// Zeros behind the end.
std::uint32_t Number(Bytes bytes, std::size_t at, std::size_t size, bool lowestFirst) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t place = at + (lowestFirst ? size - 1 - i : i);
        number = number << 8 | (place < bytes.size() ? bytes[place] : 0U);
    }
    return number;
}

// Tag 0x112 of the first directory of an Exif block (CIPA DC-008): 1 to 8.
int OrientationOf(Bytes exif) {
    const bool lowestFirst = Number(exif, 0, 1, false) == 'I';
    const std::size_t directory = Number(exif, 4, 4, lowestFirst);
    const std::size_t count = Number(exif, directory, 2, lowestFirst);
    for (std::size_t entry = directory + 2; entry < directory + 2 + 12 * count; entry += 12) {
        if (Number(exif, entry, 2, lowestFirst) != 0x112) continue;
        const std::uint32_t value = Number(exif, entry + 8, 2, lowestFirst);
        return value >= 1 && value <= 8 ? static_cast<int>(value) : upright;
    }
    return upright;
}

// Of a JPEG file; all others are upright.
int OrientationOf(const MString& path) {
    constexpr std::uint32_t most = 1 << 18; // the block stands near the beginning and has at most 64 KB
    std::vector<std::uint8_t> head(most);
    MFile file(path, false, false);
    if (!file.ok) return upright;
    head.resize(file.ReadSome(head.data(), most));
    const Bytes bytes(head);
    if (Number(bytes, 0, 2, false) != 0xFFD8) return upright;
    for (std::size_t at = 2; Number(bytes, at, 1, false) == 0xFF;) {
        const std::uint32_t marker = Number(bytes, at + 1, 1, false);
        if (marker == 0xDA) break; // the picture itself
        constexpr std::string_view mark("Exif\0\0", 6);
        const std::size_t block = at + 4 + mark.size();
        if (marker == 0xE1 && block < bytes.size() &&
            std::memcmp(&bytes[at + 4], mark.data(), mark.size()) == 0)
            return OrientationOf(bytes.subspan(block));
        at += 2 + Number(bytes, at + 2, 2, false);
    }
    return upright;
}

MPicture Turned(const MPicture& picture, int orientation) {
    const bool swapped = orientation >= 5;
    const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBelow = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    MPicture turned(swapped ? picture.Height : picture.Width, swapped ? picture.Width : picture.Height,
                    picture.Format);
    if (!turned.IsValid()) return turned;
    const std::size_t size = BytesPerPixel(picture.Format);
    for (std::uint32_t y = 0; y < turned.Height; ++y) {
        std::uint8_t* const row = turned.Pixels + std::size_t{y} * turned.Stride;
        for (std::uint32_t x = 0; x < turned.Width; ++x) {
            const std::uint32_t u = swapped ? y : x;
            const std::uint32_t v = swapped ? x : y;
            const std::size_t column = fromRight ? picture.Width - 1 - u : u;
            const std::size_t line = fromBelow ? picture.Height - 1 - v : v;
            std::memcpy(row + x * size, picture.Pixels + line * picture.Stride + column * size, size);
        }
    }
    return turned;
}

} // namespace

MPicture ReadSheetPicture(const MString& path) {
    const MFontPictureScope largeOnesToo;
    MPicture picture(path);
    const int orientation = picture.IsValid() ? OrientationOf(path) : upright;
    if (orientation == upright) return picture;
    MPicture turned = Turned(picture, orientation);
    picture.Free();
    return turned;
}
