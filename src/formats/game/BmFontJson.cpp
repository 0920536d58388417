// The JSON form: one object with the lists "pages" (names), "chars" and "kernings", and the objects "info" and
// "common", as the parsers of the other forms give a font to programs in JavaScript.

#include "formats/game/BmFontRecords.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

using Json = nlohmann::json;

template<typename Record, std::size_t Count>
void WriteObjects(BmText& out, std::string_view name, const std::vector<Record>& records,
                  const std::array<BmField<Record>, Count>& fields) {
    out << "\"" << name << "\":[";
    const BmFieldWriter writer(fields, "\"", "\":", ",");
    bool first = true;
    for (const Record& record : records) {
        out << (first ? "\n{" : ",\n{");
        first = false;
        writer.Write(out, record);
        out.ReplaceLast('}');
    }
    out << "]";
}

std::string ValueText(const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
    if (value.is_array()) {
        std::string list;
        for (const Json& element : value)
            list += (list.empty() ? "" : ",") + ValueText(element);
        return list;
    }
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool TakeObject(BmRecordReader& reader, std::string_view tag, const Json& object) {
    if (!object.is_object()) return reader.Refuse("its " + std::string(tag) + " is no object");
    std::vector<std::string> values;
    std::vector<BmAttribute> attributes;
    values.reserve(object.size());
    for (const auto& [name, value] : object.items()) {
        values.push_back(ValueText(value));
        attributes.push_back({name, values.back()});
    }
    return reader.Take(tag, attributes);
}

// Of a member that may be missing.
template<typename Take>
bool ForEach(const Json& font, const char* name, BmRecordReader& reader, Take take) {
    const auto list = font.find(name);
    if (list == font.end()) return true;
    if (!list->is_array()) return reader.Refuse("its " + std::string(name) + " are no list");
    return std::ranges::all_of(*list, take);
}

bool TakePages(BmRecordReader& reader, const Json& font) {
    std::int32_t id = 0;
    return ForEach(font, "pages", reader, [&](const Json& page) {
        if (page.is_object()) return TakeObject(reader, "page", page);
        const std::string number = std::to_string(id++);
        const std::string file = page.is_string() ? page.get<std::string>() : std::string();
        const BmAttribute attributes[] = {{"id", number}, {"file", file}};
        return reader.Take("page", attributes);
    });
}

// Whether a text goes deeper than any font does, also in what is passed over. What reads on calls itself for
// each level.
bool IsTooDeep(std::string_view text) {
    constexpr int deepest = 100;
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size() && depth <= deepest; ++i) {
        const char c = text[i];
        if (c == '"') inString = !inString;
        if (inString && c == '\\') ++i;
        if (inString) continue;
        if (c == '[' || c == '{') ++depth;
        if (c == ']' || c == '}') --depth;
    }
    return depth > deepest;
}

} // namespace

std::string WriteBmJson(const MBmFont& font) {
    constexpr std::size_t charObject = 130;
    constexpr std::size_t kerningObject = 50;
    BmText out(512 + font.Chars.size() * charObject + font.Kernings.size() * kerningObject);
    const MBmInfo& info = font.Info;
    out << "{\"pages\":[";
    for (const MBmPage& page : font.Pages)
        out << (page.Id == 0 ? "\"" : ",\"") << page.File << "\"";
    out << "],\n";
    WriteObjects(out, "chars", font.Chars, bmCharFields);
    out << ",\n\"info\":{\"face\":\"" << info.Face << "\",\"size\":" << info.Size << ",\"bold\":" << info.Bold
        << ",\"italic\":" << info.Italic << ",\"charset\":\"\",";
    BmFieldWriter(bmInfoFields, "\"", "\":", ",").Write(out, info);
    out << "\"padding\":[" << info.Padding[0] << "," << info.Padding[1] << "," << info.Padding[2] << ","
        << info.Padding[3] << "],\"spacing\":[" << info.Spacing[0] << "," << info.Spacing[1]
        << "],\"outline\":" << info.Outline << "},\n\"common\":{";
    BmFieldWriter(bmCommonFields, "\"", "\":", ",").Write(out, font.Common);
    out.ReplaceLast('}');
    out << ",\n";
    WriteObjects(out, "kernings", font.Kernings, bmKerningFields);
    out << "}\n";
    return out.Take();
}

MBmResult ReadBmJson(std::string_view bytes) {
    BmRecordReader reader;
    const Json font = IsTooDeep(bytes) ? Json() : Json::parse(bytes, nullptr, false);
    if (!font.is_object()) {
        reader.Refuse("it is no whole JSON");
        return reader.Finish();
    }
    for (const char* const name : {"info", "common"}) {
        const auto object = font.find(name);
        if (object != font.end() && !TakeObject(reader, name, *object)) return reader.Finish();
    }
    if (TakePages(reader, font) &&
        ForEach(font, "chars", reader, [&](const Json& c) { return TakeObject(reader, "char", c); })) {
        ForEach(font, "kernings", reader,
                [&](const Json& pair) { return TakeObject(reader, "kerning", pair); });
    }
    return reader.Finish();
}
