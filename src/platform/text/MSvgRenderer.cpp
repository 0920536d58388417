#include "platform/text/MSvgRenderer.h"

#include "foundation/MDebug.h"
#include "foundation/MFolders.h"
#include "foundation/MString.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

extern char** environ;

namespace {

// After so many seconds that came to nothing, starts of the program included, a font's documents are left
// alone.
constexpr double mostLost = 0.8;

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

struct SpawnActions {
    posix_spawn_file_actions_t actions;
    SpawnActions() { posix_spawn_file_actions_init(&actions); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions); }
};

} // namespace

namespace SvgWire {

bool Send(int socket, const void* bytes, std::size_t count) {
    const auto* at = static_cast<const char*>(bytes);
    while (count > 0) {
        // Without a signal where the other end is gone.
        const ssize_t sent = send(socket, at, count, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        at += sent;
        count -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool Receive(int socket, void* bytes, std::size_t count) {
    auto* at = static_cast<char*>(bytes);
    while (count > 0) {
        const ssize_t received = recv(socket, at, count, 0);
        if (received < 0 && errno == EINTR) continue;
        if (received <= 0) return false;
        at += received;
        count -= static_cast<std::size_t>(received);
    }
    return true;
}

} // namespace SvgWire

MSvgRenderer::~MSvgRenderer() {
    Stop();
}

bool MSvgRenderer::Start() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return false;
    const std::string program = ToSystemPath(JoinPath(GetProgramFolder(), "lettrino-svg"));
    SpawnActions spawn;
    posix_spawn_file_actions_adddup2(&spawn.actions, ends[1], STDIN_FILENO);
    // What its libraries print is not this program's to tell.
    posix_spawn_file_actions_addopen(&spawn.actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&spawn.actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::string name = "lettrino-svg";
    char* const arguments[] = {name.data(), nullptr};
    const int error = posix_spawn(&process, program.c_str(), &spawn.actions, nullptr, arguments, environ);
    close(ends[1]);
    if (error != 0) {
        close(ends[0]);
        process = -1;
        DebugOutput(u"lettrino-svg can't be started, which draws SVG glyphs\n");
        return false;
    }
    socket = ends[0];
    return true;
}

double MSvgRenderer::Stop() {
    if (process < 0) return 0;
    close(socket); // its end of work
    rusage usage{};
    int status = 0;
    while (wait4(process, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    ranOut = WIFSIGNALED(status) && (WTERMSIG(status) == SIGPROF || WTERMSIG(status) == SIGALRM);
    process = -1;
    socket = -1;
    sent.clear();
    answered = 0;
    return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
}

bool MSvgRenderer::Exchange(const SvgWire::Request& request, std::string_view text, Image& image) {
    if (process < 0 && !Start()) return false;
    SvgWire::Request whole = request;
    const bool known = sent.contains(request.document);
    whole.documentLength = known ? 0 : text.size();
    if (!SvgWire::Send(socket, &whole, sizeof whole)) return false;
    if (!known && !SvgWire::Send(socket, text.data(), text.size())) return false;
    sent.insert(request.document);
    if (!SvgWire::Receive(socket, &image.place, sizeof image.place)) return false;
    const auto& [found, x, y, width, height, seconds] = image.place;
    const bool inside =
        x >= 0 && y >= 0 && width >= 0 && height >= 0 && width <= whole.width - x && height <= whole.height - y;
    if (!inside) return false;
    image.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    return SvgWire::Receive(socket, image.pixels.data(), image.pixels.size() * sizeof(std::uint32_t));
}

MSvgRenderer::Result MSvgRenderer::Ask(SvgWire::Request request, std::uint64_t number, std::string_view text,
                                       Image& image) {
    request.document = number;
    const double pixels = static_cast<double>(request.width) * request.height;
    credit = std::min(credit + MDrawingCredit::For(pixels), MDrawingCredit::most);
    // A process that has served others may be full of their documents; a new one is asked once more, but not
    // where it was the time that did not do.
    for (const bool fresh : {process < 0, true}) {
        request.limit = std::min(credit, SvgWire::longestRequest);
        if (!(credit > 0) || lost > mostLost) break;
        if (Exchange(request, text, image)) {
            credit -= image.place.seconds;
            answered += image.place.seconds;
            return image.place.found ? Result::Done : Result::Absent;
        }
        if (process < 0) break;
        const double before = answered;
        const double wasted = Stop() - before;
        lost += wasted;
        credit -= wasted;
        if (fresh || ranOut) break;
    }
    return Result::Lost;
}
