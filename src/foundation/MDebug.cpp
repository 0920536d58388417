#include "foundation/MDebug.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {
MDebugSink currentSink = nullptr;
}

void DebugOutput(std::u16string_view message) {
    if (currentSink) currentSink(message);
}

MDebugSink SetDebugSink(MDebugSink sink) {
    return std::exchange(currentSink, sink);
}

void DebugToStandardError() {
    const char* const wanted = std::getenv("LETTRINO_DEBUG");
    if (!wanted || !*wanted) return;
    // Unit by unit, since the channel reports exhausted memory too and must not ask for any.
    SetDebugSink([](std::u16string_view message) {
        for (const char16_t unit : message) {
            if (unit < 0x80) {
                std::fputc(unit, stderr);
            } else {
                std::fprintf(stderr, "\\u%04X", static_cast<unsigned>(unit));
            }
        }
    });
}
