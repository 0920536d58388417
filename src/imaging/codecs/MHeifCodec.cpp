// HEIF, through libheif and its HEVC plugins with their default settings. 8-bit files become format 4 or 7,
// deeper ones 5 or 8. Each top-level picture is a frame, the primary one first.
#include "foundation/MNumbers.h"
#include "imaging/MPixelBudget.h"
#include "imaging/codecs/MByteRows.h"
#include "imaging/codecs/MCodec.h"
#include "imaging/codecs/MHeifReferences.h"
#include "imaging/codecs/MHevcSize.h"

#include <fcntl.h>
#include <libheif/heif.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <vector>

namespace {

// A flat picture packs into next to nothing, so this only keeps a few bytes from asking for gigabytes.
constexpr std::uint64_t mostPixelsPerByte = 65536;
// The decoder holds pictures in several forms at once.
constexpr std::uint64_t bytesPerPixel = 16;
constexpr std::uint64_t pixelWeight = 2; // they take twice the time of others, too
constexpr const char* tooLargeForFile = "larger than the file could hold";

template<typename Object, auto Release>
struct Releaser {
    void operator()(Object* object) const { Release(object); }
};
using Context = std::unique_ptr<heif_context, Releaser<heif_context, heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Releaser<heif_image_handle, heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Releaser<heif_image, heif_image_release>>;
using Encoder = std::unique_ptr<heif_encoder, Releaser<heif_encoder, heif_encoder_release>>;
using Options =
    std::unique_ptr<heif_decoding_options, Releaser<heif_decoding_options, heif_decoding_options_free>>;

bool Succeeded(const heif_error& error) {
    if (error.code == heif_error_Ok) return true;
    const bool tooLarge = error.subcode == heif_suberror_Security_limit_exceeded;
    ReportCodec("HEIF", tooLarge ? tooLargeForFile : error.message);
    return false;
}

// The call's object, or null after a line on the debug channel.
template<typename Pointer, typename Call>
Pointer Made(Call call) {
    typename Pointer::pointer object = nullptr;
    const bool made = Succeeded(call(&object));
    return Pointer(made ? object : nullptr);
}

// The HEVC decoder prints what it finds wrong straight to the standard error stream, which belongs to the
// program's own messages. Turned away while such an object lives; but not where a sanitizer has its reports to
// make there.
class QuietErrors {
public:
    QuietErrors() {
        if (!wanted) return;
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (nowhere < 0) return;
        std::fflush(stderr);
        saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
        if (saved >= 0) dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    ~QuietErrors() {
        if (saved < 0) return;
        std::fflush(stderr);
        dup2(saved, STDERR_FILENO);
        close(saved);
    }

private:
#if defined(__SANITIZE_ADDRESS__)
    static constexpr bool wanted = false;
#elif defined(__has_feature)
    static constexpr bool wanted = !__has_feature(address_sanitizer);
#else
    static constexpr bool wanted = true;
#endif
    int saved = -1;
};

// libheif is C++ inside, and lets exhausted memory out.
template<typename Work>
bool Guarded(const Work& work) {
    try {
        return work();
    } catch (const std::exception& failure) {
        ReportCodec("HEIF", failure.what());
        return false;
    }
}

bool FindFrame(heif_context* context, std::int32_t frame, heif_item_id& found, std::uint32_t& frames) {
    const int count = heif_context_get_number_of_top_level_images(context);
    heif_item_id primary = 0;
    if (count < 1 || frame < 0 || frame >= count ||
        !Succeeded(heif_context_get_primary_image_ID(context, &primary))) {
        return false;
    }
    std::vector<heif_item_id> items(static_cast<std::size_t>(count));
    heif_context_get_list_of_top_level_image_IDs(context, items.data(), count);
    const auto first = std::ranges::find(items, primary);
    if (first != items.end()) std::rotate(items.begin(), first, first + 1);
    found = items[static_cast<std::size_t>(frame)];
    frames = static_cast<std::uint32_t>(count);
    return true;
}

// Words of 9 to 16 bits, stretched to 16.
void WidenRow(const std::uint8_t* from, std::uint8_t* to, std::size_t count, int bits) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint16_t value;
        std::memcpy(&value, from + i * sizeof value, sizeof value);
        const auto wide = static_cast<std::uint16_t>(value << (16 - bits) | value >> (2 * bits - 16));
        std::memcpy(to + i * sizeof wide, &wide, sizeof wide);
    }
}

void StoreBytes(const std::uint8_t* from, std::uint8_t* to, std::size_t count, bool alpha, bool premultiplied) {
    for (std::size_t x = 0; x < count; ++x) {
        MColour colour(from[0], from[1], from[2], alpha ? from[3] : std::uint8_t{255});
        if (premultiplied) colour = Unpremultiplied(colour);
        std::memcpy(to, &colour, alpha ? 4 : 3);
        from += alpha ? 4 : 3;
        to += alpha ? 4 : 3;
    }
}

bool CopyImage(const heif_image* image, MPixelFormat format, bool premultiplied, MPicture& picture) {
    const int width = heif_image_get_width(image, heif_channel_interleaved);
    const int height = heif_image_get_height(image, heif_channel_interleaved);
    int stride = 0;
    const std::uint8_t* const plane = heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    if (!plane || width < 1 || height < 1) return false;
    // Its size was asked about before it was decoded.
    picture = MPicture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), format);
    if (!picture.IsValid()) return false;
    const int bits = heif_image_get_bits_per_pixel_range(image, heif_channel_interleaved);
    const auto channels = static_cast<std::size_t>(ChannelCount(format));
    if (ChannelClass(format) == 2 && (bits < 9 || bits > 16)) return false;
    for (std::size_t y = 0; y < picture.Height; ++y) {
        const std::uint8_t* const from = plane + y * static_cast<std::size_t>(stride);
        std::uint8_t* const to = picture.Pixels + y * picture.Stride;
        if (ChannelClass(format) == 2) {
            WidenRow(from, to, picture.Width * channels, bits);
        } else {
            StoreBytes(from, to, picture.Width, channels == 4, premultiplied);
        }
    }
    return true;
}

// Before the decoder sees any of it.
bool IsPlausible(std::uint64_t pixels, std::uint64_t fileSize) {
    if (pixels <= fileSize * mostPixelsPerByte && pixels <= MemoryLimit() / bytesPerPixel) return true;
    ReportCodec("HEIF", tooLargeForFile);
    return false;
}

// Whether the file has an item of this type, or could be read so. Whatever else a hostile file says, each item
// has such an entry (ISO/IEC 14496-12, 8.11.6).
bool HoldsItem(std::span<const std::uint8_t> file, std::string_view type) {
    constexpr std::string_view entry = "infe";
    // Of the type behind the name: the item's number takes two bytes or four, and a long size eight in front.
    constexpr std::size_t typeOffsets[] = {12, 14, 20, 22};
    for (auto rest = file;; rest = rest.subspan(entry.size())) {
        const auto found = std::search(rest.begin(), rest.end(), entry.begin(), entry.end());
        if (found == rest.end()) return false;
        rest = rest.subspan(static_cast<std::size_t>(found - rest.begin()));
        for (const std::size_t offset : typeOffsets)
            if (offset < rest.size() && StartsWith(rest.subspan(offset), type)) return true;
    }
}

// AV1 pictures are refused under every brand, as AVIF files are by theirs: their decoder too allocates by a
// size within the coded data, and where those lie a hostile file can tell in several ways.
bool HoldsAv1(std::span<const std::uint8_t> file) {
    if (!HoldsItem(file, "av01")) return false;
    ReportCodec("HEIF", "AV1 pictures are not read");
    return true;
}

// A picture made of others has a size of its own within its data, which the decoder allocates by whatever the
// file tells elsewhere. Its sides are limited to those of a square that is plausible; long pictures in small
// files are common, so a side may always have some length.
void LimitDerivedPictures(heif_context* context, std::span<const std::uint8_t> file) {
    if (!HoldsItem(file, "grid") && !HoldsItem(file, "iovl")) return;
    constexpr double alwaysTaken = 8192;
    const auto side = [](std::uint64_t pixels) { return std::sqrt(static_cast<double>(pixels)); };
    const double most = std::min(std::max(side(file.size() * mostPixelsPerByte), alwaysTaken),
                                 side(MemoryLimit() / bytesPerPixel));
    heif_context_set_maximum_image_size_limit(context, ToInteger(most));
}

bool DecodeHandle(const heif_image_handle* handle, const MHevcSize& coded, std::uint64_t fileSize,
                  MPicture& picture) {
    const auto size = [](int width, int height) {
        return MHevcSize{static_cast<std::uint64_t>(std::max(width, 0)),
                         static_cast<std::uint64_t>(std::max(height, 0))};
    };
    const MHevcSize shown = size(heif_image_handle_get_width(handle), heif_image_handle_get_height(handle));
    // A picture cut out of a larger one is decoded whole, and what the coded data say is believed.
    const MHevcSize whole =
        size(heif_image_handle_get_ispe_width(handle), heif_image_handle_get_ispe_height(handle));
    const auto fewer = [](const MHevcSize& a, const MHevcSize& b) { return a.Pixels() < b.Pixels(); };
    const MHevcSize largest = std::max({shown, whole, coded}, fewer);
    if (shown.Pixels() == 0 || !IsPlausible(largest.Pixels(), fileSize)) return false;
    const bool alpha = heif_image_handle_has_alpha_channel(handle) != 0;
    // Premultiplied colours have lost depth already; they are brought back in bytes.
    const bool premultiplied = heif_image_handle_is_premultiplied_alpha(handle) != 0;
    const bool deep = heif_image_handle_get_luma_bits_per_pixel(handle) > 8 && !premultiplied;
    if (!IsWithinPixelLimit(largest.width, largest.height, pixelWeight)) return false;
    const heif_chroma chroma =
        deep    ? alpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE
        : alpha ? heif_chroma_interleaved_RGBA
                : heif_chroma_interleaved_RGB;
    const Options options(heif_decoding_options_alloc());
    if (!options) return false;
    options->strict_decoding = 1;
    const Image image = Made<Image>([&](heif_image** made) {
        return heif_decode_image(handle, made, heif_colorspace_RGB, chroma, options.get());
    });
    const MPixelFormat format = deep ? alpha ? FormatRGBA16 : FormatRGB16 : alpha ? FormatRGBA8 : FormatRGB8;
    return image && CopyImage(image.get(), format, premultiplied, picture);
}

heif_error OnWrite(heif_context*, const void* bytes, std::size_t count, void* sink) {
    if (static_cast<MByteSink*>(sink)->Write(bytes, count))
        return {heif_error_Ok, heif_suberror_Unspecified, "Success"};
    return {heif_error_Encoding_error, heif_suberror_Cannot_write_output_data, "can't be written"};
}

Image ImageOf(const MPicture& picture) {
    const bool alpha = ChannelCount(picture.Format) == 4;
    const auto width = static_cast<int>(picture.Width);
    const auto height = static_cast<int>(picture.Height);
    Image image = Made<Image>([&](heif_image** made) {
        return heif_image_create(width, height, heif_colorspace_RGB,
                                 alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, made);
    });
    if (!image || !Succeeded(heif_image_add_plane(image.get(), heif_channel_interleaved, width, height, 8)))
        return {};
    int stride = 0;
    std::uint8_t* const plane = heif_image_get_plane(image.get(), heif_channel_interleaved, &stride);
    if (!plane) return {};
    for (std::size_t y = 0; y < picture.Height; ++y) {
        CopyByteRow(picture, y, alpha ? MByteOrder::Rgba : MByteOrder::Rgb,
                    plane + y * static_cast<std::size_t>(stride));
    }
    return image;
}

} // namespace

bool SniffHeif(std::span<const std::uint8_t> start) {
    constexpr std::size_t needed = 12;
    if (start.size() < needed) return false;
    // Phones write the brand of pictures in any coding too (ISO/IEC 23008-12, 10.2), here for HEVC; AVIF files
    // have the same boxes, but another codec inside.
    const auto brand = start.subspan(8);
    const heif_filetype_result type = heif_check_filetype(start.data(), static_cast<int>(start.size()));
    return StartsWith(brand, "mif1") ? type != heif_filetype_no
                                     : type == heif_filetype_yes_supported && !StartsWith(brand, "avi");
}

bool DecodeHeif(MByteSource& file, std::int32_t frame, MPicture& picture) {
    const QuietErrors quiet;
    return Guarded([&] {
        const std::span<const std::uint8_t> bytes = file.All();
        const Context context(heif_context_alloc());
        if (!context || bytes.empty() || HoldsAv1(bytes)) return false;
        const MHevcSize coded = LargestHevcPicture(bytes);
        if (!IsPlausible(coded.Pixels(), bytes.size()) || !ReferencesEnd(bytes)) return false;
        LimitDerivedPictures(context.get(), bytes);
        const heif_error error =
            heif_context_read_from_memory_without_copy(context.get(), bytes.data(), bytes.size(), nullptr);
        heif_item_id item = 0;
        std::uint32_t frames = 0;
        if (!Succeeded(error) || !FindFrame(context.get(), frame, item, frames)) return false;
        const Handle handle = Made<Handle>(
            [&](heif_image_handle** made) { return heif_context_get_image_handle(context.get(), item, made); });
        if (!handle || !DecodeHandle(handle.get(), coded, bytes.size(), picture)) return false;
        SetFrames(picture, frames);
        return true;
    });
}

bool EncodeHeif(const MPicture& picture, MByteSink& sink) {
    constexpr std::uint32_t most = 0xFFFF;
    if (picture.Width > most || picture.Height > most) return false;
    const QuietErrors quiet;
    return Guarded([&] {
        const Context context(heif_context_alloc());
        const Encoder encoder = Made<Encoder>([&](heif_encoder** made) {
            return heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, made);
        });
        const Image image = encoder ? ImageOf(picture) : Image();
        if (!image) return false;
        const heif_error encoded =
            heif_context_encode_image(context.get(), image.get(), encoder.get(), nullptr, nullptr);
        heif_writer writer{1, OnWrite};
        return Succeeded(encoded) && Succeeded(heif_context_write(context.get(), &writer, &sink));
    });
}
