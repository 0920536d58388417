#include "formats/WebName.h"

#include <gmock/gmock.h>

namespace {

TEST(WebName, TellsWhyAPageWouldDrawNothing) {
    struct Case {
        const char16_t* file;
        const char* reason; // part of it; empty: the page works
    };
    for (const Case& c : std::initializer_list<Case>{{u"demo.html", ""},
                                                     {u"Demo_2.html", ""},
                                                     {u"_x.html", ""},
                                                     {u"Class.html", ""},
                                                     {u"nameOf.html", ""},
                                                     {u"Top.html", ""},
                                                     {u"demo", ""},
                                                     {u"class.html", "script language"},
                                                     {u"name.html", "window"},
                                                     {u"location.html", "window"},
                                                     {u"Array.html", "other scripts"},
                                                     {u"Serif.html", "style sheets"},
                                                     {u"inherit.html", "style sheets"},
                                                     {u"monospace.html", "style sheets"},
                                                     {u"my-font.html", "no name"},
                                                     {u"2.html", "no name"},
                                                     {u".html", "no name"},
                                                     {u"$x.html", "style sheet"},
                                                     {u"my.font.html", "first dot"},
                                                     {u"Colourpicker.html", "picture"},
                                                     {u"Caf\u00E9.html", "ASCII"},
                                                     {u"a\u0100.html", "ASCII"}}) {
        const auto trouble = WebNameTrouble(MString("/tmp/") + MString(c.file));
        EXPECT_THAT(std::string(trouble), testing::HasSubstr(c.reason)) << MString(c.file).View().size();
        EXPECT_EQ(trouble.empty(), *c.reason == 0) << std::string(trouble);
    }
}

} // namespace
