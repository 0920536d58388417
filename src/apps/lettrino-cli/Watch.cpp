#include "apps/lettrino-cli/Watch.h"

#include "apps/lettrino-cli/Runner.h"
#include "foundation/MFolders.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <thread>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto look = std::chrono::milliseconds(40);  // between two looks at the files
constexpr auto quiet = std::chrono::milliseconds(80); // after which a change counts as the last

volatile sig_atomic_t ends = 0; // how often the user wanted an end
volatile pid_t child = 0;

// A second one ends the run at hand, too, which loses nothing: files are replaced when they are complete.
void OnEnd(int) {
    ends = ends + 1;
    if (ends > 1 && child > 0) kill(child, SIGTERM);
}

void CatchEnds() {
    struct sigaction action {};
    action.sa_handler = OnEnd;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

struct Stamp {
    fs::file_time_type time;
    std::uintmax_t size = 0;

    friend bool operator==(const Stamp&, const Stamp&) = default;
};
using Stamps = std::map<fs::path, Stamp>; // of those that are there

void Take(Stamps& stamps, const std::vector<fs::path>& paths) {
    for (const fs::path& path : paths) {
        const auto file = FindExisting(FromSystemPath(path)); // in whatever case, as the steps find it
        std::error_code error;
        const Stamp stamp =
            file ? Stamp{fs::last_write_time(*file, error), fs::file_size(*file, error)} : Stamp{};
        if (!file || error) {
            stamps.erase(path);
        } else {
            stamps[path] = stamp;
        }
    }
}

void TellChanges(const Stamps& before, const Stamps& now) {
    const auto tell = [](const Stamps& some, const Stamps& others, bool gone) {
        for (const auto& [path, stamp] : some) {
            const auto other = others.find(path);
            if (other != others.end() && (gone || other->second == stamp)) continue;
            const char* const how = gone ? "is gone" : other == others.end() ? "is there" : "changed";
            ReportError(path.filename().string() + " " + how);
        }
    };
    tell(now, before, false);
    tell(before, now, true);
}

// Until a file changed and nothing else followed for a while. False if the user wants an end.
bool WaitForChange(const std::vector<fs::path>& read, const Stamps& before) {
    Stamps seen = before;
    Clock::time_point changed{};
    while (ends == 0) {
        Stamps now = seen;
        Take(now, read);
        if (now != seen) {
            seen = std::move(now);
            changed = Clock::now();
        } else if (seen != before && Clock::now() - changed >= quiet) {
            TellChanges(before, seen);
            return true;
        }
        std::this_thread::sleep_for(look);
    }
    return false;
}

} // namespace

void WatchAndRun(const std::function<WatchedFiles()>& files, const std::function<int()>& run,
                 const std::function<void()>& ran) {
    CatchEnds();
    for (;;) {
        const WatchedFiles watched = files();
        Stamps stamps;
        Take(stamps, watched.read);
        const Clock::time_point start = Clock::now();
        const int status = run();
        const std::chrono::duration<double> took = Clock::now() - start;
        if (ends > 0) break;
        char seconds[32];
        std::snprintf(seconds, sizeof seconds, "%.2f s", took.count());
        ReportError((status == 0 ? "done in " : "failed after ") + std::string(seconds) + "; watching " +
                    std::to_string(watched.read.size()) + " files, Ctrl+C ends");
        if (status == 0) ran();
        std::vector<fs::path> both;
        std::ranges::copy_if(watched.read, std::back_inserter(both), [&](const fs::path& path) {
            return std::ranges::find(watched.written, path) != watched.written.end();
        });
        Take(stamps, both);
        if (!WaitForChange(watched.read, stamps)) break;
    }
    ReportError("ended");
}

int RunAsChild(const std::vector<std::string>& arguments) {
    const std::string program = ToSystemPath(JoinPath(GetProgramFolder(), "lettrino-cli"));
    std::vector<char*> words;
    std::vector<std::string> copies = arguments;
    for (std::string& word : copies)
        words.push_back(word.data());
    words.push_back(nullptr);
    // In a group of its own the terminal's Ctrl+C does not reach it.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), nullptr, &attributes, words.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) return -1;
    child = process;
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    child = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
