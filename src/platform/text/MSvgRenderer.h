// SVG documents are drawn by a program of their own, lettrino-svg, which stands beside this one: the library
// that draws them ends its process on some documents and takes minutes or gigabytes for others. That program
// limits its own time and memory, and when it falls, nothing but a glyph is lost.
//
// This is the near end: it starts the program when there is something to draw and asks it over a socket. The
// requests and replies are plain structs of one build of the two programs on one machine.
#pragma once

#include "imaging/MColour.h"
#include "platform/text/MDrawingCredit.h"

#include <sys/types.h>

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace SvgWire {

// How long one request may compute. Ordinary glyphs take a few milliseconds, the largest some hundred.
inline constexpr double longestRequest = 0.3; // seconds of processor time
// Of the program's whole address space, its libraries included.
inline constexpr std::uint64_t mostMemory = std::uint64_t{768} << 20;

enum class Task : std::uint32_t { HasElement, Draw };

// Followed by `documentLength` bytes, the document's text, when the program does not have it yet.
struct Request {
    Task task = Task::HasElement;
    std::uint32_t glyph = 0; // the element is called "glyph" and this number
    std::uint64_t document = 0;
    std::uint64_t documentLength = 0;
    // Of Draw:
    double viewport = 0; // sides of the document's view port, in its units
    double matrix[6]{};  // from the document's units to pixels: xx, yx, xy, yy, x0, y0
    double limit = 0;    // seconds of processor time
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint8_t foreground[4]{}; // red, green, blue, alpha
};

// Followed by the pixels of the rectangle: premultiplied 32-bit words (alpha, red, green, blue from the high
// byte down), rows without gaps. Outside of it nothing was drawn.
struct Reply {
    std::uint32_t found = 0; // the document can be read and has the element
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    double seconds = 0; // of processor time that it took
};

bool Send(int socket, const void* bytes, std::size_t count);
bool Receive(int socket, void* bytes, std::size_t count);

} // namespace SvgWire

class MSvgRenderer {
public:
    enum class Result { Done, Absent, Lost };

    // A picture as the reply tells it.
    struct Image {
        SvgWire::Reply place;
        std::vector<std::uint32_t> pixels;
    };

    MSvgRenderer() = default;
    MSvgRenderer(const MSvgRenderer&) = delete;
    MSvgRenderer& operator=(const MSvgRenderer&) = delete;
    ~MSvgRenderer();

    // Does the request, whose fields for the document are filled in here: `number` tells documents apart,
    // `text` is sent to each new process once. Lost: the program fell over it, could not be started, or all the
    // time that this renderer grants has been used up.
    Result Ask(SvgWire::Request request, std::uint64_t number, std::string_view text, Image& image);

private:
    pid_t process = -1;
    int socket = -1;
    std::set<std::uint64_t> sent; // documents that the process has
    // What a request may compute, in seconds of processor time. It grows with each request and falls by what
    // each took, so that one glyph may be slow, but not every glyph of a font.
    // As MDrawingCredit tells for glyphs that this process draws.
    double credit = MDrawingCredit::most;
    double answered = 0; // seconds that the process took for its replies
    double lost = 0;     // seconds that came to nothing
    bool ranOut = false; // of time, the last process that was stopped

    bool Start();
    double Stop(); // the seconds that the process took
    bool Exchange(const SvgWire::Request& request, std::string_view text, Image& image);
};
