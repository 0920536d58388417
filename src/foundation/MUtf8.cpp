#include "foundation/MUtf8.h"

#include <glib.h>

#include <cstdio>
#include <optional>

namespace {

constexpr char16_t replacement = 0xFFFD;

constexpr bool IsHighSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

constexpr bool IsLowSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// A lone surrogate in the three bytes that it would have as a character: ED A0..BF 80..BF.
std::optional<char16_t> SurrogateAt(std::string_view bytes) {
    if (bytes.size() < 3 || bytes[0] != '\xED') return std::nullopt;
    const auto second = static_cast<unsigned char>(bytes[1]);
    const auto third = static_cast<unsigned char>(bytes[2]);
    if ((second & 0xE0) != 0xA0 || (third & 0xC0) != 0x80) return std::nullopt;
    return static_cast<char16_t>(0xD000 | (second & 0x3F) << 6 | (third & 0x3F));
}

void AppendUnits(std::u16string& units, gunichar character) {
    if (character < 0x10000) {
        units.push_back(static_cast<char16_t>(character));
    } else {
        units.push_back(static_cast<char16_t>(0xD7C0 + (character >> 10)));
        units.push_back(static_cast<char16_t>(0xDC00 | (character & 0x3FF)));
    }
}

} // namespace

std::u16string DecodeUtf8(std::string_view bytes, MLoneSurrogates surrogates) {
    std::u16string units;
    units.reserve(bytes.size());
    while (!bytes.empty()) {
        if (static_cast<unsigned char>(bytes[0]) < 0x80) {
            units.push_back(static_cast<char16_t>(bytes[0]));
            bytes.remove_prefix(1);
            continue;
        }
        const gunichar character = g_utf8_get_char_validated(bytes.data(), static_cast<gssize>(bytes.size()));
        if (character <= 0x10FFFF) {
            AppendUnits(units, character);
            bytes.remove_prefix(static_cast<std::size_t>(g_utf8_skip[static_cast<unsigned char>(bytes[0])]));
        } else if (const auto surrogate = SurrogateAt(bytes);
                   surrogate && surrogates == MLoneSurrogates::Keep) {
            units.push_back(*surrogate);
            bytes.remove_prefix(3);
        } else {
            units.push_back(replacement);
            bytes.remove_prefix(1);
        }
    }
    return units;
}

std::string EncodeUtf8(std::u16string_view units, MLoneSurrogates surrogates) {
    std::string bytes;
    bytes.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        gunichar character = units[i];
        if (IsHighSurrogate(units[i]) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) {
            character = 0x10000 + ((character & 0x3FFU) << 10) + (units[i + 1] & 0x3FFU);
            ++i;
        } else if (surrogates == MLoneSurrogates::Replace &&
                   (IsHighSurrogate(units[i]) || IsLowSurrogate(units[i]))) {
            character = replacement;
        }
        char buffer[6];
        bytes.append(buffer, static_cast<std::size_t>(g_unichar_to_utf8(character, buffer)));
    }
    return bytes;
}

std::string CodePointText(std::uint32_t code) {
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(code));
    return text;
}
