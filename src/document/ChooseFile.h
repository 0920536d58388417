// The one way to every file dialog of the program.
#pragma once

#include "document/MSettings.h"

// Shows the dialog of this kind, starting in the folder of the path remembered for it, and remembers the path
// that was chosen; `typed` is what the dialog gave, before its extension was set. Empty if the user cancelled,
// for a kind without a dialog, and without an owner (there is no window to ask in then).
MString ChooseFile(Desktop::WindowHandle owner, MPathKind kind, MString* typed = nullptr);
