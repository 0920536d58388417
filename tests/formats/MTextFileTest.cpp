#include "formats/MTextFile.h"

#include "TemporaryFolder.h"
#include "Text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_literals;

std::vector<std::string> Tokens(const MTextFile& file) {
    std::vector<std::string> tokens;
    for (int i = 0; i < file.TokenCount(); ++i)
        tokens.push_back(Narrow(file.GetString(i)));
    return tokens;
}

// All lines of a file of these bytes, each as its tokens.
std::vector<std::vector<std::string>> Lines(std::string_view bytes) {
    const TemporaryFolder folder;
    MTextFile file(folder.Write("a.txt", bytes), false, false, MTextEncoding::Utf8);
    std::vector<std::vector<std::string>> lines;
    while (file.NextLine())
        lines.push_back(Tokens(file));
    return lines;
}

class TextFileTest : public testing::Test {
protected:
    TemporaryFolder folder;

    template<typename Write>
    std::string Written(MTextEncoding encoding, Write write) {
        {
            MTextFile file(folder.File("out.txt"), true, false, encoding);
            write(file);
        }
        return folder.Read("out.txt");
    }
};

void Put(MTextFile& file, const char* text) {
    file.WriteString(text);
}
void Put(MTextFile& file, int number) {
    file.WriteInt(number);
}
void Put(MTextFile& file, bool flag) {
    file.WriteBool(flag);
}

TEST_F(TextFileTest, WritesFieldsByTheirRules) {
    const auto line = [&](auto... fields) {
        return Written(MTextEncoding::Ansi, [&](MTextFile& file) {
            (Put(file, fields), ...);
            file.EndLine();
        });
    };
    EXPECT_EQ(line("A", -3, true), "A\t-3\tY\r\n");
    EXPECT_EQ(line("", 1), "\t\"\"\t1\r\n");
    EXPECT_EQ(line(1, ""), "1\t\"\"\r\n");
    EXPECT_EQ(line(1, "\t", 2), "1\t\t2\r\n");
    EXPECT_EQ(line("a b", "a\tb"), "\"a b\"\t\"a\tb\"\r\n");
    EXPECT_EQ(line("\"<&"), "&#34;<&\r\n");
    EXPECT_EQ(line("a\r\nb\nc\rd"), "\"a<br />b<br />c<br />d\"\r\n");
    EXPECT_EQ(line(), "\r\n");
    EXPECT_EQ(Written(MTextEncoding::Ansi,
                      [](MTextFile& f) {
                          f.WriteInt(1);
                          f.EndLine("a \"whole\" line");
                          f.WriteInt(2); // never ended
                      }),
              "a \"whole\" line\r\n");
}

TEST_F(TextFileTest, WritesEachEncodingWithItsMark) {
    const auto bytes = [&](MTextEncoding encoding) {
        return Written(encoding, [](MTextFile& file) {
            file.WriteString(u"\u00E9\u20AC\U0001F600");
            file.EndLine();
        });
    };
    EXPECT_EQ(bytes(MTextEncoding::Ansi), "\xE9\xAC\x3D\0\r\n"s); // the low bytes
    EXPECT_EQ(bytes(MTextEncoding::Utf16Le), "\xFF\xFE\xE9\0\xAC\x20\x3D\xD8\0\xDE\r\0\n\0"s);
    EXPECT_EQ(bytes(MTextEncoding::Utf16Be), "\xFE\xFF\0\xE9\x20\xAC\xD8\x3D\xDE\0\0\r\0\n"s);
    EXPECT_EQ(bytes(MTextEncoding::Utf8), "\xEF\xBB\xBF\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\r\n"s);
    EXPECT_FALSE(MTextFile(folder.File("x"), true, false, static_cast<MTextEncoding>(5)).ok);
    EXPECT_FALSE(MTextFile(folder.File("no/x"), true, false, MTextEncoding::Utf8).ok);
}

TEST_F(TextFileTest, WhatIsWrittenIsReadInEveryEncoding) {
    const auto one = [](char16_t c) { return MString(std::u16string_view(&c, 1)); };
    for (const auto encoding : {MTextEncoding::Utf16Le, MTextEncoding::Utf16Be, MTextEncoding::Utf8}) {
        for (const bool preload : {false, true}) {
            Written(encoding, [&](MTextFile& file) {
                file.WriteString("");
                for (char16_t c = 1; c < 0x800; ++c)
                    file.WriteString(one(c));
                file.EndLine();
                file.WriteString("first\r\n\"second\"");
                file.EndLine();
            });
            MTextFile file(folder.File("out.txt"), false, preload, MTextEncoding::Ansi);
            EXPECT_EQ(file.encoding, encoding);
            ASSERT_TRUE(file.NextLine());
            EXPECT_TRUE(file.GetString(0).IsEmpty());
            // A lone tab is an empty column, which is no token; from there on all stand one place earlier.
            for (char16_t c = 1; c < 0x800; ++c) {
                if (c == u'\t') continue;
                ASSERT_EQ(file.GetString(c < u'\t' ? c : c - 1),
                          c == u'\r' || c == u'\n' ? MString("\r\n") : one(c))
                    << static_cast<int>(c);
            }
            ASSERT_TRUE(file.NextLine());
            EXPECT_EQ(Narrow(file.GetString(0)), "first\r\n\"second\"");
            EXPECT_FALSE(file.NextLine());
            EXPECT_EQ(file.TokenCount(), 1); // the last line's tokens stay
        }
    }
}

TEST_F(TextFileTest, LinesEndInAnyWay) {
    using Expected = std::vector<std::vector<std::string>>;
    EXPECT_EQ(Lines("a\nb\rc\r\nd"), (Expected{{"a"}, {"b"}, {"c"}, {"d"}}));
    EXPECT_EQ(Lines("a\n"), (Expected{{"a"}}));
    EXPECT_EQ(Lines("a\r"), (Expected{{"a"}}));
    EXPECT_EQ(Lines("\n\na"), (Expected{{}, {}, {"a"}}));
    EXPECT_EQ(Lines("\n\r\n"), (Expected{{}, {}}));
    EXPECT_EQ(Lines(""), Expected{});
    EXPECT_EQ(Lines("\xFF\xFE"
                    "a\0\n\0b\0x"s),
              (Expected{{"a"}, {"b"}})); // the odd last byte is dropped
    EXPECT_EQ(Lines("\xFE\xFF\0a\0\r\0\n\0b\0\r\0c"s), (Expected{{"a"}, {"b"}, {"c"}}));
    EXPECT_EQ(Lines("\xEF\xBB\xBF\n\xC3\xA9"), (Expected{{}, {"\xC3\xA9"}}));
    EXPECT_EQ(Lines("\xEF\xBBz"), (Expected{{"\xC3\xAF\xC2\xBBz"}})); // no mark: read from its first byte
    EXPECT_EQ(Lines("a b\0c d\ne"s), (Expected{{"a", "b"}, {"e"}}));  // text ends at a zero
    // A line break across the edge of what is read at once.
    const std::string filler(64 * 1024 - 1, 'x');
    EXPECT_EQ(Lines(filler + "\r\nb\r"), (Expected{{filler}, {"b"}}));
    EXPECT_EQ(Lines(filler + "\rb"), (Expected{{filler}, {"b"}}));
}

TEST_F(TextFileTest, TokensBetweenBlanksAndQuotes) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"a  b\t\tc", {"a", "b", "c"}},
        {"  a  ", {"a"}},
        {"\"a b\" c", {"a b", "c"}},
        {"\"\" c", {"", "c"}},
        {"\"a\"b", {"a", "b"}}, // what follows a closing mark directly is a new token
        {"a\"b c\"", {"a\"b", "c\""}},
        {"\"a b", {"a b"}},
        {"a \"", {"a"}},
        {"&#34; <QUOTE>", {"\"", "\""}},
        {"a<br />b \"a<NEW LINE>b\"", {"a<br", "/>b", "a\r\nb"}},
    };
    for (const auto& [line, tokens] : cases)
        EXPECT_EQ(Lines(line).at(0), tokens) << line;
}

TEST_F(TextFileTest, FieldsOutOfRangeAreEmpty) {
    MTextFile file(folder.Write("a.txt", "12x Y y \"a\\nb\" &#34;\n"), false, false, MTextEncoding::Ansi);
    ASSERT_TRUE(file.NextLine());
    EXPECT_EQ(file.GetInt(0), 12);
    EXPECT_TRUE(file.GetBool(1));
    EXPECT_FALSE(file.GetBool(2));
    EXPECT_EQ(Narrow(file.GetString(3)), "a\\nb");
    EXPECT_EQ(Narrow(file.GetString(3, true)), "a\r\nb");
    EXPECT_EQ(Narrow(file.GetString(4, false, false)), "&#34;");
    EXPECT_EQ(Narrow(file.GetLine()), "12x Y y \"a\\nb\" \"");
    for (const int index : {-1, 5}) {
        EXPECT_TRUE(file.GetString(index).IsEmpty());
        EXPECT_EQ(file.GetInt(index), 0);
        EXPECT_FALSE(file.GetBool(index));
    }
}

TEST_F(TextFileTest, AnEndlessLineIsCutAndNotHeld) {
    SetMemoryLimit(4000);
    EXPECT_EQ(Lines(std::string(1 << 20, 'x') + "\nb"),
              (std::vector<std::vector<std::string>>{{std::string(1000, 'x')}, {"b"}}));
    SetMemoryLimit(0);
}

TEST_F(TextFileTest, WholeFiles) {
    const MString path = folder.File("whole.txt");
    for (const auto encoding :
         {MTextEncoding::Ansi, MTextEncoding::Utf16Le, MTextEncoding::Utf16Be, MTextEncoding::Utf8}) {
        ASSERT_TRUE(MTextFile::WriteWholeFile(u"a\r\n\"\u00E9\"\n", path, encoding));
        EXPECT_EQ(Narrow(MTextFile::ReadWholeFile(path)), "a\r\n\"\xC3\xA9\"\n");
    }
    EXPECT_TRUE(MTextFile::WriteWholeFile(MString(), folder.File("never.txt"), MTextEncoding::Ansi));
    EXPECT_FALSE(FileExists(folder.File("never.txt")));
    EXPECT_FALSE(MTextFile::WriteWholeFile("a", folder.File("no/x.txt"), MTextEncoding::Ansi));
    EXPECT_TRUE(MTextFile::ReadWholeFile(folder.Write("mark.txt", "\xFF\xFE")).IsEmpty());
    EXPECT_TRUE(MTextFile::ReadWholeFile(folder.File("never.txt")).IsEmpty());
    EXPECT_EQ(Narrow(MTextFile::ReadWholeFile(folder.Write("zero.txt", "ab\0cd"s))), "ab");
    EXPECT_EQ(Narrow(MTextFile::ReadWholeFile(folder.Write("odd.txt", "\xFF\xFE"
                                                                      "a\0b"s))),
              "a");
}

} // namespace
