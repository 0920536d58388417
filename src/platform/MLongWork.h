// Work on all pixels of a font, which shows how far it is where it takes long enough to be noticed.
#pragma once

#include "platform/Desktop.h"

#include <cstdint>

class MLongWork {
public:
    // Opens the progress window for as many pixels as take about half a second, unless it is open for other
    // work.
    MLongWork(Desktop::WindowHandle owner, const MString& what, std::uint64_t pixels);
    MLongWork(const MLongWork&) = delete;
    MLongWork& operator=(const MLongWork&) = delete;
    ~MLongWork();

    void At(std::size_t done, std::size_t of);

private:
    MString text;
    bool shown = false;
};
