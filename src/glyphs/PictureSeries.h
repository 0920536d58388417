// Picture files that are named after the characters they show, alone or in series: A.png, B.png, C.png, or
// x65.png, x66.png, x67.png.
#pragma once

#include "document/MColourFont.h"
#include "foundation/MString.h"

#include <vector>

// The character that a file's name tells, as a one-character text: two or more digits at its end are a code, of
// 33 to 65535; otherwise it is the last character. False if there is none. The name ends at its first dot.
bool CharacterFromFileName(const MString& path, MString& character);

// Goes on to the next file of a series, and to the next character. True if that file exists; its extension is
// asked for in upper case, which finds it in any case. The series is one of letters if the name ends in the
// character, else one of numbers if it ends in the character's code.
bool NextSuccessivePicture(MString& path, char16_t& character);

// Adds the rest of a series, from the picture just used on, with the spacings and the trim of the settings. The
// pictures that became no glyphs, which don't end the walk.
std::vector<MString> AddSuccessivePictures(MColourFont& font, MString path, char16_t character);

// Adds one picture with the spacings and the trim of the settings. The first picture of a font that is new
// gives the glyphs their height, whatever it is. False if it became no glyph.
bool AddPicture(MColourFont& font, bool isNew, char16_t character, const MPicture& picture);

// Adds the picture that the settings name, and asks the user whether to go on with the rest of its series; then
// sorts and repacks. A file that is no picture is passed over without a word. The caller draws.
void AddChosenPictures(MColourFont& font, bool isNew);
