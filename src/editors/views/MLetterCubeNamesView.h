// Asks for the names that the letter cubes shall spell, one to a line. On OK they stand in the settings.
#pragma once

#include "editors/views/MDialogView.h"

#include <QPlainTextEdit>

class MLetterCubeNamesView : public MDialogView {
public:
    explicit MLetterCubeNamesView(QWidget* owner);

private:
    QPlainTextEdit names;
};
