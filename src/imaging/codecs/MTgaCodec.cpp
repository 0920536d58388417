// TGA, as far as it has always been read here, with its known corners: the ID field isn't skipped, so a file
// with one reads shifted; the rows always count as bottom-up; and the entries of a palette are taken red first,
// although the format has them blue first. Nothing in the content tells a TGA, so the extension decides.
#include "imaging/codecs/MCodec.h"

namespace {

constexpr std::uint64_t headerSize = 18;

struct Header {
    std::uint32_t mapType;
    std::uint32_t imageType;
    std::uint32_t mapLength;
    std::uint32_t mapBits;
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;
};

bool ReadHeader(MByteSource& file, Header& header) {
    std::uint8_t bytes[headerSize];
    if (!file.Read(0, bytes, sizeof bytes)) return false;
    const auto word = [&](std::size_t at) {
        return static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8);
    };
    header = {bytes[1], bytes[2], word(5), bytes[7], word(12), word(14), bytes[16]};
    constexpr std::uint32_t most = 0x7FFF; // sizes are signed
    const bool sized = header.width >= 1 && header.width <= most && header.height >= 1 && header.height <= most;
    const bool trueColour =
        header.imageType == 2 && header.mapType == 0 && (header.depth == 24 || header.depth == 32);
    const bool mapped = header.imageType == 1 && header.mapType == 1 && header.depth == 8 &&
                        header.mapLength >= 1 && (header.mapBits == 24 || header.mapBits == 32);
    return sized && (trueColour || mapped);
}

bool ReadMapped(MByteSource& file, const Header& header, MPicture& picture) {
    MVector<MColour> palette;
    if (!palette.Resize(static_cast<std::int32_t>(header.mapLength), false)) return false;
    std::uint64_t offset = headerSize;
    for (MColour& colour : palette) {
        std::uint8_t entry[4] = {0, 0, 0, 255};
        if (!file.Read(offset, entry, header.mapBits / 8)) return false;
        colour = MColour(entry[0], entry[1], entry[2], entry[3]);
        offset += header.mapBits / 8;
    }
    const std::unique_ptr<std::uint8_t[]> indices(MGetMemory(header.width));
    if (!indices) return false;
    picture.Fill(MColour(0, 0, 0)); // for indices past the palette's end
    for (std::uint32_t y = 0; y < header.height; ++y, offset += header.width) {
        if (!file.Read(offset, indices.get(), header.width)) return false;
        for (std::uint32_t x = 0; x < header.width; ++x) {
            if (indices[x] >= header.mapLength) continue;
            picture.SetPixel(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                             palette.data[indices[x]]);
        }
    }
    return true;
}

} // namespace

bool DecodeTga(MByteSource& file, std::int32_t, MPicture& picture) {
    Header header{};
    if (!ReadHeader(file, header)) return false;
    if (std::uint64_t{header.width} * header.height * (header.depth / 8) > file.Size()) return false;
    if (!AllocatePicture(picture, header.width, header.height, header.depth == 32 ? FormatRGBA8 : FormatRGB8)) {
        return false;
    }
    picture.TopDown = false;
    const bool read = header.imageType == 1
                          ? ReadMapped(file, header, picture)
                          : file.Read(headerSize, picture.Pixels, std::size_t{picture.Stride} * picture.Height);
    return picture.FlipVertically() && read;
}
