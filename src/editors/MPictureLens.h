// A picture looked at through a part of a dialog: whole, or larger and moved about.
#pragma once

#include "editors/PreviewArea.h"

#include <cstdint>

class MPictureLens {
public:
    Desktop::Rect Area;     // of the dialog
    std::int32_t Width = 0; // of the picture
    std::int32_t Height = 0;

    // Of another picture or another area: shows all of it, small ones enlarged by a whole number.
    void ShowAll(const Desktop::Rect& area, std::int32_t width, std::int32_t height);
    // Twice as large for each step, or half as large; never smaller than whole. What is at this place of the
    // dialog stays there.
    void Zoom(std::int32_t steps, MPoint about);
    void Scroll(std::int32_t x, std::int32_t y); // by pixels of the dialog
    void Reveal(const Desktop::Rect& part); // scrolls as little as brings this part of the picture into sight

    double Scale() const { return scale; } // pixels of the dialog for one of the picture; 0 without a picture
    bool IsWhole() const { return steps == 0; }
    // The pixel of the picture that is shown there; outside of it for what lies beside it.
    MPoint ToPicture(MPoint point) const;
    Desktop::Rect ToDialog(const Desktop::Rect& part) const;
    Desktop::Rect Visible() const; // the part of the picture that is in sight, whole pixels

private:
    std::int32_t steps = 0;
    double whole = 0; // the scale that shows all
    double scale = 0;
    double left = 0; // the picture's place that is at the area's corner
    double top = 0;

    void Confine();
};
