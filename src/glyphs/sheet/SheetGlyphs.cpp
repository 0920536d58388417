// From the boxes of a sheet to the glyphs of a font.

#include "document/MSettings.h"
#include "glyphs/SheetCutter.h"
#include "glyphs/sheet/SheetLetter.h"
#include "glyphs/sheet/WorkingPicture.h"
#include "platform/MLongWork.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

namespace {

constexpr double naturalGap = 0.35;  // of the cap height: wider ones are no letter distances
constexpr double proposedGap = 0.12; // then this one

std::int32_t Round(double value) {
    return static_cast<std::int32_t>(std::lround(std::clamp(value, -1e9, 1e9)));
}

// A letter in the pixels of the sheet.
struct Cut {
    MSheetLetter letter;
    char16_t character = 0;
    std::int32_t over = 0;  // rows from its top to the base line
    std::int32_t under = 0; // and from there to its end; negative if it ends above
    double before = 0;      // the room it gets
    double after = 0;
};

// What frees the pictures of the letters again.
struct Cuts {
    std::vector<Cut> all;
    Cuts() = default;
    Cuts(const Cuts&) = delete;
    Cuts& operator=(const Cuts&) = delete;
    ~Cuts() {
        for (Cut& cut : all)
            cut.letter.picture.Free();
    }
};

double CapHeightOf(const MSheet& sheet, double letterHeight) {
    return sheet.capHeight >= 1 ? sheet.capHeight : letterHeight;
}

// Half the way to each neighbour, so that the letters stand as they did; or all the same room, where the
// sheet's distances are no letter distances.
void ProposeSpacing(const MSheet& sheet, const std::vector<std::size_t>& boxes, std::vector<Cut>& cuts,
                    double capHeight) {
    std::vector<double> gaps(boxes.size(), 1e9); // from each one to the next
    std::vector<double> sorted;
    for (std::size_t i = 0; i + 1 < boxes.size(); ++i) {
        if (sheet.boxes[boxes[i]].line != sheet.boxes[boxes[i + 1]].line) continue;
        gaps[i] =
            cuts[i + 1].letter.left - cuts[i].letter.left - static_cast<double>(cuts[i].letter.picture.Width);
        sorted.push_back(gaps[i]);
    }
    std::ranges::sort(sorted);
    const double median = sorted.empty() ? 1e9 : sorted[sorted.size() / 2];
    const bool natural = !sheet.grid && median <= naturalGap * capHeight;
    const double usual = natural ? std::max(median, 0.0) : std::max(1.0, std::round(proposedGap * capHeight));
    const auto room = [&](double gap) {
        return natural && gap <= std::max(naturalGap * capHeight, 2 * usual) ? gap : usual;
    };
    for (std::size_t i = 0; i < cuts.size(); ++i) {
        cuts[i].before = std::floor(room(i > 0 ? gaps[i - 1] : 1e9) / 2);
        cuts[i].after = std::ceil(room(gaps[i]) / 2);
    }
}

// Of a grid the cell is kept around the letter.
void WidenToCell(const MSheet& sheet, const MSheetBox& box, Cut& cut) {
    const std::int32_t cell = box.box.left / sheet.grid->width * sheet.grid->width;
    cut.before = cut.letter.left - cell;
    cut.after = cell + sheet.grid->width - cut.letter.left - static_cast<double>(cut.letter.picture.Width);
}

// The letters' measures in the font's pixels.
struct Frame {
    double scale = 1;
    std::int32_t height = 0;   // of the glyphs
    std::int32_t baseline = 0; // rows below it
    std::int32_t capHeight = 0;
};

Frame FrameOf(const MColourFont& font, bool isNew, std::int32_t over, std::int32_t under, double capHeight) {
    Frame frame;
    const std::int32_t natural = std::max(over + under, 1);
    if (isNew) {
        if (natural > LargestGlyphHeight) frame.scale = static_cast<double>(LargestGlyphHeight) / natural;
        frame.height = frame.scale < 1 ? LargestGlyphHeight : std::max(natural, SmallestGlyphHeight);
        frame.baseline = Round(under * frame.scale);
        frame.capHeight = Round(capHeight * frame.scale);
        return frame;
    }
    frame.height = Settings->GlyphHeight;
    if (font.CapHeight > 0 && font.Baseline >= 0) {
        frame.baseline = font.Baseline;
        frame.capHeight = font.CapHeight;
        frame.scale = font.CapHeight / capHeight;
        if (over * frame.scale > frame.height - frame.baseline)
            frame.scale = static_cast<double>(frame.height - frame.baseline) / over;
        if (under > 0 && under * frame.scale > frame.baseline)
            frame.scale = static_cast<double>(frame.baseline) / under;
        if (frame.scale > 0) return frame;
    }
    frame.scale = static_cast<double>(frame.height) / natural;
    frame.baseline = Round(under * frame.scale);
    frame.capHeight = Round(capHeight * frame.scale);
    return frame;
}

// The letter on a picture as high as the glyphs; null without memory.
std::unique_ptr<MGlyph> MakeGlyph(const Cut& cut, const Frame& frame, const MSheetSpacing& spacing) {
    MPicture picture = cut.letter.picture;
    MPicture scaled;
    std::int32_t over = cut.over;
    if (frame.scale != 1) {
        const auto side = [&](std::uint32_t length) {
            return static_cast<std::uint32_t>(std::max(1, Round(length * frame.scale)));
        };
        scaled = MPicture(picture, side(picture.Width), side(picture.Height), FormatRGBA8, true, false);
        if (!scaled.IsValid()) return nullptr;
        picture = scaled;
        over = Round(cut.over * frame.scale);
    }
    const bool given = spacing.before != 0 || spacing.after != 0;
    const std::int32_t before = given ? spacing.before : Round(cut.before * frame.scale);
    const std::int32_t after = given ? spacing.after : Round(cut.after * frame.scale);
    auto glyph = std::make_unique<MGlyph>(cut.character, static_cast<std::int32_t>(picture.Width), frame.height,
                                          before, after, true);
    if (glyph->Picture.IsValid()) {
        const std::int32_t top = frame.height - frame.baseline - over;
        for (std::int32_t y = std::max(0, -top);
             y < std::min<std::int32_t>(static_cast<std::int32_t>(picture.Height), frame.height - top); ++y)
            std::memcpy(glyph->Picture.PixelAddress(0, top + y), picture.PixelAddress(0, y), picture.Stride);
    } else {
        glyph.reset();
    }
    scaled.Free();
    return glyph;
}

} // namespace

std::string AddSheetGlyphs(MColourFont& font, bool isNew, const MSheet& sheet, const MPicture& sheetPicture,
                           const MSheetSpacing& spacing) {
    if (!sheet.problem.empty()) return sheet.problem;
    Cuts cuts;
    std::vector<std::size_t> boxes;
    {
        const WorkingPicture working(sheetPicture);
        const MPicture& picture = working.view;
        if (!picture.IsValid()) return "there is not enough memory for the sheet";
        MLongWork work(font.Owner, "Cutting letters...", std::uint64_t{picture.Width} * picture.Height);
        for (std::size_t i = 0; i < sheet.boxes.size(); ++i) {
            work.At(i, sheet.boxes.size());
            const MSheetBox& box = sheet.boxes[i];
            if (box.leftOut || box.character < FirstCharacter) continue;
            Cut cut;
            cut.character = box.character;
            cut.letter = TakeSheetLetter(sheet, picture, i);
            if (!cut.letter.picture.IsValid()) continue;
            const double middle = cut.letter.left + cut.letter.picture.Width / 2.0;
            const std::int32_t base = Round(sheet.lines[box.line].Base(middle));
            cut.over = base - cut.letter.top;
            cut.under = static_cast<std::int32_t>(cut.letter.picture.Height) - cut.over;
            cuts.all.push_back(std::move(cut));
            boxes.push_back(i);
        }
    }
    if (cuts.all.empty()) return "no box of the sheet has a character";
    std::int32_t over = 1;
    std::int32_t under = 0;
    for (const Cut& cut : cuts.all) {
        over = std::max(over, cut.over);
        under = std::max(under, cut.under);
    }
    const double capHeight = CapHeightOf(sheet, over);
    if (sheet.grid) {
        // All of the cell; rows of cells whose base lines differ in it keep the highest and the lowest.
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            const MSheetBox& box = sheet.boxes[boxes[i]];
            const std::int32_t cell = box.box.top / sheet.grid->height * sheet.grid->height;
            const std::int32_t base = Round(sheet.lines[box.line].Base(0)) - cell;
            over = std::max(over, base);
            under = std::max(under, sheet.grid->height - base);
        }
    }
    ProposeSpacing(sheet, boxes, cuts.all, capHeight);
    if (sheet.grid && !spacing.trim)
        for (std::size_t i = 0; i < boxes.size(); ++i)
            WidenToCell(sheet, sheet.boxes[boxes[i]], cuts.all[i]);
    const Frame frame = FrameOf(font, isNew, over, under, capHeight);
    std::vector<std::unique_ptr<MGlyph>> glyphs;
    std::size_t more = static_cast<std::size_t>(font.GlyphCount());
    for (const Cut& cut : cuts.all) {
        glyphs.push_back(MakeGlyph(cut, frame, spacing));
        if (!glyphs.back()) return "there is not enough memory for the glyphs";
        if (!font.GetGlyph(cut.character)) ++more;
    }
    if (more > MColourFont::SlotCount) return "the font would have more than 223 glyphs";
    if (isNew) {
        Settings->GlyphHeight = frame.height;
        font.SetGlyphHeight(frame.height);
    }
    if (isNew || font.CapHeight == 0) {
        font.Baseline = frame.baseline;
        font.CapHeight = frame.capHeight;
    }
    for (auto& glyph : glyphs)
        font.Glyphs[static_cast<std::size_t>(font.ClaimSlot(glyph->Character))] = std::move(glyph);
    font.SortGlyphs();
    return {};
}
