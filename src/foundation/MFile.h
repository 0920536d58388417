// A binary file: open, read, write, seek, with an optional copy of the whole file in memory. It shows no
// message and raises nothing; it reports through `ok` and its results.
#pragma once

#include "foundation/MString.h"
#include "foundation/MVector.h"

#include <cstdint>
#include <fstream>

// True from the start and changed by nothing: a file that can't be opened fails at once. When it is false,
// opening is tried ten times with 100 ms after each failure, for files that another program holds.
extern bool FileShareMode;

class MFile {
public:
    std::int32_t ok = 1; // 0 if the file couldn't be opened
    std::fstream handle; // closed once the whole file is in memory
    bool writing = false;
    bool inMemory = false; // reads are served from `buffer`
    MVector<std::uint8_t> buffer;
    std::int64_t position = 0; // in `buffer`
    std::int64_t size = -1;    // of a preloaded file

    // For reading, the name is looked up without regard to case if it isn't found as it stands; for writing, an
    // old file of this name is deleted first, so that the new one starts empty, and a read-only one can't be
    // opened. `preload` reads all of it at
    // once and closes it; a file too large for that stays open as if `preload` hadn't been given.
    MFile(const MString& path, bool writing, bool preload);

    std::int64_t GetSize(); // 0 if not ok
    // True only if exactly `count` bytes came. False for a null pointer or a count of 0.
    bool Read(void* data, std::uint32_t count);
    // As many bytes as there are, up to `count`; for readers that take the file in pieces of their own choice.
    std::uint32_t ReadSome(void* data, std::uint32_t count);
    // From the start. False for a negative offset and, when the file is in memory, from its end on.
    bool Seek(std::int64_t offset);
    // True only if all bytes were written. Not buffered: what was written is in the file.
    bool Write(const void* data, std::uint64_t count);

private:
    void Open(const MString& path);
    void Preload();
};

std::int64_t GetFileSize(const MString& path); // 0 if it can't be opened
