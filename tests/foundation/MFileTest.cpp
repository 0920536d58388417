#include "foundation/MFile.h"

#include "TemporaryFolder.h"
#include "Text.h"
#include "foundation/MFolders.h"
#include "foundation/MMemory.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <array>
#include <csignal>

namespace {

struct File : testing::Test {
    const TemporaryFolder folder;
};
using Folders = File;

TEST_F(File, ReadsInEitherMode) {
    for (const bool preload : {false, true}) {
        MFile file(folder.Write("a.bin", "0123456789"), false, preload);
        ASSERT_EQ(file.ok, 1);
        EXPECT_EQ(file.inMemory, preload);
        EXPECT_EQ(file.GetSize(), 10);
        char text[4] = {};
        EXPECT_TRUE(file.Read(text, 3));
        EXPECT_STREQ(text, "012");
        EXPECT_TRUE(file.Seek(8));
        EXPECT_FALSE(file.Read(text, 3));
        EXPECT_EQ(file.position, preload ? 8 : 0) << "in memory, what fails does not move";
        EXPECT_EQ(file.Seek(10), !preload); // a file in memory has no place at its end
        EXPECT_TRUE(file.Seek(9));
        EXPECT_TRUE(file.Read(text, 1));
        EXPECT_EQ(text[0], '9');
        EXPECT_FALSE(file.Seek(-1));
        EXPECT_FALSE(file.Read(nullptr, 1) || file.Read(text, 0));
    }
}

TEST_F(File, WritingStartsEmptyAndIsNotBuffered) {
    const MString path = folder.Write("a.bin", "an old and longer text");
    MFile file(path, true, false);
    ASSERT_EQ(file.ok, 1);
    EXPECT_TRUE(file.Write("new", 3));
    EXPECT_EQ(folder.Read("a.bin"), "new");
    EXPECT_FALSE(file.Write("new", 0) || file.Write("new", std::uint64_t{1} << 32));
    EXPECT_EQ(file.GetSize(), 3);
}

TEST_F(File, WhatCannotBeOpened) {
    for (const MString& path : {folder.File("missing"), FromSystemPath(folder.path), MString()}) {
        MFile file(path, false, false);
        char byte = 0;
        EXPECT_FALSE(file.ok || file.Read(&byte, 1) || file.GetSize());
    }
    EXPECT_EQ(MFile(folder.File("no/such/folder.bin"), true, false).ok, 0);
    EXPECT_EQ(GetFileSize(folder.File("missing")), 0);
}

TEST_F(File, AFullDiskIsTold) {
    MFile file(folder.File("a.bin"), true, false);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full{4, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_TRUE(file.Write("1234", 4));
    EXPECT_FALSE(file.Write("5", 1));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
}

TEST_F(File, IsPreloadedWhereMemoryHasRoom) {
    EXPECT_TRUE(MFile(folder.Write("empty", ""), false, true).inMemory);
    SetMemoryLimit(9);
    MFile file(folder.Write("large", "0123456789"), false, true);
    SetMemoryLimit(0);
    EXPECT_FALSE(file.inMemory);
    EXPECT_EQ(file.GetSize(), 10);
    char text[11] = {};
    EXPECT_TRUE(file.Read(text, 10));
    EXPECT_STREQ(text, "0123456789") << "from the disk";
}

TEST_F(Folders, NamesAreFoundInAnyCaseTheExactOneFirst) {
    folder.Write("Media/Fonts/Demo.SM", "x");
    folder.Write("\xC3\x89t\xC3\xA9.png", "x");
    folder.Write("caf\xE9.sm", "x");
    folder.Write("a.txt", "lower");
    folder.Write("A.TXT", "UPPER!");
    EXPECT_EQ(GetFileSize(folder.File("a.txt")), 5);
    EXPECT_EQ(GetFileSize(folder.File("A.TXT")), 6);
    EXPECT_TRUE(FileExists(folder.File("caf\xE9.sm"))) << "no UTF-8: by its text";
    EXPECT_TRUE(FileExists(folder.File("media\\FONTS/demo.sm")));
    EXPECT_TRUE(FileExists(folder.File("\xC3\xA9T\xC3\x89.PNG")));
    EXPECT_TRUE(FolderExists(folder.File("MEDIA/")));
    EXPECT_FALSE(FileExists(folder.File("media")));
    EXPECT_FALSE(FolderExists(folder.File("media/fonts/demo.sm")));
    EXPECT_TRUE(FileExists(folder.File("media/../MEDIA/fonts/demo.sm")));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    EXPECT_TRUE(FileExists("media/fonts/demo.sm")) << "from where the program stands";
    std::filesystem::current_path(before);
    EXPECT_FALSE(FileExists(MString()) || FolderExists(MString()));
    EXPECT_TRUE(FolderExists("/"));
}

TEST_F(Folders, FullPathsHaveNoDotsToStayWhereTheyAre) {
    const MString here = FromSystemPath(std::filesystem::current_path());
    EXPECT_EQ(FullPath("./a/./b.sm"), JoinPath(JoinPath(here, "a"), "b.sm"));
    EXPECT_EQ(FullPath("../b.sm"), JoinPath(JoinPath(here, ".."), "b.sm"));
    EXPECT_EQ(FullPath("/a/./b.sm"), "/a/b.sm");
    EXPECT_TRUE(FullPath("").IsEmpty());
}

TEST_F(Folders, PathsOnDiskAreDividedBySlashesAlone) {
    const std::array<const char*, 5> cases[] = {
        {"a/b.sm", "a", "b.sm", "SM", "a/b.png"},
        {"what?/1:2.html", "what?", "1:2.html", "HTML", "what?/1:2.png"},
        {"a.b/c", "a.b", "c", "", "a.b/c.png"},
        {"a\\b.x.Y", "a", "b.x.Y", "Y", "a\\b.x.png"},
        {"b#1.js", "b#1.js", "b#1.js", "JS", "b#1.png"},
        {"/a.sm", "", "a.sm", "SM", "/a.png"},
        {"", "", "", "", ".png"},
    };
    for (const auto& [path, parent, name, extension, asPng] : cases) {
        EXPECT_EQ(Narrow(FolderOf(path)), parent) << path;
        EXPECT_EQ(Narrow(FileNameOf(path)), name) << path;
        EXPECT_EQ(Narrow(ExtensionOf(path)), extension) << path;
        EXPECT_EQ(Narrow(WithExtension(path, "png")), asPng) << path;
    }
}

TEST_F(Folders, WritingFindsWhatReadingFinds) {
    std::filesystem::create_directory(folder.path / "documents");
    EXPECT_TRUE(CreateFolder(folder.File("Documents/Lettrino/Fonts")));
    EXPECT_TRUE(std::filesystem::is_directory(folder.path / "documents/Lettrino/Fonts"));
    EXPECT_FALSE(std::filesystem::exists(folder.path / "Documents"));
    EXPECT_TRUE(MFile(folder.File("DOCUMENTS/new.txt"), true, false).Write("1", 1));
    EXPECT_TRUE(MFile(folder.File("Documents/NEW.txt"), true, false).Write("22", 2));
    EXPECT_EQ(folder.Read("documents/new.txt"), "22") << "one file, found in either case";
    EXPECT_TRUE(DeleteFile(folder.File("documents/New.txt"), false, false));
    EXPECT_FALSE(std::filesystem::exists(folder.path / "documents/new.txt"));
    EXPECT_EQ(PlaceToWrite("no/such/folder.txt"), std::filesystem::path("no/such/folder.txt"));
}

TEST_F(Folders, CreatesWithAllParents) {
    EXPECT_TRUE(CreateFolder(folder.File("one\\two/three/")));
    EXPECT_TRUE(std::filesystem::is_directory(folder.path / "one/two/three"));
    EXPECT_TRUE(CreateFolder(folder.File("one")));
    folder.Write("file", "x");
    EXPECT_FALSE(CreateFolder(folder.File("file/below")));
    for (const char* root : {"C:", "C:/", "/"})
        EXPECT_TRUE(CreateFolder(root)) << root;
    EXPECT_FALSE(std::filesystem::exists("C:"));
    EXPECT_FALSE(CreateFolder(MString()));
}

TEST_F(Folders, ReadOnlyFilesAndFoldersStay) {
    CreateFolder(folder.File("empty"));
    EXPECT_FALSE(DeleteFile(folder.File("empty"), false, false));
    const MString file = folder.Write("a", "old");
    std::filesystem::permissions(folder.path / "a", std::filesystem::perms::owner_read);
    EXPECT_EQ(MFile(file, true, false).ok, 0);
    EXPECT_FALSE(DeleteFile(file, false, false));
    EXPECT_EQ(folder.Read("a"), "old");
    EXPECT_TRUE(DeleteFile(file, true, false));
    EXPECT_FALSE(DeleteFile(file, false, false)) << "there is none any more";
    EXPECT_TRUE(DeleteFile(MString(), false, false));
}

TEST_F(Folders, SizesAsText) {
    const std::pair<std::int64_t, const char*> cases[] = {
        {1023, "1023 bytes"}, {1024, "1 KB"}, {1048575, "1023 KB"}, {1048576, "1 MB"}, {5LL << 40, "5120 GB"}};
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(Narrow(SizeText(bytes)), text);
}

} // namespace
