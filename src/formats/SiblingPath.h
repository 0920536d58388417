// The files that make up one font differ in nothing but their extensions.
#pragma once

#include "foundation/MFolders.h"

// `path` with another extension, given without its dot.
inline MString SiblingPath(const MString& path, const char* extension) {
    return WithExtension(path, extension);
}
