// The files that make up one font differ in nothing but their extensions.
#pragma once

#include "foundation/MString.h"

// `path` with another extension, given without its dot.
inline MString SiblingPath(MString path, const char* extension) {
    path.SetExtension(extension);
    return path;
}
