// The window of the optical kerning, on the current document.
#pragma once

#include "editors/MOpticalKerningEditor.h"
#include "editors/views/MDialogView.h"
#include "editors/views/MFocusArea.h"
#include "editors/views/MLineList.h"

#include <QCheckBox>
#include <QSlider>

class MOpticalKerningView : public MDialogView {
public:
    explicit MOpticalKerningView(QWidget* owner);

private:
    MOpticalKerningEditor editor;
    QLineEdit text;
    MFocusArea preview{"Line of text"};
    MLineList models;
    QPushButton remove{"&Remove pair"};
    QCheckBox white{"Show &white"};
    QSlider strength{Qt::Horizontal};
    QLabel percent;
    QLabel pairs;
    QLabel gap;

    void LayOut();
    void Connect();
    bool Key(const QKeyEvent& event);
    void ShowControls();
};
