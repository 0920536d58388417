#include "editors/MAbout.h"

#include "foundation/MFolders.h"
#include "foundation/MNumbers.h"
#include "foundation/Product.h"
#include "glyphs/MWindowSurface.h"

#include <cmath>

namespace {

constexpr std::int32_t width = 680;
constexpr std::int32_t height = 420;
constexpr std::int32_t margin = 20;
constexpr const char16_t* legalNotice =
    u"Copyright \u00A9 2026 The Lettrino developers\nFree software under the MIT License";

MString DomainOf(const MString& address) {
    MString domain = address;
    domain.KeepAfter("://");
    domain.KeepBefore("/");
    return domain;
}

// Fitting never enlarges, but on a screen of high density the picture must grow with the window.
void DrawGround(MDirect2DSurface& surface, const MString& path, const Desktop::Rect& client) {
    if (!FileExists(path)) return;
    MPicture picture(path);
    const auto clientWidth = static_cast<std::uint32_t>(client.Width());
    const auto clientHeight = static_cast<std::uint32_t>(client.Height());
    if (picture.IsValid() && clientWidth > width && picture.Width < clientWidth &&
        picture.Height < clientHeight) {
        MPicture smaller = picture;
        picture = MPicture(smaller, clientWidth, clientHeight, smaller.Format, true, true);
        smaller.Free();
    }
    surface.DrawPictureFitted(picture, client, true);
    picture.Free();
}

} // namespace

MAbout::MAbout(const MString& licensedTo, float scale) : Scale(scale > 0 ? scale : 1.0F) {
    Heading = ProductName + " " + ProductVersion.WithoutTrailingZeros();
    Picture = JoinPath(JoinPath(JoinPath(GetProgramFolder(), "Media"), "skins"), "About.png");
    Body = MString(legalNotice) + "\n" + DomainOf(MakerSite) + "\n\n\n";
    Body += licensedTo.IsEmpty() ? MString("This evaluation version may be\nfreely copied and distributed")
                                 : "This copy is licensed to:\n" + licensedTo;
}

std::int32_t MAbout::Scaled(std::int32_t size) const {
    return ToInteger(std::round(static_cast<float>(size) * Scale));
}

Desktop::Rect MAbout::Client() const {
    return {0, 0, Scaled(width), Scaled(height)};
}

Desktop::Rect MAbout::OkButton(std::int32_t buttonWidth, std::int32_t buttonHeight) const {
    const std::int32_t right = Scaled(640);
    const std::int32_t bottom = Scaled(380);
    return {right - buttonWidth, bottom - buttonHeight, right, bottom};
}

void MAbout::Paint(Desktop::WindowHandle window) const {
    constexpr MColour grey(64, 64, 64);
    constexpr std::int32_t trailing = 1;
    constexpr std::int32_t near = -1;
    const Desktop::Rect client = Client();
    MWindowSurface bound;
    if (!bound.Bind(window, client) || !bound.surface->Begin()) return;
    MDirect2DSurface& surface = *bound.surface;
    surface.Clear(MColour(255, 255, 255));
    DrawGround(surface, Picture, client);
    const auto draw = [&](const MString& text, std::int32_t top, const char* family, std::int32_t size) {
        if (text.IsEmpty()) return;
        const Desktop::Rect place{Scaled(margin), Scaled(top), client.right - Scaled(margin), client.bottom};
        surface.DrawText(place, text, family, static_cast<float>(size) * Scale, 0, false, grey, trailing, near,
                         false, false, true, true);
    };
    draw(Heading, 75, "Segoe UI", 40);
    draw(Body, 120, "Segoe UI Light", 18);
    surface.End();
}
