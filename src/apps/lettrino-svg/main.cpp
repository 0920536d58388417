// lettrino-svg: draws elements of SVG documents for the other programs, which start it (see
// platform/text/MSvgRenderer.h). Requests come by the socket that is its standard input. It sets its own limits
// before it reads any of them, and a request that passes them ends it.

#include "SvgPage.h"
#include "platform/text/MSvgRenderer.h"

#include <cairo.h>
#include <librsvg/rsvg.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

template<typename Object, auto Release>
struct Releaser {
    void operator()(Object* object) const { Release(object); }
};
using Surface = std::unique_ptr<cairo_surface_t, Releaser<cairo_surface_t, cairo_surface_destroy>>;
using Context = std::unique_ptr<cairo_t, Releaser<cairo_t, cairo_destroy>>;

struct Document {
    RsvgHandle* handle = nullptr; // null for one that can't be read
    std::string style;
};

void Limit(int resource, rlim_t most) {
    rlimit limit{};
    if (getrlimit(static_cast<__rlimit_resource_t>(resource), &limit) != 0) return;
    limit.rlim_cur = std::min(most, limit.rlim_max);
    setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
}

// The signals of these timers end the process. Real time runs out only where something waits for ever.
void LimitTime(double seconds) {
    constexpr double realToProcessor = 20;
    const auto set = [](__itimer_which_t which, double length) {
        itimerval timer{};
        timer.it_value.tv_sec = static_cast<time_t>(length);
        timer.it_value.tv_usec = static_cast<suseconds_t>(std::fmod(length, 1.0) * 1e6);
        setitimer(which, &timer, nullptr);
    };
    set(ITIMER_PROF, seconds);
    set(ITIMER_REAL, seconds * realToProcessor);
}

double ProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

std::string StyleOf(const SvgWire::Request& request) {
    const auto& [r, g, b, a] = request.foreground;
    return "svg{color:rgba(" + std::to_string(r) + "," + std::to_string(g) + "," + std::to_string(b) + "," +
           std::to_string(a / 255.0) + ")}";
}

// The rectangle of the image that something was drawn in.
SvgWire::Reply InkOf(const std::uint32_t* pixels, std::int32_t width, std::int32_t height) {
    SvgWire::Reply ink;
    std::int32_t left = width, right = 0, top = height, bottom = 0;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint32_t* const row = pixels + std::ptrdiff_t{y} * width;
        const auto* const first =
            std::find_if(row, row + width, [](std::uint32_t pixel) { return pixel != 0; });
        if (first == row + width) continue;
        const auto* last = row + width - 1;
        while (*last == 0)
            --last;
        left = std::min(left, static_cast<std::int32_t>(first - row));
        right = std::max(right, static_cast<std::int32_t>(last - row) + 1);
        top = std::min(top, y);
        bottom = y + 1;
    }
    if (left < right) ink = {.x = left, .y = top, .width = right - left, .height = bottom - top};
    return ink;
}

class Drawer {
public:
    // False when there is nothing more to do.
    bool Serve() {
        SvgWire::Request request;
        if (!SvgWire::Receive(STDIN_FILENO, &request, sizeof request)) return false;
        std::string text(request.documentLength, '\0'); // empty for a document that is here already
        if (!SvgWire::Receive(STDIN_FILENO, text.data(), text.size())) return false;
        LimitTime(request.limit);
        began = ProcessorTime();
        if (!text.empty()) {
            text = OnPage(std::move(text));
            // Without a base, no reference that leaves the document is followed.
            documents[request.document].handle =
                rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(text.data()), text.size(), nullptr);
        }
        const bool sent = Answer(request);
        LimitTime(0);
        return sent;
    }

private:
    std::map<std::uint64_t, Document> documents;
    double began = 0;

    bool Answer(const SvgWire::Request& request) {
        Document& document = documents[request.document];
        const std::string element = "#glyph" + std::to_string(request.glyph);
        if (!document.handle || !rsvg_handle_has_sub(document.handle, element.c_str()))
            return Reply({}, nullptr, 0);
        if (request.task == SvgWire::Task::HasElement) return Reply({.found = 1}, nullptr, 0);

        const MPagePlace place = PlaceOnPage(request.matrix, request.width, request.height, request.viewport);
        if (place.width <= 0 || place.height <= 0) return Reply({.found = 1}, nullptr, 0);
        // A style makes librsvg go through the whole document.
        if (const std::string style = StyleOf(request) + StyleOfPage(place, request.viewport);
            style != document.style) {
            rsvg_handle_set_stylesheet(document.handle, reinterpret_cast<const guint8*>(style.data()),
                                       style.size(), nullptr);
            document.style = style;
        }
        const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, request.width, request.height));
        const Context context(cairo_create(surface.get()));
        const auto& m = request.matrix;
        const cairo_matrix_t matrix{m[0], m[1], m[2], m[3], m[4], m[5]};
        cairo_set_matrix(context.get(), &matrix);
        cairo_translate(context.get(), -place.x, -place.y);
        const RsvgRectangle viewport{0, 0, place.width, place.height};
        if (!rsvg_handle_render_layer(document.handle, context.get(), element.c_str(), &viewport, nullptr))
            return Reply({}, nullptr, 0);
        cairo_surface_flush(surface.get());
        const auto* const pixels =
            reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
        if (!pixels) return Reply({.found = 1}, nullptr, 0);
        SvgWire::Reply ink = InkOf(pixels, request.width, request.height);
        ink.found = 1;
        return Reply(ink, pixels, request.width);
    }

    bool Reply(SvgWire::Reply reply, const std::uint32_t* pixels, std::int32_t width) const {
        reply.seconds = ProcessorTime() - began;
        if (!SvgWire::Send(STDIN_FILENO, &reply, sizeof reply)) return false;
        std::vector<std::uint32_t> rectangle;
        for (std::int32_t y = reply.y; y < reply.y + reply.height; ++y) {
            const std::uint32_t* const row = pixels + std::ptrdiff_t{y} * width + reply.x;
            rectangle.insert(rectangle.end(), row, row + reply.width);
        }
        return SvgWire::Send(STDIN_FILENO, rectangle.data(), rectangle.size() * sizeof(std::uint32_t));
    }
};

} // namespace

int main() {
    Limit(RLIMIT_CORE, 0);
#if !defined(__SANITIZE_ADDRESS__) // which maps far more than it uses
    Limit(RLIMIT_AS, SvgWire::mostMemory);
#endif
    Drawer drawer;
    while (drawer.Serve()) {
    }
    _exit(0); // its documents go with it
}
