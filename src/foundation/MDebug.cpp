#include "foundation/MDebug.h"

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
