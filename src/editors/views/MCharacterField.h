// A field for one character. What it shows is selected while the user is in it, so that the next key takes its
// place.
#pragma once

#include "editors/views/MDialogView.h"

class MCharacterField : public QLineEdit {
public:
    void Show(const MString& text) {
        Fill(*this, text);
        if (hasFocus()) selectAll();
    }

protected:
    void mouseReleaseEvent(QMouseEvent* event) override {
        QLineEdit::mouseReleaseEvent(event);
        selectAll();
    }
};
