// What the dialogs read from their text fields, and how they write numbers there.
#pragma once

#include "foundation/MString.h"

// The first unit, '?' in an empty field.
char16_t FieldCharacter(const MString& text);
// A text of this one unit; empty for 0.
MString CharacterText(char16_t character);
// Of at most the first 15 units; what is no number is 0.
std::int32_t FieldNumber(const MString& text);
// A text that reads as this number stays as it was typed, also "-" or an empty one for 0.
void ShowNumber(MString& text, std::int32_t value);
