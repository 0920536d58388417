// The sharpest of the hostile files, read within limits that the system keeps, so that a slow machine fails no
// test. scripts/bombs tells what all of them cost.
#include "bombs/Trial.h"

#include <gtest/gtest.h>

TEST(Bombs, TheSharpestStayWithinTimeAndMemory) {
    constexpr bombs::Limits limits{
        .seconds = 300, .cpu = 4, .memory = bombs::mostMemory + (std::uint64_t{512} << 20)};
    for (const bombs::Bomb& bomb : bombs::AllBombs()) {
        if (!bomb.sharp) continue;
        EXPECT_LE(bomb.bytes.size(), bombs::largestFile) << bomb.name;
        const bombs::Cost cost = bombs::Try(bomb, LETTRINO_CLI, limits);
        EXPECT_LE(cost.status, 1) << bomb.reader << ", " << bomb.name << ": " << cost.seconds << " s, "
                                  << (cost.memory >> 20) << " MB: " << cost.error;
    }
}
