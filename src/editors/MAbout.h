// What the About dialog says and where. All sizes are those of an ordinary screen times the scale.
#pragma once

#include "foundation/MString.h"
#include "platform/Desktop.h"

#include <cstdint>

class MAbout {
public:
    float Scale = 1.0F; // pixels of the screen for one of an ordinary one; above 0
    MString Heading;    // the product and its version
    MString Body;       // whose program it is, and whose copy
    MString Picture;    // the file of the ground, in the program's folder; it is white without one

    // An empty name is that of an unlicensed copy.
    MAbout(const MString& licensedTo, float scale);

    // The client area, 680 by 420, from (0, 0).
    Desktop::Rect Client() const;
    // The OK button of this size, whose right and bottom edges are at 640 and 380.
    Desktop::Rect OkButton(std::int32_t width, std::int32_t height) const;
    // White, the picture on it, and the texts at the right.
    void Paint(Desktop::WindowHandle window) const;

private:
    std::int32_t Scaled(std::int32_t size) const;
};
