// A document that stays as it is while another goes on.
#pragma once

#include "document/MColourFont.h"

// Makes `to` equal to `from`, but for its owner and its packed picture, which the caller's Repack makes. False
// without memory, and then `to` is empty.
bool CopyFont(const MColourFont& from, MColourFont& to);
