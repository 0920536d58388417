#include "platform/text/MTextFormat.h"

#include "foundation/MNumbers.h"
#include "foundation/MUtf8.h"
#include "platform/text/MFontPattern.h"
#include "platform/text/MGlyphPainter.h"

#include <cairo.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-font.h>
#include <pango/pangofc-fontmap.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr gunichar softHyphen = 0xAD; // which Pango leaves out where no line ends at it
constexpr double largestSize = 32767; // pixels, as far as FreeType and Cairo count

// One for the program, since it holds every font that was ever looked up. It must hear of added fonts.
PangoFontMap* FontMap() {
    static PangoFontMap* const map = pango_cairo_font_map_new();
    static std::uint32_t known = FontsVersion();
    if (known != FontsVersion()) pango_fc_font_map_config_changed(PANGO_FC_FONT_MAP(map));
    known = FontsVersion();
    return map;
}

PangoContext* MakeContext() {
    PangoContext* const context = pango_font_map_create_context(FontMap());
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(context, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context, FALSE);
    pango_context_set_base_dir(context, PANGO_DIRECTION_LTR);
    return context;
}

double Indent(double room, MTextAlignment alignment) {
    switch (alignment) {
    case MTextAlignment::Centre: return room / 2;
    case MTextAlignment::Far: return room;
    default: return 0;
    }
}

int ToPango(double pixels) {
    return ToInteger(std::clamp(pixels, 0.0, 1e6) * PANGO_SCALE);
}

} // namespace

void MTextFormat::Unref::operator()(void* object) const {
    g_object_unref(object);
}

MTextFormat::MTextFormat(const MTextStyle& textStyle) : style(textStyle) {
    const auto match = MatchFont(style.family, style.weight, style.italic);
    if (!match || style.size < 1 || style.size > largestSize) return;
    own = MGlyphPainter::Shared(*match);
    if (!own->face.face) return;
    context.reset(MakeContext());
    layout.reset(pango_layout_new(context.get()));
    // The name of the face that was found, so that Pango comes to the same one.
    PangoFontDescription* const description = pango_font_description_new();
    pango_font_description_set_family(description, match->family.c_str());
    pango_font_description_set_weight(description, static_cast<PangoWeight>(match->weight));
    pango_font_description_set_style(description, style.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_absolute_size(description, style.size * double{PANGO_SCALE});
    pango_layout_set_font_description(layout.get(), description);
    if (PangoFont* const font = pango_context_load_font(context.get(), description)) {
        const auto loaded = ToMatch(pango_fc_font_get_pattern(PANGO_FC_FONT(font)));
        ownGlyphs = !loaded || loaded->file != match->file;
        g_object_unref(font);
    }
    pango_font_description_free(description);
    pango_layout_set_auto_dir(layout.get(), FALSE);
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    valid = true;
}

MTextFormat::~MTextFormat() {
    for (const auto& [font, painter] : painters)
        g_object_unref(font);
}

void MTextFormat::SetOwnGlyphs(const std::string& utf8) {
    PangoAttrList* const attributes = pango_attr_list_new();
    const double unit = static_cast<double>(style.size) / own->face.unitsPerEm;
    for (const char* at = utf8.data(); at < utf8.data() + utf8.size(); at = g_utf8_next_char(at)) {
        const std::uint32_t glyph = own->face.GlyphIndex(g_utf8_get_char(at));
        if (glyph == 0) continue;
        PangoRectangle box{};
        box.width = ToPango(own->face.Advance(glyph) * unit);
        PangoAttribute* const attribute = pango_attr_shape_new(&box, &box);
        attribute->start_index = static_cast<guint>(at - utf8.data());
        attribute->end_index = static_cast<guint>(g_utf8_next_char(at) - utf8.data());
        pango_attr_list_insert(attributes, attribute);
    }
    pango_layout_set_attributes(layout.get(), attributes);
    pango_attr_list_unref(attributes);
}

void MTextFormat::SetText(const MString& text, int width) {
    const std::string utf8 = EncodeUtf8(text.View(), MLoneSurrogates::Replace);
    pango_layout_set_text(layout.get(), utf8.data(), static_cast<int>(utf8.size()));
    if (ownGlyphs) SetOwnGlyphs(utf8);
    pango_layout_set_width(layout.get(), width);
}

double MTextFormat::Width(const MString& text) {
    if (!valid) return 0;
    SetText(text, -1);
    PangoRectangle extents;
    pango_layout_get_extents(layout.get(), nullptr, &extents);
    return static_cast<double>(extents.width) / PANGO_SCALE;
}

MGlyphPainter& MTextFormat::PainterOf(PangoFont* font) {
    auto& painter = painters[font];
    if (!painter) {
        g_object_ref(font);
        const auto match = ToMatch(pango_fc_font_get_pattern(PANGO_FC_FONT(font)));
        painter = MGlyphPainter::Shared(match.value_or(MFontMatch{}));
    }
    return *painter;
}

bool MTextFormat::Draw(cairo_t* cairo, const MString& text, const MTextBox& box, MColour colour, bool colours,
                       bool clip) {
    if (!valid) return false;
    SetText(text, style.wrap ? ToPango(box.width) : -1);
    cairo_save(cairo);
    if (clip) {
        cairo_rectangle(cairo, box.left, box.top, box.width, box.height);
        cairo_clip(cairo);
    }
    DrawLines(cairo, box, colour, colours);
    cairo_restore(cairo);
    return true;
}

void MTextFormat::DrawRun(cairo_t* cairo, const PangoGlyphItem& run, double& x, double y, MColour colour,
                          bool colours) {
    MGlyphPainter& painter = PainterOf(run.item->analysis.font);
    const char* const text = pango_layout_get_text(layout.get()) + run.item->offset;
    for (int i = 0; i < run.glyphs->num_glyphs; ++i) {
        const PangoGlyphInfo& info = run.glyphs->glyphs[i];
        const double glyphX = x + static_cast<double>(info.geometry.x_offset) / PANGO_SCALE;
        const double glyphY = y + static_cast<double>(info.geometry.y_offset) / PANGO_SCALE;
        x += static_cast<double>(info.geometry.width) / PANGO_SCALE;
        const std::uint32_t glyph =
            ownGlyphs ? own->face.GlyphIndex(g_utf8_get_char(text + run.glyphs->log_clusters[i])) : 0;
        if (glyph != 0) {
            own->Draw(cairo, glyph, glyphX, y, style.size, colour, colours);
        } else if (info.glyph == PANGO_GLYPH_EMPTY &&
                   g_utf8_get_char(text + run.glyphs->log_clusters[i]) == softHyphen) {
            own->Draw(cairo, own->face.GlyphIndex(softHyphen), glyphX, y, style.size, colour, colours);
        } else if (info.glyph != PANGO_GLYPH_EMPTY && info.glyph & PANGO_GLYPH_UNKNOWN_FLAG) {
            own->Draw(cairo, 0, glyphX, glyphY, style.size, colour, colours);
        } else if (info.glyph != PANGO_GLYPH_EMPTY) {
            painter.Draw(cairo, info.glyph, glyphX, glyphY, style.size, colour, colours);
        }
    }
}

void MTextFormat::DrawLines(cairo_t* cairo, const MTextBox& box, MColour colour, bool colours) {
    const double unit = static_cast<double>(style.size) / own->face.unitsPerEm;
    const double ascent = own->face.cellAscent * unit;
    const double lineHeight = ascent + own->face.cellDescent * unit;
    double baseline =
        box.top + ascent +
        Indent(box.height - lineHeight * pango_layout_get_line_count(layout.get()), style.vertical);
    for (GSList* node = pango_layout_get_lines_readonly(layout.get()); node; node = node->next) {
        auto* const line = static_cast<PangoLayoutLine*>(node->data);
        PangoRectangle extents;
        pango_layout_line_get_extents(line, nullptr, &extents);
        double x =
            box.left + Indent(box.width - static_cast<double>(extents.width) / PANGO_SCALE, style.horizontal);
        const double y = std::floor(baseline + 0.5);
        for (GSList* run = line->runs; run; run = run->next)
            DrawRun(cairo, *static_cast<PangoGlyphItem*>(run->data), x, y, colour, colours);
        baseline += lineHeight;
    }
}
