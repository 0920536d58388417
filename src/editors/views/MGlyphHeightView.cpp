#include "editors/views/MGlyphHeightView.h"

#include "document/MSettings.h"
#include "foundation/MNumbers.h"

MGlyphHeightView::MGlyphHeightView(QWidget* owner) : MDialogView(owner, "Change glyph height", 165, 45) {
    Place(height, 85, 6, 70, 14);
    AddLabel("&Glyph height", height, 10, 6, 70, 14);
    AddButtons(65, 27, 110, 27);
    Fill(height, Settings->GlyphHeight);
    height.selectAll();
    height.setFocus();
    onOk = [this] {
        Settings->GlyphHeight = NumberIn(height);
        Clamp(Settings->GlyphHeight, SmallestGlyphHeight, LargestGlyphHeight);
    };
}
