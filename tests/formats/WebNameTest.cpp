#include "formats/WebName.h"

#include <gmock/gmock.h>

namespace {

TEST(WebName, TellsWhyAPageWouldDrawNothing) {
    // Part of the reason, none where the page works, and files that it holds for.
    const std::pair<const char*, std::vector<const char16_t*>> cases[] = {
        {"", {u"demo.html", u"Demo_2.html", u"_x.html", u"Class.html", u"nameOf.html", u"Top.html", u"demo"}},
        {"script language", {u"class.html"}},
        {"window", {u"name.html", u"location.html"}},
        {"other scripts", {u"Array.html"}},
        {"style sheet", {u"Serif.html", u"inherit.html", u"monospace.html", u"$x.html"}},
        {"no name", {u"my-font.html", u"2.html", u".html"}},
        {"first dot", {u"my.font.html"}},
        {"picture", {u"Colourpicker.html"}},
        {"ASCII", {u"Caf\u00E9.html", u"a\u0100.html"}},
    };
    for (const auto& [reason, files] : cases) {
        for (const char16_t* const file : files) {
            const auto trouble = WebNameTrouble(MString("/tmp/") + MString(file));
            EXPECT_THAT(std::string(trouble), testing::HasSubstr(reason));
            EXPECT_EQ(trouble.empty(), *reason == 0) << std::string(trouble);
        }
    }
}

} // namespace
