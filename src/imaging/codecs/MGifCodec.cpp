// GIF, through giflib. Each frame is read alone, in its own size, and not drawn over the ones before it. All
// frames become format 7, with the transparent index as alpha 0.
#include "imaging/codecs/MByteRows.h"
#include "imaging/codecs/MCodec.h"

#include <gif_lib.h>

#include <array>
#include <cstring>
#include <limits>
#include <optional>

namespace {

// A code of 12 bits stands for no more than the 4096 pixels that the table of strings can reach.
constexpr std::uint64_t mostPixelsPerByte = 4096;

struct Input {
    std::span<const std::uint8_t> rest;
};

int OnRead(GifFileType* gif, GifByteType* target, int count) {
    auto& rest = static_cast<Input*>(gif->UserData)->rest;
    const std::size_t taken = std::min(rest.size(), static_cast<std::size_t>(std::max(count, 0)));
    if (taken == 0) return 0;
    std::memcpy(target, rest.data(), taken);
    rest = rest.subspan(taken);
    return static_cast<int>(taken);
}

bool Reported(int error) {
    const char* const text = GifErrorString(error);
    ReportCodec("GIF", text ? text : "unknown error");
    return false;
}

class GifReader {
public:
    GifReader(std::span<const std::uint8_t> bytes, std::int32_t askedFrame, MPicture& result)
        : input{bytes}, asked(askedFrame), picture(result) {
        int error = 0;
        gif = DGifOpen(&input, OnRead, &error);
        if (!gif) Reported(error);
    }
    GifReader(const GifReader&) = delete;
    GifReader& operator=(const GifReader&) = delete;
    ~GifReader() {
        int error = 0;
        if (gif) DGifCloseFile(gif, &error);
    }

    // To the end of the file, which tells how many frames there are, or to where it is damaged: a frame that is
    // whole is not lost for what follows it.
    bool Read() {
        if (!gif || asked < 0) return false;
        if (!Walk()) ReportCodec("GIF", "damaged");
        if (asked >= frames) return false;
        if (frames > 1) {
            picture.FrameCount = frames;
            picture.FrameDelay = frame.DelayTime > 0 ? frame.DelayTime * 10 : 100;
            picture.FrameDisposal = frame.DisposalMode;
            picture.FrameLeft = place.Left;
            picture.FrameTop = place.Top;
            picture.FrameWidth = place.Width;
            picture.FrameHeight = place.Height;
        }
        return true;
    }

private:
    bool Walk() {
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        while (record != TERMINATE_RECORD_TYPE) {
            if (DGifGetRecordType(gif, &record) == GIF_ERROR) return Reported(gif->Error);
            if (record == EXTENSION_RECORD_TYPE && !ReadExtension()) return Reported(gif->Error);
            if (record != IMAGE_DESC_RECORD_TYPE) continue;
            if (DGifGetImageDesc(gif) == GIF_ERROR) return Reported(gif->Error);
            if (!(frames == asked ? ReadFrame() : SkipFrame())) return Reported(gif->Error);
            ++frames;
            control = {};
        }
        return true;
    }

    // What the extension before a frame tells of it.
    static constexpr GraphicsControlBlock noControl{0, false, 0, NO_TRANSPARENT_COLOR};

    Input input;
    const std::int32_t asked;
    MPicture& picture;
    GifFileType* gif = nullptr;
    std::int32_t frames = 0;
    std::optional<GraphicsControlBlock> control; // of the next frame
    GraphicsControlBlock frame = noControl;      // of the frame asked for
    GifImageDesc place{};

    bool ReadExtension() {
        int code = 0;
        GifByteType* block = nullptr;
        if (DGifGetExtension(gif, &code, &block) == GIF_ERROR) return false;
        while (block) {
            GraphicsControlBlock read = noControl;
            if (code == GRAPHICS_EXT_FUNC_CODE && DGifExtensionToGCB(block[0], block + 1, &read) == GIF_OK) {
                control = read;
            }
            if (DGifGetExtensionNext(gif, &block) == GIF_ERROR) return false;
        }
        return true;
    }

    bool SkipFrame() {
        int size = 0;
        GifByteType* block = nullptr;
        if (DGifGetCode(gif, &size, &block) == GIF_ERROR) return false;
        while (block) {
            if (DGifGetCodeNext(gif, &block) == GIF_ERROR) return false;
        }
        return true;
    }

    bool ReadFrame() {
        frame = control.value_or(noControl);
        place = gif->Image;
        const ColorMapObject* const map = gif->Image.ColorMap ? gif->Image.ColorMap : gif->SColorMap;
        if (!map || place.Width < 1 || place.Height < 1) return false;
        const auto width = static_cast<std::size_t>(place.Width);
        const auto height = static_cast<std::size_t>(place.Height);
        if (width * height > input.rest.size() * mostPixelsPerByte) return false;
        if (!AllocatePicture(picture, width, height, FormatRGBA8)) return false;
        const std::array<MColour, 256> colours = Colours(*map);
        const std::unique_ptr<std::uint8_t[]> indices(MGetMemory(width));
        if (!indices) return false;

        constexpr std::array<std::array<std::size_t, 2>, 4> interlaced = {{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
        constexpr std::array<std::array<std::size_t, 2>, 1> straight = {{{0, 1}}};
        const std::span<const std::array<std::size_t, 2>> passes =
            place.Interlace ? std::span<const std::array<std::size_t, 2>>(interlaced) : straight;
        for (const auto& [first, step] : passes) {
            for (std::size_t y = first; y < height; y += step) {
                if (DGifGetLine(gif, indices.get(), place.Width) == GIF_ERROR) return false;
                std::uint8_t* const row = picture.Pixels + y * picture.Stride;
                for (std::size_t x = 0; x < width; ++x) {
                    std::memcpy(row + x * sizeof(MColour), &colours[indices[x]], sizeof(MColour));
                }
            }
        }
        return true;
    }

    // Indices beyond the palette are black.
    std::array<MColour, 256> Colours(const ColorMapObject& map) const {
        std::array<MColour, 256> colours{};
        for (std::size_t i = 0;
             i < std::min<std::size_t>(static_cast<std::size_t>(map.ColorCount), colours.size()); ++i) {
            colours[i] = MColour(map.Colors[i].Red, map.Colors[i].Green, map.Colors[i].Blue);
        }
        if (frame.TransparentColor >= 0) colours[static_cast<std::size_t>(frame.TransparentColor)].a = 0;
        return colours;
    }
};

// A picture as indices into up to 256 colours. Exact if it has no more; otherwise giflib chooses the colours.
// Pixels that are more than half transparent share one index.
class Indexed {
public:
    std::array<GifColorType, 256> colours{};
    std::unique_ptr<std::uint8_t[]> indices;
    int transparent = NO_TRANSPARENT_COLOR;

    bool Make(const MPicture& picture) {
        const std::size_t count = std::size_t{picture.Width} * picture.Height;
        indices.reset(MGetMemory(count));
        if (!indices) return false;
        if (ChannelCount(picture.Format) == 1) {
            for (std::size_t i = 0; i < colours.size(); ++i) {
                const auto grey = static_cast<GifByteType>(i);
                colours[i] = {grey, grey, grey};
            }
            for (std::size_t y = 0; y < picture.Height; ++y) {
                CopyByteRow(picture, y, MByteOrder::Grey, indices.get() + y * picture.Width);
            }
            return true;
        }
        return CollectColours(picture) || Quantise(picture);
    }

private:
    static constexpr std::size_t slots = 1024; // four for each colour, so that few collide
    std::array<std::uint16_t, slots> table{};  // index + 1
    std::size_t used = 0;

    static bool IsHidden(const MColour& colour) { return colour.a < 128; }

    // The index of a colour, with a new entry if it isn't there yet; nothing if the palette is full.
    std::optional<std::uint8_t> IndexOf(const MColour& colour) {
        const std::uint32_t packed = colour.r | std::uint32_t{colour.g} << 8 | std::uint32_t{colour.b} << 16;
        std::size_t slot = (packed * 2654435761U) >> 22;
        for (; table[slot] != 0; slot = (slot + 1) % slots) {
            const GifColorType& entry = colours[table[slot] - 1U];
            if (entry.Red == colour.r && entry.Green == colour.g && entry.Blue == colour.b) {
                return static_cast<std::uint8_t>(table[slot] - 1);
            }
        }
        if (used == colours.size()) return std::nullopt;
        colours[used] = {colour.r, colour.g, colour.b};
        table[slot] = static_cast<std::uint16_t>(++used);
        return static_cast<std::uint8_t>(used - 1);
    }

    bool CollectColours(const MPicture& picture) {
        const std::unique_ptr<std::uint8_t[]> row(MGetMemory(std::size_t{picture.Width} * sizeof(MColour)));
        if (!row) return false;
        std::uint8_t* index = indices.get();
        for (std::size_t y = 0; y < picture.Height; ++y) {
            CopyByteRow(picture, y, MByteOrder::Bgra, row.get());
            for (std::size_t x = 0; x < picture.Width; ++x, ++index) {
                MColour colour;
                std::memcpy(&colour, row.get() + x * sizeof colour, sizeof colour);
                if (IsHidden(colour)) {
                    if (transparent == NO_TRANSPARENT_COLOR && used == colours.size()) return false;
                    if (transparent == NO_TRANSPARENT_COLOR) transparent = static_cast<int>(used++);
                    *index = static_cast<std::uint8_t>(transparent);
                    continue;
                }
                const auto found = IndexOf(colour);
                if (!found) return false;
                *index = *found;
            }
        }
        return true;
    }

    bool Quantise(const MPicture& picture) {
        const std::size_t count = std::size_t{picture.Width} * picture.Height;
        if (picture.Width > std::numeric_limits<int>::max() / 3 / std::size_t{picture.Height}) return false;
        const std::unique_ptr<std::uint8_t[]> planes(MGetMemory(count * 3));
        const std::unique_ptr<std::uint8_t[]> hidden(MGetMemory(count));
        const std::unique_ptr<std::uint8_t[]> row(MGetMemory(std::size_t{picture.Width} * sizeof(MColour)));
        if (!planes || !hidden || !row) return false;
        std::uint8_t* const red = planes.get();
        bool anyHidden = false;
        MColour shown(0, 0, 0); // what hidden pixels count as, so that they take no entry of their own
        for (std::size_t y = 0, i = 0; y < picture.Height; ++y) {
            CopyByteRow(picture, y, MByteOrder::Bgra, row.get());
            for (std::size_t x = 0; x < picture.Width; ++x, ++i) {
                MColour colour;
                std::memcpy(&colour, row.get() + x * sizeof colour, sizeof colour);
                hidden[i] = IsHidden(colour) ? 1 : 0;
                anyHidden = anyHidden || IsHidden(colour);
                shown = IsHidden(colour) ? shown : colour;
                red[i] = shown.r;
                red[count + i] = shown.g;
                red[2 * count + i] = shown.b;
            }
        }
        colours = {};
        int size = anyHidden ? 255 : 256;
        if (GifQuantizeBuffer(picture.Width, picture.Height, &size, red, red + count, red + 2 * count,
                              indices.get(), colours.data()) == GIF_ERROR) {
            return false;
        }
        transparent = anyHidden ? 255 : NO_TRANSPARENT_COLOR;
        for (std::size_t i = 0; anyHidden && i < count; ++i) {
            if (hidden[i] != 0) indices[i] = 255;
        }
        return true;
    }
};

int OnWrite(GifFileType* gif, const GifByteType* bytes, int count) {
    return static_cast<MByteSink*>(gif->UserData)->Write(bytes, static_cast<std::size_t>(count)) ? count : 0;
}

bool PutFrame(GifFileType* gif, const MPicture& picture, const Indexed& indexed, const ColorMapObject& map) {
    const auto width = static_cast<int>(picture.Width);
    const auto height = static_cast<int>(picture.Height);
    EGifSetGifVersion(gif, indexed.transparent != NO_TRANSPARENT_COLOR);
    if (EGifPutScreenDesc(gif, width, height, 8, 0, &map) == GIF_ERROR) return false;
    if (indexed.transparent != NO_TRANSPARENT_COLOR) {
        const GraphicsControlBlock control{DISPOSAL_UNSPECIFIED, false, 0, indexed.transparent};
        std::array<GifByteType, 4> bytes{};
        EGifGCBToExtension(&control, bytes.data());
        if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, bytes.size(), bytes.data()) == GIF_ERROR)
            return false;
    }
    if (EGifPutImageDesc(gif, 0, 0, width, height, false, nullptr) == GIF_ERROR) return false;
    for (std::size_t y = 0; y < picture.Height; ++y) {
        if (EGifPutLine(gif, indexed.indices.get() + y * picture.Width, width) == GIF_ERROR) return false;
    }
    return true;
}

} // namespace

bool SniffGif(std::span<const std::uint8_t> start) {
    return StartsWith(start, "GIF87a") || StartsWith(start, "GIF89a");
}

bool DecodeGif(MByteSource& file, std::int32_t frame, MPicture& picture) {
    return GifReader(file.All(), frame, picture).Read();
}

bool EncodeGif(const MPicture& picture, MByteSink& sink) {
    constexpr std::uint32_t most = 0xFFFF;
    if (picture.Width > most || picture.Height > most) return false;
    const auto indexed = std::make_unique<Indexed>();
    if (!indexed->Make(picture)) return false;
    ColorMapObject* const map = GifMakeMapObject(256, indexed->colours.data());
    int error = 0;
    GifFileType* const gif = map ? EGifOpen(&sink, OnWrite, &error) : nullptr;
    const bool written = gif && PutFrame(gif, picture, *indexed, *map);
    const bool closed = gif && EGifCloseFile(gif, &error) == GIF_OK;
    GifFreeMapObject(map);
    return written && closed;
}
