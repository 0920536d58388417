#include "imaging/MPicture.h"

#include "foundation/MMemory.h"
#include "imaging/MPixelLayout.h"

#include <limits>
#include <utility>

MPicture::MPicture(std::uint32_t width, std::uint32_t height, MPixelFormat format)
    : Width(width), Height(height), Format(format) {
    const std::uint64_t stride = std::uint64_t{width} * BytesPerPixel(format);
    if (stride > std::numeric_limits<std::uint32_t>::max()) {
        DebugOutput(u"MPicture: rows too long\n");
        return;
    }
    Stride = static_cast<std::uint32_t>(stride);
    static_assert(sizeof(std::size_t) == sizeof(std::uint64_t), "a picture's bytes are counted in 64 bits");
    Pixels = MGetMemory(stride * height);
}

bool MPicture::IsValid() const {
    if (Width == 0 || Height == 0 || Format == FormatNone || !Pixels || Stride == 0) return false;
    if (Format == FormatRGB8) return Stride >= std::uint64_t{Width} * 3;
    if (Format == FormatRGBA8) return Stride >= std::uint64_t{Width} * 4;
    return true;
}

void MPicture::Free() {
    delete[] std::exchange(Pixels, nullptr);
}

std::uint8_t* MPicture::PixelAddress(std::int32_t x, std::int32_t y) const {
    if (!IsValid()) return nullptr;
    return Pixels + std::size_t{Wrap(y, Height)} * Stride + std::size_t{Wrap(x, Width)} * BytesPerPixel(Format);
}

namespace {

template<typename Colour>
Colour Read(const std::uint8_t* address, MPixelFormat format) {
    if (!address) return {};
    return pixels::WithFormat(format, Colour{},
                              [&](auto constant) { return pixels::Load<Colour, constant()>(address); });
}

template<typename Colour>
void Write(std::uint8_t* address, MPixelFormat format, const Colour& colour) {
    if (!address) return;
    pixels::WithFormat(format, [&](auto constant) { pixels::Store<constant()>(address, colour); });
}

void Write(std::uint8_t* address, MPixelFormat format, const MPixel& pixel) {
    switch (ChannelClass(pixel.format)) {
    case 1: return Write(address, format, pixel.colour);
    case 2: return Write(address, format, pixel.colour16);
    case 3: return Write(address, format, pixel.colourHalf);
    default: return;
    }
}

} // namespace

MColour MPicture::GetPixel(std::int32_t x, std::int32_t y) const {
    return Read<MColour>(PixelAddress(x, y), Format);
}

MColour16 MPicture::GetPixel16(std::int32_t x, std::int32_t y) const {
    return Read<MColour16>(PixelAddress(x, y), Format);
}

MColourHalf MPicture::GetPixelHalf(std::int32_t x, std::int32_t y) const {
    return Read<MColourHalf>(PixelAddress(x, y), Format);
}

void MPicture::SetPixel(std::int32_t x, std::int32_t y, const MColour& colour) {
    Write(PixelAddress(x, y), Format, colour);
}

void MPicture::SetPixel(std::int32_t x, std::int32_t y, const MPixel& pixel) {
    Write(PixelAddress(x, y), Format, pixel);
}

void MPicture::Fill(MPixel& pixel) {
    if (!IsValid()) return;
    pixel.SetFormat(Format);
    const std::size_t pixelBytes = BytesPerPixel(Format);
    const std::size_t rowBytes = Width * pixelBytes;
    if (rowBytes == 0 || rowBytes > Stride) return;
    Write(Pixels, Format, pixel);
    for (std::size_t done = pixelBytes; done < rowBytes; done *= 2) {
        std::memcpy(Pixels + done, Pixels, std::min(done, rowBytes - done));
    }
    for (std::size_t y = 1; y < Height; ++y)
        std::memcpy(Pixels + y * Stride, Pixels, rowBytes);
}

void MPicture::Fill(const MColour& colour) {
    MPixel pixel(colour, FormatRGBA8);
    Fill(pixel);
}
