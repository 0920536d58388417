#include "formats/game/BmFontRecords.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const BmAttribute* FindAttribute(std::span<const BmAttribute> attributes, std::string_view name) {
    const auto found = std::ranges::find(attributes, name, &BmAttribute::Name);
    return found == attributes.end() ? nullptr : &*found;
}

// What a reason quotes of a file: short, and nothing that a terminal would act on.
std::string Quoted(std::string_view text) {
    constexpr std::size_t longest = 40;
    std::string quoted(text.substr(0, longest));
    std::ranges::replace_if(
        quoted,
        [](char c) { return static_cast<unsigned char>(c) < 32 || static_cast<unsigned char>(c) > 126; }, '?');
    return text.size() > longest ? quoted + "..." : quoted;
}

template<std::size_t Count>
void TakeList(std::span<const BmAttribute> attributes, std::string_view name,
              std::array<std::int32_t, Count>& list) {
    const BmAttribute* const attribute = FindAttribute(attributes, name);
    if (!attribute) return;
    std::string_view rest = attribute->Value;
    std::int32_t ignored = 0;
    for (std::int32_t& number : list) {
        const std::size_t comma = std::min(rest.find(','), rest.size());
        number = ReadBmNumber(rest.substr(0, comma), ignored).value_or(0);
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
}

} // namespace

std::optional<std::int32_t> ReadBmNumber(std::string_view text, std::int32_t& rounded) {
    std::int32_t whole = 0;
    const char* const end = text.data() + text.size();
    if (const auto [at, error] = std::from_chars(text.data(), end, whole); error == std::errc{} && at == end)
        return whole;
    double value = 0;
    const auto [at, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    if (error != std::errc{} || at != end || !(std::abs(value) < std::numeric_limits<std::int32_t>::max()))
        return std::nullopt;
    ++rounded;
    return static_cast<std::int32_t>(std::lround(value));
}

std::string BmFieldReason(std::string_view tag, std::string_view name, std::string_view value) {
    return "its " + std::string(tag) + " has " + std::string(name) + "=" + Quoted(value) +
           ", which is no number that it may have";
}

std::string WhyNotWhole(const MBmFont& font) {
    if (font.Pages.empty()) return "it names no page";
    if (font.Chars.empty()) return "it holds no character";
    constexpr std::size_t mostPages = 256; // a character tells its page by a byte
    if (font.Pages.size() > mostPages) return "it names more than 256 pages";
    return {};
}

bool BmRecordReader::Refuse(std::string reason) {
    if (result.Reason.empty()) result.Reason = std::move(reason);
    return false;
}

template<typename Record, std::size_t Count>
bool BmRecordReader::TakeNumbers(std::string_view tag, std::span<const BmAttribute> attributes,
                                 const std::array<BmField<Record>, Count>& fields, Record& record) {
    for (const BmAttribute& attribute : attributes) {
        const auto field = std::ranges::find(fields, attribute.Name, &BmField<Record>::Name);
        if (field == fields.end()) continue;
        const auto number = ReadBmNumber(attribute.Value, result.Rounded);
        if (!number || *number < field->Low || *number > field->High) {
            const BmAttribute* const id = FindAttribute(attributes, "id");
            const std::string which = id ? std::string(tag) + " id=" + Quoted(id->Value) : std::string(tag);
            return Refuse(BmFieldReason(which, attribute.Name, attribute.Value));
        }
        record.*field->Member = *number;
    }
    return true;
}

// Nothing of it matters for drawing, and tools leave odd things there: what is no number counts as missing.
void BmRecordReader::TakeInfo(std::span<const BmAttribute> attributes) {
    MBmInfo& info = result.Font.Info;
    if (const BmAttribute* const face = FindAttribute(attributes, "face")) info.Face = face->Value;
    std::int32_t ignored = 0;
    const auto take = [&](std::string_view name, std::int32_t& member) {
        const BmAttribute* const attribute = FindAttribute(attributes, name);
        if (const auto number = attribute ? ReadBmNumber(attribute->Value, ignored) : std::nullopt)
            member = *number;
    };
    take("size", info.Size);
    take("bold", info.Bold);
    take("italic", info.Italic);
    for (const auto& field : bmInfoFields)
        take(field.Name, info.*field.Member);
    take("outline", info.Outline);
    TakeList(attributes, "padding", info.Padding);
    TakeList(attributes, "spacing", info.Spacing);
}

bool BmRecordReader::TakePage(std::span<const BmAttribute> attributes) {
    MBmPage page;
    const BmAttribute* const id = FindAttribute(attributes, "id");
    const auto number = id ? ReadBmNumber(id->Value, result.Rounded) : std::optional(0);
    if (!number || *number < 0 || *number > 255) return Refuse(BmFieldReason("page", "id", id->Value));
    page.Id = *number;
    const BmAttribute* const file = FindAttribute(attributes, "file");
    if (!file || file->Value.empty()) return Refuse("its page " + std::to_string(page.Id) + " names no file");
    page.File = file->Value;
    if (std::ranges::find(result.Font.Pages, page.Id, &MBmPage::Id) != result.Font.Pages.end())
        return Refuse("it names page " + std::to_string(page.Id) + " twice");
    result.Font.Pages.push_back(std::move(page));
    return true;
}

bool BmRecordReader::TakeCount(std::string_view tag, std::span<const BmAttribute> attributes) {
    const BmAttribute* const count = FindAttribute(attributes, "count");
    if (!count) return true;
    const auto number = ReadBmNumber(count->Value, result.Rounded);
    // Some tools write a count of -1 for no kerning at all.
    if (!number || *number < -1) return Refuse(BmFieldReason(tag, "count", count->Value));
    (tag == "chars" ? charsTold : kerningsTold) = number;
    return true;
}

bool BmRecordReader::Take(std::string_view tag, std::span<const BmAttribute> attributes) {
    if (!result.Reason.empty()) return false;
    MBmFont& font = result.Font;
    if (tag == "char") {
        if (!FindAttribute(attributes, "id")) return Refuse("it has a char without an id");
        return TakeNumbers(tag, attributes, bmCharFields, font.Chars.emplace_back());
    }
    if (tag == "kerning") return TakeNumbers(tag, attributes, bmKerningFields, font.Kernings.emplace_back());
    if (tag == "common") {
        hasCommon = true;
        return TakeNumbers(tag, attributes, bmCommonFields, font.Common);
    }
    if (tag == "info") TakeInfo(attributes);
    if (tag == "page") return TakePage(attributes);
    if (tag == "chars" || tag == "kernings") return TakeCount(tag, attributes);
    return true;
}

MBmResult BmRecordReader::Finish() {
    const MBmFont& font = result.Font;
    const auto tooFew = [](const std::optional<std::int32_t>& told, std::size_t there) {
        return told && *told > 0 && static_cast<std::size_t>(*told) > there;
    };
    const auto cutOff = [](std::int32_t told, std::size_t there, const char* what) {
        return "it tells of " + std::to_string(told) + " " + what + " and holds " + std::to_string(there) +
               ": it is cut off";
    };
    if (!hasCommon) Refuse("it has no common record, which tells the height of its lines");
    if (std::string reason = WhyNotWhole(font); !reason.empty()) Refuse(std::move(reason));
    if (tooFew(charsTold, font.Chars.size())) Refuse(cutOff(*charsTold, font.Chars.size(), "characters"));
    if (tooFew(kerningsTold, font.Kernings.size()))
        Refuse(cutOff(*kerningsTold, font.Kernings.size(), "kerning pairs"));
    return std::move(result);
}
