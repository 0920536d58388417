// The window of the glyph editor, on the current document.
#pragma once

#include "editors/MGlyphEditor.h"
#include "editors/views/MCharacterField.h"
#include "editors/views/MLineList.h"

#include <QGroupBox>
#include <array>

class MGlyphEditorView : public MDialogView {
public:
    explicit MGlyphEditorView(QWidget* owner);

private:
    QWidget drag; // over the preview, with the pointer and the hint of what dragging does
    MGlyphEditor editor;
    std::int32_t fillings = 0; // of the list, that are shown
    QGroupBox glyphBox{"Glyph properties"};
    QGroupBox fontBox{"Font properties"};
    MLineList list;
    MCharacterField character;
    QLineEdit unicode;
    QLineEdit resolution;
    QLineEdit spacingBefore;
    QLineEdit spacingAfter;
    QLineEdit baseline;
    QLineEdit capHeight;
    QLineEdit spaceWidth;
    QPushButton deleteGlyph{"&Delete glyph"};

    void LayOut();
    void Connect();
    void ShowControls();
};
