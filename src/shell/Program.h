// The program from start to end, and what happens to its window in between.
#pragma once

#include "platform/Desktop.h"

// Reads the settings, opens the window and a texture font named by `file`, runs until the window is closed, and
// writes the settings last of all. The process's exit code.
int RunProgram(const MString& file);

// The whole window, with its frame, was moved or resized. A later start opens there.
void RecordWindowRect(const Desktop::Rect& frame);

// The client area wants painting. Without a font nothing is painted.
void PaintMainWindow();

// Files were dropped, of which this is the first. Texture fonts are opened, letters are looked for on pictures,
// others ignored.
void OpenDroppedFile(const MString& path);
