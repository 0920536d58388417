// What is told on the debug channel while such an object lives.
#pragma once

#include "foundation/MDebug.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

class DebugLines {
public:
    static inline std::vector<std::u16string> lines;

    DebugLines() : before(SetDebugSink([](std::u16string_view line) { lines.emplace_back(line); })) {
        lines.clear();
    }
    DebugLines(const DebugLines&) = delete;
    DebugLines& operator=(const DebugLines&) = delete;
    ~DebugLines() { SetDebugSink(before); }

    static auto Count(std::u16string_view words) {
        return std::ranges::count_if(lines, [&](const auto& line) { return line.find(words) != line.npos; });
    }

private:
    MDebugSink before;
};
