// The window in which the export of a font for games is chosen.
#pragma once

#include "editors/MExportGameFont.h"
#include "editors/views/MDialogView.h"

#include <QComboBox>
#include <QPlainTextEdit>

class MExportGameFontView : public MDialogView {
public:
    MExportGameFontView(QWidget* owner, const MColourFont& font);

private:
    MExportGameFont dialog;
    bool updating = false; // controls are being filled
    QComboBox engine;
    QComboBox form;
    QComboBox pageSize;
    QLineEdit gap;
    QLineEdit bleed;
    QLineEdit largest;
    QLabel summary;
    QPlainTextEdit findings;

    void LayOut();
    void Connect();
    void Show();
};
