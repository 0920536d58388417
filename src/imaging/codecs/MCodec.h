// The picture file forms, one record each. Detection by content, the way from an extension to a form, and the
// lists of forms all come from the one table in MCodecs.cpp.
#pragma once

#include "imaging/MPicture.h"
#include "imaging/codecs/MByteStreams.h"

#include <cstdint>
#include <span>
#include <string_view>

struct MCodec {
    std::string_view name;
    std::string_view extensions; // lower case, each with its dot, joined by commas
    // Whether a file's start is of this form. Null for forms that only the extension tells.
    bool (*sniff)(std::span<const std::uint8_t> start);
    // Fills the empty `picture` from a whole file. False for what is damaged, is not there (`frame` counts from
    // 0), or could not be held in memory; what `picture` holds is freed by the caller then.
    bool (*decode)(MByteSource& file, std::int32_t frame, MPicture& picture);
    // A valid, top-down picture of a format from 1 to 9 as a whole file. Null for forms that are only read.
    bool (*encode)(const MPicture& picture, MByteSink& sink);
};

std::span<const MCodec> Codecs();
// `extension` in upper case without the dot, as MString::GetExtension gives it. Null if no form has it.
const MCodec* CodecForExtension(const MString& extension);
// Null if the content is of no form that can be told by it.
const MCodec* CodecForContent(std::span<const std::uint8_t> start);

// The bytes of a file's start that a sniff function may ask for.
inline constexpr std::size_t SniffLength = 64;

// One line on the debug channel, for the messages of a codec library.
void ReportCodec(std::string_view codec, std::string_view message);

bool StartsWith(std::span<const std::uint8_t> bytes, std::string_view signature);

// Gives `picture` its size, format and block. False without memory, and, before anything is allocated, for
// sizes of 0 and for more than the budget of pixels has, of which each takes `weight`.
bool AllocatePicture(MPicture& picture, std::uint64_t width, std::uint64_t height, MPixelFormat format,
                     std::uint64_t weight = 1);

// Marks the picture as one of several frames, without any times or places of its own: a frame that tells no
// delay has 100 ms. One frame leaves the picture as it is.
void SetFrames(MPicture& picture, std::uint32_t frameCount);

bool SniffPng(std::span<const std::uint8_t> start);
bool DecodePng(MByteSource& file, std::int32_t frame, MPicture& picture);
bool EncodePng(const MPicture& picture, MByteSink& sink);

bool SniffJpeg(std::span<const std::uint8_t> start);
bool DecodeJpeg(MByteSource& file, std::int32_t frame, MPicture& picture);
bool EncodeJpeg(const MPicture& picture, MByteSink& sink);

bool SniffTiff(std::span<const std::uint8_t> start);
bool DecodeTiff(MByteSource& file, std::int32_t frame, MPicture& picture);
bool EncodeTiff(const MPicture& picture, MByteSink& sink);

bool SniffGif(std::span<const std::uint8_t> start);
bool DecodeGif(MByteSource& file, std::int32_t frame, MPicture& picture);
bool EncodeGif(const MPicture& picture, MByteSink& sink);

bool SniffHeif(std::span<const std::uint8_t> start);
bool DecodeHeif(MByteSource& file, std::int32_t frame, MPicture& picture);
bool EncodeHeif(const MPicture& picture, MByteSink& sink);

bool SniffBmp(std::span<const std::uint8_t> start);
bool DecodeBmp(MByteSource& file, std::int32_t frame, MPicture& picture);
bool EncodeBmp(const MPicture& picture, MByteSink& sink);

bool DecodeTga(MByteSource& file, std::int32_t frame, MPicture& picture);

bool DecodeDds(MByteSource& file, std::int32_t frame, MPicture& picture);
bool EncodeDds(const MPicture& picture, MByteSink& sink);
