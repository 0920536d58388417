#include "foundation/MMemory.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace {

std::size_t limitOverride = 0;
std::size_t usedAtOverride = 0;

// What this process has of the machine's memory now; 0 where the system doesn't tell.
std::size_t MemoryInUse() {
    static const int statistics = open("/proc/self/statm", O_RDONLY | O_CLOEXEC); // open to the end
    std::array<char, 128> text{};
    if (statistics < 0 || pread(statistics, text.data(), text.size() - 1, 0) <= 0) return 0;
    const char* const resident = std::strchr(text.data(), ' '); // the second number; proc(5)
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (!resident || pageSize <= 0) return 0;
    return std::strtoull(resident, nullptr, 10) * static_cast<std::size_t>(pageSize);
}

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
    usedAtOverride = bytes == 0 ? 0 : MemoryInUse();
}

bool IsAffordable(std::size_t bytes) {
    constexpr std::size_t large = std::size_t{1} << 20; // smaller ones don't come in such numbers
    const std::size_t limit = MemoryLimit();
    if (bytes > limit) return false;
    if (bytes < large) return true;
    const std::size_t used = MemoryInUse();
    return bytes <= limit - std::min(limit, used - std::min(used, usedAtOverride));
}

std::uint8_t* MGetMemory(std::size_t size) {
    if (size == 0) return nullptr;
    return AllocateArray<std::uint8_t>(size, u"MGetMemory: out of memory exception\n");
}

void MCopyMemory(void* destination, const void* source, std::size_t size) {
    if (destination && source && size != 0) std::memcpy(destination, source, size);
}
