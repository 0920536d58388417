#include "apps/lettrino-cli/Words.h"

#include "foundation/MString.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <system_error>

namespace {

template<typename Number>
std::optional<Number> ReadDigits(std::string_view text, int base) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return number;
}

struct Range {
    char16_t first;
    char16_t last;
};

// A character alone, also "-", or two of them with a "-" between.
std::optional<Range> ReadRange(std::string_view text) {
    if (const auto character = ReadCharacter(text)) return Range{*character, *character};
    const std::size_t dash = text.find('-', 1);
    if (dash == std::string_view::npos) return std::nullopt;
    const auto first = ReadCharacter(text.substr(0, dash));
    const auto last = ReadCharacter(text.substr(dash + 1));
    if (!first || !last || *first > *last) return std::nullopt;
    return Range{*first, *last};
}

} // namespace

std::optional<std::int32_t> ReadNumber(std::string_view text) {
    return ReadDigits<std::int32_t>(text, 10);
}

std::optional<MColour> ReadColour(std::string_view text) {
    const auto rgb = text.size() == 6 ? ReadDigits<std::uint32_t>(text, 16) : std::nullopt;
    if (!rgb) return std::nullopt;
    return MColour(static_cast<std::uint8_t>(*rgb >> 16), static_cast<std::uint8_t>(*rgb >> 8),
                   static_cast<std::uint8_t>(*rgb));
}

std::optional<char16_t> ReadCharacter(std::string_view text) {
    const MString units = FromSystem(text);
    if (units.Length() == 1) return units.GetChar(0);
    const auto code = text.starts_with("U+") ? ReadDigits<std::uint16_t>(text.substr(2), 16)
                                             : ReadDigits<std::uint16_t>(text, 10);
    return code ? std::optional(static_cast<char16_t>(*code)) : std::nullopt;
}

std::optional<Selection> ReadSelection(std::string_view text) {
    Selection selected{};
    if (text == "none") return selected;
    for (const std::string& part : text == "all" ? std::vector<std::string>{"33-255"} : SplitList(text)) {
        const auto range = ReadRange(part);
        if (!range || range->last >= selected.size()) return std::nullopt;
        for (std::size_t code = std::max<std::size_t>(range->first, 33); code <= range->last; ++code) {
            selected[code] = 1;
        }
    }
    return selected;
}

std::vector<std::string> SplitList(std::string_view text) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == ',') {
            parts.emplace_back();
        } else {
            parts.back().push_back(c);
        }
    }
    return parts;
}

std::optional<std::string> ReadSmallText(const std::filesystem::path& path) {
    constexpr std::uintmax_t most = 1 << 20;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) || std::filesystem::file_size(path, error) > most)
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file) return std::nullopt;
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    std::erase(text, '\r');
    return text;
}
