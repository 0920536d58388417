// Saves that are killed at every call that changes a file, and at any other moment; disks that are full;
// several programs at once. A font is found whole by our reader, and by one that knows nothing but the text and
// the picture that it names.
#include "formats/MFontPair.h"

#include "formats/FontFile.h"
#include "formats/MTextFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <random>

namespace {

namespace fs = std::filesystem;

// Hundreds of saves, each flushed many times: in memory, where there is such a folder.
[[maybe_unused]] const bool inMemory = access("/dev/shm", W_OK) == 0 && setenv("TMPDIR", "/dev/shm", 0) == 0;

int stepsLeft = 0;

void DieAtStep(const char*) {
    if (stepsLeft-- == 0) kill(getpid(), SIGKILL);
}

class FontPairTest : public FontFileTest {
protected:
    std::array<std::string, 2> texts; // of font 0 and font 1, without the name of the picture
    std::array<std::string, 2> pictures;
    std::mt19937 random{1};

    FontPairTest() {
        for (const unsigned which : {0U, 1U}) {
            Save(which, "made.sm");
            pictures[which] = folder.Read("made.png");
            texts[which] = WithoutName(folder.Read("made.sm"), "made.png");
        }
    }

    // Two fonts that have nothing in common.
    void Make(unsigned which) {
        font.Clear();
        for (unsigned i = 0; i < 3 + which; ++i)
            FillWithNoise(AddGlyph(font, static_cast<char16_t>('A' + which * 10 + i), 40, 64).Picture,
                          9 * which + i);
        font.Baseline = static_cast<std::int32_t>(which);
        ASSERT_TRUE(font.Repack());
    }

    MWriteFailures Save(unsigned which, const char* name) {
        MWriteFailures failures;
        Make(which);
        EXPECT_TRUE(font.Save(folder.File(name), &failures));
        return failures;
    }

    static std::string WithoutName(const std::string& text, const fs::path& picture) {
        return ReplaceAll(text, Utf16(picture.filename().string()), "");
    }

    // Which font a reader finds that follows the text; 2 for one that is damaged or mixed.
    unsigned ByText(const char* name) const {
        MTextFile file(folder.File(name), false, false, MTextEncoding::Ansi);
        while (file.NextLine() && !file.GetString(0).Equals(u"TEX")) {
        }
        const fs::path picture = ToSystemPath(file.GetString(1));
        const std::string folderOfText = Utf16((folder.path / "").string());
        std::string text = folder.Read(name);
        if (picture.parent_path() != folder.path)
            text = ReplaceAll(text, Utf16(picture.parent_path().string() + "/"), folderOfText);
        for (const unsigned which : {0U, 1U}) {
            if (WithoutName(text, picture) == texts[which] && folder.Read(picture.c_str()) == pictures[which])
                return which;
        }
        return 2;
    }

    unsigned ByLoading(const char* name) {
        MColourFont loaded(nullptr);
        if (!loaded.Load(folder.File(name))) return 2;
        const auto which = static_cast<unsigned>(loaded.Baseline);
        if (which > 1) return 2;
        Make(which);
        ExpectSameGlyphs(font, loaded);
        return HasFailure() ? 2 : which;
    }

    static bool HasLeftovers(const fs::path& where) {
        return std::any_of(fs::directory_iterator(where), {}, [](const auto& entry) {
            const std::string name = entry.path().filename().string();
            return name.starts_with(".f.") || name.starts_with(".made.");
        });
    }

    // The wait status of a child that does this.
    static int InChild(const std::function<void()>& work) {
        const pid_t child = fork();
        if (child == 0) {
            work();
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }

    // Kills the work at its first step, its second, and so on until it comes to its end. Returns the number of
    // kills.
    static int KillAtEachStep(const std::function<void()>& prepare, const std::function<void()>& work,
                              const std::function<void(int)>& check) {
        for (int kills = 0;; ++kills) {
            prepare();
            const int status = InChild([&] {
                stepsLeft = kills;
                MSafeFile::BeforeStep = DieAtStep;
                work();
            });
            check(kills);
            if (WIFEXITED(status) || testing::Test::HasFailure()) return kills;
        }
    }

    void Empty() const {
        for (const auto& entry : fs::directory_iterator(folder.path))
            fs::remove_all(entry.path());
    }

    // A save of font 1 that ended after its second name for the picture was in the text.
    void Interrupt() {
        Empty();
        Save(0, "f.sm");
        InChild([&] {
            MSafeFile::BeforeStep = [](const char* step) {
                static int renames = 0;
                if (std::string_view(step) == "rename" && ++renames == 2) kill(getpid(), SIGKILL);
            };
            Save(1, "f.sm");
        });
    }
};

TEST_F(FontPairTest, KilledAtEveryStep) {
    const int kills = KillAtEachStep([&] { Empty(); }, [&] { Save(1, "f.sm"); },
                                     [&](int step) {
                                         const bool saved = FileExists(folder.File("f.sm"));
                                         EXPECT_TRUE(!saved || ByText("f.sm") == 1) << step;
                                         EXPECT_TRUE(!saved || ByLoading("f.sm") == 1) << step;
                                     });
    EXPECT_GT(kills, 15);
    for (const bool links : {false, true}) {
        bool wasNew = false;
        KillAtEachStep(
            [&] {
                Empty();
                Save(0, "f.sm");
                if (!links) return;
                for (const fs::path& name : {fs::path("f.sm"), fs::path("f.png")}) {
                    const fs::path real = name.extension() / name; // the folders ".sm" and ".png"
                    fs::create_directories((folder.path / real).parent_path());
                    fs::rename(folder.path / name, folder.path / real);
                    fs::create_symlink(real, folder.path / name);
                }
            },
            [&] { Save(1, "f.sm"); },
            [&](int step) {
                const unsigned found = ByText("f.sm");
                EXPECT_LE(found, 1U) << step;
                EXPECT_EQ(ByLoading("f.sm"), found) << step;
                EXPECT_EQ(ByText("f.sm"), found) << "what loading finished, " << step;
                EXPECT_LE(int{wasNew}, static_cast<int>(found)) << "and never back to the old one";
                wasNew = found == 1;
                EXPECT_EQ(Save(0, "f.sm").size(), 0U) << step;
                EXPECT_EQ(ByText("f.sm"), 0U);
                EXPECT_FALSE(HasLeftovers(folder.path)) << "the next save takes away what this one left";
                for (const char* name : {"f.sm", "f.png"})
                    EXPECT_EQ(fs::is_symlink(folder.path / name), links);
            });
        EXPECT_TRUE(wasNew);
    }
}

// What finishes an interrupted save, or replaces it, may be killed as well.
TEST_F(FontPairTest, KilledAgain) {
    Interrupt();
    ASSERT_TRUE(HasLeftovers(folder.path));
    EXPECT_EQ(folder.Read("f.png"), pictures[0]) << "not yet replaced";
    EXPECT_EQ(ByText("f.sm"), 1U);
    KillAtEachStep([&] { Interrupt(); }, [&] { FinishFontPair(folder.File("f.sm")); },
                   [&](int step) { EXPECT_EQ(ByText("f.sm"), 1U) << step; });
    EXPECT_EQ(folder.Read("f.png"), pictures[1]);
    EXPECT_FALSE(HasLeftovers(folder.path));
    for (const unsigned which : {0U, 1U}) {
        KillAtEachStep([&] { Interrupt(); }, [&] { Save(which, "f.sm"); },
                       [&](int step) {
                           const unsigned found = ByText("f.sm");
                           EXPECT_TRUE(found == which || found == 1) << step;
                           EXPECT_EQ(ByLoading("f.sm"), found) << step;
                       });
        EXPECT_EQ(ByText("f.sm"), which);
        EXPECT_FALSE(HasLeftovers(folder.path)) << "of the interrupted save neither";
    }
}

TEST_F(FontPairTest, AMovedFolderOfAnInterruptedSave) {
    Interrupt();
    fs::create_directory(folder.path / "moved");
    for (const auto& entry : fs::directory_iterator(folder.path)) {
        if (!entry.is_directory()) fs::rename(entry.path(), folder.path / "moved" / entry.path().filename());
    }
    EXPECT_EQ(ByLoading("moved/f.sm"), 1U);
}

// Some programs save one font, some the other, all the time; one of them is killed at any moment and started
// anew.
TEST_F(FontPairTest, SeveralProgramsAtOnceKilledAtRandom) {
    Save(0, "f.sm");
    const auto start = [&](unsigned which) {
        const pid_t child = fork();
        if (child != 0) return child;
        prctl(PR_SET_PDEATHSIG, SIGKILL); // also when this test ends early
        for (;;) {
            if (!Save(which, "f.sm").empty()) _exit(1);
        }
    };
    std::array<pid_t, 2> savers{start(0), start(1)};
    for (int kills = 0; kills < 40 && !HasFailure(); ++kills) {
        const unsigned which = random() % 2;
        usleep(static_cast<useconds_t>(random() % 8000));
        kill(savers[which], SIGKILL);
        int status = 0;
        waitpid(savers[which], &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "a save failed";
        // The other one goes on meanwhile: our reader must not mind.
        const unsigned loaded = ByLoading("f.sm");
        EXPECT_LE(loaded, 1U) << kills;
        kill(savers[1 - which], SIGSTOP);
        waitpid(savers[1 - which], &status, WUNTRACED);
        EXPECT_LE(ByText("f.sm"), 1U) << kills;
        kill(savers[1 - which], SIGCONT);
        savers[which] = start(which);
    }
    for (const pid_t saver : savers) {
        kill(saver, SIGKILL);
        waitpid(saver, nullptr, 0);
    }
    EXPECT_TRUE(Save(1, "f.sm").empty());
    EXPECT_EQ(ByText("f.sm"), 1U);
    EXPECT_FALSE(HasLeftovers(folder.path));
}

// As on a disk with room for so many bytes of a file.
TEST_F(FontPairTest, OnAFullDiskTheOldFontStays) {
    Save(0, "f.sm");
    const std::size_t largest = std::max(pictures[1].size(), texts[1].size());
    for (std::size_t room = 0; room <= largest + 256; room += 1 + largest / 40) {
        const int status = InChild([&] {
            const rlimit limit{room, RLIM_INFINITY};
            setrlimit(RLIMIT_FSIZE, &limit);
            const MWriteFailures failures = Save(1, "f.sm");
            const bool told = !failures.empty() && failures[0].reason.Contains(u'F'); // "File too large"
            _exit(told ? 1 : failures.empty() ? 0 : 2);
        });
        ASSERT_TRUE(WIFEXITED(status));
        const bool failed = room < largest;
        EXPECT_EQ(WEXITSTATUS(status), failed ? 1 : 0) << room;
        EXPECT_EQ(ByText("f.sm"), failed ? 0U : 1U) << room;
        EXPECT_FALSE(HasLeftovers(folder.path));
    }
    EXPECT_EQ(ByText("f.sm"), 1U);
}

// Nobody else's font can come between the two files.
TEST_F(FontPairTest, TheFolderIsLockedWhileFilesTakeTheirPlaces) {
    static std::string watched;
    static int locked;
    watched = folder.path.string();
    locked = 0;
    MSafeFile::BeforeStep = [](const char* step) {
        if (std::string_view(step) != "rename" && std::string_view(step) != "link") return;
        const int handle = open(watched.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        EXPECT_NE(flock(handle, LOCK_EX | LOCK_NB), 0) << step;
        close(handle);
        ++locked;
    };
    EXPECT_TRUE(Save(0, "f.sm").empty());
    MSafeFile::BeforeStep = nullptr;
    EXPECT_EQ(locked, 4) << "the second name, the text that names it, the picture, the text";
}

TEST_F(FontPairTest, AFileThatCantBeReplacedLeavesBothAsTheyAre) {
    for (const char* blocked : {"f.sm", "f.png"}) {
        Empty();
        Save(0, "f.sm");
        fs::permissions(folder.path / blocked, fs::perms::owner_read);
        const MWriteFailures failures = Save(1, "f.sm");
        ASSERT_EQ(failures.size(), 1U);
        EXPECT_EQ(failures[0].path, folder.File(blocked));
        EXPECT_EQ(ByText("f.sm"), 0U);
    }
}

} // namespace
