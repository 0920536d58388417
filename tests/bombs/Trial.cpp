#include "bombs/Trial.h"

#include "TemporaryFolder.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>
#include <thread>

namespace bombs {

namespace {

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

void Limit(__rlimit_resource resource, std::uint64_t most) {
    if (most == 0) return;
    const rlimit limit{most, most};
    setrlimit(resource, &limit);
}

// The most memory that a process ever had, by proc(5).
std::uint64_t PeakOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("VmHWM:")) return std::strtoull(line.c_str() + 6, nullptr, 10) * 1024;
    return 0;
}

std::vector<pid_t> ChildrenOf(pid_t process) {
    const std::string number = std::to_string(process);
    std::ifstream file("/proc/" + number + "/task/" + number + "/children");
    std::vector<pid_t> children;
    for (pid_t child = 0; file >> child;)
        children.push_back(child);
    return children;
}

[[noreturn]] void Child(const Bomb& bomb, const std::string& program, const TemporaryFolder& folder,
                        const Limits& limits) {
    if (chdir(folder.path.c_str()) != 0) _exit(126);
    for (const auto& [stream, file] : {std::pair(STDOUT_FILENO, "out"), {STDERR_FILENO, "error"}}) {
        const int target = open(file, O_CREAT | O_WRONLY | O_TRUNC, 0600);
        dup2(target, stream);
    }
    setpgid(0, 0);
    Limit(RLIMIT_CPU, limits.cpu);
    Limit(RLIMIT_AS, limits.memory);
    Limit(RLIMIT_FSIZE, std::uint64_t{4} << 30);
    setenv("HOME", folder.path.c_str(), 1);
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    const std::string command = "exec '" + program + "' " + bomb.steps;
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
}

} // namespace

Cost Try(const Bomb& bomb, const std::string& program, const Limits& limits) {
    const TemporaryFolder folder;
    folder.Write(bomb.file.c_str(), bomb.bytes);
    for (const auto& [name, bytes] : bomb.beside)
        folder.Write(name.c_str(), bytes);
    const pid_t process = fork();
    if (process == 0) Child(bomb, program, folder, limits);
    Cost cost;
    std::map<pid_t, std::uint64_t> peaks;
    rusage usage{};
    int status = 0;
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(limits.seconds);
    while (wait4(process, &status, WNOHANG, &usage) == 0) {
        std::vector<pid_t> all = ChildrenOf(process);
        all.push_back(process);
        for (const pid_t each : all)
            if (const std::uint64_t peak = PeakOf(each); peak > 0) peaks[each] = peak;
        if (Clock::now() > end) kill(-process, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    // Helpers run one after another, so the largest of them counts.
    std::uint64_t helper = 0;
    for (const auto& [id, peak] : peaks)
        if (id != process) helper = std::max(helper, peak);
    cost.memory = peaks[process] + helper;
    cost.seconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    cost.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    cost.error = folder.Read("error");
    cost.error.resize(std::min(cost.error.find('\n'), cost.error.size()));
    return cost;
}

} // namespace bombs
