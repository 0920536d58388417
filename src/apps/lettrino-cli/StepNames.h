// What the command line understands: the part of it that needs no library, so that help is told at once.
#pragma once

#include <array>

struct StepName {
    const char* name;      // "--save"
    const char* arguments; // as the help shows them, separated by blanks; empty for none
    int argumentCount;
    const char* help;
};

inline constexpr std::array stepNames{
    StepName{"--family", "NAME", 1, "the font family to render; a missing one is substituted (Arial Black)"},
    StepName{"--weight", "N", 1, "its weight, 100 to 900 (400)"},
    StepName{"--italic", "", 0, "its italic face"},
    StepName{"--height", "N", 1, "the glyph height in pixels, limited to 16 to 1024 (100)"},
    StepName{"--colour", "RRGGBB", 1, "the colour of plain glyphs (FF0000)"},
    StepName{"--colour-font", "", 0, "glyphs in the font's own colours; what it does not colour is white"},
    StepName{"--background", "RRGGBB", 1, "the background colour (FFFFFF)"},
    StepName{"--select", "SET", 1, "the characters: A-Z,a-z,48-57,U+00E9 or all (33 to 255) or none (A-Z)"},
    StepName{"--font-file", "FILE", 1, "makes the faces of a font file available, as if installed"},
    StepName{"--generate", "", 0, "renders the selected characters into the font, then repacks"},
    StepName{"--open", "FILE", 1, "opens a font: .sm, .js of a web page, or .phf; then repacks"},
    StepName{"--padding", "TOP,BOTTOM", 1, "pixels above and below the pictures that follow (0,0)"},
    StepName{"--spacing", "BEFORE,AFTER", 1, "spacings of the pictures that follow (0,0)"},
    StepName{"--trim", "yes|no", 1, "whether their empty columns are removed (yes)"},
    StepName{"--picture", "CHAR=FILE", 1, "a picture as a glyph; the first one of a new font sets its height"},
    StepName{"--pictures", "CHAR=FILE", 1,
             "the same with all pictures that follow it: A.png, B.png or x65.png, x66.png"},
    StepName{"--kern", "", 0, "generates and sorts the kerning"},
    StepName{"--set-kerning", "L,R,N", 1, "sets the kerning of a pair in pixels"},
    StepName{"--remove", "CHAR", 1, "removes a glyph and its kerning"},
    StepName{"--ascii-only", "", 0, "removes the glyphs from code 128 on"},
    StepName{"--trim-rows", "", 0, "removes the rows that are empty in all glyphs"},
    StepName{"--resize", "N", 1, "scales the font to a glyph height, limited to 16 to 1024"},
    StepName{"--resize-normalised", "N", 1,
             "the same to the height at which capitals take 70 % of N; N itself without a cap height"},
    StepName{"--save", "FILE.sm", 1, "writes the font as a texture font, FILE.sm and FILE.png"},
    StepName{"--single-files", "FOLDER", 1, "writes each glyph as a PNG into a folder"},
    StepName{"--html", "FILE.html", 1, "writes a web page on which the font can be tried, and all it needs"},
    StepName{"--minimal-html", "FILE.html", 1, "the same with a minimal page"},
    StepName{"--names", "TEXTFILE", 1, "the names that the letter cubes shall spell, one to a line"},
    StepName{"--cubes", "FILE.png", 1,
             "writes the nets of letter cubes, FILE1.png and so on; prints their statistics"},
    StepName{"--text", "TEXT FILE.png", 2, "sets a line of text with the font, on the background"},
    StepName{"--info", "", 0, "prints the font's numbers as JSON"},
    StepName{"--list-fonts", "", 0, "prints the installed faces as JSON"},
};
