#include "formats/webfont/MWebFontExport.h"

#include "formats/SiblingPath.h"
#include "foundation/MUtf8.h"
#include "platform/MProgressDialog.h"

#include <algorithm>
#include <span>

namespace {

class Progress {
public:
    // Small fonts are written before a window could be read.
    Progress(const MFontDescription& font, Desktop::WindowHandle owner) {
        constexpr std::int64_t worthTelling = 1024 * 1024;
        std::int64_t pixels = 0;
        for (const MGlyphDescription& glyph : font.Glyphs)
            pixels += std::int64_t{glyph.Ink.Width} * glyph.Ink.Height;
        if (pixels < worthTelling) return;
        ProgressDialog.Configure(owner);
        ProgressDialog.Open();
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { ProgressDialog.Close(); }
};

// "demo" for "fonts/demo.woff2".
std::u16string NameOf(const MString& path) {
    const MString name = FileNameOf(path);
    const std::u16string text(name.View());
    const std::size_t dot = text.rfind(u'.');
    return dot == 0 ? text : text.substr(0, dot);
}

MString FamilyOf(const MString& path, const MWebFontOptions& options) {
    return options.Family.IsEmpty() ? MString(NameOf(path).c_str()) : options.Family;
}

MSafeFile Prepared(const MString& path, std::span<const std::uint8_t> bytes) {
    MSafeFile file(path, MLinks::StayInFolder);
    file.WriteAt(0, bytes.data(), bytes.size());
    return file;
}

MSafeFile Prepared(const MString& path, const std::string& text) {
    return Prepared(path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

// The font's bytes, or why there are none.
std::vector<std::uint8_t> Make(const MWebFont& plan, MWebFontForm form, const MWebFontOptions& options,
                               MWebFontResult& result) {
    result.LostCharacters = plan.LostCharacters;
    result.Reason = plan.Reason;
    if (!result.Reason.empty()) return {};
    MWebFontFile file = BuildWebFont(plan, form);
    result.Reason = file.Reason;
    if (!result.Reason.empty()) return {};
    for (const std::int32_t strike : options.Strikes) {
        const auto place = std::ranges::find(plan.Strikes, strike) - plan.Strikes.begin();
        result.StrikeBytes.push_back(file.StrikeBytes[static_cast<std::size_t>(place)]);
    }
    if (form == MWebFontForm::TrueType) return std::move(file.Bytes);
    ProgressDialog.Update(1, "Packing web font...");
    std::vector<std::uint8_t> packed = PackAsWoff2(file.Bytes);
    if (packed.empty()) result.Reason = "it can't be packed";
    return packed;
}

void Place(std::vector<MSafeFile> files, MWebFontResult& result) {
    // These belong together, so none takes its place before all are complete.
    const auto finished = std::ranges::count_if(files, [](MSafeFile& file) { return file.Finish(); });
    if (finished == std::ssize(files)) {
        PlaceAll(files, &result.Failures);
        return;
    }
    for (const MSafeFile& file : files) {
        if (!file.Ok()) result.Failures.push_back({file.Path(), file.Failure()});
    }
}

} // namespace

MWebFontResult ExportWebFont(const MFontDescription& font, const MString& path, MWebFontForm form,
                             const MWebFontOptions& options, Desktop::WindowHandle owner) {
    const Progress progress(font, owner);
    MWebFontResult result;
    const MWebFont plan = PlanWebFont(font, FamilyOf(path, options), options.Strikes);
    const std::vector<std::uint8_t> bytes = Make(plan, form, options, result);
    if (!result.Reason.empty()) return result;
    std::vector<MSafeFile> files;
    files.push_back(Prepared(path, bytes));
    Place(std::move(files), result);
    return result;
}

MWebFontResult ExportCssPage(const MFontDescription& font, const MString& path, const MWebFontOptions& options,
                             Desktop::WindowHandle owner) {
    const Progress progress(font, owner);
    MWebFontResult result;
    const MWebFont plan = PlanWebFont(font, FamilyOf(path, options), options.Strikes);
    const std::vector<std::uint8_t> bytes = Make(plan, MWebFontForm::Woff2, options, result);
    if (!result.Reason.empty()) return result;
    const std::string name = EncodeUtf8(NameOf(path), MLoneSurrogates::Replace);
    std::vector<MSafeFile> files;
    files.push_back(Prepared(SiblingPath(path, "woff2"), bytes));
    files.push_back(Prepared(SiblingPath(path, "css"), CssSheetText(plan, name)));
    files.push_back(Prepared(path, CssPageText(plan, name)));
    Place(std::move(files), result);
    return result;
}
