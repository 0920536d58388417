// Settings for a test, and small fonts made by hand.
#pragma once

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "platform/headless/Headless.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

class DocumentTest : public testing::Test {
protected:
    MSettings settings;

    DocumentTest() {
        Settings = &settings;
        Headless::Reset();
    }
    ~DocumentTest() override { Settings = nullptr; }

    // A window for those who only pass it on.
    static Desktop::WindowHandle AnyWindow() {
        static char window;
        return reinterpret_cast<Desktop::WindowHandle>(&window);
    }
};

inline MGlyph& AddGlyph(MColourFont& font, char16_t character, std::int32_t width, std::int32_t height) {
    const auto slot = static_cast<std::size_t>(font.ClaimSlot(character));
    font.Glyphs[slot] = std::make_unique<MGlyph>(character, width, height, 1, 2, false);
    return *font.Glyphs[slot];
}

// The codes in slot order, "." for a hole, up to the last glyph.
inline std::string SlotsOf(const MColourFont& font) {
    std::string text;
    for (const auto& glyph : font.Glyphs)
        text += glyph ? static_cast<char>(glyph->Character) : '.';
    return text.substr(0, text.find_last_not_of('.') + 1);
}

// Every pixel its own colour, some of them transparent.
inline void FillWithNoise(MPicture& picture, unsigned seed) {
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < std::size_t{picture.Stride} * picture.Height; ++i) {
        const auto value = random();
        picture.Pixels[i] = static_cast<std::uint8_t>(value % 3 == 0 ? 0 : value >> 8);
    }
}

// A font's kerning as tests compare it.
using Pairs = std::vector<MKerningPair>;

inline Pairs PairsOf(const MColourFont& font) {
    return {font.Kerning.begin(), font.Kerning.end()};
}

inline std::ostream& operator<<(std::ostream& out, const MKerningPair& pair) {
    return out << pair.Left << ' ' << pair.Right << ' ' << pair.Amount;
}
