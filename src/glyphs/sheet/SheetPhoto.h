// The picture of a sheet as it was seen. Cameras keep the rows of their sensor, and tell in the file how they
// were held; pictures as glyphs are taken as they are.
#pragma once

#include "foundation/MString.h"
#include "imaging/MPicture.h"

// In the file's own depth, within what the picture of a whole font may take. Invalid if it can't be read.
MPicture ReadSheetPicture(const MString& path);
