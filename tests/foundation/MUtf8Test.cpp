#include "foundation/MUtf8.h"

#include "foundation/MString.h"

#include <gtest/gtest.h>

#include <random>

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
        {"a\xC3\xA9\xF0\x9F\x98\x80\xFFz\xC3", u"a\u00E9\U0001F600\uFFFDz\uFFFD"},
        {"\xC0\x80", u"\uFFFD\uFFFD"},                     // overlong
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},           // a surrogate
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond Unicode
    };
    for (const auto& [bytes, units] : cases)
        EXPECT_EQ(DecodeUtf8(bytes, MLoneSurrogates::Replace), units);
    EXPECT_EQ(EncodeUtf8(u"\U0001F600\xD83D", MLoneSurrogates::Replace), "\xF0\x9F\x98\x80\xEF\xBF\xBD");
}
