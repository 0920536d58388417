// Pictures to and from files. The forms themselves are in codecs/.
#include "foundation/MFile.h"
#include "foundation/MFolders.h"
#include "imaging/MPicture.h"
#include "imaging/MPixelBudget.h"
#include "imaging/MPixelLayout.h"
#include "imaging/codecs/MCodec.h"

#include <limits>
#include <memory>

namespace {

// Only forms that can't be told by their content go by the extension: a mislabelled PNG is still a PNG.
const MCodec* CodecForFile(MByteSource& file, const MString& extension) {
    const MCodec* const named = CodecForExtension(extension);
    if (named && !named->sniff) return named;
    std::uint8_t start[SniffLength];
    return CodecForContent({start, file.ReadSome(0, start, sizeof start)});
}

bool Load(const MString& path, std::int32_t frame, MPicture& picture) {
    MFile file(path, false, false);
    if (!file.ok) return false;
    MByteSource source(file);
    const MCodec* const codec = CodecForFile(source, ExtensionOf(path));
    const MPixelLimit limit(source.Size());
    return codec && codec->decode(source, frame, picture) && picture.IsValid();
}

void MakeOpaque(MPicture& picture) {
    pixels::WithFormat(picture.Format, [&](auto constant) {
        constexpr MPixelFormat format = constant();
        if constexpr (pixels::channelCount<format> == 4) {
            pixels::Channel<format> opaque = std::numeric_limits<pixels::Channel<format>>::max();
            if constexpr (pixels::channelClass<format> == 3) opaque = 1.0F;
            for (std::size_t y = 0; y < picture.Height; ++y) {
                std::uint8_t* pixel = picture.Pixels + y * picture.Stride;
                for (std::size_t x = 0; x < picture.Width; ++x, pixel += pixels::bytesPerPixel<format>) {
                    pixels::StoreChannel<format>(pixel, pixels::Alpha, opaque);
                }
            }
        }
    });
}

bool EncodeAs(const MPicture& picture, MPixelFormat format, const MCodec& codec, MByteSink& sink) {
    if (format == picture.Format && picture.TopDown) return codec.encode(picture, sink);
    // The pixels go through CopyPixels, with its limits: a pair that it doesn't convert leaves an empty
    // picture.
    MPicture converted(picture.Width, picture.Height, format);
    if (!converted.IsValid()) return false;
    std::fill_n(converted.Pixels, std::size_t{converted.Stride} * converted.Height, std::uint8_t{0});
    const bool written = converted.CopyPixels(picture) && codec.encode(converted, sink);
    converted.Free();
    return written;
}

// The DDS form takes the picture's own pixels whatever format is asked for; that only decides whether they keep
// their alpha.
bool EncodeDirectly(const MPicture& picture, MPixelFormat format, const MCodec& codec, MByteSink& sink) {
    if (HasAlpha(format) || !HasAlpha(picture.Format)) return codec.encode(picture, sink);
    MPicture opaque(picture.Width, picture.Height, picture.Format);
    opaque.TopDown = picture.TopDown;
    const bool copied = opaque.CopyPixels(picture);
    if (copied) MakeOpaque(opaque);
    const bool written = copied && codec.encode(opaque, sink);
    opaque.Free();
    return written;
}

MPixelFormat Writable(MPixelFormat format) {
    return BytesPerPixel(format) == 0 ? FormatR8 : format;
}

} // namespace

MPicture::MPicture(const MString& path, std::int32_t frame) : MPicture() {
    if (Load(path, frame, *this)) return;
    Free();
    *this = MPicture();
}

MSafeFile MPicture::PrepareSave(const MString& path, MPixelFormat format, MLinks links) {
    if (format == FormatNone) format = Format;
    if (HasAlpha(format)) BleedColours();
    format = Writable(format);
    const MCodec* const codec = CodecForExtension(ExtensionOf(path));
    if (!IsValid()) return MSafeFile::Failed(path, "there is no picture to write");
    if (!codec || !codec->encode) return MSafeFile::Failed(path, "pictures of this form can't be written");
    MByteSink sink(path, links);
    const bool encoded =
        codec->sniff ? EncodeAs(*this, format, *codec, sink) : EncodeDirectly(*this, format, *codec, sink);
    if (!encoded && !sink.Failed()) {
        return MSafeFile::Failed(path, "the picture can't be brought into this form");
    }
    return sink.TakeFile();
}

bool MPicture::Save(const MString& path, MPixelFormat format) {
    return !path.IsEmpty() && PrepareSave(path, format).Place();
}
