// BleedColours: pixels that nobody sees still colour their neighbours where a picture is scaled or filtered
// later, so transparent pixels take on the colour of the visible ones beside them, ring by ring.
//
// What is coloured already is kept as one bit per pixel, which makes a ring a few shifts of 64 pixels at a
// time, and single pixels are touched only when they get their colour. A ring at one row depends on the ring
// before it at this row and the two beside it only, so several rings follow each other down the picture, each
// one row behind the last: then all of them find the same few rows in the cache.
#include "foundation/MMemory.h"
#include "imaging/MPicture.h"
#include "imaging/MPixelLayout.h"

#include <bit>
#include <limits>
#include <memory>
#include <utility>

namespace {

constexpr std::size_t wordBits = 64;
constexpr std::size_t ringsPerSweep = 32;

// One bit per pixel, with an empty word at both ends of a row and an empty row above and below, so that
// neighbours outside the picture need no test.
class Mask {
public:
    Mask(std::size_t width, std::size_t height)
        : rowWords((width + wordBits - 1) / wordBits + 2),
          words(AllocateArray<std::uint64_t>(rowWords * (height + 2),
                                             u"BleedColours: out of memory exception\n")) {
        if (words) std::fill_n(words.get(), rowWords * (height + 2), 0);
    }
    explicit operator bool() const { return words != nullptr; }
    // From -1 to `height`; so are the words in it.
    std::uint64_t* Row(std::ptrdiff_t y) {
        return words.get() + static_cast<std::size_t>(y + 1) * rowWords + 1;
    }

private:
    std::size_t rowWords;
    std::unique_ptr<std::uint64_t[]> words;
};

// The words of a row that a ring changed, both ends included.
struct WordRange {
    std::ptrdiff_t first = std::numeric_limits<std::ptrdiff_t>::max();
    std::ptrdiff_t last = -1;

    bool IsEmpty() const { return last < first; }
    void Add(const WordRange& other) {
        first = std::min(first, other.first);
        last = std::max(last, other.last);
    }
    void Add(std::ptrdiff_t word) { Add({word, word}); }
};

struct RowRings {
    WordRange latest;   // of the ring done last at this row
    WordRange previous; // and of the one before
};

template<MPixelFormat Format>
class Bleeder {
public:
    explicit Bleeder(MPicture& bled)
        : picture(bled), height(picture.Height), words((std::ptrdiff_t{picture.Width} + 63) / 64),
          now(picture.Width, picture.Height), before(picture.Width, picture.Height),
          rows(AllocateArray<RowRings>(std::size_t{picture.Height} + 2,
                                       u"BleedColours: out of memory exception\n")) {}

    void Run() {
        if (!now || !before || !rows) return;
        std::size_t rings = std::max(std::max(picture.Width, picture.Height) >> 6, 32U) + 1;
        MarkVisible(0);
        std::ptrdiff_t top = 0;
        std::ptrdiff_t bottom = height - 1;
        for (bool first = true; rings > 0; first = false) {
            const std::size_t count = std::min(rings, ringsPerSweep);
            const WordRange changed = Sweep(top, bottom, count, first);
            if (changed.IsEmpty()) return;
            const auto reach = static_cast<std::ptrdiff_t>(ringsPerSweep);
            top = std::max<std::ptrdiff_t>(changed.first - reach, 0);
            bottom = std::min(changed.last + reach, height - 1);
            rings -= count;
        }
    }

private:
    static constexpr std::size_t pixelBytes = pixels::bytesPerPixel<Format>;

    MPicture& picture;
    const std::ptrdiff_t height;
    const std::ptrdiff_t words;       // per row
    Mask now;                         // what is coloured, at each row after the last ring done there
    Mask before;                      // and without that ring
    std::unique_ptr<RowRings[]> rows; // one more above and below the picture

    RowRings& Rings(std::ptrdiff_t y) { return rows[static_cast<std::size_t>(y + 1)]; }

    std::uint8_t* Pixel(std::ptrdiff_t word, std::ptrdiff_t y) {
        return picture.Pixels + static_cast<std::size_t>(y) * picture.Stride +
               static_cast<std::size_t>(word) * wordBits * pixelBytes;
    }

    // `count` rings over the rows from `top` to `bottom`, beyond which nothing can change. The first sweep
    // marks the visible pixels on its way. The result is the range of rows that the last ring changed.
    WordRange Sweep(std::ptrdiff_t top, std::ptrdiff_t bottom, std::size_t count, bool first) {
        WordRange changed;
        const auto rings = static_cast<std::ptrdiff_t>(count);
        for (std::ptrdiff_t front = top; front < bottom + rings; ++front) {
            if (first) MarkVisible(front + 1);
            for (std::ptrdiff_t ring = std::max<std::ptrdiff_t>(front - bottom, 0);
                 ring < rings && ring <= front - top; ++ring) {
                ColourRow(front - ring);
                if (ring == rings - 1 && !Rings(front - ring).latest.IsEmpty()) changed.Add(front - ring);
            }
        }
        return changed;
    }

    void MarkVisible(std::ptrdiff_t y) {
        if (y >= height) return;
        for (std::ptrdiff_t word = 0; word < words; ++word) {
            const std::size_t left = picture.Width - static_cast<std::size_t>(word) * wordBits;
            const std::uint64_t bits = VisibleBits(Pixel(word, y), std::min(wordBits, left));
            now.Row(y)[word] = before.Row(y)[word] = bits;
            if (bits != 0) Rings(y).latest.Add(word);
        }
    }

    static std::uint64_t VisibleBits(const std::uint8_t* pixel, std::size_t count) {
        std::uint8_t alphas[wordBits] = {};
        for (std::size_t i = 0; i < count; ++i) {
            alphas[i] = pixels::ConvertChannel(
                pixels::LoadChannel<Format>(pixel + i * pixelBytes, pixels::Alpha), std::uint8_t{});
        }
        for (std::uint8_t& alpha : alphas)
            alpha = alpha != 0 ? 1 : 0;
        std::uint64_t bits = 0;
        for (std::size_t byte = 0; byte < wordBits / 8; ++byte) {
            std::uint64_t eight;
            std::memcpy(&eight, alphas + byte * 8, sizeof eight);
            // Gathers the lowest bit of each of the eight bytes in the highest byte of the product.
            bits |= (eight * 0x0102040810204080U >> 56) << (byte * 8);
        }
        return bits;
    }

    // The next ring at one row. The row above has it already, so that what counts there is the state before.
    void ColourRow(std::ptrdiff_t y) {
        RowRings& rings = Rings(y);
        WordRange near = Rings(y - 1).previous;
        near.Add(rings.latest);
        near.Add(Rings(y + 1).latest);
        if (!rings.latest.IsEmpty()) {
            std::copy(now.Row(y) + rings.latest.first, now.Row(y) + rings.latest.last + 1,
                      before.Row(y) + rings.latest.first);
        }
        rings.previous = std::exchange(rings.latest, {});
        const std::ptrdiff_t last = std::min(near.last + 1, words - 1);
        if (near.IsEmpty()) return;
        for (std::ptrdiff_t word = std::max<std::ptrdiff_t>(near.first - 1, 0); word <= last; ++word) {
            if (ColourWord(word, y)) rings.latest.Add(word);
        }
    }

    // Colours those of 64 pixels that are blank and have a coloured neighbour.
    bool ColourWord(std::ptrdiff_t word, std::ptrdiff_t y) {
        std::uint64_t* const row = now.Row(y) + word;
        std::uint64_t blank = ~row[0];
        if (word + 1 == words && picture.Width % wordBits != 0) {
            blank &= (std::uint64_t{1} << picture.Width % wordBits) - 1;
        }
        if (blank == 0) return false;
        const std::uint64_t* const here = before.Row(y) + word;
        const std::uint64_t* const above = before.Row(y - 1) + word;
        const std::uint64_t* const below = now.Row(y + 1) + word;
        const auto left = [](const std::uint64_t* bits) { return bits[0] << 1 | bits[-1] >> 63; };
        const auto right = [](const std::uint64_t* bits) { return bits[0] >> 1 | bits[1] << 63; };

        const std::uint64_t blankBefore = blank;
        const auto take = [&](std::uint64_t neighbours, std::ptrdiff_t dx, std::ptrdiff_t dy) {
            const std::uint64_t taken = blank & neighbours;
            if (taken == 0) return;
            blank &= ~taken;
            CopyColours(taken, Pixel(word, y), dx, dy);
        };
        // The order decides which of several neighbours gives its colour.
        take(left(here), -1, 0);
        take(right(here), 1, 0);
        take(above[0], 0, -1);
        take(below[0], 0, 1);
        take(left(above), -1, -1);
        take(right(below), 1, 1);
        take(left(below), -1, 1);
        take(right(above), 1, -1);
        row[0] |= blankBefore & ~blank;
        return blank != blankBefore;
    }

    void CopyColours(std::uint64_t taken, std::uint8_t* first, std::ptrdiff_t dx, std::ptrdiff_t dy) {
        const std::ptrdiff_t distance =
            dy * std::ptrdiff_t{picture.Stride} + dx * static_cast<std::ptrdiff_t>(pixelBytes);
        for (; taken != 0; taken &= taken - 1) {
            std::uint8_t* const pixel = first + static_cast<std::size_t>(std::countr_zero(taken)) * pixelBytes;
            CopyColour(pixel, pixel + distance);
        }
    }

    static void CopyColour(std::uint8_t* pixel, const std::uint8_t* neighbour) {
        if constexpr (Format == FormatRGBA8) {
            std::uint32_t colour;
            std::memcpy(&colour, neighbour, sizeof colour);
            colour &= 0x00FFFFFFU; // alpha is the highest byte
            std::memcpy(pixel, &colour, sizeof colour);
        } else {
            MColour colour = pixels::Load<MColour, Format>(neighbour);
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
