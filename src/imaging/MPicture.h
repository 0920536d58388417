// The in-memory picture: every glyph and every packed font picture is one.
//
// An MPicture is a plain record WITHOUT a destructor, and copying it is shallow: copies share `Pixels`. Whoever
// holds a picture owns its block and frees it with Free(); handing it on is a copy of the record followed by
// forgetting the source. Blocks come from MGetMemory or `new std::uint8_t[]` and are released the same way.
//
// Nothing here raises an error: callers ask IsValid(). On an invalid picture reads give the default colour and
// writes do nothing.
#pragma once

#include "foundation/MSafeFile.h"
#include "foundation/MString.h"
#include "imaging/MColour.h"

#include <cstdint>

// A bitmap of the drawing system: blue, green, red and alpha bytes, premultiplied, rows from the top. Owns
// nothing.
struct MBitmapView {
    const std::uint8_t* Pixels = nullptr;
    std::uint32_t Width = 0;
    std::uint32_t Height = 0;
    std::uint32_t Stride = 0; // bytes from one row to the next
};

class MPicture {
public:
    std::uint32_t Width = 0;  // pixels
    std::uint32_t Height = 0; // rows
    MPixelFormat Format = FormatNone;
    std::uint32_t Stride = 0; // bytes per row: Width * BytesPerPixel(Format), unless it views a foreign buffer
    std::uint8_t* Pixels = nullptr; // rows one after another
    bool TopDown = true;            // the first row in memory is the top row
    std::int32_t FrameCount = 1;    // frames in the file the picture came from
    // The rest is 0 unless a file with several frames set it.
    std::int32_t FrameDelay = 0; // milliseconds
    std::int32_t FrameDisposal = 0;
    std::int32_t FrameLeft = 0;
    std::int32_t FrameTop = 0;
    std::int32_t FrameWidth = 0;
    std::int32_t FrameHeight = 0;

    MPicture() = default;
    // Allocates but does not clear the pixels. `Pixels` is null when memory is exhausted or the size overflows.
    MPicture(std::uint32_t width, std::uint32_t height, MPixelFormat format);
    // Loads a file in its own depth. `frame` counts from 0; a frame that is not there fails the load. After a
    // failure the picture is invalid, with Width, Height and Format 0.
    explicit MPicture(const MString& path, std::int32_t frame = 0);
    // Format 7, with straight alpha. Empty for a null bitmap.
    explicit MPicture(const MBitmapView& bitmap);
    // A new picture from an old one, in the asked size and format. `smooth` scales with a box filter; otherwise
    // the source stays at the top left, cropped or padded with transparency. `keepAspect` fits the size into
    // the asked box. An unchanged size is a CopyPixels, with its limits. Invalid if `source` is, or without
    // memory.
    MPicture(const MPicture& source, std::uint32_t width, std::uint32_t height, MPixelFormat format,
             bool smooth, bool keepAspect);

    bool IsValid() const;
    // Frees the block and nulls `Pixels`; the other fields stay.
    void Free();

    // Coordinates wrap around: -1 is the last column or row. Null if the picture is not valid.
    std::uint8_t* PixelAddress(std::int32_t x, std::int32_t y) const;
    MColour GetPixel(std::int32_t x, std::int32_t y) const;
    MColour16 GetPixel16(std::int32_t x, std::int32_t y) const;
    MColourHalf GetPixelHalf(std::int32_t x, std::int32_t y) const;
    void SetPixel(std::int32_t x, std::int32_t y, const MColour& colour);
    void SetPixel(std::int32_t x, std::int32_t y, const MPixel& pixel);

    // Brings `pixel` into the picture's format, then stores it everywhere.
    void Fill(MPixel& pixel);
    void Fill(const MColour& colour);
    // Copies between two pictures of one size. False only if one is invalid or the sizes differ; pairs of
    // formats that are not convertible leave this picture as it was, and are true.
    bool CopyPixels(const MPicture& source);
    // The empty rows and columns on each side, where no alpha is above 0. All 0 for a picture that is all
    // empty.
    void GetMargins(std::uint32_t& top, std::uint32_t& right, std::uint32_t& bottom, std::uint32_t& left) const;

    // Swaps the rows and inverts `TopDown`. False for an invalid picture and without memory for one row.
    bool FlipVertically();
    // Both ends included; coordinates wrap.
    void DrawLine(std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1, const MColour& colour);
    // Gives fully transparent pixels near visible ones the colour of a neighbour, ring by ring, up to
    // max(max(Width, Height) / 64, 32) + 1 rings. No alpha changes.
    void BleedColours();

    // Writes the picture in the form that the extension names. `format` 0 means the picture's own; it is the
    // format written, as near as the form can hold it. An alpha format bleeds the picture's colours first,
    // which changes the picture itself. True only if the whole file was written. An old file stays until the
    // new one is complete.
    bool Save(const MString& path, MPixelFormat format = FormatNone);
    // The same, up to the moment where the old file would be replaced; what failed is told by the result.
    MSafeFile PrepareSave(const MString& path, MPixelFormat format = FormatNone, MLinks links = MLinks::Follow);

    // A bitmap for drawing: a picture of format 7 whose colours are premultiplied, owned by the caller. Formats
    // that CopyPixels doesn't bring into format 7 give an empty one. Invalid for an invalid picture or without
    // memory.
    MPicture CreateWicBitmap() const;
};
