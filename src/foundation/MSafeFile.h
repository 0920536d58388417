// Writing that never loses what was there: the bytes go into a file beside the target, are flushed to the disk,
// and take the target's place by one rename when they are complete. Whoever reads the target, at any moment and
// also after the program was killed or the power failed, finds the old file whole or the new one whole.
//
// What stays of the old file: its owner, group and permissions, and a symbolic link, whose target is what is
// replaced. A file whose owner couldn't be kept is refused, and so is whatever is no ordinary file.
//
// The file beside "demo.png" is ".demo.saving-0.png". Its writer holds a lock on it; one that nobody holds was
// left by a program that was killed, and the next writer of the same target removes it.
#pragma once

#include "foundation/MString.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

// A file that could not be written, and why.
struct MWriteFailure {
    MString path;
    MString reason;
};
using MWriteFailures = std::vector<MWriteFailure>;

enum class MLinks : std::uint8_t {
    Follow,       // the file that a symbolic link names is replaced, wherever it is
    StayInFolder, // a link that leads out of the target's folder is refused
};

class MSafeFile {
public:
    // Called before each call to the system that changes a file or folder, with its name; for tests that end or
    // stop the program there.
    static inline void (*BeforeStep)(const char* step) = nullptr;

    MSafeFile() = default; // no file, and nothing that failed
    // Makes the empty file beside the target. After a failure nothing is left of it.
    explicit MSafeFile(const MString& path, MLinks links = MLinks::Follow);
    // A file that failed already.
    static MSafeFile Failed(const MString& path, const MString& reason);
    MSafeFile(MSafeFile&& other) noexcept;
    MSafeFile& operator=(MSafeFile&& other) noexcept;
    ~MSafeFile() { Discard(); } // what is not in its place is dropped

    const MString& Path() const { return path; }       // of the target, as given
    const MString& Failure() const { return failure; } // why it can't be written; empty while all goes well
    bool Ok() const { return failure.IsEmpty(); }
    // Where the target is after all symbolic links of its name, and the file beside it.
    const std::filesystem::path& Target() const { return target; }
    const std::filesystem::path& Beside() const { return beside; }

    // All of these are false once anything failed.
    bool WriteAt(std::uint64_t offset, const void* bytes, std::size_t count);
    // Gives it the old file's owner and permissions and flushes it. It can't be written from here on.
    bool Finish();
    // Finishes it if need be and renames it over the target. Durable after FlushFolder.
    bool Rename();
    // Renames it and flushes the folder.
    bool Place();
    // Removes the file beside the target, if it is not in its place yet.
    void Discard();

private:
    MString path;
    MString failure;
    std::filesystem::path target;
    std::filesystem::path beside; // empty when there is none
    int handle = -1;              // holds the lock
    bool replaces = false;
    bool finished = false;
    std::uint32_t mode = 0; // of the old file, as are these two
    std::uint32_t owner = 0;
    std::uint32_t group = 0;

    bool FindTarget(MLinks links);
    bool LookAtOldFile();
    bool MakeBeside();
    bool TakeOver();
    bool Fail(const MString& reason);
    bool FailBySystem();
};

// Puts files into their places, all flushed first and each folder once. What fails is added to `failures`, if
// given; the others are placed all the same. How many were placed.
std::size_t PlaceAll(std::span<MSafeFile> files, MWriteFailures* failures);

// Whether what was done to the folder's entries is on the disk.
bool FlushFolder(const std::filesystem::path& folder);

// A second name for a file or, where the file system knows no such thing, a flushed copy. False if `name`
// exists.
bool LinkOrCopy(const std::filesystem::path& file, const std::filesystem::path& name);
bool RemoveFile(const std::filesystem::path& file);

// Keeps other programs that use it from putting files into the same folders. Given up by the system when the
// program ends, however that happens.
class MFolderLock {
public:
    // Waits for up to ten seconds.
    explicit MFolderLock(std::vector<std::filesystem::path> folders);
    MFolderLock(const MFolderLock&) = delete;
    MFolderLock& operator=(const MFolderLock&) = delete;
    ~MFolderLock();

    // False if another program holds one of them still. A file system that knows no locks counts as locked.
    bool IsHeld() const { return held; }

private:
    std::vector<int> handles;
    bool held = true;
};

// Tells one state of a file from the next: any replacement and any change gives another. All zeros without a
// file.
struct MFileStamp {
    std::uint64_t device = 0;
    std::uint64_t file = 0;
    std::int64_t size = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;

    friend bool operator==(const MFileStamp&, const MFileStamp&) = default;
};
MFileStamp StampOf(const std::filesystem::path& file);
