// The XML form: the records of the text form as elements, in <font>. The root has no attributes, since loaders
// were seen that look for "<font>" as it stands.

#include "formats/game/BmFontRecords.h"

#include <glib.h>

namespace {

struct Parsing {
    BmRecordReader reader;
    std::vector<BmAttribute> attributes;
    bool inFont = false;
};

void OnElement(GMarkupParseContext*, const gchar* element, const gchar** names, const gchar** values,
               gpointer data, GError** error) {
    auto& parsing = *static_cast<Parsing*>(data);
    const std::string_view tag = element;
    parsing.attributes.clear();
    for (; *names; ++names, ++values)
        parsing.attributes.push_back({*names, *values});
    bool taken = true;
    if (!parsing.inFont) {
        parsing.inFont = tag == "font";
        if (!parsing.inFont) taken = parsing.reader.Refuse("it is XML of another kind: its root is no <font>");
    } else {
        taken = parsing.reader.Take(tag, parsing.attributes);
    }
    if (!taken) g_set_error_literal(error, G_MARKUP_ERROR, G_MARKUP_ERROR_INVALID_CONTENT, "refused");
}

// The parser takes UTF-8 alone. What isn't is an older tool's, and its bytes mean units of the same value.
std::string Utf8Of(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

} // namespace

std::string WriteBmXml(const MBmFont& font) {
    constexpr std::size_t charElement = 140;
    constexpr std::size_t kerningElement = 60;
    BmText out(512 + font.Chars.size() * charElement + font.Kernings.size() * kerningElement);
    const MBmInfo& info = font.Info;
    out << "<?xml version=\"1.0\"?>\n<font>\n  <info face=\"" << info.Face << "\" size=\"" << info.Size
        << "\" bold=\"" << info.Bold << "\" italic=\"" << info.Italic << "\" charset=\"\"";
    BmFieldWriter(bmInfoFields, " ", "=\"", "\"").Write(out, info);
    out << " padding=\"" << info.Padding[0] << "," << info.Padding[1] << "," << info.Padding[2] << ","
        << info.Padding[3] << "\" spacing=\"" << info.Spacing[0] << "," << info.Spacing[1] << "\" outline=\""
        << info.Outline << "\"/>\n  <common";
    BmFieldWriter(bmCommonFields, " ", "=\"", "\"").Write(out, font.Common);
    out << "/>\n  <pages>\n";
    for (const MBmPage& page : font.Pages)
        out << "    <page id=\"" << page.Id << "\" file=\"" << page.File << "\"/>\n";
    out << "  </pages>\n  <chars count=\"" << static_cast<std::int32_t>(font.Chars.size()) << "\">\n";
    const BmFieldWriter chars(bmCharFields, " ", "=\"", "\"");
    for (const MBmChar& c : font.Chars) {
        out << "    <char";
        chars.Write(out, c);
        out << "/>\n";
    }
    out << "  </chars>\n";
    if (!font.Kernings.empty()) {
        out << "  <kernings count=\"" << static_cast<std::int32_t>(font.Kernings.size()) << "\">\n";
        const BmFieldWriter kernings(bmKerningFields, " ", "=\"", "\"");
        for (const MBmKerning& pair : font.Kernings) {
            out << "    <kerning";
            kernings.Write(out, pair);
            out << "/>\n";
        }
        out << "  </kernings>\n";
    }
    out << "</font>\n";
    return out.Take();
}

MBmResult ReadBmXml(std::string_view bytes) {
    Parsing parsing;
    std::string converted;
    if (!g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr)) {
        converted = Utf8Of(bytes);
        bytes = converted;
    }
    const GMarkupParser parser{OnElement, nullptr, nullptr, nullptr, nullptr};
    GMarkupParseContext* const context =
        g_markup_parse_context_new(&parser, GMarkupParseFlags{}, &parsing, nullptr);
    const bool whole =
        g_markup_parse_context_parse(context, bytes.data(), static_cast<gssize>(bytes.size()), nullptr) &&
        g_markup_parse_context_end_parse(context, nullptr);
    gint line = 0;
    g_markup_parse_context_get_position(context, &line, nullptr);
    g_markup_parse_context_free(context);
    if (!whole) parsing.reader.Refuse("it is no whole XML: line " + std::to_string(line) + " breaks its rules");
    return parsing.reader.Finish();
}
