// Doing the steps again whenever a file that they read changes.
#pragma once

#include <filesystem>
#include <functional>
#include <vector>

// What is looked at. It is asked for before each run, since a recipe may name other files then.
struct WatchedFiles {
    std::vector<std::filesystem::path> read;
    std::vector<std::filesystem::path> written; // a change that a run makes itself starts no other
};

// Runs `run`, which gives a status, and again within 200 ms of the last change of a file that is read, until
// the user ends it by Ctrl+C. Tells what changed, and how long each run took. `ran` hears of each that went
// well.
void WatchAndRun(const std::function<WatchedFiles()>& files, const std::function<int()>& run,
                 const std::function<void()>& ran);

// Starts this program with other arguments, without its own signals, and waits for it. Its status, -1 if it
// could not be started or fell.
int RunAsChild(const std::vector<std::string>& arguments);
