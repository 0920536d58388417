// The dialog that names a picture and the character that it becomes. It starts with what the settings remember,
// and only OK writes them; but a file that was looked up is remembered at once, as by every file dialog.
#pragma once

#include "foundation/MString.h"
#include "glyphs/MWindowSurface.h"
#include "platform/Desktop.h"

#include <cstdint>

class MAddPicture {
public:
    MString Path;
    MString Character; // of which the first unit counts; "?" if it is empty
    std::int32_t PaddingTop = 0;
    std::int32_t PaddingBottom = 0;
    std::int32_t SpacingBefore = 0;
    std::int32_t SpacingAfter = 0;
    bool Trim = false;
    float Density = 1; // pixels of the screen for one of an ordinary one, for what the preview says in words

    MAddPicture();

    // Has the user choose a file. True if he did: Path is that file then, and Character what its name tells,
    // if it tells one.
    bool Browse(Desktop::WindowHandle window);
    // Nothing is checked. A path longer than 260 units is cut.
    void Accept() const;

    // The part of the window below and beside which the controls stand.
    static Desktop::Rect PreviewArea(const Desktop::Rect& previewLabel, const Desktop::Rect& characterField,
                                     const Desktop::Rect& okButton);
    // Shows the picture fitted on the background colour, which is all there is to see if the file is no
    // picture. Nothing without a path.
    void PaintPreview(Desktop::WindowHandle window, const Desktop::Rect& area);

private:
    MWindowSurface preview; // as it was painted last, so that painting again reads no file
    MString previewPath;
};
