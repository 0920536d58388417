#include "shell/Preview.h"

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "foundation/Product.h"
#include "glyphs/MWindowSurface.h"

namespace {

// Pixels that are shrunk within one frame of a screen.
constexpr std::uint64_t quickPixels = 4096ULL * 1024;

// The shrunk copy, and the picture it was made of.
MPicture kept;
std::uint64_t keptRevision = 0;

bool IsKept(const MColourFont& font) {
    return kept.IsValid() && keptRevision == font.PictureRevision;
}

bool HasSize(const MPicture& picture, const MPixelSize& size) {
    return picture.Width == size.width && picture.Height == size.height;
}

MPicture Resampled(const MPicture& picture, const MPixelSize& size) {
    return MPicture(picture, size.width, size.height, picture.Format, true, false);
}

void DrawFitted(MDirect2DSurface& surface, const MColourFont& font, const Desktop::Rect& client, bool quickly) {
    const MPixelSize size = MDirect2DSurface::FittedSize(font.Picture, client);
    if (HasSize(font.Picture, size)) {
        surface.DrawPictureFitted(font.Picture, client, true);
    } else if (quickly && IsKept(font) && !HasSize(kept, size)) {
        MPicture rough = Resampled(kept, size);
        surface.DrawPictureFitted(rough, client, true);
        rough.Free();
    } else {
        if (!IsKept(font) || !HasSize(kept, size)) {
            kept.Free();
            kept = Resampled(font.Picture, size);
            keptRevision = font.PictureRevision;
        }
        surface.DrawPictureFitted(kept, client, true);
    }
}

void PaintPreview(const MColourFont& font, const Desktop::Rect& client, bool quickly) {
    MWindowSurface window;
    if (!window.Bind(font.Owner, client) || !window.surface->Begin()) return;
    window.surface->Clear(Settings->BackgroundColour);
    if (font.Picture.IsValid()) DrawFitted(*window.surface, font, client, quickly);
    window.surface->End();
}

MString TitleOf(const MColourFont& font) {
    const auto number = [](std::uint32_t value) { return MString(static_cast<std::int32_t>(value)); };
    MString title = ProductName + " - " + MString(font.GlyphCount()) + " Glyphs";
    if (font.Picture.IsValid())
        title += " (" + number(font.Picture.Width) + " x " + number(font.Picture.Height) + ")";
    return title;
}

void DrawPreview(const MColourFont& font, bool quickly) {
    if (!font.Owner) return;
    const Desktop::Rect client = Desktop::ClientRect(font.Owner);
    if (client.IsEmpty()) return;
    PaintPreview(font, client, quickly);
    const MString title = TitleOf(font);
    if (!Desktop::WindowTitle(font.Owner).Equals(title)) Desktop::SetWindowTitle(font.Owner, title);
}

} // namespace

void MColourFont::Draw() const {
    DrawPreview(*this, false);
}

void DrawPreviewQuickly() {
    if (CurrentFont) DrawPreview(*CurrentFont, true);
}

bool IsPreviewSlow() {
    if (!CurrentFont || !CurrentFont->Picture.IsValid()) return false;
    const MPicture& picture = CurrentFont->Picture;
    return std::uint64_t{picture.Width} * picture.Height > quickPixels;
}

void ForgetPreview() {
    kept.Free();
}
