// Fonts, pictures and paintings for the tests of the editors.
#pragma once

#include "DocumentFixture.h"
#include "TemporaryFolder.h"
#include "Text.h"
#include "foundation/MNumbers.h"
#include "glyphs/Pixels.h"
#include "imaging/Pictures.h"

#include <limits>
#include <optional>

inline constexpr std::int32_t Least = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();

// A picture of one colour in a file.
inline MString WritePicture(const TemporaryFolder& folder, const char* name, std::uint32_t width,
                            std::uint32_t height, const MColour& colour) {
    EXPECT_TRUE(FilledPicture(width, height, colour).Save(folder.File(name)));
    return folder.File(name);
}

class EditorTest : public DocumentTest {
protected:
    MColourFont font{nullptr};

    MGlyph& Add(char16_t character, std::int32_t width, std::int32_t height, const MColour& ink = {0, 0, 255}) {
        MGlyph& glyph = AddGlyph(font, character, width, height);
        glyph.Picture.Fill(ink);
        return glyph;
    }

    // Of the last painting at these places; without a colour half red, as of a guide.
    struct Place {
        std::int32_t x, y;
        std::optional<MColour> colour;
    };
    static void ExpectPainted(std::initializer_list<Place> places) {
        for (const auto& [x, y, colour] : places) {
            const MColour painted = Painted(x, y);
            EXPECT_TRUE(colour ? painted == *colour : std::abs(painted.r - 128) <= 10) << x << ", " << y;
        }
    }

    static std::size_t Paintings() { return Headless::record.paintings.size(); }

    // Of the last painting.
    static MColour Painted(std::int32_t x, std::int32_t y) {
        const Headless::Painting& painting = Headless::record.paintings.back();
        return PixelAt(painting, x - painting.area.left, y - painting.area.top);
    }
};
