// bombs_table LETTRINO-CLI [WORDS]: reads every hostile file with the program and prints what each costs as a
// table; with WORDS only those whose reader or name has them. Status 1 if one passes a bound or ends the
// program. What does so is tried up to three times.
#include "bombs/Trial.h"

#include <algorithm>
#include <cstdio>

int main(int count, char** arguments) {
    if (count < 2) {
        std::fputs("usage: bombs_table LETTRINO-CLI [WORDS]\n", stderr);
        return 2;
    }
    const std::string words = count > 2 ? arguments[2] : "";
    bool within = true;
    std::puts("| Reader | File | kB | CPU s | MB | Answer |\n|---|---|---:|---:|---:|---|");
    for (const bombs::Bomb& bomb : bombs::AllBombs()) {
        if ((bomb.reader + ", " + bomb.name).find(words) == std::string::npos) continue;
        std::size_t size = bomb.bytes.size();
        for (const auto& [name, bytes] : bomb.beside)
            size = std::max(size, bytes.size());
        bombs::Cost cost;
        bool good = false;
        // What else the machine does makes each step longer, too.
        for (int attempt = 0; attempt < 3 && !good; ++attempt) {
            cost = bombs::Try(bomb, arguments[1], {.seconds = 20});
            good = cost.seconds <= bombs::mostSeconds && cost.memory <= bombs::mostMemory && cost.status <= 1 &&
                   size <= bombs::largestFile && size > 0;
        }
        within = within && good;
        std::printf("| %s | %s | %zu | %.2f | %llu | %s%s |\n", bomb.reader.c_str(), bomb.name.c_str(),
                    (size + 999) / 1000, cost.seconds, static_cast<unsigned long long>(cost.memory >> 20),
                    cost.status == 0   ? "read"
                    : cost.status == 1 ? "refused"
                                       : ("ended, " + std::to_string(cost.status)).c_str(),
                    good ? "" : ", **beyond the bound**");
        if (!cost.error.empty()) std::fprintf(stderr, "    %s\n", cost.error.substr(0, 300).c_str());
        std::fflush(stdout);
    }
    return within ? 0 : 1;
}
