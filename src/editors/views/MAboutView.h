// Tells what this program is and whose copy. A click anywhere ends it.
#pragma once

#include "editors/MAbout.h"
#include "editors/views/MDialogView.h"

class MAboutView : public MDialogView {
public:
    explicit MAboutView(QWidget* owner);
};
