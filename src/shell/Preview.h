// The preview of the main window: the packed picture, shrunk to fit. The shrunk copy is kept, so that painting
// again with nothing changed costs a copy and no resampling.
#pragma once

// Paints like MColourFont::Draw, but scales what was kept from another size of the window instead of the
// picture itself, for a window that is just being resized: a large picture takes too long for that. Draw, as
// soon as the size stands, brings the exact picture. Does nothing without a current font.
void DrawPreviewQuickly();

// Whether DrawPreviewQuickly is worth it: shrinking the current font's picture would be noticed.
bool IsPreviewSlow();

// Frees the kept copy.
void ForgetPreview();
