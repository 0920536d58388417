// What the program calls itself and its files.
#pragma once

#include "foundation/MString.h"

extern const MString ProductName;    // "Lettrino": window title, message box caption, folder names
extern const MString ProductVersion; // "4.0.0.8"
extern const MString MakerName;      // the folder above the product's in the user's configuration
extern const MString MakerSite;      // without a slash at its end
extern const MString ProductPage;    // the product's page on the web, named in every exported script
