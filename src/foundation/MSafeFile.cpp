#include "foundation/MSafeFile.h"

#include "foundation/MFolders.h"
#include "foundation/MString.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr mode_t permissionBits = 07777;

void Step(const char* step) {
    if (MSafeFile::BeforeStep) MSafeFile::BeforeStep(step);
}

fs::path FolderOf(const fs::path& file) {
    return file.parent_path().empty() ? fs::path(".") : file.parent_path();
}

// ".demo.saving-0.png" for "demo.png". A name close to the longest that file systems take is cut.
fs::path BesideName(const fs::path& target, int number) {
    constexpr std::size_t longest = 200;
    const std::string stem = target.stem().string().substr(0, longest);
    const std::string extension = target.extension().string().substr(0, 16);
    return FolderOf(target) / ("." + stem + ".saving-" + std::to_string(number) + extension);
}

bool SameFile(int handle, const fs::path& file) {
    struct stat open {};
    struct stat named {};
    return fstat(handle, &open) == 0 && lstat(file.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

enum class LockResult : std::uint8_t { Held, Busy, Unknown };

LockResult TryLock(int handle) {
    if (flock(handle, LOCK_EX | LOCK_NB) == 0) return LockResult::Held;
    return errno == EWOULDBLOCK ? LockResult::Busy : LockResult::Unknown;
}

// Removes a file beside a target whose writer is gone. False if there is a writer, or no way to know.
bool RemoveAbandoned(const fs::path& file) {
    const int handle = open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0) return errno == ENOENT;
    const bool removed = TryLock(handle) == LockResult::Held && (!SameFile(handle, file) || RemoveFile(file));
    close(handle);
    return removed;
}

// A new file that this process holds the lock of. -1 with errno if there can't be one.
int CreateLocked(const fs::path& file, mode_t mode) {
    Step("create");
    const int handle = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (handle < 0) return -1;
    // Between these two calls it looked abandoned, and another writer may have removed it.
    if (TryLock(handle) != LockResult::Busy && SameFile(handle, file)) return handle;
    close(handle);
    errno = EEXIST;
    return -1;
}

bool WriteAll(int handle, std::uint64_t offset, const void* bytes, std::size_t count) {
    const auto* rest = static_cast<const char*>(bytes);
    while (count > 0) {
        Step("write");
        const ssize_t written = pwrite(handle, rest, count, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        rest += written;
        offset += static_cast<std::uint64_t>(written);
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

bool FlushFile(int handle) {
    Step("flush");
    return fsync(handle) == 0;
}

// A limit on the size of files is told like a full disk, and doesn't end the program.
void OutliveFileSizeLimit() {
    static const auto once = std::signal(SIGXFSZ, SIG_IGN);
    static_cast<void>(once);
}

} // namespace

MSafeFile::MSafeFile(const MString& filePath, MLinks links) : path(filePath) {
    OutliveFileSizeLimit();
    if (path.IsEmpty()) {
        Fail("it has no name");
        return;
    }
    if (FindTarget(links) && LookAtOldFile()) MakeBeside();
}

MSafeFile MSafeFile::Failed(const MString& path, const MString& reason) {
    MSafeFile file;
    file.path = path;
    file.failure = reason;
    return file;
}

MSafeFile::MSafeFile(MSafeFile&& other) noexcept
    : path(std::move(other.path)), failure(std::move(other.failure)),
      target(std::exchange(other.target, fs::path())), beside(std::exchange(other.beside, fs::path())),
      handle(std::exchange(other.handle, -1)), replaces(other.replaces), finished(other.finished),
      mode(other.mode), owner(other.owner), group(other.group) {}

MSafeFile& MSafeFile::operator=(MSafeFile&& other) noexcept {
    if (this == &other) return *this;
    Discard();
    path = std::move(other.path);
    failure = std::move(other.failure);
    target = std::exchange(other.target, fs::path());
    beside = std::exchange(other.beside, fs::path());
    handle = std::exchange(other.handle, -1);
    replaces = other.replaces;
    finished = other.finished;
    mode = other.mode;
    owner = other.owner;
    group = other.group;
    return *this;
}

bool MSafeFile::FindTarget(MLinks links) {
    constexpr int mostLinks = 40; // as the system itself
    const fs::path given = PlaceToWrite(path);
    target = given;
    std::error_code error;
    for (int i = 0; fs::is_symlink(target, error); ++i) {
        if (i == mostLinks) return Fail("its symbolic links lead in a circle");
        const fs::path next = fs::read_symlink(target, error);
        if (error) return Fail(FromSystem(error.message()));
        target = FolderOf(target) / next; // next alone, if it is absolute
    }
    if (links == MLinks::Follow || target == given) return true;
    const fs::path home = fs::canonical(FolderOf(given), error);
    const fs::path end = fs::weakly_canonical(target, error);
    const auto [rest, inside] = std::mismatch(home.begin(), home.end(), end.begin(), end.end());
    if (rest == home.end()) return true;
    return Fail("it is a link that leads out of the folder, to " + FromSystemPath(end));
}

bool MSafeFile::LookAtOldFile() {
    struct stat old {};
    if (stat(target.c_str(), &old) != 0) return errno == ENOENT || FailBySystem();
    if (S_ISDIR(old.st_mode)) return Fail("it is a folder");
    if (!S_ISREG(old.st_mode)) return Fail("it is no ordinary file");
    // Also where the system would let this user replace it all the same.
    if ((old.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) return Fail("it is write-protected");
    if (access(target.c_str(), W_OK) != 0) return FailBySystem();
    if (geteuid() != 0 && geteuid() != old.st_uid) {
        return Fail("it belongs to another user, whose it would no longer be");
    }
    replaces = true;
    mode = old.st_mode & permissionBits;
    owner = old.st_uid;
    group = old.st_gid;
    return true;
}

bool MSafeFile::MakeBeside() {
    constexpr int most = 32; // programs that write one file at a time
    // What replaces a private file is private from the start.
    const mode_t permissions = replaces ? 0600 : 0666;
    for (int number = 0; number < most;) {
        beside = BesideName(target, number);
        handle = CreateLocked(beside, permissions);
        if (handle >= 0) {
            // What several writers left that were killed together, whichever of them had been done before.
            while (++number < most)
                RemoveAbandoned(BesideName(target, number));
            return true;
        }
        if (errno != EEXIST) break;
        if (!RemoveAbandoned(beside)) ++number;
    }
    beside.clear();
    return FailBySystem();
}

bool MSafeFile::WriteAt(std::uint64_t offset, const void* bytes, std::size_t count) {
    if (!Ok() || handle < 0 || finished) return false;
    return WriteAll(handle, offset, bytes, count) || FailBySystem();
}

// Owner first: a change of it takes some permissions away.
bool MSafeFile::TakeOver() {
    if (!replaces) return true;
    constexpr std::uint32_t groupBits = 070;
    std::uint32_t permissions = mode;
    struct stat own {};
    if (fstat(handle, &own) != 0) return false;
    if (own.st_uid != owner || own.st_gid != group) {
        Step("chown");
        if (fchown(handle, own.st_uid == owner ? static_cast<uid_t>(-1) : owner, group) != 0) {
            if (own.st_uid != owner) return false;
            // A group that this user isn't in; the new one gets no more than everybody.
            permissions &= ~groupBits | (mode & 07) << 3;
        }
    }
    Step("chmod");
    return fchmod(handle, permissions) == 0;
}

bool MSafeFile::Finish() {
    if (!Ok() || handle < 0) return false;
    if (finished) return true;
    finished = true;
    return (TakeOver() && FlushFile(handle)) || FailBySystem();
}

bool MSafeFile::Rename() {
    if (!Finish()) return false;
    Step("rename");
    if (rename(beside.c_str(), target.c_str()) != 0) return FailBySystem();
    beside.clear();
    close(std::exchange(handle, -1));
    return true;
}

bool MSafeFile::Place() {
    if (!Rename()) return false;
    return FlushFolder(FolderOf(target)) || FailBySystem();
}

void MSafeFile::Discard() {
    // Closed last, so that nobody else takes it for abandoned and removes the next writer's in its stead.
    if (!beside.empty()) RemoveFile(std::exchange(beside, fs::path()));
    if (handle >= 0) close(std::exchange(handle, -1));
}

bool MSafeFile::Fail(const MString& reason) {
    if (failure.IsEmpty()) failure = reason;
    Discard();
    return false;
}

bool MSafeFile::FailBySystem() {
    return Fail(FromSystem(std::system_category().message(errno)));
}

std::size_t PlaceAll(std::span<MSafeFile> files, MWriteFailures* failures) {
    for (MSafeFile& file : files)
        file.Finish();
    std::vector<fs::path> folders;
    std::size_t placed = 0;
    for (MSafeFile& file : files) {
        if (file.Rename()) {
            ++placed;
            folders.push_back(FolderOf(file.Target()));
        } else if (failures) {
            failures->push_back({file.Path(), file.Failure()});
        }
    }
    std::ranges::sort(folders);
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    for (const fs::path& folder : folders)
        FlushFolder(folder);
    return placed;
}

bool FlushFolder(const fs::path& folder) {
    const int handle = open(FolderOf(folder / "x").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return true; // a folder that may be written but not read
    // Many file systems have no flush for folders, and say so in different ways.
    const bool flushed = FlushFile(handle) || errno != EIO;
    close(handle);
    return flushed;
}

bool LinkOrCopy(const fs::path& file, const fs::path& name) {
    Step("link");
    if (link(file.c_str(), name.c_str()) == 0) return true;
    if (errno == EEXIST) return false;
    std::error_code error;
    Step("copy");
    if (!fs::copy_file(file, name, error)) return false;
    const int handle = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    const bool flushed = handle >= 0 && FlushFile(handle);
    if (handle >= 0) close(handle);
    return flushed || (RemoveFile(name), false);
}

bool RemoveFile(const fs::path& file) {
    Step("remove");
    return unlink(file.c_str()) == 0 || errno == ENOENT;
}

MFolderLock::MFolderLock(std::vector<fs::path> folders) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds patience(10);
    std::error_code error;
    for (fs::path& folder : folders)
        folder = fs::canonical(FolderOf(folder / "x"), error);
    // Always in the same order, and each once: two programs never wait for each other.
    std::ranges::sort(folders);
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    const auto end = Clock::now() + patience;
    for (const fs::path& folder : folders) {
        const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (handle < 0) continue;
        handles.push_back(handle);
        LockResult result = TryLock(handle);
        while (result == LockResult::Busy && Clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            result = TryLock(handle);
        }
        held = held && result != LockResult::Busy;
    }
}

MFolderLock::~MFolderLock() {
    for (const int handle : handles)
        close(handle);
}

MFileStamp StampOf(const fs::path& file) {
    struct stat state {};
    if (stat(file.c_str(), &state) != 0) return {};
    return {state.st_dev, state.st_ino, state.st_size, state.st_ctim.tv_sec, state.st_ctim.tv_nsec};
}
