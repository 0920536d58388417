// Steps from a file, and steps that are done again when a file changes.

#include "Cli.h"

#include <signal.h>

#include <chrono>
#include <thread>

namespace {

using testing::HasSubstr;
using Recipe = Cli;
using Watch = Cli;

// A block of one colour on clear ground.
void WritePicture(const Cli& cli, const char* name, const MColour& colour, std::uint32_t width) {
    OwnedPicture picture = BlankPicture(width, 24, FormatRGBA8);
    for (const auto& [x, y] : PlacesOf(picture))
        if (y > 3) picture.SetPixel(x, y, colour);
    EXPECT_TRUE(picture.Save(cli.folder.File(name)));
}

// Waits until it holds, for as long as a slow machine may take.
template<typename Condition>
bool Soon(const Condition& condition) {
    for (int i = 0; i < 1000 && !condition(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
    return condition();
}

// lettrino-cli on its own until it is told to end.
class Watching {
public:
    Watching(Cli& owner, const std::string& arguments) : cli(owner) {
        const std::string command = "cd '" + cli.folder.path.string() + "' && { '" + LETTRINO_CLI + "' " +
                                    arguments +
                                    " --watch 2>watch.txt & echo $! >pid; wait $!; echo $? >status; } &";
        EXPECT_EQ(std::system(command.c_str()), 0);
        EXPECT_TRUE(Soon([&] { return Runs() == 1; }));
    }
    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;
    ~Watching() { End(); }

    std::string Log() const { return cli.folder.Read("watch.txt"); }
    // How many have come to an end, well or not.
    std::ptrdiff_t Runs() const {
        const std::string log = Log();
        std::ptrdiff_t runs = 0;
        for (std::size_t at = 0; (at = log.find("; watching", at)) != std::string::npos; ++at)
            ++runs;
        return runs;
    }
    // After the change, which makes one run.
    template<typename Change>
    std::string After(const Change& change) {
        const auto before = Runs();
        const std::size_t start = Log().size();
        change();
        EXPECT_TRUE(Soon([&] { return Runs() > before; })) << Log();
        return Log().substr(start);
    }
    int End() {
        if (ended) return -1;
        ended = true;
        kill(std::stoi(cli.folder.Read("pid")), SIGINT);
        EXPECT_TRUE(Soon([&] { return !cli.folder.Read("status").empty(); }));
        return std::stoi(cli.folder.Read("status"));
    }

private:
    Cli& cli;
    bool ended = false;
};

} // namespace

TEST_F(Recipe, TwoFamiliesInThreeSizesAndFourForms) {
    std::string text = "\xEF\xBB\xBF# Two families.\r\n\r\n  --select @set.txt\r\ncolour 204080\n";
    for (const std::string family : {"DejaVu Sans", "Liberation Serif"}) {
        const std::string name = family.substr(0, family.find(' '));
        text +=
            "family " + family + "\nheight 192\ngenerate\nkern\nmark " + name + "\nsave " + name + "-3x.sm\n";
        for (const int size : {128, 64}) {
            const std::string file = name + "-" + std::to_string(size / 64) + "x";
            text += "back " + name + "\nresize " + std::to_string(size) + "\nsave " + file + ".sm\nfnt " +
                    file + ".fnt\nwoff2 " + file + ".woff2\nminimal-html " + file + ".html\n";
        }
        text += "text \"To Va\" " + name + ".png\n";
    }
    std::filesystem::create_directory(folder.path / "fonts");
    folder.Write("fonts/all.steps", text);
    folder.Write("fonts/set.txt", "A-Z,a-z\n");
    // What it would do is what it does.
    Do("--steps fonts/all.steps --dry-run");
    const std::string promised = out;
    EXPECT_THAT(promised,
                HasSubstr("reads  fonts/all.steps\nreads  fonts/set.txt\nwrites fonts/DejaVu-3x.sm\n"));
    Do("--steps fonts/all.steps");
    for (const auto& entry : std::filesystem::directory_iterator(folder.path / "fonts")) {
        std::string file = "fonts/" + entry.path().filename().string();
        if (const auto page = file.find("_0.png"); page != std::string::npos) file.replace(page, 2, "_*");
        EXPECT_THAT(promised, HasSubstr(" " + file + "\n"));
    }
    // A size that was gone back for is the same as one that was made alone.
    const std::string alone =
        "--select A-Z,a-z --colour 204080 --family 'DejaVu Sans' --height 192 --generate --kern ";
    Do(alone + "--resize 64 --save alone.sm");
    EXPECT_TRUE(Info("--open fonts/DejaVu-1x.sm") == Info("--open alone.sm"));

    EXPECT_TRUE(SamePicture(Picture("fonts/DejaVu-1x.png"), Picture("alone.png")));
    EXPECT_TRUE(Info("--steps fonts/all.steps --back DejaVu") == Info(alone)) << "the line goes on after it";
}

TEST_F(Recipe, WhatIsWrongIsToldWithItsLine) {
    folder.Write("other.steps", "info\n");
    const std::tuple<const char*, int, const char*> cases[] = {
        {"family A\nbake\n", 2, "r.steps:2: there is no step --bake"},
        {"\n\nsteps other.steps", 2, "r.steps:3: a recipe takes in no other"},
        {"generate now", 2, "r.steps:1: --generate takes nothing"},
        {"save", 2, "r.steps:1: --save takes FILE.sm"},
        {"text a.png", 2, "r.steps:1: --text takes TEXT FILE.png"},
        {"names @none.txt", 2, "r.steps:1: none.txt can't be read"},
        {"# a\nheight tall", 2, "r.steps:2: --height 'tall': wrong usage"},
        {"info", 1, "r.steps:1: --info: there is no font yet"},
        {"back x", 1, "r.steps:1: --back: nothing was marked as 'x'"},
        {"family DejaVu Sans\nselect A\ngenerate\nsave none/a.sm\nsave b.sm", 1,
         "r.steps:4: --save: none/a.sm: "},
    };
    for (const auto& [text, wanted, words] : cases) {
        folder.Write("r.steps", text);
        EXPECT_EQ(Run("--steps r.steps"), wanted) << text;
        EXPECT_THAT(error, HasSubstr(words));
    }
    EXPECT_FALSE(Has("b.sm"));
    EXPECT_EQ(Run("--steps none.steps"), 2);
    EXPECT_EQ(Run("--info --serve 0"), 2);
}

TEST_F(Watch, APictureTheRecipeAndABrokenPictureInBetween) {
    WritePicture(*this, "A.png", MColour(200, 0, 0), 10);
    WritePicture(*this, "B.png", MColour(0, 200, 0), 12);
    folder.Write("r.steps", "pictures A=A.png\nsave out.sm\n");
    Watching watching(*this, "--steps r.steps");
    const auto glyphs = [&] { return Info("--open out.sm")["glyphs"]; };
    EXPECT_EQ(glyphs().size(), 2U);

    EXPECT_THAT(watching.After([&] { WritePicture(*this, "A.png", MColour(0, 0, 200), 20); }),
                HasSubstr("A.png changed"));
    EXPECT_EQ(glyphs()[0]["width"], 20);
    // The series goes on with a file that was not there.
    EXPECT_THAT(watching.After([&] { WritePicture(*this, "C.png", MColour(9, 9, 9), 30); }),
                HasSubstr("C.PNG is there"));
    EXPECT_EQ(glyphs().size(), 3U);
    // A picture that is none leaves the last good result.
    const std::string broken = watching.After([&] { folder.Write("C.png", "no picture"); });
    EXPECT_THAT(broken, HasSubstr("/C.png: it is no picture"));
    EXPECT_THAT(broken, HasSubstr("failed after"));
    EXPECT_EQ(glyphs().size(), 3U);
    watching.After([&] { WritePicture(*this, "C.png", MColour(0, 0, 200), 20); });
    Do("--steps r.steps --dry-run");
    EXPECT_EQ(out, "reads  r.steps\nreads  A.png\nreads  B.png\nreads  C.png\nwrites out.sm\nwrites out.png\n");
    watching.After([&] { folder.Write("r.steps", "family @later.txt\n"); });
    watching.After([&] { folder.Write("later.txt", "what was missing"); });
    EXPECT_THAT(watching.After([&] { folder.Write("r.steps", "pictures A=A.png\nbake\n"); }),
                HasSubstr("r.steps:2: there is no step --bake"));
    watching.After([&] { folder.Write("r.steps", "pictures A=A.png\nremove B\nsave out.sm\n"); });
    EXPECT_EQ(glyphs().size(), 2U);
    EXPECT_EQ(watching.Runs(), 9) << "one for each change, and none for what a run itself wrote";
    EXPECT_EQ(watching.End(), 0);
    EXPECT_THAT(watching.Log(), HasSubstr("lettrino-cli: ended\n"));
}

// A font that is opened and saved over would start itself for ever.
TEST_F(Watch, WhatARunWritesStartsNoOther) {
    Do("--family 'DejaVu Sans' --select A --generate --save f.sm");
    Watching watching(*this, "--open f.sm --set-kerning A,A,-3 --save f.sm");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(watching.Runs(), 1);
}
