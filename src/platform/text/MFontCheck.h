// What the libraries that read fonts do not check themselves: they load each glyph for its measures alone,
// whatever it takes.
#pragma once

#include <string>

// Why a font file must not be given to them, in words that follow its name; empty if nothing speaks against it.
// True fonts have a few parts to a glyph, and pictures of glyphs of up to 512 pixels; files for the web unpack
// to a few times their size, and no collection has a thousand faces.
std::string WhyUnsafe(const std::string& file);
