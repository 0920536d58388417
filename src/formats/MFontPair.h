// The two files of a texture font, put into their places as one: whoever reads them finds the old font whole or
// the new one whole, at every moment, also after the program was killed or the power failed, and with several
// programs saving.
//
// Two files can't be renamed at once, but the text names its picture, so one rename decides. Under a lock of
// the folder:
//
//   1. the new picture gets a second name, ".demo.saved-0.png"
//   2. a text that names it so replaces "demo.sm"; from here on the font is the new one
//   3. the picture replaces "demo.png", which no text names at this moment
//   4. a text that names "demo.png" replaces "demo.sm"
//   5. the second name goes, also that of a save that was interrupted
//
// Each step is on the disk before the next one. A reader that takes the picture which the text names needs to
// know nothing of this. Ours takes "demo.png" whatever the text names, but for these names; and since it opens
// the text first and asks in the end whether it is still the same file, a save while it reads makes it read
// again. A reader that doesn't ask can still meet a save between its two files; nothing that leaves both names
// in place could help there.
#pragma once

#include "foundation/MSafeFile.h"

#include <functional>

// Writes the font's text, beside its target, with a picture of this path. Called while the folder is locked.
using MWriteFontText = std::function<MSafeFile(const MString& picturePath)>;

// Puts both into their places. Unless it succeeded, `failures` tells what failed, and the font is the old one
// or, if the picture alone couldn't be replaced, the new one by its second name.
bool PlaceFontPair(MSafeFile picture, MSafeFile text, const MWriteFontText& writeText,
                   MWriteFailures& failures);

// The picture of a font whose save was interrupted, or goes on just now, by its second name. Empty for all
// others.
MString UnfinishedPicture(const MString& textPath);
// Does what an interrupted save left to do, if the files can be written.
void FinishFontPair(const MString& textPath);
