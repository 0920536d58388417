// File names of the command line as paths.
#pragma once

#include "foundation/MString.h"

#include <string>

// The full path of a file name, in the system's bytes, that may be relative to the working folder.
MString AbsolutePath(const std::string& file);
