// One picture decoder, fed by libFuzzer: LETTRINO_CODEC is its name in the table of forms.
#include "imaging/codecs/MCodec.h"
#include "imaging/codecs/MPlainPng.h"

#include <algorithm>
#include <string_view>

namespace {

// What was read is written and read again, and has the same size then. HEIF takes too long for that.
void WriteAndReadAgain(const MCodec& codec, const MPicture& picture) {
    constexpr std::uint64_t mostPixels = 1 << 16;
    if (!codec.encode || codec.name == "HEIF" || std::uint64_t{picture.Width} * picture.Height > mostPixels)
        return;
    MByteSink sink;
    if (!codec.encode(picture, sink) || !sink.Finish()) return;
    MByteSource source(sink.Bytes());
    MPicture again;
    if (!codec.decode(source, 0, again)) __builtin_trap();
    if (again.Width != picture.Width || again.Height != picture.Height) __builtin_trap();
    again.Free();
}

// The plain way to read a PNG gives what libpng gives, wherever both read.
void CompareWithLibpng(std::span<const std::uint8_t> file, const MPicture& picture) {
    MPicture judged;
    if (DecodePngByLibpng(file, judged)) {
        const std::size_t bytes = std::size_t{picture.Stride} * picture.Height;
        if (judged.Width != picture.Width || judged.Format != picture.Format) __builtin_trap();
        if (!std::equal(picture.Pixels, picture.Pixels + bytes, judged.Pixels)) __builtin_trap();
    }
    judged.Free();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MCodec& codec = *std::ranges::find(Codecs(), std::string_view(LETTRINO_CODEC), &MCodec::name);
    for (const std::int32_t frame : {0, 1}) {
        SetMemoryLimit(std::size_t{1} << 30); // anew: the sanitizer keeps what was freed
        MByteSource source({data, size});
        MPicture picture;
        // A picture that was taken must be whole: every byte of it is read.
        if (codec.decode(source, frame, picture)) {
            if (!picture.IsValid() || !picture.TopDown) __builtin_trap();
            const std::span<const std::uint8_t> pixels(picture.Pixels,
                                                       std::size_t{picture.Stride} * picture.Height);
            volatile std::uint32_t sum = 0;
            for (const std::uint8_t byte : pixels)
                sum = sum + byte;
            WriteAndReadAgain(codec, picture);
            if (codec.name == "PNG") CompareWithLibpng({data, size}, picture);
        }
        picture.Free();
    }
    return 0;
}
