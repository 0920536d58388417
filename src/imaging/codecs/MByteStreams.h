// What decoders read from and encoders write to: a file, or bytes in memory. Neither raises anything, since
// both are called from the middle of C libraries.
#pragma once

#include "foundation/MFile.h"
#include "foundation/MMemory.h"
#include "foundation/MSafeFile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

// Reads any part of a file. The bytes, or the file, must outlive it.
class MByteSource {
public:
    explicit MByteSource(std::span<const std::uint8_t> bytes) : all(bytes), size(bytes.size()) {}
    explicit MByteSource(MFile& opened);

    std::uint64_t Size() const { return size; }
    // False, with nothing promised about `target`, if not all of it is there.
    bool Read(std::uint64_t offset, void* target, std::size_t count);
    // Up to `count` bytes; how many came.
    std::size_t ReadSome(std::uint64_t offset, void* target, std::size_t count);
    // The whole file in memory, for libraries that want it so. Empty without memory, or if it can't be read.
    std::span<const std::uint8_t> All();

private:
    MFile* file = nullptr;
    std::unique_ptr<std::uint8_t[]> block;
    std::span<const std::uint8_t> all;
    std::uint64_t size = 0;
};

// Collects bytes and writes them out in large pieces. A file is made only when the first piece is full or at
// the end, so an encoder that gives up early makes none; an old file is replaced at the end alone.
class MByteSink {
public:
    MByteSink() = default; // keeps everything in memory
    explicit MByteSink(const MString& filePath, MLinks fileLinks = MLinks::Follow)
        : path(filePath), links(fileLinks) {}

    bool Write(const void* bytes, std::size_t count) { return WriteAt(end, bytes, count); }
    // Overwrites, or continues at the end, after zeros if the offset lies beyond it: for forms that align their
    // parts and go back to a header.
    bool WriteAt(std::uint64_t offset, const void* bytes, std::size_t count);
    std::uint64_t Size() const { return end; }
    // Puts the file into its place. True if all that was written is there, or in memory. Once anything failed
    // it stays false.
    bool Finish();
    // The complete file, still to be put into its place, or what failed of it.
    MSafeFile TakeFile();
    bool Failed() const { return failed; }

    // Of a sink in memory.
    std::span<const std::uint8_t> Bytes() const { return {block.get(), static_cast<std::size_t>(end)}; }

private:
    std::optional<MString> path;
    MLinks links = MLinks::Follow;
    std::optional<MSafeFile> file;
    std::unique_ptr<std::uint8_t[]> block; // what is not in the file yet
    std::size_t capacity = 0;
    std::uint64_t blockStart = 0; // its place in the file; always 0 in memory
    std::uint64_t end = 0;
    bool failed = false;

    bool Reserve(std::size_t count);
    bool Flush();
    bool Fail();
    bool WriteToFile(std::uint64_t offset, const void* bytes, std::size_t count);
};
