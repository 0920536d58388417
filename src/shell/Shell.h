// What the program holds while it runs, beside the settings, the license and the current font.
#pragma once

#include "platform/Desktop.h"

extern Desktop::WindowHandle MainWindow; // null until the window exists
extern MString CommandLineFile;          // the file named at the start; empty if none
