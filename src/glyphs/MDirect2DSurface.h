// The program's one way to draw: text, lines, rectangles and pictures, on a bitmap or on a window. A surface
// that could not be made is not valid, and every operation on it does nothing.
//
// Coordinates are pixels of the window's client area, or of the bitmap. Where `mapCoordinates` is set they are
// mapped to the surface: each becomes (c - origin) * coordinateScale, truncated, the origin being the left or
// top of `area`, and sizes and widths are multiplied by coordinateScale. Otherwise they are the surface's own.
#pragma once

#include "foundation/MString.h"
#include "glyphs/MSurfaceBitmap.h"
#include "imaging/MColour.h"
#include "platform/Desktop.h"
#include "platform/text/MTextFormat.h"

#include <cstdint>
#include <memory>

struct _cairo;
struct _cairo_pattern;

// What a text format was made for.
struct MTextFormatKey {
    MString family;
    std::int32_t size = 0; // text exists at whole sizes only
    std::int32_t weight = 0;
    bool italic = false;
    std::int32_t textAlignment = 0;
    std::int32_t paragraphAlignment = 0;
    bool wrap = true;
};

// The ends of lines; the rest of a stroke is solid, with mitred corners up to 10 times its width.
struct MStrokeStyle {
    bool roundCaps = true;
};

struct MPointF {
    float x = 0;
    float y = 0;
};

struct MPixelSize {
    std::uint32_t width;
    std::uint32_t height;
};

class MDirect2DSurface {
public:
    bool valid = false;
    Desktop::Rect area; // the part of the window that is covered, or the whole bitmap
    float coordinateScale = 1.0F;
    _cairo* target = nullptr;        // owned; null for a surface on no window, which is valid all the same
    _cairo_pattern* brush = nullptr; // owned, the last one used
    MColour brushColour;             // of `brush`
    std::unique_ptr<MStrokeStyle> strokeStyle; // made with the first line
    std::unique_ptr<MTextFormat> textFormat;   // the last one used
    MTextFormatKey textFormatKey;              // of `textFormat`

    // On a bitmap, which must outlive the surface.
    explicit MDirect2DSurface(MSurfaceBitmap& bitmap);
    // On a part of a window, which shows what was drawn at each End. Not valid for an empty rectangle.
    MDirect2DSurface(Desktop::WindowHandle owner, const Desktop::Rect& rectangle);
    MDirect2DSurface(const MDirect2DSurface&) = delete;
    MDirect2DSurface& operator=(const MDirect2DSurface&) = delete;
    ~MDirect2DSurface();

    // False if not valid: the caller skips the frame.
    bool Begin();
    void Clear(const MColour& colour);
    void End();
    // Nothing is drawn outside the rectangle, which is the surface's own, until PopClip.
    void PushClip(const Desktop::Rect& rectangle);
    void PopClip();

    // An empty family is "MS Shell Dlg", a size not above 0 is 12, a weight not above 0 is 400. Alignments: 0
    // centre, 1 trailing or far, anything else leading or near. `colourLayers` draws what the font colours in
    // the font's colours, `clip` cuts at the rectangle.
    void DrawText(Desktop::Rect rectangle, const MString& text, const MString& family, float size,
                  std::int32_t weight, bool italic, const MColour& colour, std::int32_t textAlignment,
                  std::int32_t paragraphAlignment, bool colourLayers, bool clip, bool mapCoordinates,
                  bool wrap);
    // With round ends.
    void DrawLine(MPointF from, MPointF to, float width, const MColour& colour, bool mapCoordinates);
    void DrawRectangle(Desktop::Rect rectangle, const MColour& colour, bool filled, float strokeWidth,
                       bool mapCoordinates);
    // Centred, shrunk if it doesn't fit and never enlarged.
    static MPixelSize FittedSize(const MPicture& picture, const Desktop::Rect& rectangle); // of a valid picture
    void DrawPictureFitted(const MPicture& picture, Desktop::Rect rectangle, bool mapCoordinates);
    void DrawPictureAt(const MPicture& picture, std::int32_t x, std::int32_t y, bool mapCoordinates);
    // The picture in a file, fitted. False if there is no file or it is no picture that can be read.
    bool DrawPictureFile(const MString& path, Desktop::Rect rectangle, bool mapCoordinates);

private:
    Desktop::WindowHandle window = nullptr; // not owned
    std::unique_ptr<MSurfaceBitmap> windowBitmap;

    Desktop::Rect Map(const Desktop::Rect& rectangle) const;
    std::int32_t MapX(double x) const;
    std::int32_t MapY(double y) const;
    bool TakeBrush(const MColour& colour);
    bool TakeTextFormat(MTextFormatKey key);
    void DrawBitmap(const MPicture& picture, const Desktop::Rect& rectangle);
};
