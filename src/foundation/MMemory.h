// Raw blocks. MGetMemory and MVector::Resize are the only places of the program that survive exhausted memory;
// any other failed allocation ends the process.
#pragma once

#include "foundation/MDebug.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <string_view>

// What the program may take in all, in bytes: half of the machine's memory. A request that goes beyond counts
// as exhausted memory, so that a hostile file meets a refusal and not the out-of-memory killer.
std::size_t MemoryLimit();
// Whether a block of this size stays within the limit, together with all that the process holds already, its
// libraries included.
bool IsAffordable(std::size_t bytes);

// Replaces the limit (0: back to the machine's own). For tests and fuzzing.
void SetMemoryLimit(std::size_t bytes);

// `size` uninitialised bytes from the global array allocator, released with `delete[]`. Null for a size of 0,
// and, after the line "MGetMemory: out of memory exception\n" on the debug channel, when memory is exhausted.
std::uint8_t* MGetMemory(std::size_t size);

// Byte copy of blocks that don't overlap. Does nothing if a pointer is null or `size` is 0.
void MCopyMemory(void* destination, const void* source, std::size_t size);

// `count` default elements from the global array allocator, or null, with `message` on the debug channel, when
// memory is exhausted. The byte count saturates, so an absurd count is refused and never wraps around.
template<typename T>
T* AllocateArray(std::size_t count, std::u16string_view message) {
    try {
        if (count > MemoryLimit() / sizeof(T) || !IsAffordable(count * sizeof(T))) throw std::bad_alloc();
        return new T[count];
    } catch (const std::bad_alloc&) {
        DebugOutput(message);
        return nullptr;
    }
}
