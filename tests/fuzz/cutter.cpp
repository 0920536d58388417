// Any numbers as glyphs of a picture: its size and format, the factors, then a record for each 28 bytes.
#include "document/MSettings.h"
#include "formats/MGlyphCutter.h"
#include "imaging/MPixelBudget.h"

#include <cstring>

namespace {

template<typename Value>
Value Take(std::span<const std::uint8_t>& bytes) {
    Value value{};
    const std::size_t count = std::min(sizeof value, bytes.size());
    std::memcpy(&value, bytes.data(), count);
    bytes = bytes.subspan(count);
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 12) return 0;
    std::span bytes(data, size);
    SetMemoryLimit(std::size_t{16} << 20); // large glyphs are slow under the fuzzer, and no different
    RestorePixelBudget();
    const std::uint32_t width = Take<std::uint8_t>(bytes) % 64 + 1U;
    const std::uint32_t height = Take<std::uint8_t>(bytes) % 64 + 1U;
    MPicture picture(width, height, Take<std::uint8_t>(bytes) % 9 + 1);
    std::memset(picture.Pixels, 0x5A, std::size_t{picture.Stride} * picture.Height);
    MSettings settings;
    Settings = &settings;
    MColourFont font(nullptr);
    MGlyphCutter cutter(picture);
    if (Take<std::uint8_t>(bytes) % 2 == 1) {
        cutter.horizontalScale = Take<float>(bytes);
        cutter.verticalScale = Take<float>(bytes);
    }
    while (!bytes.empty()) {
        MGlyphRecord record{};
        record.character = Take<std::uint16_t>(bytes);
        for (std::int32_t* number : {&record.x, &record.y})
            *number = Take<std::int32_t>(bytes);
        // Mostly of sizes that a picture can have.
        const auto shift = Take<std::uint8_t>(bytes) % 32;
        for (std::int32_t* number : {&record.width, &record.height})
            *number = Take<std::int32_t>(bytes) >> shift;
        for (std::int32_t* number : {&record.spacingBefore, &record.spacingAfter})
            *number = Take<std::int32_t>(bytes);
        cutter.Cut(font, record);
    }
    picture.Free();
    font.Repack();
    font.Clear();
    Settings = nullptr;
    return 0;
}
