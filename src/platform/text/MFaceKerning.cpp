#include "platform/text/MFaceKerning.h"

#include <hb-ft.h>
#include <hb.h>

#include <array>

MFaceKerning::MFaceKerning(const MString& family, std::int32_t weight, bool italic) {
    const auto match = MatchFont(family, weight, italic);
    if (!match) return;
    face = std::make_unique<MOpenFace>(*match);
    if (!face->face || face->unitsPerEm < 1) {
        face.reset();
        return;
    }
    font = hb_ft_font_create_referenced(face->face);
    hb_ft_font_set_load_flags(font, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING);
    hb_font_set_scale(font, face->unitsPerEm, face->unitsPerEm);
    buffer = hb_buffer_create();
}

MFaceKerning::~MFaceKerning() {
    if (buffer) hb_buffer_destroy(buffer);
    if (font) hb_font_destroy(font);
}

bool MFaceKerning::Has(char16_t character) const {
    return face && face->GlyphIndex(character) != 0;
}

std::int32_t MFaceKerning::Advance(std::u16string_view text) {
    constexpr auto feature = [](const char(&name)[5], std::uint32_t value) {
        return hb_feature_t{HB_TAG(name[0], name[1], name[2], name[3]), value, HB_FEATURE_GLOBAL_START,
                            HB_FEATURE_GLOBAL_END};
    };
    // What joins letters or exchanges them would hide a pair's kerning.
    const std::array features = {feature("kern", 1), feature("liga", 0), feature("clig", 0), feature("calt", 0),
                                 feature("rlig", 0)};
    hb_buffer_clear_contents(buffer);
    hb_buffer_add_utf16(buffer, reinterpret_cast<const std::uint16_t*>(text.data()),
                        static_cast<int>(text.size()), 0, -1);
    hb_buffer_set_direction(buffer, HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer, HB_SCRIPT_LATIN);
    hb_buffer_set_language(buffer, HB_LANGUAGE_INVALID);
    hb_shape(font, buffer, features.data(), static_cast<unsigned>(features.size()));
    unsigned count = 0;
    const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(buffer, &count);
    std::int32_t sum = 0;
    for (unsigned i = 0; i < count; ++i)
        sum += positions[i].x_advance;
    return sum;
}

std::int32_t MFaceKerning::Alone(char16_t character) {
    const auto [known, isNew] = alone.try_emplace(character, 0);
    if (isNew) known->second = Advance({&character, 1});
    return known->second;
}

std::int32_t MFaceKerning::Amount(char16_t left, char16_t right) {
    if (!Has(left) || !Has(right)) return 0;
    const std::array pair = {left, right};
    const std::u16string_view text(pair.data(), pair.size());
    return Advance(text) - Alone(left) - Alone(right);
}
