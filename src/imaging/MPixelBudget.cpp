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

constexpr std::uint64_t megabyte = 1 << 20;
// Each row costs a decoder some time, however short it is.
constexpr std::uint64_t shortestRow = 16;

std::uint64_t left = SparePixels;
std::uint64_t smallLeft = AllFreePixels;
bool ofFont = false;
MString refusal;
std::optional<std::uint64_t> limitedBytes; // of the file that is being decoded

MString Number(std::uint64_t value) {
    return MString(std::to_string(value).c_str());
}

// What a file of so many bytes may have before anything is taken from what all share.
std::uint64_t FreeFor(std::uint64_t bytes) {
    if (!ofFont) return bytes * FreePixelsPerByte;
    return bytes < megabyte ? FontPixels : bytes * FontPixelsPerByte;
}

// The most that one picture may have now.
std::uint64_t MostFor(std::uint64_t bytes) {
    const std::uint64_t most = FreeFor(bytes) + std::min(FreePixels, smallLeft) + left;
    return ofFont || bytes >= megabyte ? most : std::min(most, SparePixels);
}

} // namespace

void RestorePixelBudget() {
    left = SparePixels;
    smallLeft = AllFreePixels;
    refusal = MString();
}

bool TakePixels(std::uint64_t width, std::uint64_t height, std::uint64_t fileBytes, std::uint64_t weight) {
    constexpr std::uint64_t longest = std::numeric_limits<std::uint32_t>::max() / 2; // so that products fit
    if (width > longest || height > longest) return false;
    const std::uint64_t bytes = std::min(fileBytes, longest);
    const std::uint64_t pixels = std::max(width, shortestRow) * height * weight;
    const std::uint64_t most = MostFor(bytes);
    if (pixels > most) {
        refusal = "its " + Number(width) + " x " + Number(height) +
                  " pixels are more than a glyph could need: of " + SizeText(static_cast<std::int64_t>(bytes)) +
                  ", " + Number(most / weight) + " pixels are read";
        DebugOutput((refusal + "\n").View());
        return false;
    }
    const std::uint64_t beyond = pixels - std::min(pixels, FreeFor(bytes));
    const std::uint64_t small = std::min({beyond, FreePixels, smallLeft});
    smallLeft -= small;
    left -= beyond - small;
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

bool IsWithinPixelLimit(std::uint64_t width, std::uint64_t height, std::uint64_t weight) {
    return !limitedBytes || TakePixels(width, height, *limitedBytes, weight);
}

MString TakePixelRefusal() {
    return std::exchange(refusal, MString());
}
