// The window of the kerning editor, on the current document.
#pragma once

#include "editors/MKerningEditor.h"
#include "editors/views/MCharacterField.h"
#include "editors/views/MLineList.h"

class MKerningEditorView : public MDialogView {
public:
    explicit MKerningEditorView(QWidget* owner);

private:
    QWidget drag; // over the preview, with the pointer and the hint of what dragging does
    MKerningEditor editor;
    std::int32_t fillings = 0; // of the list, that are shown
    MCharacterField left;
    MCharacterField right;
    QLineEdit amount;
    MLineList list;
    QPushButton generate{"&Generate"};
    QPushButton clear{"C&lear"};

    void LayOut();
    void Connect();
    void ShowControls();
};
