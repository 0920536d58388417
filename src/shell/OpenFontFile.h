// Opening what the user names: a font file in the program, a page of the web in the browser.
#pragma once

#include "foundation/MString.h"

// Replaces the current font, which is made if there is none, by a texture font (.sm) or by the script of a web
// page (.js). The old content is gone whatever follows: a file that can't be read leaves an empty font, and the
// window as it is until it is painted next.
void OpenFontFile(const MString& path);

// Opens an address in the browser, unless its extension is that of something that would be downloaded.
void OpenUrl(const MString& url);
