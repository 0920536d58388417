#include "apps/lettrino-cli/Serve.h"

#include "formats/Markup.h"

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string_view>
#include <thread>

namespace fs = std::filesystem;

namespace {

constexpr const char* versionPath = "/lettrino-version";

// A page asks which run it shows, a few times a second.
constexpr std::string_view reloader = R"(<script>(() => {
    let shown
    setInterval(async () => {
        try {
            const now = await (await fetch('/lettrino-version', { cache: 'no-store' })).text()
            if (shown !== undefined && now !== shown) location.reload()
            shown = now
        } catch { /* the server is gone for now */ }
    }, 250)
})()</script>
)";

const char* TypeOf(const fs::path& path) {
    static constexpr std::pair<std::string_view, const char*> types[] = {
        {".html", "text/html"},    {".js", "text/javascript"},    {".mjs", "text/javascript"},
        {".css", "text/css"},      {".json", "application/json"}, {".png", "image/png"},
        {".svg", "image/svg+xml"}, {".woff2", "font/woff2"},      {".ttf", "font/ttf"},
        {".xml", "text/xml"}};
    const std::string extension = path.extension().string();
    const auto found =
        std::ranges::find(types, std::string_view(extension), &std::pair<std::string_view, const char*>::first);
    return found == std::end(types) ? "application/octet-stream" : found->second;
}

// The file of the folder that an address names; empty if it names none, or one outside.
fs::path FileOf(const fs::path& folder, const std::string& address) {
    std::error_code error;
    const fs::path file = fs::weakly_canonical(folder / fs::path(address).relative_path(), error);
    const auto [rest, end] = std::ranges::mismatch(folder, file);
    if (error || rest != folder.end() || !fs::is_regular_file(file, error)) return {};
    return file;
}

// A line of the list of pages.
std::string LinkTo(const fs::path& page) {
    std::string address;
    for (const fs::path& part : page)
        address += "/" + Address(part.string());
    return "<p><a href=\"" + address + "\">" + Markup(page.generic_string()) + "</a></p>\n";
}

} // namespace

struct PageServer::State {
    fs::path folder;
    std::mutex listing;
    std::string list; // a page of links
    httplib::Server server;
    std::thread thread;
    std::atomic<unsigned> version = 0;
    int port = 0;

    // Another site that has its own name lead here must not read what is served.
    bool IsForUs(const httplib::Request& request) const {
        const std::string host = request.get_header_value("Host");
        const std::string end = ":" + std::to_string(port);
        return host == "127.0.0.1" + end || host == "localhost" + end;
    }

    void Answer(const httplib::Request& request, httplib::Response& response) {
        response.set_header("Cache-Control", "no-store");
        if (!IsForUs(request)) {
            response.status = 403;
            return;
        }
        if (request.path == versionPath) return response.set_content(std::to_string(version), "text/plain");
        const bool isRoot = request.path == "/";
        const fs::path file = FileOf(folder, isRoot ? "/index.html" : request.path);
        std::ifstream stream(file, std::ios::binary);
        if (isRoot && file.empty()) {
            const std::lock_guard lock(listing);
            return response.set_content(list, "text/html");
        }
        if (file.empty() || !stream) {
            response.status = 404;
            return response.set_content("There is no such file.\n", "text/plain");
        }
        std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        const std::string_view type = TypeOf(file);
        if (type == "text/html") bytes += reloader;
        response.set_content(std::move(bytes), std::string(type));
    }
};

PageServer::PageServer(const fs::path& folder) : state(std::make_unique<State>()) {
    std::error_code error;
    state->folder = fs::weakly_canonical(folder, error);
}

PageServer::~PageServer() {
    state->server.stop();
    if (state->thread.joinable()) state->thread.join();
}

bool PageServer::Start(int port) {
    constexpr const char* loopback = "127.0.0.1";
    httplib::Server& server = state->server;
    server.Get(".*", [this](const httplib::Request& request, httplib::Response& response) {
        state->Answer(request, response);
    });
    if (port == 0) {
        state->port = server.bind_to_any_port(loopback);
        if (state->port < 0) return false;
    } else {
        if (!server.bind_to_port(loopback, port)) return false;
        state->port = port;
    }
    state->thread = std::thread([this] { state->server.listen_after_bind(); });
    return true;
}

std::string PageServer::Address() const {
    return "http://127.0.0.1:" + std::to_string(state->port) + "/";
}

void PageServer::List(const std::vector<fs::path>& pages) {
    std::string links;
    for (const fs::path& page : pages) {
        std::error_code error;
        const fs::path near = fs::weakly_canonical(page, error).lexically_relative(state->folder);
        if (!near.empty() && *near.begin() != "..") links += LinkTo(near);
    }
    if (links.empty()) links = "<p>No page is written here.</p>\n";
    std::string list = "<!DOCTYPE html><meta charset=\"utf-8\"><title>Lettrino</title>\n" + links;
    list += reloader;
    const std::lock_guard lock(state->listing);
    state->list = std::move(list);
}

void PageServer::Reload() {
    ++state->version;
}
