#include "editors/MExportGameFont.h"

#include "document/MSettings.h"
#include "editors/FieldText.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<const char*, 3> pageSizeNames{"Any", "Multiples of 4", "Powers of two"};
constexpr std::array<const char*, 3> pageSizeWords{"free", "four", "pot"};

std::int32_t Limited(const MString& text, std::int32_t low, std::int32_t high) {
    return std::clamp(FieldNumber(text), low, high);
}

// Of the pages, as far as glyphs cover it.
std::int64_t FilledPercent(const MGameFontPlan& plan) {
    const MBmCommon& common = plan.File.Common;
    std::int64_t filled = 0;
    for (const MGlyphDescription* const glyph : plan.Glyphs)
        filled += std::int64_t{glyph->Ink.Width} * glyph->Ink.Height;
    return 100 * filled / (std::int64_t{common.ScaleW} * common.ScaleH * common.Pages);
}

MString Number(std::int64_t number) {
    return MString(static_cast<std::int32_t>(number));
}

} // namespace

MExportGameFont::MExportGameFont(const MColourFont& font)
    : description(DescribeFont(font, Settings->GlyphHeight)), options(GameFontOptions(*Settings)) {
    for (const MGameEngine& engine : gameEngines)
        Engines.push_back(FromSystem(engine.Title));
    for (const char* const name : pageSizeNames)
        PageSizes.emplace_back(name);
    Engine = static_cast<std::int32_t>(options.Engine - gameEngines.data());
    PageSize = static_cast<std::int32_t>(options.Page.Size);
    Gap = MString(options.Page.Gap);
    Bleed = MString(options.Bleed);
    Largest = MString(options.Page.Largest);
    FillForms();
    Update();
}

void MExportGameFont::FillForms() {
    if (!options.Form || !options.Engine->Forms.Has(*options.Form)) options.Form = options.Engine->First;
    Forms.clear();
    for (const MBmFormat& format : BmFormats()) {
        if (!options.Engine->Forms.Has(format.Form)) continue;
        if (format.Form == *options.Form) Form = static_cast<std::int32_t>(Forms.size());
        Forms.push_back(FromSystem(format.Name));
    }
}

void MExportGameFont::ChangeEngine(std::int32_t place) {
    if (place < 0 || static_cast<std::size_t>(place) >= gameEngines.size()) return;
    Engine = place;
    options.Engine = &gameEngines[static_cast<std::size_t>(place)];
    FillForms();
    Update();
}

void MExportGameFont::ChangeForm(std::int32_t place) {
    if (place < 0 || static_cast<std::size_t>(place) >= Forms.size()) return;
    Form = place;
    options.Form = BmFormatNamed(ToSystem(Forms[static_cast<std::size_t>(place)]))->Form;
    Update();
}

void MExportGameFont::ChangePageSize(std::int32_t place) {
    if (place < 0 || static_cast<std::size_t>(place) >= PageSizes.size()) return;
    PageSize = place;
    options.Page.Size = static_cast<MPageSize>(place);
    Update();
}

void MExportGameFont::ChangeNumbers() {
    options.Page.Gap = Limited(Gap, 0, LargestGameGap);
    options.Bleed = Limited(Bleed, 0, LargestGameGap);
    options.Page.Largest = Limited(Largest, SmallestGamePage, LargestGamePage);
    Update();
}

MString MExportGameFont::SummaryOf(const MGameFontPlan& plan) const {
    const MBmCommon& common = plan.File.Common;
    const auto size = static_cast<std::int64_t>(FormatOf(plan.Form).Write(plan.File).size());
    return FromSystem(FormatOf(plan.Form).Name) + ", " + SizeText(size) + "; " + Number(common.Pages) +
           (common.Pages == 1 ? " page of " : " pages of ") + Number(common.ScaleW) + " x " +
           Number(common.ScaleH) + " pixels, " + Number(FilledPercent(plan)) + " % of it filled";
}

void MExportGameFont::Update() {
    // Without a name, which is chosen later: what it needs is told when the font is written.
    MGameFontPlan plan = PlanGameFont(description, options, {});
    CanExport = plan.Reason.empty();
    Summary = CanExport ? SummaryOf(plan) : "Nothing can be written: " + FromSystem(plan.Reason);
    std::stable_partition(plan.Findings.begin(), plan.Findings.end(),
                          [](const MGameFinding& finding) { return !finding.Rule->Repaired; });
    Findings = MString();
    for (const std::string& line : FindingLines(plan.Findings))
        Findings += (Findings.IsEmpty() ? "" : "\n") + FromSystem(line);
    if (Findings.IsEmpty()) Findings = "The engine takes the font as it is.";
}

void MExportGameFont::Accept() const {
    MGameFontChoices& choices = Settings->GameFont;
    choices.Engine = FromSystem(options.Engine->Name);
    choices.Form = Forms[static_cast<std::size_t>(Form)];
    choices.PageSize = pageSizeWords[static_cast<std::size_t>(PageSize)];
    choices.Gap = options.Page.Gap;
    choices.Bleed = options.Bleed;
    choices.Largest = options.Page.Largest;
}
