// The window that names a picture and the character that it becomes.
#pragma once

#include "editors/MAddPicture.h"
#include "editors/views/MCharacterField.h"

#include <QCheckBox>

class MAddPictureView : public MDialogView {
public:
    explicit MAddPictureView(QWidget* owner);

private:
    MAddPicture dialog;
    QLineEdit path;
    QPushButton browse{"&Browse"};
    MCharacterField character;
    QLineEdit paddingTop;
    QLineEdit paddingBottom;
    QLineEdit spacingBefore;
    QLineEdit spacingAfter;
    QCheckBox trim{"Trim &horizontally"};
    QLabel* pathLabel = nullptr; // owned by the window

    void LayOut();
    void Connect();
    void Browse();
    void Accept();
    Desktop::Rect PreviewArea() const;
};
