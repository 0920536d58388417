// Asks for the glyph height. On OK it stands in the settings, limited to what the program offers.
#pragma once

#include "editors/views/MDialogView.h"

class MGlyphHeightView : public MDialogView {
public:
    explicit MGlyphHeightView(QWidget* owner);

private:
    QLineEdit height;
};
