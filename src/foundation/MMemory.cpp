#include "foundation/MMemory.h"

#include <unistd.h>

#include <cstring>

namespace {

std::size_t limitOverride = 0;

std::size_t HalfOfTheMachine() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0) return std::numeric_limits<std::size_t>::max() / 2;
    return static_cast<std::size_t>(pages) / 2 * static_cast<std::size_t>(pageSize);
}

} // namespace

std::size_t MemoryLimit() {
    static const std::size_t machineLimit = HalfOfTheMachine();
    return limitOverride != 0 ? limitOverride : machineLimit;
}

void SetMemoryLimit(std::size_t bytes) {
    limitOverride = bytes;
}

std::uint8_t* MGetMemory(std::size_t size) {
    if (size == 0) return nullptr;
    return AllocateArray<std::uint8_t>(size, u"MGetMemory: out of memory exception\n");
}

void MCopyMemory(void* destination, const void* source, std::size_t size) {
    if (destination && source && size != 0) std::memcpy(destination, source, size);
}
