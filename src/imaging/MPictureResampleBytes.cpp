// The box filter for format 7, the format of all glyphs. All sums are integers that a float holds exactly, so
// they may be made in any order: the rows of a square are added up once for each source column, and columns
// then for each new pixel. The loops are flat and without branches, for the compiler to widen.
#include "foundation/MMemory.h"
#include "imaging/MPictureResample.h"
#include "imaging/MPixelLayout.h"

#include <array>
#include <memory>
#include <type_traits>

namespace {

constexpr std::size_t channels = 4;

template<typename Element>
class Buffer {
public:
    explicit Buffer(std::size_t count)
        : block(AllocateArray<Element>(count, u"MPicture: out of memory exception\n")) {}
    explicit operator bool() const { return block != nullptr; }
    Element* Data() const { return block.get(); }

private:
    std::unique_ptr<Element[]> block;
};

// The four channels of one sum, or of the numbers that it is multiplied by.
template<typename Number>
using Quad = std::array<Number, channels>;

// N is the number of samples along one side of the square; 0 stands for any above 4, known at run time.
template<bool ToAlpha, std::size_t N>
class ByteScaler {
public:
    ByteScaler(const MPicture& scaled, MPicture& result, std::uint32_t samplesPerSide)
        : source(scaled), target(result), samples(N != 0 ? N : samplesPerSide), firsts(target.Width),
          columnSums(source.Width), columnHidden(source.Width), sums(target.Width), divisors(target.Width),
          means(target.Width) {}

    void Run() {
        if (!firsts || !columnSums || !columnHidden || !sums || !divisors || !means) return target.Free();
        PlanColumns();
        SampleSpan summed{0, 0, 0};
        for (std::uint32_t y = 0; y < target.Height; ++y) {
            const SampleSpan rows = SpanOf(y, source.Height, target.Height, samples);
            if (rows.first != summed.first || rows.count != summed.count) AddUpRows(rows);
            summed = rows;
            AddUpColumns(rows.count);
            // Means of format 7 are the new row itself.
            std::uint8_t* const row = target.Pixels + std::size_t{y} * target.Stride;
            const bool inPlace = target.Format == FormatRGBA8;
            TakeMeans(inPlace ? row : reinterpret_cast<std::uint8_t*>(means.Data()));
            if (!inPlace) StoreMeans(row);
        }
    }

private:
    // Sums over a square of up to 4 by 4 bytes, and what they are divided by, need 16 bits; larger ones 18.
    using Number = std::conditional_t<N != 0, std::uint16_t, std::uint32_t>;

    const MPicture& source;
    MPicture& target;
    const std::uint32_t samples;
    std::size_t wholeSquares = 0; // new pixels whose square does not reach past the right edge
    std::size_t columnStep = 1;
    Buffer<std::uint32_t> firsts;           // the first source column of each new pixel
    Buffer<Quad<std::uint16_t>> columnSums; // of each source column, over the rows of the square
    Buffer<std::uint32_t> columnHidden;     // how many of those pixels are transparent
    Buffer<Quad<Number>> sums;              // of each new pixel
    Buffer<Quad<Number>> divisors;
    Buffer<MColour> means;
    std::array<Quad<Number>, mostSamples * mostSamples + 1> byHidden{}; // divisors for a whole square

    void PlanColumns() {
        for (std::uint32_t x = 0; x < target.Width; ++x) {
            const SampleSpan columns = SpanOf(x, source.Width, target.Width, samples);
            firsts.Data()[x] = static_cast<std::uint32_t>(columns.first);
            columnStep = columns.step;
            if (columns.count == samples) wholeSquares = x + 1;
        }
    }

    // Two rows at a time, so that the sums are read and written half as often.
    void AddUpRows(const SampleSpan& rows) {
        const auto row = [&](std::size_t j) {
            return source.Pixels + (rows.first + j * rows.step) * source.Stride;
        };
        const bool odd = rows.count % 2 != 0;
        if (odd) AddRows<true, 1>({row(0)});
        for (std::size_t j = odd ? 1 : 0; j < rows.count; j += 2) {
            j == 0 ? AddRows<true, 2>({row(0), row(1)}) : AddRows<false, 2>({row(j), row(j + 1)});
        }
    }

    template<bool First, std::size_t Rows>
    void AddRows(const std::array<const std::uint8_t*, Rows>& rows) {
        constexpr std::size_t piece = 512; // stays in the nearest cache
        for (std::size_t start = 0; start < source.Width; start += piece) {
            const std::size_t count = std::min<std::size_t>(piece, source.Width - start);
            std::array<std::array<std::uint8_t, piece * channels>, Rows> visible;
            std::uint32_t* const hidden = columnHidden.Data() + start;
            for (std::size_t x = 0; x < count; ++x) {
                std::uint32_t hiddenHere = First ? 0 : hidden[x];
                for (std::size_t j = 0; j < Rows; ++j) {
                    std::uint32_t pixel;
                    std::memcpy(&pixel, rows[j] + (start + x) * channels, channels);
                    const std::uint32_t isHidden = ToAlpha && pixel >> 24 == 0 ? 1 : 0;
                    pixel = isHidden != 0 ? 0 : pixel;
                    std::memcpy(visible[j].data() + x * channels, &pixel, channels);
                    hiddenHere += isHidden;
                }
                hidden[x] = hiddenHere;
            }
            std::uint16_t* const added = columnSums.Data()[start].data();
            for (std::size_t i = 0; i < count * channels; ++i) {
                std::uint32_t sum = First ? 0 : added[i];
                for (std::size_t j = 0; j < Rows; ++j)
                    sum += visible[j][i];
                added[i] = static_cast<std::uint16_t>(sum);
            }
        }
    }

    void AddUpColumns(std::size_t rowCount) {
        const std::size_t all = rowCount * samples;
        for (std::size_t hidden = 0; hidden <= all; ++hidden)
            byHidden[hidden] = DivisorsFor(all, hidden);
        const std::size_t whole = wholeSquares;
        const std::size_t columns = N != 0 ? N : samples;
        const std::size_t step = columnStep;
        const std::uint32_t* const first = firsts.Data();
        const std::uint32_t* const hidden = columnHidden.Data();
        const Quad<std::uint16_t>* const columnSum = columnSums.Data();
        Quad<Number>* const sum = sums.Data();
        Quad<Number>* const divisor = divisors.Data();
        for (std::size_t x = 0; x < whole; ++x) {
            std::uint32_t hiddenHere = 0;
            for (std::size_t i = 0; i < columns; ++i)
                hiddenHere += hidden[first[x] + i * step];
            sum[x] = SumOf(columnSum + first[x], columns, step);
            divisor[x] = byHidden[hiddenHere];
        }
        for (std::size_t x = whole; x < target.Width; ++x) {
            const std::size_t fewer = source.Width - first[x];
            std::uint32_t hiddenHere = 0;
            for (std::size_t i = 0; i < fewer; ++i)
                hiddenHere += hidden[first[x] + i];
            sum[x] = SumOf(columnSum + first[x], fewer, 1);
            divisor[x] = DivisorsFor(fewer * rowCount, hiddenHere);
        }
    }

    static Quad<Number> SumOf(const Quad<std::uint16_t>* columns, std::size_t count, std::size_t step) {
        if constexpr (N != 0) {
            // Four sums at once in one word: none reaches its neighbour.
            std::uint64_t sum = 0;
            for (std::size_t i = 0; i < count; ++i)
                sum += std::bit_cast<std::uint64_t>(columns[i * step]);
            return std::bit_cast<Quad<Number>>(sum);
        } else {
            Quad<Number> sum{};
            for (std::size_t i = 0; i < count; ++i) {
                for (std::size_t c = 0; c < channels; ++c)
                    sum[c] += columns[i * step][c];
            }
            return sum;
        }
    }

    static constexpr std::uint64_t one = N != 0 ? 0xFFFF : 0xFFFFFFFF;

    // Of `all` samples only the visible ones count for the colours. Without any, everything becomes 0.
    static Quad<Number> DivisorsFor(std::size_t all, std::size_t hidden) {
        if (hidden == all) return {};
        const auto perColour = static_cast<Number>(one / (all - hidden));
        return {perColour, perColour, perColour, static_cast<Number>(one / all)};
    }

    // sum / count in whole numbers, as (sum + 1) * (one / count) in the upper half of the product. With sums up
    // to 255 * count that is exact for counts to 16 in 16 bits, and to 1024 in 32: one unit is added to the
    // sum, and the rounded divisor takes away less than that and more than nothing.
    void TakeMeans(std::uint8_t* mean) const {
        const std::size_t count = target.Width * channels;
        const Number* const sum = sums.Data()->data();
        const Number* const divisor = divisors.Data()->data();
        for (std::size_t i = 0; i < count; ++i) {
            if constexpr (N != 0) {
                const auto increased = static_cast<std::uint16_t>(sum[i] + 1);
                mean[i] = static_cast<std::uint8_t>(std::uint32_t{increased} * divisor[i] >> 16);
            } else {
                mean[i] = static_cast<std::uint8_t>((std::uint64_t{sum[i]} + 1) * divisor[i] >> 32);
            }
        }
    }

    void StoreMeans(std::uint8_t* row) const {
        pixels::WithFormat(target.Format, [&](auto constant) {
            constexpr MPixelFormat to = constant();
            for (std::size_t x = 0; x < target.Width; ++x) {
                pixels::Store<to>(row + x * pixels::bytesPerPixel<to>, means.Data()[x]);
            }
        });
    }
};

template<bool ToAlpha>
void Scale(const MPicture& source, MPicture& target, std::uint32_t samples) {
    switch (samples) {
    case 2: return ByteScaler<ToAlpha, 2>(source, target, samples).Run();
    case 3: return ByteScaler<ToAlpha, 3>(source, target, samples).Run();
    case 4: return ByteScaler<ToAlpha, 4>(source, target, samples).Run();
    default: return ByteScaler<ToAlpha, 0>(source, target, samples).Run();
    }
}

} // namespace

void ScaleBytes(const MPicture& source, MPicture& target, std::uint32_t samples) {
    HasAlpha(target.Format) ? Scale<true>(source, target, samples) : Scale<false>(source, target, samples);
}
