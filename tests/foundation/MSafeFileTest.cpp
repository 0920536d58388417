#include "foundation/MSafeFile.h"

#include "TemporaryFolder.h"
#include "Text.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <future>
#include <optional>
#include <string>
#include <tuple>

namespace {

namespace fs = std::filesystem;

bool Replace(const MString& path, std::string_view bytes, MString* failure = nullptr,
             MLinks links = MLinks::Follow) {
    MSafeFile file(path, links);
    file.WriteAt(0, bytes.data(), bytes.size());
    const bool placed = file.Place();
    if (failure) *failure = file.Failure();
    return placed;
}

std::ptrdiff_t Entries(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

struct stat StateOf(const fs::path& file) {
    struct stat state {};
    EXPECT_EQ(stat(file.c_str(), &state), 0);
    return state;
}

TEST(SafeFile, TheOldOneStaysUntilTheNewOneIsComplete) {
    const TemporaryFolder folder;
    const MString path = folder.Write("a.txt", "old");
    {
        MSafeFile file(path);
        EXPECT_TRUE(file.WriteAt(2, "w", 1));
        EXPECT_TRUE(file.WriteAt(0, "ne", 2));
        EXPECT_EQ(folder.Read("a.txt"), "old");
        EXPECT_TRUE(file.Place());
        EXPECT_EQ(folder.Read("a.txt"), "new");
        EXPECT_FALSE(file.WriteAt(3, "!", 1)) << "it is in its place";
    }
    EXPECT_TRUE(MSafeFile(path).WriteAt(0, "dropped", 7));
    EXPECT_EQ(folder.Read("a.txt"), "new");
    EXPECT_EQ(Entries(folder.path), 1);
}

TEST(SafeFile, KeepsOwnerPermissionsAndLinks) {
    const TemporaryFolder folder;
    const fs::path file = folder.path / "a.txt";
    folder.Write("a.txt", "old");
    EXPECT_TRUE(geteuid() != 0 || chown(file.c_str(), 65534, 65533) == 0) << "an administrator may";
    for (const mode_t mode : {0600U, 0664U, 0755U}) {
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        const struct stat before = StateOf(file);
        ASSERT_TRUE(Replace(folder.File("a.txt"), "new"));
        const struct stat after = StateOf(file);
        EXPECT_EQ(std::tuple(after.st_mode, after.st_uid, after.st_gid),
                  std::tuple(before.st_mode, before.st_uid, before.st_gid));
        EXPECT_NE(after.st_ino, before.st_ino) << "replaced, not written over";
    }
    const mode_t mask = umask(027);
    ASSERT_TRUE(Replace(folder.File("fresh.txt"), "new"));
    umask(mask);
    EXPECT_EQ(StateOf(folder.path / "fresh.txt").st_mode & 0777, 0640U);

    fs::create_directory(folder.path / "below");
    fs::create_symlink("below/real.txt", folder.path / "link.txt");
    fs::create_symlink("link.txt", folder.path / "second.txt");
    for (const char* text : {"made", "replaced"}) {
        ASSERT_TRUE(Replace(folder.File("second.txt"), text));
        EXPECT_EQ(folder.Read("below/real.txt"), text);
    }
    EXPECT_TRUE(fs::is_symlink(folder.path / "link.txt") && fs::is_symlink(folder.path / "second.txt"));
}

TEST(SafeFile, WhatIsRefused) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    folder.Write("protected.txt", "old");
    fs::permissions(folder.path / "protected.txt", fs::perms::owner_read);
    fs::create_directory(folder.path / "folder");
    ASSERT_EQ(mkfifo((folder.path / "pipe").c_str(), 0600), 0);
    fs::create_symlink("round", folder.path / "round");
    elsewhere.Write("out.txt", "not ours");
    fs::create_symlink(elsewhere.path / "out.txt", folder.path / "out.txt");
    fs::create_directory_symlink(elsewhere.path, folder.path / "outside");
    const auto entries = Entries(folder.path);
    const std::pair<const char*, const char*> cases[] = {
        {"protected.txt", "it is write-protected"},
        {"folder", "it is a folder"},
        {"pipe", "it is no ordinary file"},
        {"round", "its symbolic links lead in a circle"},
        {"no/such/folder.txt", "No such file or directory"},
    };
    for (const auto& [name, reason] : cases) {
        MString failure;
        EXPECT_FALSE(Replace(folder.File(name), "new", &failure)) << name;
        EXPECT_EQ(Narrow(failure), reason);
    }
    MString failure;
    EXPECT_FALSE(Replace(folder.File("out.txt"), "new", &failure, MLinks::StayInFolder));
    EXPECT_EQ(Narrow(failure),
              "it is a link that leads out of the folder, to " + (elsewhere.path / "out.txt").string());
    EXPECT_EQ(elsewhere.Read("out.txt"), "not ours");
    EXPECT_TRUE(Replace(folder.File("outside/out.txt"), "new", nullptr, MLinks::StayInFolder))
        << "the folder itself may be a link";
    EXPECT_FALSE(Replace(MString(), "new"));
    EXPECT_EQ(Entries(folder.path), entries);
}

TEST(SafeFile, WhatAKilledWriterLeftIsRemovedAndThatOfALivingOneIsNot) {
    const TemporaryFolder folder;
    const std::string name(250, 'x'); // longer than what stands beside it may be
    const pid_t child = fork();
    if (child == 0) {
        const MString file = folder.File(name.c_str());
        MSafeFile first(file), second(file), third(file);
        second.Discard();
        kill(getpid(), SIGKILL);
    }
    waitpid(child, nullptr, 0);
    ASSERT_EQ(Entries(folder.path), 2);
    MSafeFile living(folder.File(name.c_str()));
    EXPECT_EQ(Entries(folder.path), 1) << "its own";
    EXPECT_TRUE(living.WriteAt(0, "living", 6));
    ASSERT_TRUE(Replace(folder.File(name.c_str()), "other"));
    ASSERT_TRUE(living.Place());
    EXPECT_EQ(folder.Read(name.c_str()), "living");
    EXPECT_EQ(Entries(folder.path), 1);
}

TEST(FolderLock, MakesOthersWait) {
    const TemporaryFolder folder;
    std::optional<MFolderLock> lock(std::in_place, std::vector{folder.path, folder.path});
    EXPECT_TRUE(lock->IsHeld());
    auto other = std::async(std::launch::async, [&] { return MFolderLock({folder.path}).IsHeld(); });
    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    lock.reset();
    EXPECT_TRUE(other.get());
}

} // namespace
