// What the writer and the reader of web fonts must agree on.
#pragma once

#include "foundation/MString.h"

// The first line of every generated script, by which it is recognised.
MString ScriptHeader();

// The font's name as its files have it: the file name of `path`, cut at its first dot.
MString WebFontName(const MString& path);

// Whether the name of an exported page can be nothing but a name where the page and its script have it, in
// markup, in styles and as a variable: letters, digits, "_", "-", "$" and dots. It stands there as it is.
bool IsHarmlessWebName(const MString& path);
