#include "platform/text/MDrawingCredit.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace {

constexpr double forEach = 3e-3;      // seconds
constexpr double forEachPixel = 8e-9; // seconds

std::int32_t lost = 0;

// Of this thread, so that what other processes draw meanwhile doesn't count.
double ProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

double MDrawingCredit::For(double pixels) {
    return forEach + forEachPixel * pixels;
}

bool MDrawingCredit::Begin(double pixels) {
    credit = std::min(credit + For(pixels), most);
    began = ProcessorTime();
    return credit > 0;
}

bool MDrawingCredit::IsOver() const {
    return ProcessorTime() - began > credit;
}

void MDrawingCredit::End() {
    credit -= ProcessorTime() - began;
}

namespace LostGlyphs {

void Add() {
    ++lost;
}

std::int32_t Take() {
    return std::exchange(lost, 0);
}

} // namespace LostGlyphs
