#include "Cli.h"

#include "Text.h"
#include "formats/game/MGameEngines.h"

#include <sys/stat.h>

#include <algorithm>
#include <tuple>
#include <vector>

using testing::HasSubstr;

// Every kind of face and every size comes back as it was written.
TEST_F(Cli, RoundTrips) {
    const std::pair<const char*, int> fonts[] = {
        {"--family 'DejaVu Sans' --weight 200", 16}, // an extra light face
        {"--family 'DejaVu Sans'", 512},
        {"--family 'Liberation Serif' --weight 700 --italic", 100},
        {"--family 'Liberation Mono' --italic", 16},
        {"--family 'No Such Family'", 100},
        {"", 100}, // Arial Black, or what stands in for it
    };
    for (const auto& [face, height] : fonts) {
        SCOPED_TRACE(face);
        const auto made = Info(std::string(face) + " --height " + std::to_string(height) +
                               " --select all --generate --kern --save f.sm");
        EXPECT_EQ(error.empty(), !std::string_view(face).ends_with("Family'")) << error;
        EXPECT_GT(made["glyphs"].size(), 180U);
        for (const auto& glyph : made["glyphs"])
            ASSERT_EQ(glyph["height"], height);
        EXPECT_GT(made["capHeight"], height / 3);
        EXPECT_EQ(Info("--open f.sm --save g.sm"), made);
        EXPECT_TRUE(SamePicture(Picture("f.png"), Picture("g.png")));
        EXPECT_FALSE(Has("home")) << "the user's folders play no part";
    }
}

TEST_F(Cli, EditsTheFont) {
    const auto info = Info("--family 'DejaVu Sans' --select A,V,x --generate --kern --set-kerning A,V,-9 "
                           "--set-kerning x,U+20AC,3 --remove x");
    EXPECT_EQ(info["glyphs"].size(), 2U);
    const nlohmann::json pair{{"left", 'A'}, {"right", 'V'}, {"amount", -9}};
    EXPECT_EQ(std::ranges::count(info["kerning"], pair), 1);
    for (const auto& each : info["kerning"])
        EXPECT_TRUE(each["left"] != 'x' && each["right"] != 'x');
    EXPECT_EQ(Info("--select A --generate --select B --generate")["glyphs"].size(), 2U);
}

TEST_F(Cli, TheDebugChannelIsHeardWhenAsked) {
    for (const bool asked : {false, true}) {
        if (asked) setenv("LETTRINO_DEBUG", "1", 1);
        Run("--family 'DejaVu Sans' --select A --generate --trim-rows");
        EXPECT_EQ(error.find("Trimming Vertically: ") != std::string::npos, asked);
    }
    unsetenv("LETTRINO_DEBUG");
}

TEST_F(Cli, KernsForText) {
    const auto amount = [&](const std::string& steps) {
        const auto info = Info("--family 'DejaVu Sans' --height 200 --select A-Z,a-z --generate " + steps);
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
    Run("--family 'DejaVu Sans' --select A,V --generate --kern-optical");
    EXPECT_EQ(status, 1);
    EXPECT_THAT(error, HasSubstr("--kern-optical: the font has none of the letters"));
    for (const char* const steps : {"--kern-optical 301", "--kern-optical x", "--model-pairs A,V"})
        EXPECT_EQ(Run(steps), 2) << steps;
    Do("--model-pairs 'A,V,1;'");
}

// A plain family comes out in the chosen colour; on the path of colour fonts it is white, whatever the colour.
TEST_F(Cli, GlyphsCarryTheirColour) {
    const std::string make = "--family 'DejaVu Sans' --height 100 --colour 2060C0 --select H,48-57 ";
    Do(make + "--generate --single-files .");
    EXPECT_TRUE(Has("C57.png"));
    const auto middle = static_cast<std::int32_t>(Picture("C72.png").Width) / 2;
    EXPECT_EQ(Picture("C72.png").GetPixel(middle, 0), MColour(0x20, 0x60, 0xC0, 0));
    Do(make + "--colour-font --generate --single-files .");
    EXPECT_EQ(Picture("C72.png").GetPixel(2, 50), MColour(255, 255, 255, 255));
    EXPECT_EQ(Info("--family 'Noto Color Emoji' --colour-font --select 0-9 --generate")["glyphs"].size(), 10U);
}

// Status 1 and one line that names the step, the file and the reason; nothing half-made stays.
TEST_F(Cli, FailuresNameStepFileAndReason) {
    Do("--family 'DejaVu Sans' --select A --generate --save good.sm");
    const std::string text = folder.Read("good.sm");
    const std::string png = folder.Read("good.png");
    folder.Write("alone.sm", text);
    folder.Write("cut.sm", text);
    folder.Write("cut.png", png.substr(0, png.size() / 2));
    folder.Write("other.sm", "Another TextureFont 1.0\r\n");
    folder.Write("other.png", png);
    folder.Write("empty.sm", "");
    folder.Write("empty.png", png);
    std::filesystem::create_directory(folder.path / "folder.sm");
    // Read-only for the administrator too.
    folder.Write("kept.png", png);
    std::filesystem::permissions(folder.path / "kept.png", std::filesystem::perms::owner_read);
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
        EXPECT_EQ(Run(arguments), 1) << arguments;
        EXPECT_EQ(out, "");
        EXPECT_THAT(error, testing::StartsWith("lettrino-cli: " + std::string(names))) << arguments;
        EXPECT_THAT(error, HasSubstr(reason)) << arguments;
        EXPECT_EQ(std::ranges::count(error, '\n'), 1) << error;
    }
    EXPECT_FALSE(Has("f.sm"));
    EXPECT_TRUE(Has("kept.png"));
    EXPECT_FALSE(Has("kept.sm"));
}

// Every file that could not be written has its line, and the others are whole; the old ones stay.
TEST_F(Cli, FullDisks) {
    const std::string font = "--family 'DejaVu Sans' --height 200 --select A-Z --generate ";
    Do(font + "--save f.sm --minimal-html p.html --single-files . --cubes cube.png");
    const std::string script = folder.Read("p.js");
    const std::string limited = "-c 'ulimit -f 1 && exec \"$0\" \"$@\"' '" LETTRINO_CLI "' ";
    for (const auto& [steps, names, several] : {std::tuple("--single-files .", "--single-files: .: ", true),
                                                {"--cubes cube.png", "--cubes: cube.png: ", true},
                                                {"--save f.sm", "--save: f.sm: ", false},
                                                {"--minimal-html p.html", "--minimal-html: p.html: ", false},
                                                {"--text AAAA line.png", "--text: line.png: ", false}}) {
        EXPECT_EQ(Run(limited + font + steps, {}, "bash"), 1) << steps;
        EXPECT_EQ(std::ranges::count(error, '\n') > 1, several) << error;
        EXPECT_THAT(error, testing::StartsWith(std::string("lettrino-cli: ") + names));
        EXPECT_THAT(error, HasSubstr("File too large"));
    }
    for (const char* picture : {"f.png", "p.png", "C65.png", "C73.png", "cube1.png"})
        EXPECT_TRUE(Picture(picture).IsValid()) << picture;
    EXPECT_EQ(folder.Read("p.js"), script);
    EXPECT_FALSE(Has("line.png"));
    Do("--open f.sm");
    EXPECT_EQ(Run("-c '\"$0\" --open f.sm --info >/dev/full' '" LETTRINO_CLI "'", {}, "bash"), 1);
}

// Files that can't be what they are named: told, and neither waited for nor died of.
TEST_F(Cli, PipesAndOtherOddFiles) {
    Do("--family 'DejaVu Sans' --select A-Z --generate --save a.sm");
    for (const char* name : {"f.sm", "f.png", "f.phf", "f.js", "f.ttf", "f.txt"})
        ASSERT_EQ(mkfifo((folder.path / name).c_str(), 0600), 0);
    folder.Write("p.phf", "<PhF>\n");
    folder.Write("names.txt", std::string(3 << 20, 'A'));
    folder.Write("long.js", folder.Read("a.sm") + std::string(40 << 20, 'A'));
    setenv("TMPDIR", "/no/such/folder", 1);
    for (const char* steps :
         {"--open f.sm", "--open f.phf", "--open f.js", "--picture A=f.png", "--font-file f.ttf",
          "--open a.sm --names f.txt --cubes x.png", "--open a.sm --save f.sm", "--open p.phf",
          "--open a.sm --html f.html", "--open a.sm --text A f.png", "--open long.js",
          "--open a.sm --names names.txt --cubes x.png"}) {
        EXPECT_EQ(Run(steps), 1) << steps;
        EXPECT_EQ(std::ranges::count(error, '\n'), 1) << error;
    }
    unsetenv("TMPDIR");
}

TEST_F(Cli, WebNamesThatCouldRunAreRefused) {
    Do("--family 'DejaVu Sans' --select A --generate --save a.sm");
    const auto entries = [&] { return std::distance(std::filesystem::directory_iterator(folder.path), {}); };
    const auto before = entries();
    for (const char* name : {"x=document['title']='t'.html", "<b>.html", "a.\";alert(1);\".html", "a%41.html",
                             "a(1).html", "a;b.html", "a\tb.html", "\xC4\xBC.html"}) {
        EXPECT_EQ(Run("--open a.sm --minimal-html '" + ReplaceAll(name, "'", "'\\''") + "'"), 1) << name;
        EXPECT_THAT(error, HasSubstr("script or markup")) << name;
        EXPECT_EQ(entries(), before) << name;
    }
    // Harmless, but dead: the letter has a NUL for its low byte.
    Do("--open a.sm --minimal-html 'a\xC4\x80.html'");
    EXPECT_THAT(error, HasSubstr("warning: the name '"));
    EXPECT_TRUE(Has("a\xC4\x80.html"));
    Do("--open a.sm --minimal-html x_1.html");
    EXPECT_EQ(error, "");
}

// A path that doesn't tell all the folders above the file, or whose folders have dots, is one like any other.
TEST_F(Cli, PathsAreRelativeToTheWorkingFolder) {
    for (const char* name : {"Fonts", "Textures", "my.cubes"})
        std::filesystem::create_directory(folder.path / name);
    Do("--family 'DejaVu Sans' --select A-Z --generate --save Fonts/f.sm");
    std::filesystem::rename(folder.path / "Fonts/f.png", folder.path / "Textures/f.png");
    Do("--open Fonts/f.sm");
    Do("--open f.sm", "Fonts");
    Do("--open ../Fonts/f.sm --cubes cube.png", "my.cubes");
    EXPECT_TRUE(Has("my.cubes/cube1.png"));
    Do("--open Fonts/f.sm --cubes my.cubes/cube.png");
    EXPECT_TRUE(Has("my1.png")); // cut at the first dot of what was typed
    Do("--open ./f.sm --cubes ./here.png", "Fonts");
    Do("--open f.sm --cubes ../above.png", "Fonts");
    EXPECT_TRUE(Has("Fonts/here1.png") && Has("above1.png"));
}

TEST_F(Cli, WrongUsageDoesNothing) {
    const std::string make = "--family 'DejaVu Sans' --select A --generate --save made.sm ";
    for (const char* arguments : {"--nonsense",
                                  "--height",
                                  "--height tall",
                                  "--colour red",
                                  "--colour 12345G",
                                  "--select A-",
                                  "--select Z-A",
                                  "--select U+20AC",
                                  "--select A,,B",
                                  "--set-kerning A,B",
                                  "--remove AB",
                                  "--generate=no",
                                  "stray",
                                  "--resize",
                                  "--resize-normalised big",
                                  "--weight 9999999999",
                                  "--open ''",
                                  "--save ''",
                                  "--fnt ./",
                                  "--css-page ..",
                                  "--dry-run --names ''",
                                  "--steps ''"}) {
        EXPECT_EQ(Run(make + arguments), 2) << arguments;
        EXPECT_FALSE(Has("made.sm")) << arguments;
        EXPECT_EQ(std::ranges::count(error, '\n'), 1) << error;
    }
    EXPECT_EQ(Run(""), 2);
    EXPECT_EQ(Run("--text AAAA"), 2);
    EXPECT_THAT(error, HasSubstr("2 required TEXT FILE.png missing"));
}

TEST_F(Cli, UnderstandsSelections) {
    const std::pair<const char*, std::vector<int>> cases[] = {
        {"A-C,x", {65, 66, 67, 120}},    {"48-50,5", {48, 49, 50, 53}},
        {"U+00E9,\xC3\xA8", {232, 233}}, {"U+0041-U+0043", {65, 66, 67}},
        {"20-34,B-B", {33, 34, 66}},     {"-", {45}},
        {"+--", {43, 44, 45}},           {"'", {39}},
    };
    for (const auto& [set, expected] : cases) {
        const auto info = Info(std::string("--family 'DejaVu Sans' --select \"") + set + "\" --generate");
        std::vector<int> codes;
        for (const auto& glyph : info["glyphs"])
            codes.push_back(glyph["code"]);
        EXPECT_THAT(codes, testing::UnorderedElementsAreArray(expected)) << set << error;
    }
}

TEST_F(Cli, ChangesTheGlyphHeight) {
    const std::string family = "--family 'DejaVu Sans' ";
    const auto made = Info(family + "--height 100 --select A,V --generate --kern --save f.sm");
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
        const auto info = Info(family + steps);
        EXPECT_EQ(info["glyphHeight"], height) << steps;
        EXPECT_GE(info["picture"]["height"], height) << steps;
    }
    EXPECT_NEAR(Info("--open f.sm --resize-normalised 200")["capHeight"], 140, 2);
    EXPECT_EQ(Info("--open f.sm --resize 100"), made);
    // An answer to a question that was not asked goes to no later one.
    folder.Write("names.txt", "AV");
    Do(family + "--select B-Z --generate --resize 50 --select A --height 50 --generate "
                "--names names.txt --cubes cube.png");
}

TEST_F(Cli, HelpVersionAndFonts) {
    Do("--help");
    EXPECT_THAT(out, HasSubstr("--single-files FOLDER"));
    for (const MGameEngine& engine : gameEngines)
        EXPECT_THAT(out, HasSubstr(std::string(engine.Name)));
    Do("--version");
    EXPECT_EQ(out, "Lettrino 4.0.0.8\n");
    Do("--list-fonts");
    const auto fonts = nlohmann::json::parse(out);
    EXPECT_EQ(std::ranges::count(fonts, nlohmann::json{{"family", "Liberation Sans"},
                                                       {"weight", 700},
                                                       {"italic", false},
                                                       {"style", "Bold"},
                                                       {"colour", nlohmann::json::array()}}),
              1);
    for (const auto& face : fonts)
        EXPECT_EQ(face["colour"].size(), face["family"] == "Noto Color Emoji" ? 1U : 0U) << face["family"];
}

TEST_F(Cli, PicturesBecomeGlyphs) {
    std::filesystem::create_directory(folder.path / "set");
    for (const char* name : {"set/A.png", "set/B.PNG", "set/C.png", "set/E.png"}) {
        OwnedPicture picture = BlankPicture(30, 48, FormatRGBA8);
        for (std::int32_t y = 8; y < 40; ++y)
            picture.SetPixel(5, y, MColour(1, 2, 3));
        ASSERT_TRUE(picture.Save(folder.File(name)));
    }
    auto info = Info("--pictures A=set/A.png --save x.sm");
    EXPECT_EQ(info["glyphs"].size(), 3U);
    // The height is that of the first picture; the glyph is trimmed to its ink and one column.
    EXPECT_EQ(std::tuple(info["glyphHeight"], info["capHeight"], info["baseline"], info["glyphs"][0]["width"]),
              std::tuple(48, 32, 8, 2));
    info = Info("--padding 10,6 --spacing 3,-4 --trim no --picture U+20AC=set/E.png");
    const auto& glyph = info["glyphs"][0];
    EXPECT_EQ(std::tuple(glyph["code"], glyph["width"], glyph["after"]), std::tuple(0x20AC, 48 * 30 / 64, -4));
    EXPECT_EQ(Run("--picture A=set"), 1);
    EXPECT_EQ(Run("--padding -1,0 --picture A=set/A.png"), 1);
    EXPECT_EQ(Run("--picture set/A.png"), 2);
}

TEST_F(Cli, WholeFontEditsWebAndCubes) {
    const std::string make = "--family 'DejaVu Sans' --height 40 --select A-Z,U+00C9,U+00E9 --generate ";
    EXPECT_EQ(Info(make + "--ascii-only")["glyphs"].size(), 26U);
    EXPECT_LT(Info(make + "--trim-rows")["glyphHeight"], 40);
    Do(make + "--html demo.html");
    for (const char* file :
         {"demo.html", "demo.js", "demo.png", "lettrino-1.0.js", "try.js", "try.css", "colourpicker.png"})
        EXPECT_TRUE(Has(file)) << file;
    EXPECT_EQ(Info("--open demo.js")["glyphs"].size(), 28U) << error;
    folder.Write("names.txt", "Anna\nB\xC3\xA9"
                              "a\n"); // UTF-8 without its mark
    folder.Write("digit.txt", "X5\n");
    Do(make + "--background 102030 --text 'ABC AB' line.png --names names.txt --cubes cube.png");
    EXPECT_THAT(out, testing::StartsWith("Number of names:\t3\n"));
    EXPECT_TRUE(Has("cube4.png"));
    EXPECT_EQ(Picture("line.png").GetPixel(0, 0), MColour(0x10, 0x20, 0x30));
    folder.Write("none.txt", "\n");
    std::filesystem::create_directory(folder.path / "no1.png"); // would be in the way of a cube
    Do(make + "--names none.txt --cubes no.png");
    folder.Write("head",
                 "<unicode_mapping>\n<map id=\"A\" unc=\"65\"/>\n</unicode_mapping>\n<glyph id=\"A\">\n"
                 "<shape embedded=\"I\"/>\n<bbox width=\"9\" height=\"9\"/>\n<base y=\"9\"/>\n</glyph>\n"
                 "</glyphs>\n<image id=\"I\">\nbase64\n");
    folder.Write("end", "</image>\n");
    Do("-c 'base64 line.png | cat head - end > a.phf'", {}, "bash");
    EXPECT_EQ(Info("--open a.phf")["glyphs"].size(), 1U) << error;
    folder.Write("empty.phf", "<PhF>\n");
    EXPECT_EQ(Info(make + "--open empty.phf")["glyphs"].size(), 0U) << "nothing of the font before it stays";
    for (const char* steps :
         {"--html 'my font.html'", "--html no/font.html", "--names digit.txt --cubes cube.png"})
        EXPECT_EQ(Run(make + steps), 1) << steps;
    EXPECT_THAT(error, HasSubstr("letter 5"));
}
