#include "foundation/MString.h"

#include "Text.h"
#include "foundation/MUtf8.h"

#include <gtest/gtest.h>

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
    EXPECT_TRUE(null.Equals(buffer));
    EXPECT_EQ(null.Compare(buffer), 0);
    EXPECT_TRUE(null.Equals(static_cast<const char16_t*>(nullptr)));
    EXPECT_TRUE(IsNullForm(MString(buffer)));
    EXPECT_TRUE(IsNullForm(MString(u"")));
    EXPECT_TRUE(IsNullForm(MString(static_cast<const char*>(nullptr))));
    EXPECT_EQ(Narrow(buffer + null), "");
}

TEST(String, OwnsExactlyWhatItNeeds) {
    EXPECT_EQ(MString("abc").capacity, 4);
    EXPECT_EQ((MString("ab") + MString("cd")).capacity, 5);
    EXPECT_EQ(MString(7).capacity, 25);
    EXPECT_EQ(Narrow(MString(lowest)), "-2147483648");

    MString text("abc");
    text += 'd';
    EXPECT_EQ(text.capacity, 8); // doubled
    text = "a longer text than before";
    const MString shorter("x");
    text = shorter;
    EXPECT_EQ(text.capacity, 26); // the old buffer is kept

    MString moved(std::move(text));
    EXPECT_TRUE(IsNullForm(text));
    MString& same = moved;
    moved = same;
    moved = std::move(same);
    EXPECT_EQ(Narrow(moved), "x");
    for (int i = 0; i < 6; ++i)
        same += moved;
    EXPECT_EQ(Narrow(moved), std::string(64, 'x')) << "itself, out of a buffer that grows";
}

TEST(String, Slices) {
    const auto slice = [](std::int32_t first, std::int32_t last) {
        return Narrow(MString(u"abcd", first, last));
    };
    EXPECT_EQ(slice(1, 2), "bc");
    EXPECT_EQ(slice(1, -1), "bcd");
    EXPECT_EQ(slice(1, 9), "bcd");
    EXPECT_EQ(slice(2, 1), "");
    EXPECT_EQ(slice(-1, 2), "");
    EXPECT_EQ(slice(4, 4), "");
}

TEST(String, TextAsNumbers) {
    const std::pair<const char*, std::int32_t> cases[] = {
        {"", 0},
        {"12ab", 12},
        {" \t\n-7", -7},
        {"+5", 5},
        {"--5", 0},
        {"x1F", 31},
        {"0x1F", 0},
        {"x", 0},
        {"xg1", 1},
        {"xFFFFFFFF", -1},
        {"x100000001", 1},
        {"99999999999", highest},
        {"-99999999999", lowest},
        {"-2147483648", lowest},
        {"2147483647", highest},
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
    EXPECT_EQ(text.GetChar(-1), u'?');
    EXPECT_EQ(text.GetChar(4), u'?');
    text.SetChar(4, u'x');
    text.SetChar(-1, u'x');
    EXPECT_EQ(Narrow(text), "abcd");
    text.SetChar(2, 0);
    EXPECT_EQ(Narrow(text), "ab");
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

TEST(String, Compares) {
    EXPECT_EQ(MString(u"\uFF00").Compare(u"\u0041"), 1); // unsigned
    EXPECT_EQ(MString("ABC").CompareNoCase("abc"), 0);
    EXPECT_LT(MString("abc").CompareNoCase("ABCD"), 0);
    EXPECT_GT(MString("ab").CompareNoCase("AA"), 0);
    EXPECT_NE(MString(u"\u00C9").CompareNoCase(u"\u00E9"), 0); // A to Z alone
}

TEST(String, SearchIsFalseForEmptyText) {
    EXPECT_FALSE(MString("abc").Contains(""));
    EXPECT_FALSE(MString("").Contains(""));
    EXPECT_FALSE(MString("").EndsWith(u'c'));
}

TEST(String, Extensions) {
    const std::pair<const char*, const char*> cases[] = {
        {"x.y", "Y"},
        {"a.", ""},
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
}

TEST(String, Cuts) {
    MString text("abc");
    text.Truncate(3);
    EXPECT_EQ(Narrow(text), "abc");
    text.Truncate(0);
    EXPECT_TRUE(IsNullForm(text));
    EXPECT_EQ(Edited("a=b=c", [](MString& s) { s.KeepBefore("="); }), "a");
    EXPECT_EQ(Edited("a=b=c", [](MString& s) { s.KeepAfter("="); }), "b=c");
    EXPECT_EQ(Edited("abc", [](MString& s) { s.KeepAfter("x"); }), "abc");
}

TEST(String, CaseMapsUnitByUnit) {
    MString text(u"stra\u00DFe \u00E9\u00FF\u0131");
    text.ToUpper();
    EXPECT_EQ(text.View(), u"STRA\u00DFE \u00C9\u0178I");
}

TEST(String, Replaces) {
    EXPECT_EQ(Edited("aab", [](MString& s) { s.ReplaceAll("ab", "b"); }), "b"); // forms the next occurrence
    EXPECT_EQ(Edited("aaa", [](MString& s) { s.ReplaceAll("a", "aa"); }), "aaa") << "would run for ever";
    EXPECT_EQ(Edited("abc", [](MString& s) { s.ReplaceAll("", "y"); }), "abc");
    EXPECT_EQ(Edited("aXbX", [](MString& s) { s.RemoveChar(u'X'); }), "ab");
    EXPECT_EQ(Edited("a/b", [](MString& s) { s.ReplaceChar(u'/', u'\\'); }), "a\\b");
    EXPECT_EQ(Edited("a/b", [](MString& s) { s.ReplaceChar(u'/', 0); }), "a");
}

TEST(String, ReplaceAllTakesTheFirstUntilNone) {
    std::mt19937 random(7);
    const auto text = [&](std::size_t longest) {
        std::string result(random() % (longest + 1), 'a');
        for (char& letter : result)
            letter = random() % 2 ? 'a' : 'b';
        return result;
    };
    for (int round = 0; round < 20000; ++round) {
        std::string plain = text(12);
        const std::string find = text(3);
        const std::string with = text(2);
        if (find.empty() || with.size() >= find.size()) continue; // could run for ever
        MString fast(plain.c_str());
        fast.ReplaceAll(find.c_str(), with.c_str());
        for (std::size_t at = 0; (at = plain.find(find)) != plain.npos;)
            plain.replace(at, find.size(), with);
        ASSERT_EQ(Narrow(fast), plain);
    }
}

TEST(String, LineEnds) {
    EXPECT_EQ(Edited("\r\n\r\n", [](MString& s) { s.NormaliseLineEnds("|"); }), "||");
    EXPECT_EQ(Edited("a\rb\nc", [](MString& s) { s.NormaliseLineEnds("|"); }), "a|b|c");
    EXPECT_EQ(Edited("a\nb", [](MString& s) { s.NormaliseLineEnds("\r\n"); }), "a\nb");
}

TEST(String, TrailingZeros) {
    const std::pair<const char*, const char*> cases[] = {
        {"4.0.0.0", "4.0"},
        {"4.1.0", "4.1"},
        {"4.0.0.8", "4.0.0.8"},
        {".0", ""},
    };
    for (const auto& [text, result] : cases)
        EXPECT_EQ(Narrow(MString(text).WithoutTrailingZeros()), result);
}

TEST(Utf8, EveryTextSurvivesTheSystem) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::u16string units;
        for (int i = 0; i < 8; ++i) {
            const auto kind = random() % 4;
            const auto unit = random() % 0x10000;
            units.push_back(static_cast<char16_t>(kind == 0 ? 0xD800 + unit % 0x800 : std::max(unit, 1UL)));
        }
        const MString text{std::u16string_view(units)};
        ASSERT_TRUE(FromSystem(ToSystem(text)).Equals(text));
    }
}

TEST(Utf8, TextFilesReplaceWhatIsInvalid) {
    const std::pair<std::string, std::u16string> cases[] = {
        {"a\xC3\xA9", u"a\u00E9"},
        {"\xF0\x9F\x98\x80", u"\U0001F600"},
        {"\xFFz", u"\uFFFDz"},
        {"\xC3", u"\uFFFD"},
        {"\xC0\x80", u"\uFFFD\uFFFD"},                     // overlong
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},           // a surrogate
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond Unicode
    };
    for (const auto& [bytes, units] : cases)
        EXPECT_EQ(DecodeUtf8(bytes, MLoneSurrogates::Replace), units);
    EXPECT_EQ(EncodeUtf8(u"\U0001F600\xD83D", MLoneSurrogates::Replace), "\xF0\x9F\x98\x80\xEF\xBF\xBD");
}

} // namespace
