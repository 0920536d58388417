// One run of the command line: the settings it starts from, and the one document.
#pragma once

#include "document/MColourFont.h"
#include "document/MSettings.h"
#include "formats/webfont/MWebFontExport.h"
#include "glyphs/SheetCutter.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

// What steps choose for those that follow, and the last results that some go back to.
struct Choices {
    MSettings settings;
    std::vector<MKerningPair> modelPairs; // that optical kerning follows
    std::string gameFontName;             // of the font last exported for games; empty before
    MWebFontOptions webFont;              // of the font files that follow
    bool checkAsLines = false;            // what a check prints: lines, else JSON
    MString sheetText;                    // of the sheets that follow; empty: the selected characters
    MSheetWishes sheetWishes;             // of the sheets that follow
    std::string sheetReport;              // to be written with the sheet that follows; empty for none
    std::shared_ptr<const MSheet> sheet;  // the last one; null before
    std::string sheetFile;                // its file, in full
};

// What a run was when it was marked.
struct Marked {
    Choices choices;
    std::unique_ptr<MColourFont> font; // without its picture; null if there was none
};

class Run {
public:
    Choices choices; // its settings are the program's while the run lives
    std::unique_ptr<MColourFont> font;
    std::map<std::string, Marked> marks;

    Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run();

    // The document, made when there is none yet.
    MColourFont& FontOrNew();
};
