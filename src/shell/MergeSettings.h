// Two windows of the program, each with its choices, and one settings file.
#pragma once

#include "document/MSettings.h"

// Gives `ours` what others have chosen since the program started, wherever this window's user has left a choice
// as it was: `start` is what both began with, `theirs` what the file says now. Where both changed something,
// ours stays.
void MergeSettings(MSettings& ours, const MSettings& start, const MSettings& theirs);
