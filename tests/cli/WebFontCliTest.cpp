// Font files of pictures on the command line, looked at by the tools of others.

#include "Cli.h"

using testing::HasSubstr;
using WebFontCli = Cli;

const std::string make = "--family 'DejaVu Sans' --height 32 --select A-Z,a-z --generate --kern ";

TEST_F(WebFontCli, OtherToolsTakeWhatIsWritten) {
    Do(make + "--font-name 'Demo <1>' --ttf f.ttf --woff2 f.woff2 --css-page page.html --strikes 16 "
              "--ttf strikes.ttf");
    EXPECT_THAT(error, testing::MatchesRegex(
                           "lettrino-cli: --ttf: note: the pictures for 16 pixels take [0-9]+ bytes\n"));
    for (const std::string file : {"f.ttf", "f.woff2", "page.woff2", "strikes.ttf"})
        Do(file + " out.ttf", {}, "/usr/bin/ots-sanitize");
    EXPECT_THAT(folder.Read("page.css"), HasSubstr("url(\"page.woff2\")"));
    EXPECT_THAT(folder.Read("page.html"), HasSubstr("class=\"font-page\""));
    // Every table is understood, and the same after a way through text.
    folder.Write("trip.py", R"(
from fontTools.ttLib import TTFont
first = TTFont('strikes.ttf')
assert 'CBDT' not in first and {'GPOS', 'SVG ', 'sbix', 'glyf'} <= set(first.keys())
assert first['name'].getDebugName(1) == 'Demo <1>' and first['name'].getDebugName(6) == 'Demo1'
assert sorted(first['sbix'].strikes) == [16, 32] and first['OS/2'].sxHeight > 0
first.saveXML('f.ttx', quiet=True)
second = TTFont()
second.importXML('f.ttx')
second.save('back.ttf')
second = TTFont('back.ttf')
second.saveXML('g.ttx', quiet=True)
keep = lambda f: [line for line in open(f) if not any(word in line for word in ('checkSumAdjustment', '<modified', 'indexToLocFormat'))]
assert keep('f.ttx') == keep('g.ttx')
)");
    Do("trip.py", {}, "/usr/bin/python3");
}

TEST_F(WebFontCli, FailuresAndWrongUsage) {
    Do(make + "--single-files . ");
    std::filesystem::rename(folder.path / "C65.png", folder.path / "A.png");
    std::filesystem::create_directory(folder.path / "folder");
    ExpectFailures({
        {"--ttf f.ttf", 1, "--ttf: there is no font yet"},
        {make + "--remove A --spacing 0,-900 --trim no --picture A=A.png --woff2 f.woff2", 1,
         "--woff2: f.woff2: the glyph of code 65 moves the pen back by"},
        {make + "--ttf no/f.ttf", 1, "--ttf: no/f.ttf: there is no folder"},
        {make + "--css-page no/f.html", 1, "--css-page: no/f.html: there is no folder"},
        {make + "--ttf folder", 1, "--ttf: folder: "},
        {"--strikes 0", 2, "--strikes"},
        {"--strikes a", 2, "--strikes"},
    });
    EXPECT_FALSE(Has("f.ttf") || Has("f.woff2") || Has("f.html"));
}
