// The files that an export writes, for whoever asks before they are replaced.
#pragma once

#include "document/MColourFont.h"

#include <vector>

// `path` is what the export is given.
std::vector<MString> FontPaths(const MString& path);
std::vector<MString> PagePaths(const MString& path, bool minimal);
std::vector<MString> SingleFilePaths(const MColourFont& font, const MString& path);
// None if the cubes can't be made.
std::vector<MString> LetterCubePaths(const MColourFont& font, const MString& path);
