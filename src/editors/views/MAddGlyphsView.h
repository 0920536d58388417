// The window in which a font, its colour and its characters are chosen.
#pragma once

#include "editors/MAddGlyphs.h"
#include "editors/views/MDialogView.h"
#include "editors/views/MFocusArea.h"

#include <QCheckBox>
#include <QComboBox>

class MAddGlyphsView : public MDialogView {
public:
    explicit MAddGlyphsView(QWidget* owner);

private:
    MAddGlyphs dialog;
    bool updating = true; // controls are being filled: what they tell is no change by the user
    QComboBox family;
    QComboBox style;
    QLineEdit height;
    MFocusArea swatch{"Colour"};
    QCheckBox colourFont{"Colour f&ont"};
    MFocusArea grid{"Characters"};
    QLabel* colourLabel = nullptr; // owned by the window

    void LayOut();
    void Connect();
    void FillStyles();
    void Draw();
    void ChooseColour();
    bool GridKey(const QKeyEvent& event);
    void TellCursor();
    Desktop::Rect SwatchArea() const;
};
