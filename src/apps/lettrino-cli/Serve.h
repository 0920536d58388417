// The written pages in a browser on this machine, which load themselves anew after each run.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace httplib {
class Server;
}

class PageServer {
public:
    // Of the files in a folder and below it.
    explicit PageServer(const std::filesystem::path& folder);
    PageServer(const PageServer&) = delete;
    PageServer& operator=(const PageServer&) = delete;
    ~PageServer();

    // On the loopback address alone, in a thread of its own. False if the port is taken. 0 takes any.
    bool Start(int port);
    std::string Address() const; // "http://127.0.0.1:8000/"
    // What "/" leads to, where the folder has no index.html.
    void List(const std::vector<std::filesystem::path>& pages);
    // Pages that are open load themselves anew.
    void Reload();

private:
    struct State;
    std::unique_ptr<State> state;
};
