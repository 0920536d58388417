#include "imaging/MPixelBudget.h"

#include "foundation/MDebug.h"
#include "foundation/MFolders.h"
#include "foundation/MNumbers.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace {

std::uint64_t left = SparePixels;
bool ofFont = false;
MString refusal;
std::optional<std::uint64_t> limitedBytes; // of the file that is being decoded

MString Number(std::uint64_t value) {
    return MString(std::to_string(value).c_str());
}

std::uint64_t FreeFor(std::uint64_t bytes) {
    constexpr std::uint64_t megabyte = 1 << 20;
    if (!ofFont) return FreePixels + bytes * FreePixelsPerByte;
    return bytes < megabyte ? FontPixels : bytes * FontPixelsPerByte;
}

} // namespace

void RestorePixelBudget() {
    left = SparePixels;
    refusal = MString();
}

bool TakePixels(std::uint64_t width, std::uint64_t height, std::uint64_t fileBytes) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max(); // a product of two fits then
    if (width > most || height > most) return false;
    const std::uint64_t free = FreeFor(std::min(fileBytes, most));
    const std::uint64_t cost = width * height - std::min(width * height, free);
    if (cost > left) {
        refusal = "its " + Number(width) + " x " + Number(height) +
                  " pixels are more than a glyph could need: of " +
                  SizeText(static_cast<std::int64_t>(std::min(fileBytes, most))) + ", " + Number(free + left) +
                  " pixels are read";
        DebugOutput((refusal + "\n").View());
        return false;
    }
    left -= cost;
    return true;
}

bool TakeSparePixels(std::uint64_t count) {
    if (count > left) return false;
    left -= count;
    return true;
}

MPixelLimit::MPixelLimit(std::uint64_t fileBytes) {
    limitedBytes = fileBytes;
}

MPixelLimit::~MPixelLimit() {
    limitedBytes.reset();
}

MFontPictureScope::MFontPictureScope() {
    ofFont = true;
}

MFontPictureScope::~MFontPictureScope() {
    ofFont = false;
}

bool IsWithinPixelLimit(std::uint64_t width, std::uint64_t height) {
    return !limitedBytes || TakePixels(width, height, *limitedBytes);
}

MString TakePixelRefusal() {
    return std::exchange(refusal, MString());
}
