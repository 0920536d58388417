// What one hostile file costs the program that reads it.
#pragma once

#include "bombs/Bombs.h"

#include <cstdint>

namespace bombs {

// What every file of less than a megabyte must stay within.
inline constexpr double mostSeconds = 2; // of processor time
inline constexpr std::uint64_t mostMemory = std::uint64_t{1} << 30;

struct Cost {
    double seconds = 0;       // of processor time, of the program and of those that it starts
    std::uint64_t memory = 0; // bytes: the most that each of them had, together
    int status = -1;          // as of a shell; 128 and the signal that ended it
    std::string error;        // the first line that it told
};

struct Limits {
    double seconds = 60;      // real
    std::uint64_t cpu = 0;    // seconds of processor time of one process; 0: none
    std::uint64_t memory = 0; // bytes of address space; 0: none
};

// Reads the bomb in a folder of its own. `program` is lettrino-cli.
Cost Try(const Bomb& bomb, const std::string& program, const Limits& limits);

} // namespace bombs
