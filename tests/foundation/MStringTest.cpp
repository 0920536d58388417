#include "foundation/MString.h"

#include "Text.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
#include <tuple>
#include <utility>

namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

bool IsNullForm(const MString& text) {
    return !text.chars && text.length == 0 && text.capacity == 0;
}

template<typename Edit>
std::string Edited(const char* text, Edit edit) {
    MString string(text);
    edit(string);
    return Narrow(string);
}

TEST(String, BothEmptyFormsAreAlike) {
    const MString null;
    MString buffer("x");
    buffer.SetChar(0, 0);
    ASSERT_NE(buffer.chars, nullptr);
    EXPECT_EQ(null.Compare(buffer), 0);
    EXPECT_TRUE(null.Equals(buffer) && null.Equals(static_cast<const char16_t*>(nullptr)));
    for (const MString& text : {MString(buffer), MString(u""), MString(static_cast<const char*>(nullptr))})
        EXPECT_TRUE(IsNullForm(text));
    EXPECT_EQ(Narrow(buffer + null), "");
}

TEST(String, OwnsExactlyWhatItNeeds) {
    EXPECT_EQ(MString("abc").capacity, 4);
    EXPECT_EQ((MString("ab") + MString("cd")).capacity, 5);
    EXPECT_EQ((MString("ab") + 'c').capacity, 4);
    EXPECT_EQ(MString(7).capacity, 25);

    MString text("abc");
    text += 'd';
    EXPECT_EQ(text.capacity, 8); // doubled
    text = "a longer text than before";
    const MString shorter("x");
    text = shorter;
    EXPECT_EQ(text.capacity, 26); // the old buffer is kept
    text = u"yx";
    text = text.Chars() + 1;
    EXPECT_EQ(text.capacity, 26); // by wide text too, also from the own buffer
    EXPECT_EQ(Narrow(text), "x");

    MString moved(std::move(text));
    EXPECT_TRUE(IsNullForm(text));
    moved = moved.Chars();
    EXPECT_EQ(Narrow(moved), "x");
    MString& same = moved;
    moved = same;
    moved = std::move(same);
    EXPECT_EQ(Narrow(moved), "x");
    for (int i = 0; i < 6; ++i)
        same += moved;
    EXPECT_EQ(Narrow(moved), std::string(64, 'x')) << "itself, out of a buffer that grows";
}

TEST(String, Slices) {
    const std::tuple<int, int, const char*> cases[] = {{1, 2, "bc"}, {1, -1, "bcd"}, {1, 9, "bcd"},
                                                       {2, 1, ""},   {-1, 2, ""},    {4, 4, ""}};
    for (const auto& [first, last, slice] : cases)
        EXPECT_EQ(Narrow(MString(u"abcd", first, last)), slice) << first << " to " << last;
}

TEST(String, NumbersAsText) {
    const std::pair<MString, const char*> cases[] = {
        {MString(0), "0"},
        {MString(7, 3), "007"},
        {MString(142, 3), "142"},
        {MString(-5, 2), "0-5"},
        {MString(7, 4), "7"}, // more than three digits pad nothing
        {MString(15, 2, 16), "0f"},
        {MString(-1, 1, 16), "ffffffff"},
        {MString(1234567, 1, 10, u','), "1,234,567"},
        {MString(999, 1, 10, u','), "999"},
        {MString(-1234, 1, 10, u','), "-1234"},
        {MString(4096, 1, 16, u','), "1000"},
        {MString(lowest), "-2147483648"},
        {MString(-1, 1, 2), "11111111111111111111111111111111"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(Narrow(number), text);
}

TEST(String, TextAsNumbers) {
    const std::pair<const char*, std::int32_t> cases[] = {
        {"", 0},
        {"12ab", 12},
        {" \t\n-7", -7},
        {"+5", 5},
        {"--5", 0},
        {"x1F", 31},
        {"X1F", 0},
        {"0x1F", 0},
        {"x0g", 0},
        {"xg1", 1},
        {"x100000001", 1},
        {"99999999999", highest},
        {"-99999999999", lowest},
    };
    for (const auto& [text, value] : cases)
        EXPECT_EQ(MString(text).ToInt(), value) << text;
    EXPECT_EQ(ParseInt(nullptr), 0);
}

TEST(String, NarrowTextWidensByPath) {
    EXPECT_EQ(MString("\xE9").GetChar(0), 0xE9);
    EXPECT_EQ((MString("a") + "\xE9").GetChar(1), 0xFFE9); // sign-extended here alone
    MString text("a");
    text += "\xE9";
    EXPECT_EQ(text.GetChar(1), 0xE9);
    EXPECT_EQ(("\xE9" + MString("a")).GetChar(0), 0xE9);
    const MString utf8("\xC3\xA9\xF0\x9F\x98\x80\xFF", 65001);
    EXPECT_EQ(utf8.View(), u"\u00E9\U0001F600\uFFFD");
}

TEST(String, IndicesOutsideAreIgnored) {
    MString text("abcd");
    for (const std::int32_t outside : {-1, 4}) {
        EXPECT_EQ(text.GetChar(outside), u'?');
        text.SetChar(outside, u'x');
        EXPECT_EQ(Narrow(text), "abcd");
    }
    text.SetChar(2, 0);
    EXPECT_EQ(text.length, 2);
}

TEST(String, Reserve) {
    MString text("abc");
    EXPECT_TRUE(text.Reserve(5, true));
    EXPECT_EQ(text.capacity, 8);
    EXPECT_EQ(Narrow(text), "abc");
    EXPECT_TRUE(text.Reserve(2, false));
    EXPECT_EQ(text.length, 0);
    EXPECT_TRUE(text.Reserve(0, true));
    EXPECT_TRUE(IsNullForm(text));
}

TEST(String, ComparesAndSearches) {
    EXPECT_EQ(MString("a").Compare("ab"), -1);
    EXPECT_EQ(MString("b").Compare("ab"), 1);
    EXPECT_EQ(MString(u"\uFF00").Compare(u"\u0041"), 1); // unsigned
    EXPECT_EQ(MString("").Compare("a"), -1);
    EXPECT_EQ(MString("ABC").CompareNoCase("abc"), 0);
    EXPECT_LT(MString("abc").CompareNoCase("ABCD"), 0);
    EXPECT_GT(MString("ab").CompareNoCase("AA"), 0);
    EXPECT_NE(MString(u"\u00C9").CompareNoCase(u"\u00E9"), 0); // A to Z alone
    EXPECT_TRUE(MString("abc").Contains("bc") && MString("abc").EndsWith(u'c'));
    EXPECT_FALSE(MString("abc").Contains("") || MString("").Contains("")) << "never for an empty text";
    EXPECT_FALSE(MString("").Contains(u'a') || MString("").EndsWith(u'c'));
}

TEST(String, PathParts) {
    const std::tuple<MString, const char*, const char*> cases[] = {
        {"", "", ""},
        {"a.png", "a.png", "a.png"}, // a bare name is its own folder
        {"dir/", "dir", ""},
        {"C:\\a.png", "C:", "a.png"},
        {"C:a.png", "C", "a.png"},
        {"/a.png", "", "a.png"},
        {"x/y\\z.png", "x/y", "z.png"},
    };
    for (const auto& [path, folder, name] : cases) {
        EXPECT_EQ(Narrow(path.GetFolder()), folder) << Narrow(path);
        EXPECT_EQ(Narrow(path.GetFileName()), name) << Narrow(path);
    }
    const std::pair<const char*, const char*> shortened[] = {
        {"C:\\a\\", "C:\\a"}, {"/a/b", "/a"}, {"/a", "/a"}, {"a/", "a/"}, {"ab/c", "ab"}, {"ab:c", "ab:c"},
    };
    for (const auto& [path, result] : shortened)
        EXPECT_EQ(Edited(path, [](MString& s) { s.RemoveLastPathPart(); }), result);
}

TEST(String, Extensions) {
    const std::pair<const char*, const char*> cases[] = {
        {"x.y", "Y"},
        {".a", ""}, // shorter than three units
        {"ab.", ""},
        {"a.tar.gz", "GZ"},
        {"a.png/", ""},
        {"C:\\my.dir\\file", ""},
        {"dir/c.png?x=1.2#y", "PNG"},
        {"x.png#a/b", ""},
        {"x.png#top", "PNG"},
        {"site/page?x=1.2", ""},
        {"a.html?q=a/b", "HTML"},
    };
    for (const auto& [path, extension] : cases)
        EXPECT_EQ(Narrow(MString(path).GetExtension()), extension) << path;

    const std::tuple<const char*, const char*, const char*> settings[] = {
        {"dir.d/file", "png", "dir.d/file.png"},
        {"a.b.c", "png", "a.b.png"},
        {"a.b", ".s.m", "a.sm"},
        {"a.b", "..", "a."},
        {"", "png", ""},
        {"a.b", "", "a.b"},
        {"a.b:c", "png", "a.b:c.png"},
    };
    for (const auto& [path, set, result] : settings)
        EXPECT_EQ(Edited(path, [extension = set](MString& s) { s.SetExtension(extension); }), result);
}

TEST(String, CutsAndTrims) {
    EXPECT_EQ(Edited("abc", [](MString& s) { s.Truncate(3); }), "abc");
    MString text("abc");
    text.Truncate(0);
    EXPECT_TRUE(IsNullForm(text));
    MString blanks(" \t\x7f");
    blanks.Trim();
    EXPECT_TRUE(IsNullForm(blanks));
    EXPECT_EQ(Edited("\r\n a b\x7f ", [](MString& s) { s.Trim(); }), "a b");
    MString noBreak(u"\u00A0x\u00A0");
    noBreak.Trim();
    EXPECT_EQ(noBreak.length, 3);

    EXPECT_EQ(Edited("a=b=c", [](MString& s) { s.KeepBefore("="); }), "a");
    EXPECT_EQ(Edited("a=b=c", [](MString& s) { s.KeepAfter("="); }), "b=c");
    EXPECT_EQ(Edited("=b", [](MString& s) { s.KeepBefore("="); }), "");
    EXPECT_EQ(Edited("abc", [](MString& s) { s.KeepBefore(""); }), "abc");
    EXPECT_EQ(Edited("abc", [](MString& s) { s.KeepAfter("x"); }), "abc");
}

TEST(String, CaseMapsUnitByUnit) {
    MString text(u"stra\u00DFe \u00E9\u00FF\u0131");
    text.ToUpper();
    EXPECT_EQ(text.View(), u"STRA\u00DFE \u00C9\u0178I");
    text.ToLower(4);
    EXPECT_EQ(text.View(), u"stra\u00DFE \u00C9\u0178I");
}

TEST(String, Replaces) {
    const std::array<const char*, 5> cases[] = {
        // text, what to find, with what; the first one replaced, all replaced
        {"aab", "ab", "b", "ab", "b"},     // a replacement forms the next occurrence
        {"aaa", "a", "aa", "aaaa", "aaa"}, // all: `with` contains `find`
        {"abc", "x", "y", "abc", "abc"},
        {"abc", "", "y", "abc", "abc"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Edited(c[0], [&](MString& s) { s.ReplaceFirst(c[1], c[2]); }), c[3]);
        EXPECT_EQ(Edited(c[0], [&](MString& s) { s.ReplaceAll(c[1], c[2]); }), c[4]);
    }
    EXPECT_EQ(Edited("aabbc", [](MString& s) { s.RemoveAll("ab"); }), "c");
    EXPECT_EQ(Edited("aabbc", [](MString& s) { s.RemoveFirst("ab"); }), "abc");
    EXPECT_EQ(Edited("a/b", [](MString& s) { s.ReplaceChar(u'/', u'\\'); }), "a\\b");
    EXPECT_EQ(Edited("a/b", [](MString& s) { s.ReplaceChar(u'/', 0); }), "a");
}

TEST(String, ReplaceAllIsTheFirstUntilNone) {
    std::mt19937 random(7);
    const auto text = [&](int longest) {
        MString result;
        for (auto i = random() % static_cast<unsigned>(longest + 1); i > 0; --i)
            result += random() % 2 ? 'a' : 'b';
        return result;
    };
    for (int round = 0; round < 20000; ++round) {
        MString fast = text(12);
        const MString find = text(3);
        const MString with = text(2);
        if (with.length >= find.length && with.length > 0) continue; // could run for ever
        MString plain = fast;
        fast.ReplaceAll(find, with);
        while (plain.Contains(find))
            plain.ReplaceFirst(find, with);
        ASSERT_EQ(fast, plain);
    }
}

TEST(String, LineEnds) {
    EXPECT_EQ(Edited("\r\n\r\n", [](MString& s) { s.NormaliseLineEnds("|"); }), "||");
    EXPECT_EQ(Edited("a\rb\nc", [](MString& s) { s.NormaliseLineEnds("|"); }), "a|b|c");
    EXPECT_EQ(Edited("a\nb", [](MString& s) { s.NormaliseLineEnds("\r\n"); }), "a\nb");
    const std::pair<const char*, std::int32_t> cases[] = {
        {"", 0}, {"a", 1}, {"a\n", 2}, {"\r\n\r\n", 3}, {"\n\r", 2}, {"\n\n", 3}, {"a\r", 2},
    };
    for (const auto& [text, lines] : cases)
        EXPECT_EQ(MString(text).CountLines(), lines);
}

TEST(String, TrailingZeros) {
    const std::pair<const char*, const char*> cases[] = {
        {"4.0.0.0", "4.0"}, {"4.1.0", "4.1"}, {"4.0.0.8", "4.0.0.8"}, {".0", ""}, {"", ""},
    };
    for (const auto& [text, result] : cases)
        EXPECT_EQ(Narrow(MString(text).WithoutTrailingZeros()), result);
}

} // namespace
