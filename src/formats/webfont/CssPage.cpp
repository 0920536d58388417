// The page that uses a font of pictures as any page uses a font, and its style sheet. Nothing on it needs a
// script: sizes and wrapping are radio buttons that the style rules after them look at.
#include "formats/Markup.h"
#include "formats/webfont/MWebFontExport.h"
#include "foundation/MUtf8.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <string_view>

namespace {

using Lines = std::string;

bool IsPlain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '_';
}

// Between the quotation marks of a style sheet.
std::string CssString(std::string_view text) {
    std::string string;
    for (const char c : text) {
        if (c == '"')
            string += "\\22 ";
        else if (c == '\\')
            string += "\\5c ";
        else
            string += c;
    }
    return string;
}

std::string ClassName(std::string_view name) {
    std::string text = "font-";
    for (const char c : name)
        text += IsPlain(c) ? c : '-';
    return text;
}

std::string Percent(std::int64_t part, std::int64_t whole) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.8f%%",
                  100.0 * static_cast<double>(part) / static_cast<double>(whole));
    return text.data();
}

std::string Pixels(std::int64_t count) {
    return std::to_string(count) + "px";
}

// Words that the font can spell, or else its characters.
std::string SampleText(const MWebFont& font) {
    std::set<char16_t> characters;
    for (const MWebFontGlyph& glyph : font.Glyphs) {
        if (glyph.Source && glyph.Source->Glyph) characters.insert(glyph.Character);
    }
    const auto spells = [&](std::u16string_view word) {
        return std::ranges::all_of(word, [&](char16_t c) { return characters.contains(c); });
    };
    constexpr std::array<std::u16string_view, 20> words{
        u"Text",   u"stays",   u"text:", u"The",     u"quick",      u"brown", u"fox",
        u"jumps",  u"over",    u"the",   u"lazy",    u"dog",        u"THE",   u"FIVE",
        u"BOXING", u"WIZARDS", u"JUMP",  u"QUICKLY", u"0123456789", u"AVATAR"};
    std::u16string text;
    for (const std::u16string_view word : words) {
        if (spells(word)) text += std::u16string(text.empty() ? u"" : u" ") + std::u16string(word);
    }
    if (text.size() < 12) {
        text.clear();
        std::size_t count = 0;
        for (const char16_t c : characters) {
            if (c <= u' ' || count == 64) continue;
            if (count > 0 && count % 8 == 0) text += u' ';
            text += c;
            ++count;
        }
    }
    return EncodeUtf8(text, MLoneSurrogates::Replace);
}

struct Choice {
    std::string id;
    std::string label;
    std::string rule;
};

void AddChoices(Lines& page, std::string_view group, std::string_view title, const std::vector<Choice>& choices,
                std::size_t chosen) {
    page += "<p>" + std::string(title) + "</p>\n";
    for (std::size_t i = 0; i < choices.size(); ++i) {
        page += "<input type=\"radio\" name=\"" + std::string(group) + "\" id=\"" + choices[i].id + "\"" +
                (i == chosen ? " checked" : "") + "><label for=\"" + choices[i].id + "\">" + choices[i].label +
                "</label>\n";
    }
}

std::vector<Choice> Sizes(const MWebFont& font) {
    std::vector<Choice> sizes;
    constexpr std::array<std::pair<std::int64_t, std::int64_t>, 5> parts{
        {{1, 4}, {1, 2}, {1, 1}, {3, 2}, {2, 1}}};
    for (const auto& [part, of] : parts) {
        const std::string size = Pixels(std::max<std::int64_t>(font.Height * part / of, 1));
        sizes.push_back({"size" + std::to_string(sizes.size()), size, "font-size: " + size});
    }
    return sizes;
}

const std::vector<Choice> wrappings{{"wrap0", "left", "text-align: left"},
                                    {"wrap1", "centred", "text-align: center"},
                                    {"wrap2", "justified", "text-align: justify"},
                                    {"wrap3", "one line", "white-space: pre"}};
const std::vector<Choice> grounds{{"ground0", "white", "background: #fff"},
                                  {"ground1", "grey", "background: #888"},
                                  {"ground2", "black", "background: #000; caret-color: #fff"}};

void AddRules(Lines& page, const std::vector<Choice>& choices) {
    for (const Choice& choice : choices)
        page += "#" + choice.id + ":checked ~ #sample { " + choice.rule + "; }\n";
}

} // namespace

std::string CssSheetText(const MWebFont& font, const std::string& name) {
    const std::string family = CssString(EncodeUtf8(font.Family, MLoneSurrogates::Replace));
    Lines sheet = "/* Letters that are pictures. What has the class \"" + ClassName(name) +
                  "\" is drawn with them, and stays text. */\n@font-face {\n    font-family: \"" + family +
                  "\";\n    src: url(\"" + Address(name) + ".woff2\") format(\"woff2\");\n";
    // Browsers differ in which of a font's numbers they take for these. There are no negative ones here.
    if (font.Ascent >= 0 && font.Descent >= 0) {
        sheet += "    ascent-override: " + Percent(font.Ascent, font.Height) +
                 ";\n    descent-override: " + Percent(font.Descent, font.Height) +
                 ";\n    line-gap-override: 0%;\n";
    }
    return sheet + "}\n\n." + ClassName(name) + " {\n    font-family: \"" + family +
           "\", sans-serif;\n    font-size: " + Pixels(font.Height) +
           "; /* the pictures' own size */\n    line-height: 1;\n    font-weight: normal;\n    font-style: "
           "normal;\n"
           "    font-synthesis: none;\n    font-kerning: normal;\n    font-variant-ligatures: none;\n"
           "    text-rendering: geometricPrecision;\n}\n";
}

std::string CssPageText(const MWebFont& font, const std::string& name) {
    const std::vector<Choice> sizes = Sizes(font);
    const std::string family = Markup(EncodeUtf8(font.Family, MLoneSurrogates::Replace));
    Lines page = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                 "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
                 family + "</title>\n<link rel=\"stylesheet\" href=\"" + Address(name) + ".css\">\n<style>\n" +
                 "body { margin: 1.5em; font: 16px/1.5 sans-serif; color: #222; background: #f4f4f4; }\n"
                 "h1 { margin: 0 0 0.5em; font-size: 1.4em; }\n"
                 "body > p { display: inline-block; width: 5.5em; margin: 0; color: #666; }\n"
                 "label { margin: 0 1em 0 0.3em; }\n"
                 "#sample { margin: 16px 0; padding: 16px; overflow: auto; resize: both; min-height: 1em;\n"
                 "    border: 1px solid #ccc; border-radius: 6px; }\n";
    AddRules(page, sizes);
    AddRules(page, wrappings);
    AddRules(page, grounds);
    page += "</style>\n</head>\n<body>\n<h1>" + family + "</h1>\n";
    AddChoices(page, "size", "Size", sizes, 2);
    page += "<br>\n";
    AddChoices(page, "wrap", "Wrapping", wrappings, 0);
    page += "<br>\n";
    AddChoices(page, "ground", "Ground", grounds, 0);
    return page + "<div id=\"sample\" class=\"" + ClassName(name) +
           "\" contenteditable=\"true\" spellcheck=\"false\">" + Markup(SampleText(font)) +
           "</div>\n<div>Click into the text to change it, and drag the corner of its field to try how it "
           "wraps.</div>\n"
           "</body>\n</html>\n";
}
