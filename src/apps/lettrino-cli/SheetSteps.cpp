#include "apps/lettrino-cli/SheetSteps.h"

#include "apps/lettrino-cli/Words.h"
#include "foundation/MFolders.h"
#include "foundation/MUtf8.h"
#include "glyphs/sheet/SheetPhoto.h"
#include "imaging/MPixelBudget.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::int32_t largestCell = 4096;

constexpr const char* noText = "it is no text file of at most 1 MB";

MString TextOf(const Run& run) {
    if (!run.choices.sheetText.IsEmpty()) return run.choices.sheetText;
    std::u16string selected;
    for (std::size_t code = 33; code < run.choices.settings.Selected.size(); ++code)
        if (run.choices.settings.Selected[code]) selected.push_back(static_cast<char16_t>(code));
    return MString(selected);
}

StepResult WriteReport(const MSheet& sheet, const MPicture& picture, const std::string& file) {
    MPicture report = DrawSheetReport(sheet, picture);
    if (!report.IsValid()) return StepFailure{file, "there is not enough memory for the report"};
    const bool written = report.Save(FullPath(FromSystem(file)));
    report.Free();
    if (written) return {};
    return StepFailure{file, "it can't be written"};
}

void TellDoubts(const MSheet& sheet) {
    std::u16string doubtful;
    for (const MSheetBox& box : sheet.boxes)
        if (box.doubtful && !box.leftOut) doubtful.push_back(box.character);
    if (doubtful.empty()) return;
    std::fprintf(stderr, "lettrino-cli: --sheet: note: look at these, which may be cut or named wrongly: %s\n",
                 ToSystem(MString(doubtful)).c_str());
}

StepResult Cut(Run& run, const std::string& file, const MPicture& picture) {
    run.choices.sheet =
        std::make_shared<MSheet>(FindSheetLetters(picture, TextOf(run), run.choices.sheetWishes));
    run.choices.sheetFile = ToSystem(FullPath(FromSystem(file)));
    StepResult reported;
    if (!run.choices.sheetReport.empty())
        reported = WriteReport(*run.choices.sheet, picture, run.choices.sheetReport);
    run.choices.sheetReport.clear();
    if (!run.choices.sheet->problem.empty()) return StepFailure{file, run.choices.sheet->problem};
    if (reported) return reported;
    const bool isNew = !run.font || run.font->GlyphCount() == 0;
    const MSheetSpacing spacing{run.choices.settings.SpacingBefore, run.choices.settings.SpacingAfter,
                                run.choices.settings.Trim};
    MColourFont& font = run.FontOrNew();
    const std::string failure = AddSheetGlyphs(font, isNew, *run.choices.sheet, picture, spacing);
    if (!failure.empty()) return StepFailure{file, failure};
    TellDoubts(*run.choices.sheet);
    if (font.Repack()) return {};
    return StepFailure{file, "the glyphs don't fit a picture that memory can hold"};
}

} // namespace

std::optional<std::string> FileOfText(const std::string& argument) {
    if (!argument.starts_with('@') || argument.starts_with("@@") || argument.size() < 2) return std::nullopt;
    return argument.substr(1);
}

std::optional<StepAction> PrepareSelectText(StepArguments arguments) {
    return [file = arguments[0]](Run& run) -> StepResult {
        const auto text = ReadSmallText(file);
        if (!text) return StepFailure{file, noText};
        Selection selected{};
        const MString units = FromSystem(*text);
        for (const char16_t unit : units.View())
            if (unit >= FirstCharacter && unit < selected.size()) selected[unit] = 1;
        if (std::ranges::none_of(selected, [](std::uint8_t one) { return one != 0; }))
            return StepFailure{file, "it uses no character of the codes 33 to 255"};
        run.choices.settings.Selected = selected;
        return {};
    };
}

std::optional<StepAction> PrepareSheetText(StepArguments arguments) {
    if (arguments[0].empty()) return std::nullopt;
    return [argument = arguments[0]](Run& run) -> StepResult {
        const auto file = FileOfText(argument);
        const auto text = file ? ReadSmallText(*file) : argument.substr(argument.starts_with("@@") ? 1 : 0);
        if (!text) return StepFailure{*file, noText};
        run.choices.sheetText = FromSystem(*text);
        return {};
    };
}

std::optional<StepAction> PrepareSheetGrid(StepArguments arguments) {
    const std::string& size = arguments[0];
    const std::size_t by = size.find('x');
    if (by == std::string::npos) return std::nullopt;
    const auto width = ReadNumber(std::string_view(size).substr(0, by));
    const auto height = ReadNumber(std::string_view(size).substr(by + 1));
    if (!width || !height || std::min(*width, *height) < 1 || std::max(*width, *height) > largestCell)
        return std::nullopt;
    return [grid = MSheetGrid{*width, *height}](Run& run) -> StepResult {
        run.choices.sheetWishes.grid = grid;
        return {};
    };
}

std::optional<StepAction> PrepareSheetGround(StepArguments arguments) {
    using Ground = MSheetWishes::Ground;
    const auto colour = ReadColour(arguments[0]);
    const Ground ground = arguments[0] == "auto"    ? Ground::Auto
                          : arguments[0] == "alpha" ? Ground::Alpha
                                                    : Ground::Colour;
    if (ground == Ground::Colour && !colour) return std::nullopt;
    return [ground, colour](Run& run) -> StepResult {
        run.choices.sheetWishes.ground = ground;
        run.choices.sheetWishes.colour = colour.value_or(MColour());
        return {};
    };
}

std::optional<StepAction> PrepareSheetReport(StepArguments arguments) {
    return [file = arguments[0]](Run& run) -> StepResult {
        if (!run.choices.sheet) {
            run.choices.sheetReport = file;
            return {};
        }
        MPicture picture = ReadSheetPicture(FromSystem(run.choices.sheetFile));
        if (!picture.IsValid()) return StepFailure{file, "the sheet can't be read again"};
        StepResult result = WriteReport(*run.choices.sheet, picture, file);
        picture.Free();
        return result;
    };
}

std::optional<StepAction> PrepareSheet(StepArguments arguments) {
    return [file = arguments[0]](Run& run) -> StepResult {
        if (!FileExists(FullPath(FromSystem(file)))) return StepFailure{file, "no such file"};
        MPicture picture = ReadSheetPicture(FullPath(FromSystem(file)));
        if (!picture.IsValid()) {
            const MString refusal = TakePixelRefusal();
            return StepFailure{file,
                               refusal.IsEmpty() ? "it is no picture that can be read" : ToSystem(refusal)};
        }
        StepResult result = Cut(run, file, picture);
        picture.Free();
        return result;
    };
}
