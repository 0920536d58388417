// librsvg draws what needs a picture in between (opacity of groups, masks, filters, blending) only where the
// document's own view port is, to the right of the origin and below it. In fonts the glyphs stand on the base
// line, above the origin. So a document is put on a page, an svg element around it, at a place that leaves
// room.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct MPagePlace {
    double x = 0; // of the document's origin on the page, in the document's units
    double y = 0;
    double width = 0; // of the page
    double height = 0;
};

// The text with the page around its root element; the same text where no root element is seen, which then has
// no room around it.
std::string OnPage(std::string text);

// The place for a document with a square view port, so that the image (`width` by `height` pixels, `matrix` as
// in SvgWire::Request) lies on the page. It moves by whole view ports, so that it is the same for most glyphs.
// No width if the matrix is none.
MPagePlace PlaceOnPage(const double (&matrix)[6], std::int32_t width, std::int32_t height, double viewport);

// Rules of style that put the document there. Its own width and height do not count, nor is it clipped.
std::string StyleOfPage(const MPagePlace& place, double viewport);
