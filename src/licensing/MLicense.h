// Whose copy this is. So far a copy counts as licensed as soon as a first key was entered, which is taken for
// the user's name; no key is checked.
#pragma once

#include "document/MSettings.h"

class MLicense {
public:
    MString Name; // of the licensed user; empty in an unlicensed copy

    explicit MLicense(const MSettings& settings) { Take(settings); }

    // Again, after the keys were changed.
    void Take(const MSettings& settings) { Name = settings.Keys[0]; }
};

// The one object, or null.
extern MLicense* License;
