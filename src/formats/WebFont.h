// What the writer and the reader of web fonts must agree on.
#pragma once

#include "foundation/MString.h"

// The first line of every generated script, by which it is recognised.
MString ScriptHeader();

// The font's name as its files have it: the file name of `path`, cut at its first dot.
MString WebFontName(const MString& path);
