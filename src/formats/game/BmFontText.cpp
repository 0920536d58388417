// The text form: one record a line, its tag first, then key=value separated by one blank; texts stand in
// quotation marks. Written so that readers that look for keys at fixed places find them.

#include "formats/game/BmFontRecords.h"

#include <algorithm>

namespace {

constexpr std::string_view lineBlanks = " \t";

// The next word of a line; what stands in quotation marks may hold blanks.
struct LineCursor {
    std::string_view rest;

    void SkipBlanks() { rest.remove_prefix(std::min(rest.find_first_not_of(lineBlanks), rest.size())); }

    std::string_view Until(std::string_view ends) {
        const std::string_view word = rest.substr(0, rest.find_first_of(ends));
        rest.remove_prefix(word.size());
        return word;
    }

    std::string_view Value() {
        if (!rest.starts_with('"')) return Until(lineBlanks);
        rest.remove_prefix(1);
        const std::string_view value = Until("\"");
        rest.remove_prefix(std::min<std::size_t>(1, rest.size()));
        return value;
    }
};

bool TakeLine(BmRecordReader& reader, std::string_view line, std::vector<BmAttribute>& attributes) {
    LineCursor cursor{line};
    cursor.SkipBlanks();
    const std::string_view tag = cursor.Until(lineBlanks);
    attributes.clear();
    for (cursor.SkipBlanks(); !cursor.rest.empty(); cursor.SkipBlanks()) {
        const std::string_view name = cursor.Until(" \t=");
        if (!cursor.rest.starts_with('=')) continue; // a word alone
        cursor.rest.remove_prefix(1);
        attributes.push_back({name, cursor.Value()});
    }
    return reader.Take(tag, attributes);
}

} // namespace

std::string WriteBmText(const MBmFont& font) {
    constexpr std::size_t charLine = 110;
    constexpr std::size_t kerningLine = 44;
    BmText out(512 + font.Chars.size() * charLine + font.Kernings.size() * kerningLine);
    const MBmInfo& info = font.Info;
    out << "info face=\"" << info.Face << "\" size=" << info.Size << " bold=" << info.Bold
        << " italic=" << info.Italic << " charset=\"\"";
    BmFieldWriter(bmInfoFields, " ", "=", "").Write(out, info);
    out << " padding=" << info.Padding[0] << "," << info.Padding[1] << "," << info.Padding[2] << ","
        << info.Padding[3] << " spacing=" << info.Spacing[0] << "," << info.Spacing[1]
        << " outline=" << info.Outline << "\ncommon";
    BmFieldWriter(bmCommonFields, " ", "=", "").Write(out, font.Common);
    for (const MBmPage& page : font.Pages)
        out << "\npage id=" << page.Id << " file=\"" << page.File << "\"";
    out << "\nchars count=" << static_cast<std::int32_t>(font.Chars.size());
    const BmFieldWriter chars(bmCharFields, " ", "=", "");
    for (const MBmChar& c : font.Chars) {
        out << "\nchar";
        chars.Write(out, c);
    }
    out << "\nkernings count=" << static_cast<std::int32_t>(font.Kernings.size()) << "\n";
    const BmFieldWriter kernings(bmKerningFields, " ", "=", "");
    for (const MBmKerning& pair : font.Kernings) {
        out << "kerning";
        kernings.Write(out, pair);
        out << "\n";
    }
    return out.Take();
}

MBmResult ReadBmText(std::string_view bytes) {
    BmRecordReader reader;
    std::vector<BmAttribute> attributes;
    while (!bytes.empty()) {
        const std::string_view line = bytes.substr(0, bytes.find_first_of("\r\n"));
        bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
        if (!TakeLine(reader, line, attributes)) break;
    }
    return reader.Finish();
}
