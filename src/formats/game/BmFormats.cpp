// The one table of the forms.

#include "formats/game/MBmFont.h"

#include <algorithm>

namespace {

constexpr std::string_view mark = "\xEF\xBB\xBF"; // of UTF-8

constexpr std::array<MBmFormat, 4> formats{{
    {MBmForm::Text, "text", "fnt", WriteBmText, ReadBmText},
    {MBmForm::Xml, "xml", "xml", WriteBmXml, ReadBmXml},
    {MBmForm::Binary, "binary", "fnt", WriteBmBinary, ReadBmBinary},
    {MBmForm::Json, "json", "json", WriteBmJson, ReadBmJson},
}};

std::string_view WithoutMark(std::string_view bytes) {
    return bytes.starts_with(mark) ? bytes.substr(mark.size()) : bytes;
}

} // namespace

std::span<const MBmFormat, 4> BmFormats() {
    return formats;
}

const MBmFormat* BmFormatNamed(std::string_view name) {
    const auto found = std::ranges::find(formats, name, &MBmFormat::Name);
    return found == formats.end() ? nullptr : &*found;
}

std::optional<MBmForm> SniffBmFont(std::string_view bytes) {
    if (bytes.starts_with("BMF")) return MBmForm::Binary;
    bytes = WithoutMark(bytes);
    bytes.remove_prefix(std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size()));
    if (bytes.starts_with('<')) return MBmForm::Xml;
    if (bytes.starts_with('{')) return MBmForm::Json;
    for (const std::string_view tag : {"info", "common", "page", "chars"}) {
        if (bytes.starts_with(tag)) return MBmForm::Text;
    }
    return std::nullopt;
}

MBmResult ReadBmFont(std::string_view bytes) {
    const auto form = SniffBmFont(bytes);
    if (form) return FormatOf(*form).Read(*form == MBmForm::Binary ? bytes : WithoutMark(bytes));
    MBmResult result;
    result.Reason = bytes.empty() ? "it is empty" : "it is no font of a form that is known here";
    return result;
}
