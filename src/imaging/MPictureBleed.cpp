// BleedColours: pixels that nobody sees still colour their neighbours where a picture is scaled or filtered
// later, so transparent pixels take on the colour of the visible ones beside them, ring by ring.
//
// What is coloured already is kept as one bit per pixel, which makes a ring a few shifts of 64 pixels at a
// time; single pixels are touched only when they get their colour.
#include "foundation/MMemory.h"
#include "imaging/MPicture.h"
#include "imaging/MPixelLayout.h"

#include <bit>
#include <memory>

namespace {

constexpr std::size_t wordBits = 64;

// One bit per pixel, with an empty word at both ends of a row and an empty row above and below, so that
// neighbours outside the picture need no test.
class Mask {
public:
    Mask(std::size_t width, std::size_t height)
        : rowWords((width + wordBits - 1) / wordBits + 2), words(rowWords * (height + 2)),
          block(MGetMemory(words * sizeof(std::uint64_t))) {
        if (block) std::memset(block.get(), 0, words * sizeof(std::uint64_t));
    }
    explicit operator bool() const { return block != nullptr; }
    std::uint64_t* Row(std::size_t y) {
        return reinterpret_cast<std::uint64_t*>(block.get()) + (y + 1) * rowWords + 1;
    }
    void CopyFrom(const Mask& other) {
        std::memcpy(block.get(), other.block.get(), words * sizeof(std::uint64_t));
    }

    const std::size_t rowWords;

private:
    std::size_t words;
    std::unique_ptr<std::uint8_t[]> block;
};

// Rows and words that were touched, both ends included; empty while `bottom` is below `top`.
struct Region {
    std::size_t top = std::numeric_limits<std::size_t>::max();
    std::size_t bottom = 0;
    std::size_t left = std::numeric_limits<std::size_t>::max();
    std::size_t right = 0;

    bool IsEmpty() const { return top > bottom; }
    void Add(std::size_t word, std::size_t y) {
        top = std::min(top, y);
        bottom = std::max(bottom, y);
        left = std::min(left, word);
        right = std::max(right, word);
    }
    Region Grown(std::size_t words, std::size_t rows) const {
        Region grown;
        grown.top = top == 0 ? 0 : top - 1;
        grown.bottom = std::min(bottom + 1, rows - 1);
        grown.left = left == 0 ? 0 : left - 1;
        grown.right = std::min(right + 1, words - 1);
        return grown;
    }
};

template<MPixelFormat Format>
class Bleeder {
public:
    explicit Bleeder(MPicture& bled)
        : picture(bled), words((picture.Width + wordBits - 1) / wordBits), read(picture.Width, picture.Height),
          written(picture.Width, picture.Height) {}

    void Run() {
        if (!read || !written) return;
        Region ring;
        if (!MarkVisible(ring) || ring.IsEmpty()) return;
        written.CopyFrom(read);
        const std::uint32_t lastPass = std::max(std::max(picture.Width, picture.Height) >> 6, 32U);
        for (std::uint32_t pass = 0; pass <= lastPass && !ring.IsEmpty(); ++pass)
            ring = ColourRing(ring);
    }

private:
    static constexpr std::size_t pixelBytes = pixels::bytesPerPixel<Format>;

    MPicture& picture;
    const std::size_t words; // per row
    Mask read;               // what was coloured before this ring
    Mask written;            // and with it

    std::uint8_t* Pixel(std::size_t x, std::size_t y) {
        return picture.Pixels + y * picture.Stride + x * pixelBytes;
    }

    // Sets the bits of all pixels with alpha; false if there is nothing transparent.
    bool MarkVisible(Region& region) {
        std::uint32_t leastAlpha = 255;
        for (std::size_t y = 0; y < picture.Height; ++y) {
            std::uint64_t* const bits = read.Row(y);
            for (std::size_t word = 0; word < words; ++word) {
                const std::size_t first = word * wordBits;
                const std::size_t count = std::min(wordBits, picture.Width - first);
                bits[word] = VisibleBits(Pixel(first, y), count, leastAlpha);
                if (bits[word] != 0) region.Add(word, y);
            }
        }
        return leastAlpha < 255;
    }

    static std::uint64_t VisibleBits(const std::uint8_t* pixel, std::size_t count, std::uint32_t& leastAlpha) {
        std::uint8_t alphas[wordBits] = {};
        for (std::size_t i = 0; i < count; ++i) {
            alphas[i] = pixels::ConvertChannel(
                pixels::LoadChannel<Format>(pixel + i * pixelBytes, pixels::Alpha), std::uint8_t{});
        }
        std::uint8_t least = 255;
        for (std::size_t i = 0; i < count; ++i)
            least = std::min(least, alphas[i]);
        leastAlpha = std::min<std::uint32_t>(leastAlpha, least);
        if (least != 0 && count == wordBits) return ~std::uint64_t{0};

        std::uint64_t bits = 0;
        for (std::size_t byte = 0; byte < wordBits / 8; ++byte) {
            std::uint64_t eight = 0;
            for (std::size_t i = 0; i < 8; ++i)
                alphas[byte * 8 + i] = alphas[byte * 8 + i] != 0 ? 1 : 0;
            std::memcpy(&eight, alphas + byte * 8, sizeof eight);
            // Gathers the lowest bit of each of the eight bytes in the highest byte of the product.
            bits |= (eight * 0x0102040810204080U >> 56) << (byte * 8);
        }
        return bits;
    }

    Region ColourRing(const Region& last) {
        const Region region = last.Grown(words, picture.Height);
        Region ring;
        for (std::size_t y = region.top; y <= region.bottom; ++y) {
            for (std::size_t word = region.left; word <= region.right; ++word) {
                if (ColourWord(word, y)) ring.Add(word, y);
            }
        }
        for (std::size_t y = ring.top; y <= ring.bottom; ++y) {
            std::memcpy(read.Row(y) + ring.left, written.Row(y) + ring.left,
                        (ring.right - ring.left + 1) * sizeof(std::uint64_t));
        }
        return ring;
    }

    // Colours those of 64 pixels that are blank and have a coloured neighbour.
    bool ColourWord(std::size_t word, std::size_t y) {
        const std::uint64_t* const row = read.Row(y) + word;
        std::uint64_t blank = ~row[0];
        if (word + 1 == words && picture.Width % wordBits != 0) {
            blank &= (std::uint64_t{1} << picture.Width % wordBits) - 1;
        }
        if (blank == 0) return false;
        const std::uint64_t* const above = row - read.rowWords;
        const std::uint64_t* const below = row + read.rowWords;
        const auto here = [](const std::uint64_t* bits) { return bits[0]; };
        const auto left = [](const std::uint64_t* bits) { return bits[0] << 1 | bits[-1] >> 63; };
        const auto right = [](const std::uint64_t* bits) { return bits[0] >> 1 | bits[1] << 63; };

        const std::uint64_t before = blank;
        const auto take = [&](std::uint64_t neighbours, std::ptrdiff_t dx, std::ptrdiff_t dy) {
            const std::uint64_t taken = blank & neighbours;
            if (taken == 0) return;
            blank &= ~taken;
            CopyColours(taken, word, y, dx, dy);
        };
        // The order decides which of several neighbours gives its colour.
        take(left(row), -1, 0);
        take(right(row), 1, 0);
        take(here(above), 0, -1);
        take(here(below), 0, 1);
        take(left(above), -1, -1);
        take(right(below), 1, 1);
        take(left(below), -1, 1);
        take(right(above), 1, -1);
        written.Row(y)[word] |= before & ~blank;
        return blank != before;
    }

    void CopyColours(std::uint64_t taken, std::size_t word, std::size_t y, std::ptrdiff_t dx,
                     std::ptrdiff_t dy) {
        const std::ptrdiff_t distance =
            dy * static_cast<std::ptrdiff_t>(picture.Stride) + dx * static_cast<std::ptrdiff_t>(pixelBytes);
        std::uint8_t* const first = Pixel(word * wordBits, y);
        for (; taken != 0; taken &= taken - 1) {
            std::uint8_t* const pixel = first + static_cast<std::size_t>(std::countr_zero(taken)) * pixelBytes;
            MColour colour = pixels::Load<MColour, Format>(pixel + distance);
            colour.a = 0;
            pixels::Store<Format>(pixel, colour);
        }
    }
};

} // namespace

void MPicture::BleedColours() {
    if (!IsValid()) return;
    pixels::WithFormat(Format, [&](auto constant) {
        if constexpr (pixels::channelCount<constant()> == 4) Bleeder<constant()>(*this).Run();
    });
}
