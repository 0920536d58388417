#include "foundation/MDebug.h"
#include "imaging/MPixelBudget.h"
#include "imaging/codecs/MCodec.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr std::array table = {
    MCodec{"PNG", ".png", SniffPng, DecodePng, EncodePng},
    MCodec{"JPEG", ".jpg,.jpeg,.jpe,.jfif", SniffJpeg, DecodeJpeg, EncodeJpeg},
    MCodec{"TIFF", ".tif,.tiff", SniffTiff, DecodeTiff, EncodeTiff},
    MCodec{"GIF", ".gif", SniffGif, DecodeGif, EncodeGif},
    MCodec{"HEIF", ".heic,.heif", SniffHeif, DecodeHeif, EncodeHeif},
    MCodec{"BMP", ".bmp", SniffBmp, DecodeBmp, EncodeBmp},
    MCodec{"DDS", ".dds", nullptr, DecodeDds, EncodeDds},
    MCodec{"TGA", ".tga", nullptr, DecodeTga, nullptr},
};

bool HasExtension(const MCodec& codec, const MString& upperExtension) {
    std::string_view rest = codec.extensions;
    while (!rest.empty()) {
        const std::string_view own = rest.substr(1, rest.find(',') - 1);
        const auto sameLetter = [](char16_t upper, char lower) {
            return upper == ToUpperUnit(static_cast<char16_t>(static_cast<unsigned char>(lower)));
        };
        if (std::ranges::equal(upperExtension.View(), own, sameLetter)) return true;
        rest.remove_prefix(std::min(own.size() + 2, rest.size()));
    }
    return false;
}

} // namespace

std::span<const MCodec> Codecs() {
    return table;
}

const MCodec* CodecForExtension(const MString& extension) {
    const auto found =
        std::ranges::find_if(table, [&](const MCodec& codec) { return HasExtension(codec, extension); });
    return found == table.end() ? nullptr : &*found;
}

const MCodec* CodecForContent(std::span<const std::uint8_t> start) {
    const auto found =
        std::ranges::find_if(table, [&](const MCodec& codec) { return codec.sniff && codec.sniff(start); });
    return found == table.end() ? nullptr : &*found;
}

void ReportCodec(std::string_view codec, std::string_view message) {
    std::array<char16_t, 256> line{};
    std::size_t length = 0;
    const auto append = [&](std::string_view text) {
        for (const char byte : text) {
            if (length < line.size() - 1) line[length++] = static_cast<unsigned char>(byte);
        }
    };
    append(codec);
    append(": ");
    append(message);
    line[length++] = u'\n';
    DebugOutput({line.data(), length});
}

bool StartsWith(std::span<const std::uint8_t> bytes, std::string_view signature) {
    return bytes.size() >= signature.size() &&
           std::ranges::equal(bytes.first(signature.size()), signature, {}, {},
                              [](char byte) { return static_cast<std::uint8_t>(byte); });
}

bool AllocatePicture(MPicture& picture, std::uint64_t width, std::uint64_t height, MPixelFormat format,
                     std::uint64_t weight) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    if (width == 0 || height == 0 || width > most || height > most) return false;
    if (!IsWithinPixelLimit(width, height, (BytesPerPixel(format) > 4 ? 2 : 1) * weight)) return false;
    picture = MPicture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), format);
    return picture.IsValid();
}

void SetFrames(MPicture& picture, std::uint32_t frameCount) {
    if (frameCount < 2) return;
    constexpr std::uint32_t most = std::numeric_limits<std::int32_t>::max();
    picture.FrameCount = static_cast<std::int32_t>(std::min(frameCount, most));
    picture.FrameDelay = 100;
}
