// Optical kerning in running text, without its window: a line of the user's own words as it stands and as it
// would be, how strongly the white is evened out, and the pairs that the user has fixed in the line, which the
// rest follows. The font is not touched until Ok. The view tells what the user did, and afterwards shows
// whatever stands here.
#pragma once

#include "document/OpticalKerning.h"
#include "document/SetText.h"
#include "editors/PreviewArea.h"
#include "glyphs/MWindowSurface.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

class MOpticalKerningEditor {
public:
    static constexpr std::int32_t Strongest = 200; // percent

    MColourFont& Font; // not owned
    // Where the preview is drawn; nothing is drawn on no window.
    Desktop::WindowHandle Window = nullptr;
    Desktop::Rect Area;
    float Density = 1; // pixels of the screen for one of an ordinary one, for captions and the strip
    MWindowSurface Surface;

    // The controls.
    MString Text;
    std::int32_t Strength = 100; // percent
    bool ShowWhite = true;       // the strip under the line that tells tight from loose
    std::vector<MKerningPair> Models;
    std::vector<MKerningPair> Pairs; // what OK gives to the font
    std::int32_t Gap = -1;           // the place in the line before its glyph of this number; -1 for none

    // Starts with the line and the strength of the settings.
    explicit MOpticalKerningEditor(MColourFont& font);
    MOpticalKerningEditor(const MOpticalKerningEditor&) = delete;
    MOpticalKerningEditor& operator=(const MOpticalKerningEditor&) = delete;

    bool IsReady() const { return optical.state == MOpticalKerning::State::Ready; }
    // Why nothing can be kerned; empty if it can.
    MString Notice() const;
    // How many pairs there would be; and of the selected gap its letters, their white beside that of upright
    // letters, and the kerning.
    MString PairCount() const;
    MString GapText() const;
    MString ModelText(std::size_t index) const; // "A    V    -7"

    void TextChanged(const MString& text);
    void StrengthChanged(std::int32_t percent);
    void ShowWhiteChanged(bool show);

    void Clicked(MPoint point);          // selects the gap nearest to it
    void MoveGap(std::int32_t places);   // to the next gap with two letters, or the one before
    void Nudge(std::int32_t pixels);     // fixes the selected pair that much further apart
    void Release();                      // takes the selected pair out of the models
    void RemoveModel(std::size_t index); // and one of the list
    void SelectModel(std::size_t index); // its first gap in the line, if there is one

    void Paint();
    // Gives the pairs to the font, by amount, and keeps the line and the strength. False without memory for
    // them.
    bool Ok();

private:
    MOpticalKerning optical;
    MTextLine line; // as it would be
    // Of the line as it is drawn: pixels of the screen for one of the font's, and where its left edge lies.
    float scale = 0;
    float origin = 0;

    // Where a line is drawn many times smaller than it is, it is set from letters that were shrunk by a whole
    // number before, which leaves three pixels for each one that is seen.
    std::int32_t reduction = 1;
    std::map<const MGlyph*, std::unique_ptr<MGlyph>> reduced;

    MTextLine Reduced(const MTextLine& whole);
    void Follow();
    void LayOut();
    std::optional<MKerningPair> PairAt(std::int32_t gap) const; // with the amount that it would have
    float WhiteAt(std::int32_t gap) const;                      // beyond that of upright letters, in pixels
    std::int32_t Scaled(float size) const;
    Desktop::Rect Half(bool lower) const;
    void DrawLine(MDirect2DSurface& surface, const MPicture& picture, const Desktop::Rect& place);
    void DrawWhite(MDirect2DSurface& surface, std::int32_t top);
    void DrawGap(MDirect2DSurface& surface, const Desktop::Rect& place);
    float GapX(std::int32_t gap) const; // in the dialog
};
