#include "SvgPage.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::string_view pageName = "lettrino-page";

// The place behind a part of the text that ends with `end`.
std::size_t After(std::string_view text, std::string_view end, std::size_t from) {
    const std::size_t at = text.find(end, from);
    return at == std::string_view::npos ? at : at + end.size();
}

// The place behind a declaration that begins at `from`, with its internal subset if it has one.
std::size_t AfterDeclaration(std::string_view text, std::size_t from) {
    int depth = 0;
    while ((from = text.find_first_of("<>[]\"'", from)) != std::string_view::npos) {
        const char c = text[from];
        if (text.substr(from).starts_with("<!--")) {
            from = After(text, "-->", from + 4);
        } else if (c == '"' || c == '\'') {
            from = After(text, text.substr(from, 1), from + 1);
        } else {
            ++from;
            if (c == '<' || c == '[') ++depth;
            if ((c == '>' || c == ']') && --depth == 0) return from;
        }
        if (from == std::string_view::npos) break;
    }
    return std::string_view::npos;
}

// XML 1.0, 2.8: before the root element stand instructions, comments and the document type declaration.
std::size_t RootElement(std::string_view text) {
    std::size_t at = 0;
    while ((at = text.find('<', at)) != std::string_view::npos) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<?")) {
            at = After(text, "?>", at);
        } else if (rest.starts_with("<!--")) {
            at = After(text, "-->", at + 4);
        } else if (rest.starts_with("<!")) {
            at = AfterDeclaration(text, at);
        } else {
            break;
        }
        if (at == std::string_view::npos) break;
    }
    return at;
}

} // namespace

std::string OnPage(std::string text) {
    const std::size_t root = RootElement(text);
    if (root == std::string::npos) return text;
    text.insert(root, "<svg xmlns='http://www.w3.org/2000/svg' id='" + std::string(pageName) + "'>");
    return text + "</svg>";
}

MPagePlace PlaceOnPage(const double (&matrix)[6], std::int32_t width, std::int32_t height, double viewport) {
    cairo_matrix_t toUnits{matrix[0], matrix[1], matrix[2], matrix[3], matrix[4], matrix[5]};
    if (viewport <= 0 || cairo_matrix_invert(&toUnits) != CAIRO_STATUS_SUCCESS) return {};
    double left = 0, top = 0, right = 0, bottom = 0;
    for (const double cornerX : {0, width}) {
        for (const double cornerY : {0, height}) {
            double x = cornerX, y = cornerY;
            cairo_matrix_transform_point(&toUnits, &x, &y);
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x);
            bottom = std::max(bottom, y);
        }
    }
    const auto whole = [&](double length) { return std::ceil(length / viewport) * viewport; };
    const MPagePlace place{whole(-left), whole(-top), 0, 0};
    return {place.x, place.y, place.x + right, place.y + bottom};
}

std::string StyleOfPage(const MPagePlace& place, double viewport) {
    const auto rule = [](std::string_view property, double value) {
        return std::string(property) + ":" + std::to_string(value) + "px!important;";
    };
    return "#" + std::string(pageName) + ">svg{" + rule("x", place.x) + rule("y", place.y) +
           rule("width", viewport) + rule("height", viewport) + "overflow:visible!important}";
}
