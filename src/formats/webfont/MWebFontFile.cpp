#include "formats/webfont/MWebFontFile.h"

#include "formats/webfont/Tables.h"
#include "imaging/codecs/MCodec.h"
#include "platform/MProgressDialog.h"

#include <fcntl.h>
#include <hb.h>
#include <unistd.h>
#include <woff2/encode.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <numeric>

namespace {

// MPicture itself frees nothing.
struct OwnedPicture {
    MPicture picture;

    explicit OwnedPicture(const MPicture& owned) : picture(owned) {}
    OwnedPicture(const OwnedPicture&) = delete;
    OwnedPicture& operator=(const OwnedPicture&) = delete;
    ~OwnedPicture() { picture.Free(); }
};

// What nobody sees has no colour, which packs best.
MPicture PictureOf(const MWebFontGlyph& glyph) {
    const MInkBox& part = glyph.Picture;
    MPicture picture(static_cast<std::uint32_t>(part.Width), static_cast<std::uint32_t>(part.Height),
                     FormatRGBA8);
    if (!picture.IsValid()) return picture;
    const std::size_t rowSize = picture.Width * sizeof(MColour);
    for (std::int32_t y = 0; y < part.Height; ++y) {
        std::uint8_t* pixel = picture.PixelAddress(0, y);
        std::memcpy(pixel, glyph.Source->Glyph->Picture.PixelAddress(part.Left, part.Top + y), rowSize);
        for (std::uint32_t x = 0; x < picture.Width; ++x, pixel += sizeof(MColour)) {
            if (pixel[3] == 0) std::memset(pixel, 0, sizeof(MColour));
        }
    }
    return picture;
}

std::uint32_t Scaled(std::uint32_t length, std::int32_t strike, std::int32_t height) {
    const double scaled = static_cast<double>(length) * strike / height;
    return static_cast<std::uint32_t>(std::max(std::lround(scaled), 1L));
}

// False without memory.
bool AddPng(const MPicture& picture, MStrikePngs& pngs) {
    MByteSink sink;
    if (!picture.IsValid() || !EncodePng(picture, sink)) return false;
    const std::span<const std::uint8_t> bytes = sink.Bytes();
    pngs.emplace_back(bytes.begin(), bytes.end());
    return true;
}

bool AddGlyph(const MWebFont& font, const MWebFontGlyph& glyph, std::vector<MStrikePngs>& strikes) {
    if (glyph.Box.Width == 0) {
        for (MStrikePngs& pngs : strikes)
            pngs.emplace_back();
        return true;
    }
    const OwnedPicture own(PictureOf(glyph));
    for (std::size_t i = 0; i < strikes.size(); ++i) {
        if (font.Strikes[i] == font.Height) {
            if (!AddPng(own.picture, strikes[i])) return false;
            continue;
        }
        const OwnedPicture smaller(
            MPicture(own.picture, Scaled(own.picture.Width, font.Strikes[i], font.Height),
                     Scaled(own.picture.Height, font.Strikes[i], font.Height), FormatRGBA8, true, false));
        if (!AddPng(smaller.picture, strikes[i])) return false;
    }
    return true;
}

using Face = std::unique_ptr<hb_face_t, decltype(&hb_face_destroy)>;
using Blob = std::unique_ptr<hb_blob_t, decltype(&hb_blob_destroy)>;

// The builder keeps only the pointers, so the tables must live until the file is made.
bool AddTable(const Face& face, const char* tag, const MTableBytes& table) {
    const Blob blob(hb_blob_create_or_fail(reinterpret_cast<const char*>(table.Bytes.data()), table.Size(),
                                           HB_MEMORY_MODE_READONLY, nullptr, nullptr),
                    hb_blob_destroy);
    return blob && hb_face_builder_add_table(face.get(), hb_tag_from_string(tag, 4), blob.get());
}

std::vector<std::uint8_t> Assemble(const std::vector<std::pair<const char*, MTableBytes>>& tables) {
    const Face face(hb_face_builder_create(), hb_face_destroy);
    for (const auto& [tag, table] : tables) {
        if (!AddTable(face, tag, table)) return {};
    }
    const Blob file(hb_face_reference_blob(face.get()), hb_blob_destroy);
    unsigned length = 0;
    const char* const bytes = hb_blob_get_data(file.get(), &length);
    return {bytes, bytes + length};
}

// The library tells the sizes on standard error, which is the program's own.
class QuietErrors {
public:
    QuietErrors() : kept(dup(STDERR_FILENO)) {
        std::fflush(stderr);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (kept >= 0 && nowhere >= 0) dup2(nowhere, STDERR_FILENO);
        if (nowhere >= 0) close(nowhere);
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    ~QuietErrors() {
        std::fflush(stderr);
        if (kept < 0) return;
        dup2(kept, STDERR_FILENO);
        close(kept);
    }

private:
    int kept;
};

// Large fonts are nearly all pictures, which the best quality shrinks by 2 percent more in eight times the
// time.
woff2::WOFF2Params PackingOf(std::size_t size) {
    constexpr std::size_t large = 2 << 20;
    woff2::WOFF2Params params;
    params.brotli_quality = size > large ? 9 : 11;
    return params;
}

} // namespace

MWebFontFile BuildWebFont(const MWebFont& font, MWebFontForm form) {
    MWebFontFile file;
    std::vector<MStrikePngs> strikes(font.Strikes.size());
    for (std::size_t i = 0; i < font.Glyphs.size(); ++i) {
        ProgressDialog.Update(static_cast<float>(i) / static_cast<float>(font.Glyphs.size()),
                              "Exporting web font...");
        if (AddGlyph(font, font.Glyphs[i], strikes)) continue;
        file.Reason = "there is not enough memory for it";
        return file;
    }
    std::uint64_t own = 0;
    std::uint64_t all = 0;
    for (std::size_t i = 0; i < strikes.size(); ++i) {
        const std::size_t size =
            std::accumulate(strikes[i].begin(), strikes[i].end(), std::size_t{0},
                            [](std::size_t sum, const auto& png) { return sum + png.size(); });
        file.StrikeBytes.push_back(size);
        if (font.Strikes[i] == font.Height) own = size;
        all += size;
    }
    // The file counts its bytes in 32 bits, and the second table needs somewhat more than the pictures.
    if (all + own * 3 / 2 > std::numeric_limits<std::uint32_t>::max() / 2) {
        file.Reason = "its pictures take more than a font file can hold";
        return file;
    }
    std::vector<std::pair<const char*, MTableBytes>> tables;
    MOutlineTables outlines = OutlineTables(font);
    tables.emplace_back("head", HeadTable(font));
    tables.emplace_back("hhea", HheaTable(font));
    tables.emplace_back("maxp", MaxpTable(font));
    tables.emplace_back("OS/2", Os2Table(font));
    tables.emplace_back("hmtx", HmtxTable(font));
    tables.emplace_back("cmap", CmapTable(font));
    tables.emplace_back("loca", std::move(outlines.Loca));
    tables.emplace_back("glyf", std::move(outlines.Glyf));
    tables.emplace_back("name", NameTable(font));
    tables.emplace_back("post", PostTable(font));
    if (!font.Pairs.empty()) tables.emplace_back("GPOS", GposTable(font));
    if (all > 0) {
        const auto native =
            static_cast<std::size_t>(std::ranges::find(font.Strikes, font.Height) - font.Strikes.begin());
        tables.emplace_back("sbix", SbixTable(font, strikes));
        tables.emplace_back("SVG ", SvgTable(font, strikes[native], form == MWebFontForm::TrueType));
    }
    file.Bytes = Assemble(tables);
    if (file.Bytes.empty()) file.Reason = "there is not enough memory for it";
    return file;
}

std::vector<std::uint8_t> PackAsWoff2(const std::vector<std::uint8_t>& font) {
    std::size_t size = woff2::MaxWOFF2CompressedSize(font.data(), font.size());
    std::vector<std::uint8_t> packed(size);
    const QuietErrors quiet;
    if (!woff2::ConvertTTFToWOFF2(font.data(), font.size(), packed.data(), &size, PackingOf(font.size())))
        return {};
    packed.resize(size);
    return packed;
}
