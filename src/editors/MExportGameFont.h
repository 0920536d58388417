// The dialog that chooses how a font is exported for games. It starts with what the settings remember, and only
// OK writes them. What will be written, and what the engine won't take as it is, stands here after every
// change.
#pragma once

#include "formats/game/MGameFontExport.h"

#include <cstdint>
#include <vector>

class MExportGameFont {
public:
    // The controls. A number's text counts as FieldNumber reads it, limited to what an export takes.
    std::vector<MString> Engines; // their titles
    std::int32_t Engine = 0;      // the place of the chosen one
    std::vector<MString> Forms;   // those that the engine reads
    std::int32_t Form = 0;
    std::vector<MString> PageSizes;
    std::int32_t PageSize = 0;
    MString Gap;
    MString Bleed;
    MString Largest;

    MString
        Summary; // "text, 566 KB; 1 page of 512 x 388 pixels, 88 % of it filled", or why nothing can be written
    MString Findings; // a line each, those that are to do first; tells also if there are none
    bool CanExport = false;

    // Looks at the font, which must not change while the dialog is open.
    explicit MExportGameFont(const MColourFont& font);
    MExportGameFont(const MExportGameFont&) = delete;
    MExportGameFont& operator=(const MExportGameFont&) = delete;

    void ChangeEngine(std::int32_t place); // to its first form, unless it reads the one that was chosen
    void ChangeForm(std::int32_t place);
    void ChangePageSize(std::int32_t place);
    // Any of the numbers, with the texts that stand there.
    void ChangeNumbers();

    void Accept() const;

private:
    MFontDescription description;
    MGameFontOptions options;

    void FillForms();
    void Update();
    MString SummaryOf(const MGameFontPlan& plan) const;
};
