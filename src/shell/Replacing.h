// What the user is asked before files are replaced, and told of those that could not be written.
#pragma once

#include "foundation/MSafeFile.h"

#include <vector>

// Whether there is a file of exactly this name, also one that a broken link stands for.
bool IsThere(const MString& path);
// Asks once, with the number of those files that are there. True at once if there are none, but for the one
// that the file dialog has asked about.
bool MayReplace(const std::vector<MString>& paths, const MString& askedAbout = {});
// One box for all of them; none if there are none.
void TellFailures(const MWriteFailures& failures);
