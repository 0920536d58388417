// DDS containers, after the published "Programming Guide for DDS" and the reference of its structures: what can
// be asked of such a file is to load it, decompress, compress and save it, and to get at its image.
#pragma once

#include "imaging/codecs/MByteStreams.h"

#include <cstdint>
#include <memory>

// The numbers of DXGI_FORMAT.
enum class MDdsFormat : std::uint32_t {
    Unknown = 0,
    Rgba16Float = 10,
    Rgba16 = 11,
    Rgba16Int = 12,
    Rgba8 = 28,
    Rgba8Int = 30,
    Bc1 = 71,
    Bc2 = 74,
    Bc3 = 77,
    Bc4 = 80,
    Bc5 = 83,
    Bgra8 = 87,
    Bgrx8 = 88,
    Bc7 = 98,
};

// The first image of a texture; others and smaller versions of it are counted but not kept.
struct MDdsImage {
    MDdsFormat format = MDdsFormat::Unknown;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t depth = 1;
    std::uint32_t arraySize = 1;
    std::uint32_t mipLevels = 1;
    std::unique_ptr<std::uint8_t[]> pixels;

    // Bytes from one row, or row of blocks, to the next; and of all of them. 0 for formats that aren't known
    // here.
    std::uint64_t RowPitch() const;
    std::uint64_t SlicePitch() const;
    // Null if there are none.
    const std::uint8_t* GetImage() const { return pixels.get(); }
};

bool IsCompressed(MDdsFormat format);

// False for what is not a DDS file, is cut short, or has a format or shape that isn't known here. A texture of
// several images or with a depth is told by the fields and has no pixels.
bool LoadDds(MByteSource& file, MDdsImage& image);
// BC1, BC2, BC3 and BC7 become Rgba8. False for others: the one or two channels of BC4 and BC5 are no picture
// here.
bool DecompressDds(const MDdsImage& image, MDdsImage& result);
// Rgba8 becomes Bc1, in which an alpha below 128 is transparent and any other opaque.
bool CompressDds(const MDdsImage& image, MDdsImage& result);
// Bc1, Rgba16 and Rgba16Float.
bool SaveDds(const MDdsImage& image, MByteSink& sink);
