#include "formats/game/MGameFontExport.h"

#include "document/MSettings.h"
#include "foundation/MFolders.h"
#include "foundation/MSafeFile.h"
#include "foundation/MString.h"
#include "platform/MProgressDialog.h"

#include <algorithm>
#include <cstring>

namespace {

// The pictures of the pages that are drawn; MPicture itself frees nothing.
struct PagePicture {
    MPicture picture;

    PagePicture(std::int32_t width, std::int32_t height)
        : picture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), FormatRGBA8) {
        if (picture.IsValid()) std::memset(picture.Pixels, 0, std::size_t{picture.Stride} * picture.Height);
    }
    PagePicture(const PagePicture&) = delete;
    PagePicture& operator=(const PagePicture&) = delete;
    ~PagePicture() { picture.Free(); }
};

// What of a glyph its character shows, in pixels of the glyph's picture: the ink and the empty columns beside
// it.
struct Shown {
    std::int32_t left = 0;
    std::int32_t right = 0;
};

// Up to `room` empty columns of the cell on either side: those of the gap, which are clear for both neighbours.
Shown ShownColumns(const MGlyphDescription& glyph, std::int32_t room) {
    const std::int32_t right = glyph.Ink.Left + glyph.Ink.Width;
    return {glyph.Ink.Left - std::clamp(glyph.Ink.Left, 0, room),
            right + std::clamp(glyph.Width - right, 0, room)};
}

MBmChar CharOf(const MGlyphDescription& glyph, const MAtlasBox& box, std::int32_t bleed, std::int32_t room) {
    MBmChar c;
    c.Id = glyph.Character;
    c.XAdvance = glyph.Advance;
    if (glyph.Ink.IsEmpty()) return c;
    const Shown shown = ShownColumns(glyph, room);
    c.X = box.X + bleed - (glyph.Ink.Left - shown.left);
    c.Y = box.Y + bleed;
    c.Width = shown.right - shown.left;
    c.Height = glyph.Ink.Height;
    c.XOffset = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{glyph.Before} + shown.left, INT32_MIN, INT32_MAX));
    c.YOffset = glyph.Ink.Top;
    c.Page = box.Page;
    return c;
}

std::string PageName(const std::string& name, std::int32_t id, std::int32_t count) {
    // The binary form wants all names of one length.
    const std::size_t digits = std::to_string(count - 1).size();
    std::string number = std::to_string(id);
    number.insert(0, digits - number.size(), '0');
    return name + "_" + number + ".png";
}

// A page of its own, so that a font that was saved beside it keeps its picture of the same name.
void NamePages(MBmFont& file, const std::string& name, std::int32_t count) {
    for (std::int32_t id = 0; id < count; ++id)
        file.Pages.push_back({id, PageName(name, id, count)});
}

void AddPairs(MBmFont& file, const MFontDescription& font, const MGameEngine& engine) {
    file.Kernings.reserve(font.Pairs.size());
    for (const MKerningPair& pair : font.Pairs) {
        const std::int32_t amount = engine.KerningIsByte ? std::clamp(pair.Amount, -128, 127) : pair.Amount;
        file.Kernings.push_back(
            {static_cast<std::int32_t>(pair.Left), static_cast<std::int32_t>(pair.Right), amount});
    }
}

std::string WhyNotPacked(const MFontDescription& font, const MGameFontOptions& options) {
    const auto room = options.Page.Largest - 2 * std::max(options.Page.Gap, options.Bleed);
    for (const MGlyphDescription& glyph : font.Glyphs) {
        if (glyph.Ink.Width <= room && glyph.Ink.Height <= room) continue;
        return "the glyph of code " + std::to_string(glyph.Character) + " doesn't fit a page of " +
               std::to_string(options.Page.Largest) + " by " + std::to_string(options.Page.Largest) + " pixels";
    }
    return "the gap is as large as a page may be";
}

void CheckPages(MGameFontPlan& plan, const MGameEngine& engine, std::int32_t count) {
    const bool xmlOfOne = engine.XmlHasOnePage && plan.Form == MBmForm::Xml;
    const std::int32_t most = xmlOfOne ? 1 : engine.MostPages;
    if (count > 1 && engine.Name == "any")
        plan.Findings.push_back({&ruleManyPages, {}, std::to_string(count) + " pages"});
    if (count <= most) return;
    plan.Findings.push_back({&ruleOnePage, {}, std::to_string(count) + " pages"});
    plan.Reason = "the glyphs need " + std::to_string(count) + " pages, and " + std::string(engine.Title) +
                  " reads " + std::to_string(most) + ": allow larger ones, or make the glyphs smaller";
}

// Row `y` of a box on its page, from a row of its ink: repeated to both sides.
void CopyRow(const MPicture& page, const MAtlasBox& box, std::int32_t bleed, std::int32_t y,
             const MGlyphDescription& glyph, std::int32_t inkRow) {
    const MPicture& source = glyph.Glyph->Picture;
    const std::uint8_t* const from = source.PixelAddress(glyph.Ink.Left, glyph.Ink.Top + inkRow);
    std::uint8_t* const to = page.PixelAddress(box.X, y);
    constexpr std::size_t pixel = sizeof(MColour);
    const auto width = static_cast<std::size_t>(glyph.Ink.Width);
    for (std::int32_t i = 0; i < bleed; ++i) {
        std::memcpy(to + static_cast<std::size_t>(i) * pixel, from, pixel);
        std::memcpy(to + (static_cast<std::size_t>(bleed + i) + width) * pixel, from + (width - 1) * pixel,
                    pixel);
    }
    std::memcpy(to + static_cast<std::size_t>(bleed) * pixel, from, width * pixel);
}

void DrawGlyph(const MPicture& page, const MBmChar& c, const MGlyphDescription& glyph, std::int32_t bleed) {
    // The character's rectangle begins with the empty columns that it shows.
    const std::int32_t shownLeft = c.XOffset - glyph.Before;
    const MAtlasBox box{0, 0, c.X + glyph.Ink.Left - shownLeft - bleed, c.Y - bleed, 0};
    for (std::int32_t row = -bleed; row < glyph.Ink.Height + bleed; ++row)
        CopyRow(page, box, bleed, c.Y + row, glyph, std::clamp(row, 0, glyph.Ink.Height - 1));
}

// Beside its target.
MSafeFile WritePage(const MGameFontPlan& plan, const MBmPage& page, const MString& path) {
    PagePicture drawn(plan.File.Common.ScaleW, plan.File.Common.ScaleH);
    if (!drawn.picture.IsValid()) return MSafeFile::Failed(path, "there is no memory for it");
    for (std::size_t i = 0; i < plan.Glyphs.size(); ++i) {
        const MBmChar& c = plan.File.Chars[i];
        if (c.Page == page.Id && !plan.Glyphs[i]->Ink.IsEmpty())
            DrawGlyph(drawn.picture, c, *plan.Glyphs[i], plan.Bleed);
    }
    return drawn.picture.PrepareSave(path, FormatNone, MLinks::StayInFolder);
}

class Progress {
public:
    // Small fonts are written before a window could be read.
    Progress(const MGameFontPlan& plan, Desktop::WindowHandle owner) {
        constexpr std::int64_t worthTelling = 2048 * 2048;
        const MBmCommon& common = plan.File.Common;
        if (std::int64_t{common.ScaleW} * common.ScaleH * common.Pages < worthTelling) return;
        ProgressDialog.Configure(owner);
        ProgressDialog.Open();
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { ProgressDialog.Close(); }
};

} // namespace

MGameFontOptions GameFontOptions(const MSettings& settings) {
    const MGameFontChoices& choices = settings.GameFont;
    MGameFontOptions options;
    if (const MGameEngine* const engine = EngineNamed(ToSystem(choices.Engine))) options.Engine = engine;
    if (const MBmFormat* const format = BmFormatNamed(ToSystem(choices.Form))) options.Form = format->Form;
    options.Page.Size = choices.PageSize.Equals(u"free")  ? MPageSize::Free
                        : choices.PageSize.Equals(u"pot") ? MPageSize::PowerOfTwo
                                                          : MPageSize::Four;
    options.Page.Gap = std::clamp(choices.Gap, 0, LargestGameGap);
    options.Page.Largest = std::clamp(choices.Largest, SmallestGamePage, LargestGamePage);
    options.Bleed = std::clamp(choices.Bleed, 0, LargestGameGap);
    return options;
}

MGameFontPlan PlanGameFont(const MFontDescription& font, const MGameFontOptions& options,
                           const std::string& name) {
    const MGameEngine& engine = *options.Engine;
    MGameFontPlan plan;
    plan.Form = options.FormToWrite();
    plan.Bleed = options.Bleed;
    plan.Findings = CheckFont(font, {&engine, plan.Form, options.Page.Gap, options.Bleed, name});
    if (!engine.Forms.Has(plan.Form))
        plan.Reason = std::string(engine.Title) + " doesn't read the " + std::string(FormatOf(plan.Form).Name) +
                      " form; it reads " + FormNames(engine);
    if (font.Height < 1) plan.Reason = "the font's glyph height is below 1";
    if (std::ranges::none_of(font.Glyphs, [](const auto& glyph) { return glyph.Glyph != nullptr; }))
        plan.Reason = "the font has no glyphs";
    if (!plan.Reason.empty()) return plan;

    // What is repeated lies in the gap, which it may widen.
    MAtlasOptions packing = options.Page;
    packing.Gap = std::max(options.Page.Gap - 2 * options.Bleed, 0);
    const std::int32_t room = options.Bleed > 0 ? 0 : options.Page.Gap;
    std::vector<MAtlasBox> boxes;
    for (const MGlyphDescription& glyph : font.Glyphs) {
        const bool inked = !glyph.Ink.IsEmpty();
        boxes.push_back({inked ? glyph.Ink.Width + 2 * options.Bleed : 0,
                         inked ? glyph.Ink.Height + 2 * options.Bleed : 0, 0, 0, 0});
    }
    const auto pages = PackBoxes(boxes, packing);
    if (!pages) {
        plan.Reason = WhyNotPacked(font, options);
        return plan;
    }
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        plan.Glyphs.push_back(&font.Glyphs[i]);
        plan.File.Chars.push_back(CharOf(font.Glyphs[i], boxes[i], options.Bleed, room));
    }
    const std::string safe = SafeGameName(name);
    plan.File.Info.Face = safe;
    plan.File.Info.Size = font.Height;
    plan.File.Info.Spacing = {std::min(options.Page.Gap, 255), std::min(options.Page.Gap, 255)};
    MBmCommon& common = plan.File.Common;
    common.LineHeight = font.Height;
    common.Base = engine.BaseIsHeight ? font.Height : font.Height - std::clamp(font.Baseline, -0xFFFF, 0xFFFF);
    common.ScaleW = pages->Width;
    common.ScaleH = pages->Height;
    common.Pages = pages->Count;
    NamePages(plan.File, safe, pages->Count);
    AddPairs(plan.File, font, engine);
    CheckPages(plan, engine, pages->Count);
    // All forms are read with these bounds, here and elsewhere.
    if (const std::string reason = WhyNotBinary(plan.File); plan.Reason.empty()) plan.Reason = reason;
    return plan;
}

std::string GameFontName(const MString& path) {
    MString name = FileNameOf(path);
    const std::string text = ToSystem(name);
    return text.substr(0, text.rfind('.') == 0 ? text.size() : text.rfind('.'));
}

MString GameFontPath(const MString& path, MBmForm form) {
    if (!ExtensionOf(path).IsEmpty()) return path;
    return path + "." + FromSystem(FormatOf(form).Extension);
}

MString GamePagePath(const MString& path, const MBmPage& page) {
    const MString name = FromSystem(page.File);
    // A path without a folder is its own folder for MString.
    const bool bare = FileNameOf(path).Equals(path);
    return bare ? name : JoinPath(FolderOf(path), name);
}

std::vector<MString> GameFontPaths(const MGameFontPlan& plan, const MString& path) {
    std::vector<MString> paths{path};
    for (const MBmPage& page : plan.File.Pages)
        paths.push_back(GamePagePath(path, page));
    return paths;
}

std::string WriteGameFont(const MGameFontPlan& plan, const MString& path, Desktop::WindowHandle owner) {
    if (!plan.Reason.empty()) return plan.Reason;
    const Progress progress(plan, owner);
    const auto reason = [](const MWriteFailure& failure) {
        return ToSystem(failure.path) + " can't be written: " + ToSystem(failure.reason);
    };
    std::vector<MSafeFile> files;
    for (const MBmPage& page : plan.File.Pages) {
        ProgressDialog.Update(static_cast<float>(page.Id) / static_cast<float>(plan.File.Pages.size()),
                              "Exporting game font...");
        files.push_back(WritePage(plan, page, GamePagePath(path, page)));
    }
    const std::string text = FormatOf(plan.Form).Write(plan.File);
    files.emplace_back(path, MLinks::StayInFolder);
    files.back().WriteAt(0, text.data(), text.size());
    // All are complete on the disk before the first one takes its place.
    for (MSafeFile& file : files)
        if (!file.Finish()) return reason({file.Path(), file.Failure()});
    MWriteFailures failures;
    PlaceAll(files, &failures);
    return failures.empty() ? std::string() : reason(failures.front());
}
