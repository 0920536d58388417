// BMP, from the published structures BITMAPFILEHEADER, BITMAPCOREHEADER and BITMAPINFOHEADER to BITMAPV5HEADER.
// Our own, since no library of the supported systems keeps the depth and the alpha of these files both ways.
//
// 24 bits become format 4. Everything else has a palette or packed channels and becomes format 7.
#include "imaging/codecs/MByteRows.h"
#include "imaging/codecs/MCodec.h"

#include <array>
#include <bit>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint32_t fileHeaderSize = 14;
constexpr std::uint32_t coreHeaderSize = 12;
constexpr std::uint32_t infoHeaderSize = 40;
constexpr std::uint32_t v4HeaderSize = 108;
constexpr std::uint32_t v5HeaderSize = 124;

enum Compression : std::uint32_t { Rgb = 0, Rle8 = 1, Rle4 = 2, BitFields = 3, AlphaBitFields = 6 };

std::uint32_t Word(const std::uint8_t* bytes) {
    return static_cast<std::uint32_t>(bytes[0] | bytes[1] << 8);
}

std::uint32_t Long(const std::uint8_t* bytes) {
    return Word(bytes) | Word(bytes + 2) << 16;
}

// One channel of a packed pixel.
struct Channel {
    std::uint32_t mask = 0;

    // Stretched to 0 to 255.
    std::uint8_t Of(std::uint32_t pixel, std::uint8_t missing) const {
        if (mask == 0) return missing;
        const int shift = std::countr_zero(mask);
        const std::uint64_t most = mask >> shift;
        return static_cast<std::uint8_t>(((pixel & mask) >> shift) * std::uint64_t{255} / most);
    }
};

struct Header {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool topDown = false;
    std::uint32_t bits = 0;
    std::uint32_t compression = Rgb;
    std::uint32_t dataOffset = 0;
    Channel r, g, b, a;
    std::array<MColour, 256> palette{}; // black beyond its end

    std::uint64_t RowBytes() const { return (std::uint64_t{width} * bits + 31) / 32 * 4; }
};

class BmpReader {
public:
    BmpReader(MByteSource& source, MPicture& result) : file(source), picture(result) {}

    bool Read() {
        if (!ReadHeader() || !IsPlausible()) return false;
        if (!AllocatePicture(picture, header.width, header.height,
                             header.bits == 24 ? FormatRGB8 : FormatRGBA8)) {
            return false;
        }
        return header.compression == Rle4 || header.compression == Rle8 ? ReadRuns() : ReadRows();
    }

private:
    MByteSource& file;
    MPicture& picture;
    Header header;

    bool ReadHeader() {
        std::array<std::uint8_t, fileHeaderSize + v5HeaderSize> bytes{};
        if (file.ReadSome(0, bytes.data(), bytes.size()) < fileHeaderSize + coreHeaderSize) return false;
        header.dataOffset = Long(bytes.data() + 10);
        const std::uint8_t* const info = bytes.data() + fileHeaderSize;
        const std::uint32_t headerSize = Long(info);
        if (headerSize == coreHeaderSize) {
            header.width = Word(info + 4);
            header.height = Word(info + 6);
            header.bits = Word(info + 10);
            ChooseMasks(info, headerSize);
            return ReadPalette(fileHeaderSize + coreHeaderSize, 256, 3);
        }
        if (headerSize < infoHeaderSize || headerSize > v5HeaderSize) return false;
        header.width = Long(info + 4);
        header.height = Long(info + 8);
        header.bits = Word(info + 14);
        header.compression = Long(info + 16);
        header.topDown = header.height > 0x7FFFFFFF;
        if (header.topDown) header.height = 0U - header.height;
        if (header.width > 0x7FFFFFFF) return false;
        ChooseMasks(info, headerSize);
        const bool masksFollow = headerSize == infoHeaderSize && header.compression >= BitFields;
        const std::uint32_t maskBytes = !masksFollow ? 0 : header.compression == BitFields ? 12 : 16;
        return ReadPalette(fileHeaderSize + headerSize + maskBytes, Long(info + 32), 4);
    }

    void ChooseMasks(const std::uint8_t* info, std::uint32_t headerSize) {
        if (header.compression == BitFields || header.compression == AlphaBitFields) {
            header.r.mask = Long(info + 40);
            header.g.mask = Long(info + 44);
            header.b.mask = Long(info + 48);
            if (headerSize >= 56 || header.compression == AlphaBitFields) header.a.mask = Long(info + 52);
        } else if (header.bits == 16) {
            header.r.mask = 0x7C00;
            header.g.mask = 0x3E0;
            header.b.mask = 0x1F;
        } else {
            header.r.mask = 0xFF0000;
            header.g.mask = 0xFF00;
            header.b.mask = 0xFF;
        }
    }

    bool ReadPalette(std::uint32_t offset, std::uint32_t used, std::size_t entryBytes) {
        if (header.bits > 8) return true;
        const std::size_t most = std::size_t{1} << header.bits;
        const std::size_t count = used == 0 ? most : std::min<std::size_t>(used, most);
        const std::size_t space = header.dataOffset > offset ? header.dataOffset - offset : 0;
        std::array<std::uint8_t, 1024> entries{};
        const std::size_t bytes = std::min(count * entryBytes, space);
        if (file.ReadSome(offset, entries.data(), bytes) != bytes) return false;
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t* const entry = entries.data() + i * entryBytes;
            header.palette[i] = MColour(entry[2], entry[1], entry[0]);
        }
        return true;
    }

    // Whether the form is known, and the file long enough to hold such a picture.
    bool IsPlausible() const {
        const auto depthIs = [&](auto... depths) {
            return ((header.bits == static_cast<std::uint32_t>(depths)) || ...);
        };
        const bool known = header.compression == Rgb    ? depthIs(1, 2, 4, 8, 16, 24, 32)
                           : header.compression == Rle8 ? depthIs(8)
                           : header.compression == Rle4 ? depthIs(4)
                           : header.compression == BitFields || header.compression == AlphaBitFields
                               ? depthIs(16, 32)
                               : false;
        if (!known || header.width == 0 || header.height == 0 || header.dataOffset >= file.Size()) return false;
        const std::uint64_t present = file.Size() - header.dataOffset;
        if (header.compression != Rle8 && header.compression != Rle4) {
            return header.RowBytes() <= present / header.height;
        }
        // A run of two bytes holds up to 255 pixels; skipped parts may take the place of some.
        constexpr std::uint64_t pixelsPerByte = 1024;
        return !header.topDown && std::uint64_t{header.width} * header.height <= present * pixelsPerByte;
    }

    std::uint8_t* Row(std::size_t y) {
        return picture.Pixels + (header.topDown ? y : picture.Height - 1 - y) * picture.Stride;
    }

    bool ReadRows() {
        const auto rowBytes = static_cast<std::size_t>(header.RowBytes());
        const bool inPlace = header.bits >= 24 && rowBytes == picture.Stride;
        const std::unique_ptr<std::uint8_t[]> buffer(inPlace ? nullptr : MGetMemory(rowBytes));
        if (!inPlace && !buffer) return false;
        for (std::size_t y = 0; y < picture.Height; ++y) {
            std::uint8_t* const row = inPlace ? Row(y) : buffer.get();
            if (!file.Read(header.dataOffset + y * rowBytes, row, rowBytes)) return false;
            StoreRow(row, Row(y));
        }
        return true;
    }

    // Rows of 24 and 32 bits may be stored where they are.
    void StoreRow(const std::uint8_t* from, std::uint8_t* to) const {
        if (header.bits == 24) {
            if (from != to) std::memcpy(to, from, picture.Stride);
        } else if (header.bits == 32) {
            StorePacked<4>(from, to);
        } else if (header.bits == 16) {
            StorePacked<2>(from, to);
        } else {
            const std::size_t perByte = 8 / header.bits;
            for (std::size_t x = 0; x < picture.Width; ++x) {
                const std::size_t shift = 8 - header.bits * (x % perByte + 1);
                const std::size_t index = std::uint32_t{from[x / perByte]} >> shift & ((1U << header.bits) - 1);
                std::memcpy(to + x * sizeof(MColour), &header.palette[index], sizeof(MColour));
            }
        }
    }

    template<std::size_t Bytes>
    void StorePacked(const std::uint8_t* from, std::uint8_t* to) const {
        if (Bytes == 4 && header.r.mask == 0xFF0000 && header.g.mask == 0xFF00 && header.b.mask == 0xFF &&
            (header.a.mask == 0 || header.a.mask == 0xFF000000)) {
            const std::uint32_t opaque = header.a.mask == 0 ? 0xFF000000 : 0;
            if (from == to && opaque == 0) return;
            for (std::size_t x = 0; x < picture.Width; ++x) {
                std::uint32_t pixel;
                std::memcpy(&pixel, from + x * 4, 4);
                pixel |= opaque;
                std::memcpy(to + x * 4, &pixel, 4);
            }
            return;
        }
        for (std::size_t x = 0; x < picture.Width; ++x) {
            const std::uint32_t pixel = Bytes == 4 ? Long(from + x * Bytes) : Word(from + x * Bytes);
            const MColour colour(header.r.Of(pixel, 0), header.g.Of(pixel, 0), header.b.Of(pixel, 0),
                                 header.a.Of(pixel, 255));
            std::memcpy(to + x * sizeof colour, &colour, sizeof colour);
        }
    }

    // Runs of equal indices, literal indices, and marks for the end of a row, a skip and the end of the
    // picture. What no run reaches has the first colour.
    bool ReadRuns() {
        const std::span<const std::uint8_t> all = file.All();
        if (all.size() <= header.dataOffset) return false;
        std::span<const std::uint8_t> rest = all.subspan(header.dataOffset);
        picture.Fill(header.palette[0]);
        const bool nibbles = header.compression == Rle4;
        std::size_t x = 0;
        std::size_t y = 0;
        const auto put = [&](std::uint32_t index) {
            if (x < picture.Width)
                std::memcpy(Row(y) + x * sizeof(MColour), &header.palette[index], sizeof(MColour));
            ++x;
        };
        while (y < picture.Height) {
            if (rest.size() < 2) return false;
            const std::size_t count = rest[0];
            const std::uint8_t value = rest[1];
            rest = rest.subspan(2);
            if (count > 0) {
                for (std::size_t i = 0; i < count; ++i)
                    put(!nibbles ? value : i % 2 == 0 ? value >> 4 : value & 15);
            } else if (value == 0) {
                x = 0;
                ++y;
            } else if (value == 1) {
                return true;
            } else if (value == 2) {
                if (rest.size() < 2) return false;
                x += rest[0];
                y += rest[1];
                rest = rest.subspan(2);
            } else {
                const std::size_t bytes = nibbles ? (std::size_t{value} + 1) / 2 : value;
                const std::size_t padded = (bytes + 1) / 2 * 2;
                if (rest.size() < padded) return false;
                for (std::size_t i = 0; i < value; ++i) {
                    put(!nibbles ? rest[i] : i % 2 == 0 ? rest[i / 2] >> 4 : rest[i / 2] & 15);
                }
                rest = rest.subspan(padded);
            }
        }
        return true;
    }
};

// Fields in file order, little-endian.
class HeaderWriter {
public:
    void Word(std::uint32_t value) { Put(value, 2); }
    void Long(std::uint32_t value) { Put(value, 4); }
    void Zeros(std::size_t count) { size += count; }
    bool WriteTo(MByteSink& sink) const { return sink.Write(bytes.data(), size); }

private:
    std::array<std::uint8_t, 2048> bytes{};
    std::size_t size = 0;

    void Put(std::uint32_t value, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            bytes[size++] = static_cast<std::uint8_t>(value >> (8 * i));
    }
};

// The header of the fourth version is the first that can tell of an alpha channel.
void WriteInfo(HeaderWriter& out, const MPicture& picture, std::uint32_t bits, std::uint64_t dataBytes) {
    out.Long(bits == 32 ? v4HeaderSize : infoHeaderSize);
    out.Long(picture.Width);
    out.Long(picture.Height);
    out.Word(1); // planes
    out.Word(bits);
    out.Long(bits == 32 ? BitFields : Rgb);
    out.Long(static_cast<std::uint32_t>(dataBytes));
    out.Zeros(16); // resolution, and the whole palette in use
    if (bits == 32) {
        for (const std::uint32_t mask : {0xFF0000U, 0xFF00U, 0xFFU, 0xFF000000U})
            out.Long(mask);
        out.Long(0x73524742); // LCS_sRGB
        out.Zeros(48);        // end points and gamma, for calibrated colours only
    }
    for (std::uint32_t grey = 0; bits == 8 && grey < 256; ++grey)
        out.Long(grey * 0x010101);
}

} // namespace

bool SniffBmp(std::span<const std::uint8_t> start) {
    if (!StartsWith(start, "BM") || start.size() < fileHeaderSize + coreHeaderSize) return false;
    const std::uint32_t headerSize = Long(start.data() + fileHeaderSize);
    return headerSize == coreHeaderSize || (headerSize >= infoHeaderSize && headerSize <= v5HeaderSize);
}

bool DecodeBmp(MByteSource& file, std::int32_t frame, MPicture& picture) {
    return frame == 0 && BmpReader(file, picture).Read();
}

bool EncodeBmp(const MPicture& picture, MByteSink& sink) {
    const int channels = ChannelCount(picture.Format);
    const std::uint32_t bits = static_cast<std::uint32_t>(channels) * 8;
    const std::uint64_t rowBytes = (std::uint64_t{picture.Width} * bits + 31) / 32 * 4;
    const std::uint32_t offset = bits == 32  ? fileHeaderSize + v4HeaderSize
                                 : bits == 8 ? fileHeaderSize + infoHeaderSize + 1024
                                             : fileHeaderSize + infoHeaderSize;
    const std::uint64_t dataBytes = rowBytes * picture.Height;
    constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
    if (picture.Width > most || picture.Height > most) return false;
    if (dataBytes > std::numeric_limits<std::uint32_t>::max() - offset) return false;
    const std::unique_ptr<std::uint8_t[]> row(MGetMemory(rowBytes));
    if (!row) return false;
    std::memset(row.get(), 0, rowBytes);

    HeaderWriter out;
    out.Word(0x4D42); // "BM"
    out.Long(static_cast<std::uint32_t>(offset + dataBytes));
    out.Zeros(4);
    out.Long(offset);
    WriteInfo(out, picture, bits, dataBytes);
    bool written = out.WriteTo(sink);
    const MByteOrder order = channels == 1   ? MByteOrder::Grey
                             : channels == 3 ? MByteOrder::Bgr
                                             : MByteOrder::Bgra;
    for (std::size_t y = picture.Height; written && y-- > 0;) {
        CopyByteRow(picture, y, order, row.get());
        written = sink.Write(row.get(), rowBytes);
    }
    return written;
}
