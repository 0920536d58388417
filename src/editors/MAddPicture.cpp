#include "editors/MAddPicture.h"

#include "document/ChooseFile.h"
#include "editors/FieldText.h"
#include "foundation/MFolders.h"
#include "glyphs/PictureSeries.h"
#include "imaging/MPixelBudget.h"

MAddPicture::MAddPicture()
    : Path(Settings->Path(MPathKind::GlyphPicture)),
      Character(CharacterText(static_cast<char16_t>(Settings->Char))), PaddingTop(Settings->PaddingTop),
      PaddingBottom(Settings->PaddingBottom), SpacingBefore(Settings->SpacingBefore),
      SpacingAfter(Settings->SpacingAfter), Trim(Settings->Trim) {}

bool MAddPicture::Browse(Desktop::WindowHandle window) {
    const MString chosen = ChooseFile(window, MPathKind::GlyphPicture);
    if (chosen.IsEmpty()) return false;
    Path = chosen;
    CharacterFromFileName(Path, Character);
    preview.Release(); // the file may be another one under the same name
    return true;
}

void MAddPicture::Accept() const {
    constexpr std::int32_t longestPath = 260;
    MString& path = Settings->Path(MPathKind::GlyphPicture);
    path = Path;
    path.Truncate(longestPath);
    Settings->Char = FieldCharacter(Character);
    Settings->PaddingTop = PaddingTop;
    Settings->PaddingBottom = PaddingBottom;
    Settings->SpacingBefore = SpacingBefore;
    Settings->SpacingAfter = SpacingAfter;
    Settings->Trim = Trim;
}

Desktop::Rect MAddPicture::PreviewArea(const Desktop::Rect& previewLabel, const Desktop::Rect& characterField,
                                       const Desktop::Rect& okButton) {
    return {previewLabel.left, characterField.top, okButton.left - previewLabel.top, okButton.bottom};
}

namespace {

void TellUnreadable(MDirect2DSurface& surface, const Desktop::Rect& area, float density, const MString& path) {
    const MColour ground = Settings->BackgroundColour;
    const bool bright = ground.r + ground.g + ground.b > 3 * 127;
    surface.DrawText(area,
                     FileExists(path) ? "This file is no picture that can be read." : "There is no such file.",
                     MString(), 12 * density, 0, false, bright ? MColour(90, 90, 90) : MColour(200, 200, 200),
                     0, 0, false, true, true, true);
}

} // namespace

void MAddPicture::PaintPreview(Desktop::WindowHandle window, const Desktop::Rect& area) {
    if (Path.IsEmpty()) return;
    const MDirect2DSurface* const before = preview.surface.get();
    if (!preview.Bind(window, area) || !preview.surface->Begin()) return;
    if (preview.surface.get() != before || !previewPath.Equals(Path)) {
        RestorePixelBudget(); // each choice counts alone
        preview.surface->Clear(Settings->BackgroundColour);
        if (!preview.surface->DrawPictureFile(Path, area, true))
            TellUnreadable(*preview.surface, area, Density, Path);
        previewPath = Path;
    }
    preview.surface->End();
}
