// Whole runs of lettrino-cli beside the bare libraries, in processor time, as a user's machine would spend it.

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

extern char** environ;

namespace {

namespace fs = std::filesystem;

const fs::path folder = fs::temp_directory_path() / "lettrino-bench";
const std::string liberation = "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf";

struct Usage {
    double seconds = 0; // user and system
    double peakBytes = 0;
    bool ok = false;
};

Usage Run(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", 1, 0);
    pid_t process = 0;
    if (posix_spawn(&process, arguments[0], &quiet, nullptr, arguments.data(), environ) != 0) return {};
    int status = 0;
    rusage usage{};
    wait4(process, &status, 0, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), static_cast<double>(usage.ru_maxrss) * 1024,
            status == 0};
}

void Measure(benchmark::State& state, const std::vector<std::string>& command) {
    double peak = 0;
    for (auto _ : state) {
        const Usage usage = Run(command);
        if (!usage.ok) state.SkipWithError("the program failed");
        state.SetIterationTime(usage.seconds);
        peak = std::max(peak, usage.peakBytes);
    }
    state.counters["peakMB"] = peak / 1e6;
}

std::string File(const char* name) {
    fs::create_directories(folder);
    return (folder / name).string();
}

std::vector<std::string> MakeFont(const char* height, const std::string& file) {
    return {LETTRINO_CLI, "--family",   "Liberation Sans", "--height", height, "--select",
            "all",        "--generate", "--kern",          "--save",   file};
}

void WholeRun(benchmark::State& state) {
    Measure(state, MakeFont("100", File("run.sm")));
}

void WholeRunBound(benchmark::State& state) {
    Run(MakeFont("100", File("run.sm")));
    Measure(state, {BARE_FONT, liberation, "100", File("run.png"), File("bare.png")});
}

void Help(benchmark::State& state) {
    Measure(state, {LETTRINO_CLI, "--help"});
}

void HelpBound(benchmark::State& state) {
    Measure(state, {BARE_FONT});
}

// A font whose packed picture is 4096 x 4096: opened and saved, less the same without the saving.
void Save4096(benchmark::State& state) {
    const std::string font = File("large.sm");
    Run(MakeFont("360", font));
    for (auto _ : state) {
        const Usage opened = Run({LETTRINO_CLI, "--open", font});
        const Usage saved = Run({LETTRINO_CLI, "--open", font, "--save", File("again.sm")});
        if (!opened.ok || !saved.ok) state.SkipWithError("the program failed");
        state.SetIterationTime(saved.seconds - opened.seconds);
    }
}

void Save4096Bound(benchmark::State& state) {
    const std::string command =
        std::string(BARE_FONT) + " --png '" + File("large.png") + "' '" + File("bare.png") + "'";
    Run(MakeFont("360", File("large.sm")));
    for (auto _ : state) {
        std::FILE* const pipe = popen(command.c_str(), "r");
        double seconds = 0;
        if (!pipe || std::fscanf(pipe, "%lf", &seconds) != 1) state.SkipWithError("the program failed");
        if (pipe) pclose(pipe);
        state.SetIterationTime(seconds);
    }
}

// Peak memory of a run at the largest height; ratio is to the bytes of its glyphs and its packed picture.
void MemoryAtHeight1024(benchmark::State& state) {
    const std::string font = File("tall.sm");
    std::vector<std::string> command = MakeFont("1024", font);
    double peak = 0;
    for (auto _ : state) {
        const Usage usage = Run(command);
        peak = usage.peakBytes;
        state.SetIterationTime(usage.seconds);
    }
    std::FILE* const pipe = popen((std::string(LETTRINO_CLI) + " --open '" + font + "' --info").c_str(), "r");
    std::string json;
    for (char buffer[4096]; pipe && std::fgets(buffer, sizeof buffer, pipe);)
        json += buffer;
    if (pipe) pclose(pipe);
    const auto numberAfter = [&](const std::string& key, std::size_t& at) {
        at = json.find('"' + key + "\":", at);
        if (at == std::string::npos) return 0.0;
        at += key.size() + 3;
        return std::strtod(json.c_str() + at, nullptr);
    };
    double bytes = 0;
    for (std::size_t at = 0;;) {
        const double width = numberAfter("width", at);
        if (at == std::string::npos) break;
        bytes += 4 * width * numberAfter("height", at);
    }
    state.counters["peakMB"] = peak / 1e6;
    state.counters["bounds"] = peak / bytes;
}

} // namespace

BENCHMARK(WholeRun)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(WholeRunBound)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Help)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(HelpBound)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Save4096)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(Save4096Bound)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(MemoryAtHeight1024)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
