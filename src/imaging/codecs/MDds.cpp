#include "imaging/codecs/MDds.h"

#include "imaging/codecs/MBc1.h"
#include "imaging/codecs/MBc7.h"

#include <squish.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

namespace {

constexpr std::size_t headerSize = 128; // with the four letters in front
constexpr std::size_t dx10HeaderSize = 20;

// Where the fields are in the file.
enum Offset : std::size_t {
    Size = 4,
    Flags = 8,
    Height = 12,
    Width = 16,
    Pitch = 20,
    Depth = 24,
    MipLevels = 28,
    FormatSize = 76,
    FormatFlags = 80,
    FourCc = 84,
    BitCount = 88,
    Masks = 92,
    Caps = 108,
    Caps2 = 112,
    DxgiFormat = 128,
    Dimension = 132,
    MiscFlags = 136,
    ArraySize = 140,
};

constexpr std::uint32_t hasFourCc = 0x4;     // DDPF_FOURCC
constexpr std::uint32_t hasRgb = 0x40;       // DDPF_RGB
constexpr std::uint32_t hasAlpha = 0x1;      // DDPF_ALPHAPIXELS
constexpr std::uint32_t isVolume = 0x200000; // DDSCAPS2_VOLUME
constexpr std::uint32_t isCube = 0x200;      // DDSCAPS2_CUBEMAP

constexpr std::uint32_t Letters(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (std::uint32_t i = 0; i < 4; ++i)
        code |= static_cast<std::uint32_t>(text[i]) << (8 * i);
    return code;
}

struct FourCcFormat {
    std::uint32_t code;
    MDdsFormat format;
};

// The first code of a format is the one that is written.
constexpr std::array<FourCcFormat, 11> fourCcFormats = {{
    {Letters("DXT1"), MDdsFormat::Bc1},
    {Letters("DXT3"), MDdsFormat::Bc2},
    {Letters("DXT2"), MDdsFormat::Bc2},
    {Letters("DXT5"), MDdsFormat::Bc3},
    {Letters("DXT4"), MDdsFormat::Bc3},
    {Letters("ATI1"), MDdsFormat::Bc4},
    {Letters("BC4U"), MDdsFormat::Bc4},
    {Letters("ATI2"), MDdsFormat::Bc5},
    {Letters("BC5U"), MDdsFormat::Bc5},
    {36, MDdsFormat::Rgba16},       // D3DFMT_A16B16G16R16
    {113, MDdsFormat::Rgba16Float}, // D3DFMT_A16B16G16R16F
}};

// How the pixels of the file become those of a known format.
enum class Unpacking { None, SetAlpha, From24Bits };

struct MaskFormat {
    std::uint32_t flags;
    std::uint32_t bitCount;
    std::array<std::uint32_t, 4> masks;
    MDdsFormat format;
    Unpacking unpacking;
};

constexpr std::array<MaskFormat, 5> maskFormats = {{
    {hasRgb | hasAlpha, 32, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, MDdsFormat::Bgra8, Unpacking::None},
    {hasRgb, 32, {0xFF0000, 0xFF00, 0xFF, 0}, MDdsFormat::Bgrx8, Unpacking::None},
    {hasRgb | hasAlpha, 32, {0xFF, 0xFF00, 0xFF0000, 0xFF000000}, MDdsFormat::Rgba8, Unpacking::None},
    {hasRgb, 32, {0xFF, 0xFF00, 0xFF0000, 0}, MDdsFormat::Rgba8, Unpacking::SetAlpha},
    {hasRgb, 24, {0xFF0000, 0xFF00, 0xFF, 0}, MDdsFormat::Bgrx8, Unpacking::From24Bits},
}};

std::uint32_t BytesPerPixel(MDdsFormat format) {
    switch (format) {
    case MDdsFormat::Rgba16Float:
    case MDdsFormat::Rgba16:
    case MDdsFormat::Rgba16Int: return 8;
    case MDdsFormat::Rgba8:
    case MDdsFormat::Rgba8Int:
    case MDdsFormat::Bgra8:
    case MDdsFormat::Bgrx8: return 4;
    default: return 0;
    }
}

std::uint32_t BytesPerBlock(MDdsFormat format) {
    switch (format) {
    case MDdsFormat::Bc1:
    case MDdsFormat::Bc4: return 8;
    case MDdsFormat::Bc2:
    case MDdsFormat::Bc3:
    case MDdsFormat::Bc5:
    case MDdsFormat::Bc7: return 16;
    default: return 0;
    }
}

class DdsReader {
public:
    DdsReader(MByteSource& source, MDdsImage& result) : file(source), image(result) {}

    bool Read() {
        if (file.ReadSome(0, header.data(), header.size()) < headerSize || !ReadHeader()) return false;
        if (image.depth > 1 || image.arraySize != 1) return true;
        const std::uint64_t size = unpacking == Unpacking::From24Bits ? PackedSize() : image.SlicePitch();
        if (!AllLevelsPresent()) return false;
        image.pixels.reset(MGetMemory(image.SlicePitch()));
        if (!image.pixels || !file.Read(dataOffset, image.pixels.get(), size)) return false;
        Unpack();
        return true;
    }

private:
    MByteSource& file;
    MDdsImage& image;
    std::array<std::uint8_t, headerSize + dx10HeaderSize> header{};
    std::uint64_t dataOffset = headerSize;
    Unpacking unpacking = Unpacking::None;

    std::uint32_t Field(std::size_t offset) const {
        std::uint32_t value;
        std::memcpy(&value, header.data() + offset, sizeof value);
        return value;
    }

    bool ReadHeader() {
        if (Field(0) != Letters("DDS ") || Field(Size) != headerSize - 4 || Field(FormatSize) != 32)
            return false;
        image.width = Field(Width);
        image.height = Field(Height);
        image.mipLevels = std::max(Field(MipLevels), 1U);
        const bool extended = (Field(FormatFlags) & hasFourCc) != 0 && Field(FourCc) == Letters("DX10");
        if (extended ? !ReadExtension() : !ReadFormat()) return false;
        // A size that passes here can't make any of the sums below overflow.
        constexpr std::uint32_t most = 0x7FFFFFFF;
        return image.width >= 1 && image.height >= 1 && image.width <= most && image.height <= most &&
               image.RowPitch() <= std::numeric_limits<std::uint32_t>::max();
    }

    bool ReadExtension() {
        if (file.Size() < headerSize + dx10HeaderSize) return false;
        dataOffset = headerSize + dx10HeaderSize;
        image.format = static_cast<MDdsFormat>(Field(DxgiFormat));
        image.arraySize = Field(ArraySize);
        constexpr std::uint32_t oneDimension = 2, twoDimensions = 3, threeDimensions = 4, cube = 4;
        switch (Field(Dimension)) {
        case oneDimension: image.height = 1; break;
        case twoDimensions:
            if ((Field(MiscFlags) & cube) != 0) image.arraySize = 6;
            break;
        case threeDimensions: image.depth = Field(Depth); break;
        default: return false;
        }
        return image.RowPitch() != 0;
    }

    bool ReadFormat() {
        if ((Field(Caps2) & isVolume) != 0) image.depth = Field(Depth);
        if ((Field(Caps2) & isCube) != 0) image.arraySize = 6;
        const std::uint32_t flags = Field(FormatFlags);
        if ((flags & hasFourCc) != 0) {
            const auto found = std::ranges::find(fourCcFormats, Field(FourCc), &FourCcFormat::code);
            if (found == fourCcFormats.end()) return false;
            image.format = found->format;
            return true;
        }
        const auto matches = [&](const MaskFormat& known) {
            for (std::size_t i = 0; i < 4; ++i) {
                const bool compared = i < 3 || (known.flags & hasAlpha) != 0;
                if (compared && Field(Masks + i * 4) != known.masks[i]) return false;
            }
            return (flags & (hasRgb | hasAlpha)) == known.flags && Field(BitCount) == known.bitCount;
        };
        const auto found = std::ranges::find_if(maskFormats, matches);
        if (found == maskFormats.end()) return false;
        image.format = found->format;
        unpacking = found->unpacking;
        return true;
    }

    std::uint64_t PackedSize() const { return std::uint64_t{image.width} * image.height * 3; }

    // Only the first level is of interest, but a file without the others is cut short.
    bool AllLevelsPresent() const {
        if (image.mipLevels > static_cast<std::uint32_t>(std::bit_width(std::max(image.width, image.height))))
            return false;
        const std::uint64_t present = file.Size() - dataOffset;
        std::uint64_t needed = 0;
        MDdsImage level;
        level.format = image.format;
        for (std::uint32_t i = 0; i < image.mipLevels; ++i) {
            level.width = std::max(image.width >> i, 1U);
            level.height = std::max(image.height >> i, 1U);
            needed += unpacking == Unpacking::From24Bits ? level.SlicePitch() / 4 * 3 : level.SlicePitch();
            if (needed > present) return false;
        }
        return true;
    }

    void Unpack() {
        std::uint8_t* const pixels = image.pixels.get();
        const std::size_t count = std::size_t{image.width} * image.height;
        if (unpacking == Unpacking::SetAlpha) {
            for (std::size_t i = 0; i < count; ++i)
                pixels[i * 4 + 3] = 255;
        }
        if (unpacking != Unpacking::From24Bits) return;
        for (std::size_t i = count; i-- > 0;) { // from the end, since they spread out in place
            const std::array<std::uint8_t, 4> pixel = {pixels[i * 3], pixels[i * 3 + 1], pixels[i * 3 + 2],
                                                       255};
            std::memcpy(pixels + i * 4, pixel.data(), pixel.size());
        }
    }
};

// The part of a block that lies inside of an image.
struct BlockPlace {
    std::size_t x;
    std::size_t y;
    std::size_t columns;
    std::size_t rows;
};

template<typename Work>
void ForEachBlock(const MDdsImage& image, Work work) {
    for (std::size_t y = 0; y < image.height; y += 4) {
        for (std::size_t x = 0; x < image.width; x += 4) {
            work(BlockPlace{x, y, std::min<std::size_t>(4, image.width - x),
                            std::min<std::size_t>(4, image.height - y)});
        }
    }
}

template<std::size_t BlockBytes>
void DecompressBlocks(const MDdsImage& image, std::uint8_t* rgba,
                      void (&decode)(std::span<const std::uint8_t, BlockBytes>, std::span<std::uint8_t, 64>)) {
    const std::uint8_t* block = image.GetImage();
    const std::size_t rowBytes = std::size_t{image.width} * 4;
    std::array<std::uint8_t, 64> pixels{};
    ForEachBlock(image, [&](const BlockPlace& place) {
        decode(std::span<const std::uint8_t, BlockBytes>(block, BlockBytes), pixels);
        block += BlockBytes;
        for (std::size_t row = 0; row < place.rows; ++row) {
            std::memcpy(rgba + (place.y + row) * rowBytes + place.x * 4, pixels.data() + row * 16,
                        place.columns * 4);
        }
    });
}

} // namespace

std::uint64_t MDdsImage::RowPitch() const {
    if (IsCompressed(format)) return (std::uint64_t{width} + 3) / 4 * BytesPerBlock(format);
    return std::uint64_t{width} * BytesPerPixel(format);
}

std::uint64_t MDdsImage::SlicePitch() const {
    return RowPitch() * (IsCompressed(format) ? (std::uint64_t{height} + 3) / 4 : height);
}

bool IsCompressed(MDdsFormat format) {
    return BytesPerBlock(format) != 0;
}

bool LoadDds(MByteSource& file, MDdsImage& image) {
    return DdsReader(file, image).Read();
}

bool DecompressDds(const MDdsImage& image, MDdsImage& result) {
    const bool decodes = image.format == MDdsFormat::Bc1 || image.format == MDdsFormat::Bc2 ||
                         image.format == MDdsFormat::Bc3 || image.format == MDdsFormat::Bc7;
    if (!image.GetImage() || !decodes) return false;
    result.format = MDdsFormat::Rgba8;
    result.width = image.width;
    result.height = image.height;
    result.pixels.reset(MGetMemory(result.SlicePitch()));
    if (!result.pixels) return false;
    std::uint8_t* const rgba = result.pixels.get();
    switch (image.format) {
    case MDdsFormat::Bc1: DecompressBlocks(image, rgba, DecodeBc1Block); break;
    case MDdsFormat::Bc2: DecompressBlocks(image, rgba, DecodeBc2Block); break;
    case MDdsFormat::Bc3: DecompressBlocks(image, rgba, DecodeBc3Block); break;
    default: DecompressBlocks(image, rgba, DecodeBc7Block); break;
    }
    return true;
}

// Block by block, since the library counts the bytes of a whole image in an int.
bool CompressDds(const MDdsImage& image, MDdsImage& result) {
    constexpr std::uint32_t most = 0x7FFFFFFF;
    if (image.format != MDdsFormat::Rgba8 || !image.GetImage() || image.width > most || image.height > most)
        return false;
    result.format = MDdsFormat::Bc1;
    result.width = image.width;
    result.height = image.height;
    result.pixels.reset(MGetMemory(result.SlicePitch()));
    if (!result.pixels) return false;
    std::uint8_t* block = result.pixels.get();
    const std::size_t rowBytes = std::size_t{image.width} * 4;
    ForEachBlock(image, [&](const BlockPlace& place) {
        std::array<std::uint8_t, 64> pixels{};
        int mask = 0; // of the pixels that are inside
        for (std::size_t row = 0; row < place.rows; ++row) {
            std::memcpy(pixels.data() + row * 16, image.GetImage() + (place.y + row) * rowBytes + place.x * 4,
                        place.columns * 4);
            mask |= ((1 << place.columns) - 1) << (4 * row);
        }
        squish::CompressMasked(pixels.data(), mask, block, squish::kDxt1);
        block += Bc1BlockBytes;
    });
    return true;
}

bool SaveDds(const MDdsImage& image, MByteSink& sink) {
    const auto code = std::ranges::find(fourCcFormats, image.format, &FourCcFormat::format);
    if (code == fourCcFormats.end() || !image.GetImage()) return false;
    std::array<std::uint8_t, headerSize> header{};
    const auto set = [&](std::size_t offset, std::uint64_t value) {
        const auto field = static_cast<std::uint32_t>(value);
        std::memcpy(header.data() + offset, &field, sizeof field);
    };
    constexpr std::uint32_t required = 0x1007; // DDSD_CAPS, HEIGHT, WIDTH, PIXELFORMAT
    constexpr std::uint32_t hasMipLevels = 0x20000, hasPitch = 0x8, hasLinearSize = 0x80000;
    const bool blocks = IsCompressed(image.format);
    set(0, Letters("DDS "));
    set(Size, headerSize - 4);
    set(Flags, required | hasMipLevels | (blocks ? hasLinearSize : hasPitch));
    set(Height, image.height);
    set(Width, image.width);
    set(Pitch, blocks ? image.SlicePitch() : image.RowPitch());
    set(Depth, 1);
    set(MipLevels, 1);
    set(FormatSize, 32);
    set(FormatFlags, hasFourCc);
    set(FourCc, code->code);
    set(Caps, 0x1000); // DDSCAPS_TEXTURE
    return sink.Write(header.data(), header.size()) && sink.Write(image.GetImage(), image.SlicePitch());
}
