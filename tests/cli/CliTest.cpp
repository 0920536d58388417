#include "Cli.h"

#include "Text.h"
#include "formats/game/MGameEngines.h"

#include <sys/stat.h>

#include <algorithm>
#include <tuple>
#include <vector>

namespace {

using testing::HasSubstr;

// Every kind of face and every size comes back as it was written.
TEST(Cli, RoundTrips) {
    const std::pair<const char*, int> fonts[] = {
        {"--family 'DejaVu Sans' --weight 200", 16}, // an extra light face
        {"--family 'DejaVu Sans'", 1024},
        {"--family 'Liberation Serif' --weight 700 --italic", 100},
        {"--family 'Liberation Mono' --italic", 16},
        {"--family 'No Such Family'", 100},
        {"", 100}, // Arial Black, or what stands in for it
    };
    for (const auto& [face, height] : fonts) {
        SCOPED_TRACE(face);
        Cli cli;
        const auto made = cli.Info(std::string(face) + " --height " + std::to_string(height) +
                                   " --select all --generate --kern --save f.sm");
        EXPECT_EQ(cli.error, "");
        EXPECT_GT(made["glyphs"].size(), 180U);
        for (const auto& glyph : made["glyphs"])
            ASSERT_EQ(glyph["height"], height);
        EXPECT_GT(made["capHeight"], height / 3);
        EXPECT_EQ(cli.Info("--open f.sm --save g.sm"), made);
        EXPECT_TRUE(SamePicture(cli.Picture("f.png"), cli.Picture("g.png")));
        EXPECT_FALSE(cli.Has("home")) << "the user's folders play no part";
    }
}

TEST(Cli, EditsTheFont) {
    Cli cli;
    const auto info = cli.Info("--family 'DejaVu Sans' --select A,V,x --generate --kern --set-kerning A,V,-9 "
                               "--set-kerning x,U+20AC,3 --remove x");
    EXPECT_EQ(info["glyphs"].size(), 2U);
    const nlohmann::json pair{{"left", 'A'}, {"right", 'V'}, {"amount", -9}};
    EXPECT_EQ(std::ranges::count(info["kerning"], pair), 1);
    for (const auto& each : info["kerning"])
        EXPECT_TRUE(each["left"] != 'x' && each["right"] != 'x');
    EXPECT_EQ(cli.Info("--select A --generate --select B --generate")["glyphs"].size(), 2U);
}

TEST(Cli, TheDebugChannelIsHeardWhenAsked) {
    Cli cli;
    for (const bool asked : {false, true}) {
        if (asked) setenv("LETTRINO_DEBUG", "1", 1);
        cli.Run("--family 'DejaVu Sans' --select A --generate --trim-rows");
        EXPECT_EQ(cli.error.find("Trimming Vertically: ") != std::string::npos, asked);
    }
    unsetenv("LETTRINO_DEBUG");
}

TEST(Cli, KernsForText) {
    Cli cli;
    const auto amount = [&](const std::string& steps) {
        const auto info = cli.Info("--family 'DejaVu Sans' --height 200 --select A-Z,a-z --generate " + steps);
        for (const auto& pair : info["kerning"])
            if (pair["left"] == 'A' && pair["right"] == 'V') return pair["amount"].get<int>();
        return 0;
    };
    const int optical = amount("--kern-optical");
    EXPECT_LT(optical, -5);
    EXPECT_GT(optical, amount("--kern") / 2) << "far from letters that touch";
    EXPECT_NEAR(amount("--kern-optical 50"), optical / 2.0, 1);
    EXPECT_EQ(amount("--kern-optical 0"), 0);
    EXPECT_EQ(amount("--model-pairs 'A,V,-3;T,o,2' --kern-optical"), -3);
    EXPECT_NEAR(amount("--kern-from-font"), optical, 4) << "as the designer has it";
    cli.Run("--family 'DejaVu Sans' --select A,V --generate --kern-optical");
    EXPECT_EQ(cli.status, 1);
    EXPECT_THAT(cli.error, HasSubstr("--kern-optical: the font has none of the letters"));
    for (const char* const steps : {"--kern-optical 301", "--kern-optical x", "--model-pairs A,V"})
        EXPECT_EQ(cli.Run(steps), 2) << steps;
    cli.Do("--model-pairs 'A,V,1;'");
}

// A plain family comes out in the chosen colour; on the path of colour fonts it is white, whatever the colour.
TEST(Cli, GlyphsCarryTheirColour) {
    Cli cli;
    const std::string make = "--family 'DejaVu Sans' --height 100 --colour 2060C0 --select H,48-57 ";
    cli.Do(make + "--generate --single-files .");
    EXPECT_TRUE(cli.Has("C57.png"));
    const auto middle = static_cast<std::int32_t>(cli.Picture("C72.png").Width) / 2;
    EXPECT_EQ(cli.Picture("C72.png").GetPixel(middle, 0), MColour(0x20, 0x60, 0xC0, 0));
    cli.Do(make + "--colour-font --generate --single-files .");
    EXPECT_EQ(cli.Picture("C72.png").GetPixel(2, 50), MColour(255, 255, 255, 255));
    EXPECT_EQ(cli.Info("--family 'Noto Color Emoji' --colour-font --select 0-9 --generate")["glyphs"].size(),
              10U);
}

// Status 1 and one line that names the step, the file and the reason; nothing half-made stays.
TEST(Cli, FailuresNameStepFileAndReason) {
    Cli cli;
    cli.Do("--family 'DejaVu Sans' --select A --generate --save good.sm");
    const std::string text = cli.folder.Read("good.sm");
    const std::string png = cli.folder.Read("good.png");
    cli.folder.Write("alone.sm", text);
    cli.folder.Write("cut.sm", text);
    cli.folder.Write("cut.png", png.substr(0, png.size() / 2));
    cli.folder.Write("other.sm", "Another TextureFont 1.0\r\n");
    cli.folder.Write("other.png", png);
    cli.folder.Write("empty.sm", "");
    cli.folder.Write("empty.png", png);
    std::filesystem::create_directory(cli.folder.path / "folder.sm");
    // Read-only for the administrator too.
    cli.folder.Write("kept.png", png);
    std::filesystem::permissions(cli.folder.path / "kept.png", std::filesystem::perms::owner_read);
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"--open good.sm --save kept.sm", "--save: kept.sm: ", "kept.png can't be written over"},
        {"--open good.sm --html kept.html", "--html: kept.html: ", "kept.png can't be written over"},
        {"--open missing.sm", "--open: missing.sm: ", "no such file"},
        {"--open folder.sm", "--open: folder.sm: ", "folder"},
        {"--open alone.sm", "--open: alone.sm: ", "picture"},
        {"--open cut.sm", "--open: cut.sm: ", "cut.png can't be read"},
        {"--open other.sm", "--open: other.sm: ", "header"},
        {"--open empty.sm", "--open: empty.sm: ", "header"},
        {"--open good.png", "--open: good.png: ", ".sm"},
        {"--open good.sm --save no/f.sm", "--save: no/f.sm: ", "no folder"},
        {"--open good.sm --save /proc/f.sm", "--save: /proc/f.sm: ", "could not be written"},
        {"--open good.sm --single-files no", "--single-files: no: ", "no such folder"},
        {"--open good.sm --remove Z", "--remove: ", "no glyph"},
        {"--open good.sm --set-kerning 32,A,1", "--set-kerning: ", "below 33"},
        {"--select none --generate", "--generate: ", "no character is selected"},
        {"--family 'DejaVu Sans' --select U+00A0 --generate", "--generate: ", "no glyph"},
        {"--save f.sm", "--save: ", "no font yet"},
        {"--resize 50", "--resize: ", "no font yet"},
        {"--open good.sm --remove A --trim-rows --resize 50", "--resize: ", "below 1"},
        {"--font-file good.sm", "--font-file: good.sm: ", "no font"},
        {"--font-file missing.ttf", "--font-file: missing.ttf: ", "no such file"},
    };
    for (const auto& [arguments, names, reason] : cases) {
        EXPECT_EQ(cli.Run(arguments), 1) << arguments;
        EXPECT_EQ(cli.out, "");
        EXPECT_THAT(cli.error, testing::StartsWith("lettrino-cli: " + std::string(names))) << arguments;
        EXPECT_THAT(cli.error, HasSubstr(reason)) << arguments;
        EXPECT_EQ(std::ranges::count(cli.error, '\n'), 1) << cli.error;
    }
    EXPECT_FALSE(cli.Has("f.sm"));
    EXPECT_TRUE(cli.Has("kept.png"));
    EXPECT_FALSE(cli.Has("kept.sm"));
}

// Every file that could not be written has its line, and the others are whole; the old ones stay.
TEST(Cli, FullDisks) {
    Cli cli;
    const std::string font = "--family 'DejaVu Sans' --height 200 --select A-Z --generate ";
    cli.Do(font + "--save f.sm --minimal-html p.html --single-files . --cubes cube.png");
    const std::string script = cli.folder.Read("p.js");
    const std::string limited = "-c 'ulimit -f 1 && exec \"$0\" \"$@\"' '" LETTRINO_CLI "' ";
    for (const auto& [steps, names, several] : {std::tuple("--single-files .", "--single-files: .: ", true),
                                                {"--cubes cube.png", "--cubes: cube.png: ", true},
                                                {"--save f.sm", "--save: f.sm: ", false},
                                                {"--minimal-html p.html", "--minimal-html: p.html: ", false},
                                                {"--text AAAA line.png", "--text: line.png: ", false}}) {
        EXPECT_EQ(cli.Run(limited + font + steps, {}, "bash"), 1) << steps;
        EXPECT_EQ(std::ranges::count(cli.error, '\n') > 1, several) << cli.error;
        EXPECT_THAT(cli.error, testing::StartsWith(std::string("lettrino-cli: ") + names));
        EXPECT_THAT(cli.error, HasSubstr("File too large"));
    }
    for (const char* picture : {"f.png", "p.png", "C65.png", "C73.png", "cube1.png"})
        EXPECT_TRUE(cli.Picture(picture).IsValid()) << picture;
    EXPECT_EQ(cli.folder.Read("p.js"), script);
    EXPECT_FALSE(cli.Has("line.png"));
    cli.Do("--open f.sm");
}

// Files that can't be what they are named: told, and neither waited for nor died of.
TEST(Cli, PipesAndOtherOddFiles) {
    Cli cli;
    cli.Do("--family 'DejaVu Sans' --select A-Z --generate --save a.sm");
    for (const char* name : {"f.sm", "f.png", "f.phf", "f.js", "f.ttf", "f.txt"})
        ASSERT_EQ(mkfifo((cli.folder.path / name).c_str(), 0600), 0);
    cli.folder.Write("p.phf", "<PhF>\n");
    cli.folder.Write("names.txt", std::string(3 << 20, 'A'));
    cli.folder.Write("long.js", cli.folder.Read("a.sm") + std::string(40 << 20, 'A'));
    setenv("TMPDIR", "/no/such/folder", 1);
    for (const char* steps :
         {"--open f.sm", "--open f.phf", "--open f.js", "--picture A=f.png", "--font-file f.ttf",
          "--open a.sm --names f.txt --cubes x.png", "--open a.sm --save f.sm", "--open p.phf",
          "--open a.sm --html f.html", "--open a.sm --text A f.png", "--open long.js",
          "--open a.sm --names names.txt --cubes x.png"}) {
        EXPECT_EQ(cli.Run(steps), 1) << steps;
        EXPECT_EQ(std::ranges::count(cli.error, '\n'), 1) << cli.error;
    }
    unsetenv("TMPDIR");
}

TEST(Cli, WebNamesThatCouldRunAreRefused) {
    Cli cli;
    cli.Do("--family 'DejaVu Sans' --select A --generate --save a.sm");
    const auto entries = [&] {
        return std::distance(std::filesystem::directory_iterator(cli.folder.path), {});
    };
    const auto before = entries();
    for (const char* name : {"x=document['title']='t'.html", "<b>.html", "a.\";alert(1);\".html", "a%41.html",
                             "a(1).html", "a;b.html", "a\tb.html", "\xC4\xBC.html"}) {
        EXPECT_EQ(cli.Run("--open a.sm --minimal-html '" + ReplaceAll(name, "'", "'\\''") + "'"), 1) << name;
        EXPECT_THAT(cli.error, HasSubstr("script or markup")) << name;
        EXPECT_EQ(entries(), before) << name;
    }
    // Harmless, but dead: the letter has a NUL for its low byte.
    cli.Do("--open a.sm --minimal-html 'a\xC4\x80.html'");
    EXPECT_THAT(cli.error, HasSubstr("warning: the name '"));
    EXPECT_TRUE(cli.Has("a\xC4\x80.html"));
    cli.Do("--open a.sm --minimal-html x_1.html");
    EXPECT_EQ(cli.error, "");
}

// A path that doesn't tell all the folders above the file, or whose folders have dots, is one like any other.
TEST(Cli, PathsAreRelativeToTheWorkingFolder) {
    Cli cli;
    for (const char* name : {"Fonts", "Textures", "my.cubes"})
        std::filesystem::create_directory(cli.folder.path / name);
    cli.Do("--family 'DejaVu Sans' --select A-Z --generate --save Fonts/f.sm");
    std::filesystem::rename(cli.folder.path / "Fonts/f.png", cli.folder.path / "Textures/f.png");
    cli.Do("--open Fonts/f.sm");
    cli.Do("--open f.sm", "Fonts");
    cli.Do("--open ../Fonts/f.sm --cubes cube.png", "my.cubes");
    EXPECT_TRUE(cli.Has("my.cubes/cube1.png"));
    cli.Do("--open Fonts/f.sm --cubes my.cubes/cube.png");
    EXPECT_TRUE(cli.Has("my1.png")); // cut at the first dot of what was typed
    cli.Do("--open ./f.sm --cubes ./here.png", "Fonts");
    cli.Do("--open f.sm --cubes ../above.png", "Fonts");
    EXPECT_TRUE(cli.Has("Fonts/here1.png") && cli.Has("above1.png"));
}

TEST(Cli, WrongUsageDoesNothing) {
    Cli cli;
    const std::string make = "--family 'DejaVu Sans' --select A --generate --save made.sm ";
    for (const char* arguments :
         {"--nonsense", "--height", "--height tall", "--colour red", "--colour 12345G", "--select A-",
          "--select Z-A", "--select U+20AC", "--select A,,B", "--set-kerning A,B", "--remove AB",
          "--generate=no", "stray", "--resize", "--resize-normalised big", "--weight 9999999999"}) {
        EXPECT_EQ(cli.Run(make + arguments), 2) << arguments;
        EXPECT_FALSE(cli.Has("made.sm")) << arguments;
        EXPECT_EQ(std::ranges::count(cli.error, '\n'), 1) << cli.error;
    }
    EXPECT_EQ(cli.Run(""), 2);
}

TEST(Cli, UnderstandsSelections) {
    const std::pair<const char*, std::vector<int>> cases[] = {
        {"A-C,x", {65, 66, 67, 120}},    {"48-50,5", {48, 49, 50, 53}},
        {"U+00E9,\xC3\xA8", {232, 233}}, {"U+0041-U+0043", {65, 66, 67}},
        {"20-34,B-B", {33, 34, 66}},     {"-", {45}},
        {"+--", {43, 44, 45}},           {"'", {39}},
    };
    for (const auto& [set, expected] : cases) {
        Cli cli;
        const auto info = cli.Info(std::string("--family 'DejaVu Sans' --select \"") + set + "\" --generate");
        std::vector<int> codes;
        for (const auto& glyph : info["glyphs"])
            codes.push_back(glyph["code"]);
        EXPECT_THAT(codes, testing::UnorderedElementsAreArray(expected)) << set << cli.error;
    }
}

TEST(Cli, ChangesTheGlyphHeight) {
    Cli cli;
    const std::string family = "--family 'DejaVu Sans' ";
    const auto made = cli.Info(family + "--height 100 --select A,V --generate --kern --save f.sm");
    const std::pair<const char*, int> cases[] = {
        {"--open f.sm --resize 50", 50},
        {"--open f.sm --resize 5", 16}, // limited, as in the dialogs
        {"--open f.sm --resize 1024", 1024},
        {"--height 5 --select A --generate", 16},
        {"--height 5000 --select A --generate", 1024},
        {"--height -3 --select A --generate", 16},
        // Without a cap height there is nothing to normalise by.
        {"--select V --generate --resize 50", 50},
        {"--select V --generate --resize-normalised 50", 50},
    };
    for (const auto& [steps, height] : cases) {
        const auto info = cli.Info(family + steps);
        EXPECT_EQ(info["glyphHeight"], height) << steps;
        EXPECT_GE(info["picture"]["height"], height) << steps;
    }
    EXPECT_NEAR(cli.Info("--open f.sm --resize-normalised 200")["capHeight"], 140, 2);
    EXPECT_EQ(cli.Info("--open f.sm --resize 100"), made);
    // An answer to a question that was not asked goes to no later one.
    cli.folder.Write("names.txt", "AV");
    cli.Do(family + "--select B-Z --generate --resize 50 --select A --height 50 --generate "
                    "--names names.txt --cubes cube.png");
}

TEST(Cli, HelpVersionAndFonts) {
    Cli cli;
    cli.Do("--help");
    EXPECT_THAT(cli.out, HasSubstr("--single-files FOLDER"));
    for (const MGameEngine& engine : gameEngines)
        EXPECT_THAT(cli.out, HasSubstr(std::string(engine.Name)));
    cli.Do("--version");
    EXPECT_EQ(cli.out, "Lettrino 4.0.0.8\n");
    cli.Do("--list-fonts");
    const auto fonts = nlohmann::json::parse(cli.out);
    EXPECT_EQ(std::ranges::count(fonts, nlohmann::json{{"family", "Liberation Sans"},
                                                       {"weight", 700},
                                                       {"italic", false},
                                                       {"style", "Bold"},
                                                       {"colour", nlohmann::json::array()}}),
              1);
    for (const auto& face : fonts)
        EXPECT_EQ(face["colour"].size(), face["family"] == "Noto Color Emoji" ? 1U : 0U) << face["family"];
}

TEST(Cli, PicturesBecomeGlyphs) {
    Cli cli;
    std::filesystem::create_directory(cli.folder.path / "set");
    for (const char* name : {"set/A.png", "set/B.PNG", "set/C.png", "set/E.png"}) {
        OwnedPicture picture = BlankPicture(30, 48, FormatRGBA8);
        for (std::int32_t y = 8; y < 40; ++y)
            picture.SetPixel(5, y, MColour(1, 2, 3));
        ASSERT_TRUE(picture.Save(cli.folder.File(name)));
    }
    auto info = cli.Info("--pictures A=set/A.png --save x.sm");
    EXPECT_EQ(info["glyphs"].size(), 3U);
    // The height is that of the first picture; the glyph is trimmed to its ink and one column.
    EXPECT_EQ(std::tuple(info["glyphHeight"], info["capHeight"], info["baseline"], info["glyphs"][0]["width"]),
              std::tuple(48, 32, 8, 2));
    info = cli.Info("--padding 10,6 --spacing 3,-4 --trim no --picture U+20AC=set/E.png");
    const auto& glyph = info["glyphs"][0];
    EXPECT_EQ(std::tuple(glyph["code"], glyph["width"], glyph["after"]), std::tuple(0x20AC, 48 * 30 / 64, -4));
    EXPECT_EQ(cli.Run("--picture A=set"), 1);
    EXPECT_EQ(cli.Run("--padding -1,0 --picture A=set/A.png"), 1);
    EXPECT_EQ(cli.Run("--picture set/A.png"), 2);
}

TEST(Cli, WholeFontEditsWebAndCubes) {
    Cli cli;
    const std::string make = "--family 'DejaVu Sans' --height 40 --select A-Z,U+00C9,U+00E9 --generate ";
    EXPECT_EQ(cli.Info(make + "--ascii-only")["glyphs"].size(), 26U);
    EXPECT_LT(cli.Info(make + "--trim-rows")["glyphHeight"], 40);
    cli.Do(make + "--html demo.html");
    for (const char* file :
         {"demo.html", "demo.js", "demo.png", "lettrino-1.0.js", "try.js", "try.css", "colourpicker.png"})
        EXPECT_TRUE(cli.Has(file)) << file;
    EXPECT_EQ(cli.Info("--open demo.js")["glyphs"].size(), 28U) << cli.error;
    cli.folder.Write("names.txt", "Anna\nB\xC3\xA9"
                                  "a\n"); // UTF-8 without its mark
    cli.folder.Write("digit.txt", "X5\n");
    cli.Do(make + "--background 102030 --text 'ABC AB' line.png --names names.txt --cubes cube.png");
    EXPECT_THAT(cli.out, testing::StartsWith("Number of names:\t3\n"));
    EXPECT_TRUE(cli.Has("cube4.png"));
    EXPECT_EQ(cli.Picture("line.png").GetPixel(0, 0), MColour(0x10, 0x20, 0x30));
    cli.folder.Write("none.txt", "\n");
    std::filesystem::create_directory(cli.folder.path / "no1.png"); // would be in the way of a cube
    cli.Do(make + "--names none.txt --cubes no.png");
    cli.folder.Write("head",
                     "<unicode_mapping>\n<map id=\"A\" unc=\"65\"/>\n</unicode_mapping>\n<glyph id=\"A\">\n"
                     "<shape embedded=\"I\"/>\n<bbox width=\"9\" height=\"9\"/>\n<base y=\"9\"/>\n</glyph>\n"
                     "</glyphs>\n<image id=\"I\">\nbase64\n");
    cli.folder.Write("end", "</image>\n");
    cli.Do("-c 'base64 line.png | cat head - end > a.phf'", {}, "bash");
    EXPECT_EQ(cli.Info("--open a.phf")["glyphs"].size(), 1U) << cli.error;
    cli.folder.Write("empty.phf", "<PhF>\n");
    EXPECT_EQ(cli.Info(make + "--open empty.phf")["glyphs"].size(), 0U)
        << "nothing of the font before it stays";
    for (const char* steps :
         {"--html 'my font.html'", "--html no/font.html", "--names digit.txt --cubes cube.png"})
        EXPECT_EQ(cli.Run(make + steps), 1) << steps;
    EXPECT_THAT(cli.error, HasSubstr("letter 5"));
}

} // namespace
