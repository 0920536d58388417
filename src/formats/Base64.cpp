#include "formats/Base64.h"

#include <array>

namespace {

constexpr std::array<std::uint8_t, 256> MakeTable() {
    std::array<std::uint8_t, 256> table{};
    std::uint8_t value = 0;
    for (const char c : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")) {
        table[static_cast<unsigned char>(c)] = value++;
    }
    return table;
}

constexpr std::array<std::uint8_t, 256> table = MakeTable();

} // namespace

std::optional<std::vector<std::uint8_t>> DecodeBase64(std::string_view text) {
    if (text.size() < 2) return std::nullopt;
    std::size_t size = text.size() / 4 * 3;
    if (text.ends_with('=') && size > 0) --size;
    if (text[text.size() - 2] == '=' && size > 0) --size;
    std::vector<std::uint8_t> bytes(text.size() / 4 * 3);
    for (std::size_t i = 0, out = 0; i + 4 <= text.size(); i += 4, out += 3) {
        const auto value = [&](std::size_t place) {
            return std::uint32_t{table[static_cast<unsigned char>(text[i + place])]};
        };
        const std::uint32_t group = value(0) << 18 | value(1) << 12 | value(2) << 6 | value(3);
        bytes[out] = static_cast<std::uint8_t>(group >> 16);
        bytes[out + 1] = static_cast<std::uint8_t>(group >> 8);
        bytes[out + 2] = static_cast<std::uint8_t>(group);
    }
    bytes.resize(size);
    return bytes;
}
